#!/usr/bin/env python3
"""Draws bench.json as bars: how many times as fast as the plain steps the library is."""

import json
import sys

import matplotlib

matplotlib.use("svg")
matplotlib.rcParams.update({"svg.hashsalt": "quarry", "font.size": 9})
from matplotlib import pyplot  # noqa: E402  the backend is chosen first

INK = "#4a5568"
FASTER = "#2b6cb0"
EVEN = "#a0aec0"
# A ratio as close to 1 as this is noise.
NOISE = 0.1


def label(row):
    return " · ".join(part for part in (row["operation"], row["case"], row["input"]) if part)


def main():
    table_file, picture = sys.argv[1:]
    with open(table_file, encoding="utf-8") as stream:
        rows = [row for row in json.load(stream) if row["operation"] != "Frame"]
    rows.sort(key=lambda row: row["ratio"])
    ratios = [row["ratio"] for row in rows]
    figure, axes = pyplot.subplots(figsize=(9, 0.2 * len(rows) + 1), layout="constrained")
    axes.barh([label(row) for row in rows], ratios, left=0,
              color=[FASTER if ratio > 1 + NOISE else EVEN for ratio in ratios])
    for at, ratio in enumerate(ratios):
        axes.text(ratio * 1.05, at, f"{ratio:.3g}", va="center", color=INK)
    axes.set_xscale("log")
    axes.xaxis.set_major_formatter("{x:g}")
    axes.set_xlim(0.5, max(ratios) * 2)
    axes.axvline(1, color=INK, linewidth=0.8)
    axes.set_xlabel("plain steps / library, both on one thread (log scale)", color=INK)
    axes.tick_params(colors=INK)
    axes.margins(y=0.01)
    for side in ("top", "right"):
        axes.spines[side].set_visible(False)
    figure.savefig(picture, metadata={"Date": None}, facecolor="white")


if __name__ == "__main__":
    main()
