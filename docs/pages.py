"""Writes the pages of the operations: pages.py QUARRY SOURCES PICTURES FOLDER

A page is its text in SOURCES, then what `quarry describe` says of the records; the list of all has their pictures.
"""

import json
import pathlib
import re
import subprocess
import sys

CARD = """<div class="card"><a href="op-{name}.html"><img src="{picture}" alt=""></a>
@subpage op-{name} <span>{summary}</span></div>
"""


def main(quarry, sources, pictures, folder):
    def ask(*arguments):
        return subprocess.run([quarry, *arguments], check=True, stdout=subprocess.PIPE, text=True).stdout

    pages = pathlib.Path(folder)
    pages.mkdir(parents=True)
    cards = ""
    for line in ask("list", "--json").splitlines():
        operation = json.loads(line)
        name = operation["name"]
        text = pathlib.Path(sources, name + ".md").read_text()
        records = ask("describe", name, "--markdown").partition("\n| | |")
        headings = re.sub("^#.*", lambda heading: heading[0].replace("`", ""), "".join(records[1:]), flags=re.MULTILINE)
        (pages / (name + ".md")).write_text(text + "\n## Interface\n" + headings)
        picture = next(pathlib.Path(pictures).glob(name + ".*")).name
        cards += CARD.format(picture=picture, **operation)
    (pages / "index.md").write_text(
        "# Operations {#operations}\n\n"
        "What they make of real footage, with times, is on [one page](report.html).\n\n"
        f'<div class="cards">\n{cards}</div>\n'
    )


main(*sys.argv[1:])
