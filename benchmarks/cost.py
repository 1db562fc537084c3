#!/usr/bin/env python3
"""Writes the tables of docs/scale.md that follow from measured ones: what operations cost, and what archives need.

Milliseconds of an operation are those of docs/performance.md, those of decoding stand in docs/scale.md itself. With
--check, says whether the tables are what they should be.
"""

import pathlib
import re
import sys

DOCS = pathlib.Path(__file__).resolve().parents[1] / "docs"
SIZES = ("640x480", "1920x1080")
# What each frame goes through in a verb of `quarry scan`, as rows of docs/performance.md.
VERBS = {
    "sharpness": ["VarianceOfLaplacian"],
    "background": ["BackgroundUpdating, Update", "BackgroundUpdating, GetUpdateResult"],
    "fire": ["PixelwiseFire, fire"],
    "detect": ["CascadeClassifier"],
    "people": ["HogSvmHumanClassifier"],
    "flow": ["DenseOpticalFlowCalculator"],
}
CAMERAS = 10_000
HOURS = 1_000_000
RATE = 25
CORES = 1000


def rows(text, columns):
    """Cells of the rows of a table with so many columns."""
    for line in text.splitlines():
        cells = [cell.strip() for cell in line.strip("|").split("|")]
        if line.startswith("|") and len(cells) == columns:
            yield cells


def operations(text):
    """Milliseconds per frame, by operation and case and then by size."""
    costs = {}
    for operation, case, frames, _, library, *_ in rows(text, 8):
        size, _, more = frames.partition(", ")
        if size in SIZES and case != "DeNoise":  # which no operation calls
            costs.setdefault(", ".join(filter(None, (operation, case, more))), {})[size] = float(library)
    return costs


def decoding(text):
    return {size: float(milliseconds) for codec, size, _, milliseconds, *_ in rows(text, 6) if codec == "H.264"}


def rounded(number):
    digits = f"{number:.3g}"
    return digits if "e" not in digits else f"{float(digits):,.0f}"


def cost_table(costs):
    yield "| operation | " + " | ".join(SIZES) + " |"
    yield "|---|---:|---:|"
    for operation, by_size in sorted(costs.items()):
        cells = [rounded(by_size[size]) if size in by_size else "" for size in SIZES]
        yield f"| {operation} | {' | '.join(cells)} |"


def plan_table(costs, decode):
    yield (f"| verb | frames | core-ms per frame of video | cores for {CAMERAS:,} cameras "
           f"| core-hours for {HOURS:,} hours | days on {CORES:,} cores |")
    yield "|---|---|---:|---:|---:|---:|"
    for verb, steps in VERBS.items():
        for every, name in ((1, "all"), (RATE, "one a second")):
            work = sum(costs[step][SIZES[1]] for step in steps) / every + decode[SIZES[1]]
            core_hours = HOURS * RATE * work / 1000
            yield (f"| {verb} | {name} | {rounded(work)} | {rounded(CAMERAS * RATE * work / 1000)} "
                   f"| {rounded(core_hours)} | {rounded(core_hours / 24 / CORES)} |")


def with_tables(text, costs):
    for name, table in (("cost", cost_table(costs)), ("plan", plan_table(costs, decoding(text)))):
        text, count = re.subn(rf"(<!-- {name}: .*?-->\n\n).*?(?=\n\n)", lambda match: match[1] + "\n".join(table), text,
                              flags=re.DOTALL)
        assert count == 1, f"docs/scale.md has no place for the table {name}"
    return text


def main():
    page = DOCS / "scale.md"
    text = page.read_text()
    now = with_tables(text, operations((DOCS / "performance.md").read_text()))
    if "--check" in sys.argv[1:]:
        return 0 if now == text else "docs/scale.md has old tables: benchmarks/cost.py writes them anew"
    page.write_text(now)
    return 0


if __name__ == "__main__":
    sys.exit(main())
