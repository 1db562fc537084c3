"""Checks that each operation has a page, complete and in the common order: pages.py QUARRY FOLDER"""

import json
import pathlib
import re
import subprocess
import sys

SHAPE = [
    "# TITLE {#op-NAME}",
    "![CAPTION](NAME.PICTURE)",
    "## How it is computed",
    "## Parameters",
    "## Cost",
    "## Source",
    "## Example",
    "```cpp",
]


def shape_of(page):
    """What of a page all have in common, with the parts that differ replaced."""
    lines = []
    for line in page.read_text().splitlines():
        line = line.replace(page.stem, "NAME")
        line = re.sub(r"^# .+ \{#op-NAME\}$", SHAPE[0], line)
        line = re.sub(r"^!\[.+\]\(NAME\.(jpg|svg)\)$", SHAPE[1], line)
        if line.startswith(("# ", "## ", "![", "```cpp")) and line not in lines:
            lines.append(line)
    return lines


def main(quarry, folder):
    listed = subprocess.run([quarry, "list", "--json"], check=True, stdout=subprocess.PIPE, text=True).stdout
    operations = {json.loads(line)["name"] for line in listed.splitlines()}
    pages = {page.stem: page for page in pathlib.Path(folder).iterdir()}
    wrong = [f"{name}: no page" for name in operations - pages.keys()]
    wrong += [f"{name}: no operation" for name in pages.keys() - operations]
    wrong += [f"{name}: {shape_of(page)}" for name, page in pages.items() if shape_of(page) != SHAPE]
    sys.exit("\n".join(sorted(wrong)) or None)


main(*sys.argv[1:])
