#!/usr/bin/env python3
"""Draws bench.json as bars: how many times as fast as the plain steps the library is. plot.py bench.json OUT.svg"""

import json
import sys

from quarry import plot


def label(row):
    return " · ".join(part for part in (row["operation"], row["case"], row["input"]) if part)


def main():
    table_file, picture = sys.argv[1:]
    with open(table_file, encoding="utf-8") as stream:
        rows = [row for row in json.load(stream) if row["operation"] != "Frame"]
    rows.sort(key=lambda row: row["ratio"])
    bars = plot.Bars("How many times as fast as the plain steps the library is",
                     "plain steps / library, both on one thread (log scale)",
                     [label(row) for row in rows], [row["ratio"] for row in rows])
    plot.save(bars, picture)


if __name__ == "__main__":
    main()
