"""Takes what the public headers say of operations and records into the catalogue.

Usage: describe.py HEADERS > Descriptions.inc

A record's meaning is the comment above it, a field's the comment above or behind it. An operation's summary, method and
errors are those of its factory's comment in Quarry.h. So nothing is said twice, and a field without a comment fails the
build.
"""

import re
import sys
from pathlib import Path


def quoted(text: str) -> str:
    """A C++ literal; names stand without the backticks that Doxygen wants."""
    return '"' + text.replace("`", "").replace("\\", "\\\\").replace('"', '\\"') + '"'


def first_paragraph(comment: list[str]) -> str:
    """The lines up to the first empty one, as one."""
    end = comment.index("") if "" in comment else len(comment)
    return " ".join(comment[:end])


def records(header: str):
    """(name, meaning, [(field, meaning)]) of each record that a header lays out."""
    comment: list[str] = []
    name, fields = "", []
    for line in map(str.strip, header.splitlines()):
        if line.startswith("///<"):
            field, meaning = fields.pop()
            fields.append((field, f"{meaning} {line[4:].strip()}"))
        elif line.startswith("///"):
            comment.append(line[3:].strip())
        elif opening := re.fullmatch(r"typedef struct (\w+) \{", line):
            name, meaning, fields, comment = opening[1], first_paragraph(comment), [], []
        elif name and line == f"}} {name};":
            yield name, meaning, fields
            name, comment = "", []
        elif name and (field := re.match(r"[\w* ]*?(\w+)(?:\[\d+\])?;(?:\s*///<(.*))?$", line)):
            if field[1] != "PointsCount":  # another name of Count
                fields.append((field[1], (field[2] or " ".join(comment)).strip()))
            comment = []
        elif not line:
            comment = []


def factories(header: str):
    """(factory, summary, method, [(error, when)]) of each factory."""
    comment: list[str] = []
    for line in map(str.strip, header.splitlines()):
        if line.startswith("///"):
            comment.append(line[3:])
        elif factory := re.match(r"QUARRY_API void (CreateCV\w+)\(", line):
            text = re.sub(r"\s*\n {5,}", " ", "\n".join(comment))
            lines = [part.strip() for part in text.split("\n")]
            takes = next(i for i, part in enumerate(lines) if part.startswith("Takes "))
            summary = " ".join(lines[:takes]).rstrip(".")
            method = "".join(part[8:].rstrip(".") for part in lines if part.startswith("Method: "))
            errors = [(part[7:].split("  ", 1)) for part in lines if part.startswith("@throws ")]
            errors = [(error.strip(), when.strip()) for error, when in errors]
            aborts = "Aborts the process when "
            errors[:0] = [("abort", part[len(aborts) :].rstrip(".")) for part in lines if part.startswith(aborts)]
            yield factory[1], summary, method, errors
        else:
            comment = []


def main(folder: Path) -> None:
    interface = (folder / "Quarry.h").read_text(encoding="utf-8")
    included = re.findall(r'#include "Quarry/(Records/\w+\.h)"', interface)
    for header in [folder / name for name in ["SharedRecords.h", *included]]:
        for name, meaning, fields in records(header.read_text(encoding="utf-8")):
            silent = [field for field, text in [("", meaning), *fields] if not text]
            if silent:
                sys.exit(f"{header.name}: {name}{'.' if silent[0] else ''}{silent[0]} has no comment")
            print(f"template <>\nconst Record& RecordOf<{name}>() {{")
            print(f"    static const Record kRecord = QUARRY_RECORD({name}, {quoted(meaning)}", end="")
            for field, text in fields:
                print(f",\n        QUARRY_FIELD({name}, {field}, {quoted(text)})", end="")
            print(");\n    return kRecord;\n}\n")
    for factory, summary, method, errors in factories(interface):
        print(f"static OperationText TextOf{factory}() {{")
        print(f"    return {{{quoted(summary)}, {quoted(method)}, {{", end="")
        print(", ".join(f"{{{quoted(error)}, {quoted(when)}}}" for error, when in errors), end="}};\n}\n\n")


main(Path(sys.argv[1]))
