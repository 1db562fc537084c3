"""Writes the code that the documentation shows to files of their own: extract.py SOURCES FOLDER

A fenced block becomes FOLDER/PAGE.NUMBER.LANGUAGE; a text block right after it is what it prints, PAGE.NUMBER.output.
Files that are right already are left alone, so that nothing is built again for them.
"""

import itertools
import pathlib
import re
import sys

SUFFIXES = {"cpp": "cpp", "c": "c", "python": "py", "sh": "sh"}  # any other language but text is a mistake
BLOCK = re.compile(r"^( *)```(\w+)\n(.*?)^ *```\n(?:\s*^```text\n(.*?)^```$)?", re.DOTALL | re.MULTILINE)


def files_of(page):
    numbers = itertools.count(1)
    for indent, language, code, output in BLOCK.findall(page.read_text()):
        if language == "text":
            continue
        if indent or language not in SUFFIXES:
            sys.exit(f"{page}: a block of {language} is indented, or in a language that is not tested; mark it as text")
        name = f"{page.stem}.{next(numbers)}"
        yield f"{name}.{SUFFIXES[language]}", code
        if output:
            yield f"{name}.output", output


def main(sources, folder):
    sources, folder = pathlib.Path(sources), pathlib.Path(folder)
    folder.mkdir(parents=True, exist_ok=True)
    pages = [*sources.glob("*.md"), *sources.glob("docs/**/*.md")]
    files = dict(file for page in pages for file in files_of(page))
    for left in {file.name for file in folder.iterdir()} - files.keys():
        (folder / left).unlink()
    for name, text in files.items():
        file = folder / name
        if not file.exists() or file.read_text() != text:
            file.write_text(text)


main(*sys.argv[1:])
