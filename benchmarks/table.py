#!/usr/bin/env python3
"""Prints what the benchmarks measured as one table and writes it as JSON; with --check, says which rows fell short."""

import argparse
import json
import sys

# Fallen short is what misses its floor or ceiling by more than this: machines are noisy.
TOLERANCE = 0.10


def rows(files):
    for file in files:
        with open(file, encoding="utf-8") as stream:
            for run in json.load(stream)["benchmarks"]:
                if run.get("error_occurred"):
                    sys.exit(f"{run['name']}: {run['error_message']}")
                operation, case, image = run["name"].removesuffix("/manual_time").split("/")[:3]
                measured = ("plain_ns", "library_ns", "ratio", "spread", "floor", "ceiling")
                yield {"operation": operation, "case": case, "input": image, **{key: run[key] for key in measured}}


def milliseconds(nanoseconds):
    return f"{nanoseconds / 1e6:.3g}" if nanoseconds >= 1e4 else f"{nanoseconds / 1e6:.2g}"


def line(row):
    wanted = f"≤ {row['ceiling']:g} ns" if row["ceiling"] else f"{row['floor']:g}"
    return (f"| {row['operation']} | {row['case']} | {row['input']} | {milliseconds(row['plain_ns'])} "
            f"| {milliseconds(row['library_ns'])} | {row['ratio']:.2f} | {row['spread']:.0%} | {wanted} |")


def fell_short(row):
    if row["ceiling"]:
        return row["library_ns"] > row["ceiling"] * (1 + TOLERANCE)
    return row["ratio"] < row["floor"] * (1 - TOLERANCE)


def main():
    arguments = argparse.ArgumentParser(description=__doc__)
    arguments.add_argument("files", nargs="+", help="what the benchmarks wrote with --benchmark_out")
    arguments.add_argument("--out", required=True, help="the table as JSON")
    arguments.add_argument("--check", action="store_true", help="fail when a row falls short of what is expected")
    given = arguments.parse_args()

    table = list(rows(given.files))
    with open(given.out, "w", encoding="utf-8") as stream:
        kept = ("operation", "case", "input", "plain_ns", "library_ns", "ratio", "spread")
        json.dump([{key: row[key] for key in kept} for row in table], stream, indent=1)
    print("| operation | case | input | plain ms | library ms | plain / library | spread | expected |")
    print("|---|---|---|---:|---:|---:|---:|---:|")
    for row in table:
        print(line(row))
    short = [row for row in table if fell_short(row)] if given.check else []
    for row in short:
        print("fell short:", row["operation"], row["case"], row["input"], file=sys.stderr)
    return 1 if short else 0


if __name__ == "__main__":
    sys.exit(main())
