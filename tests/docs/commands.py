"""Checks the command lines of a shell block: commands.py QUARRY DEV BLOCK

Lines of `quarry` are run where none of their files is: the command checks verb, options and values before it opens a
file, and tells a wrong usage (exit code 2) from a missing file (1, or 75 of `quarry scan`). That takes no time and
needs no footage; the verbs have tests of their own. Verbs of `./dev` must be those that it lists, since it installs and
builds. Other programs are not ours.
"""

import pathlib
import re
import shlex
import subprocess
import sys
import tempfile


def usage_error(quarry, line):
    words = shlex.split(re.sub(r"\$\w+", "1", re.split("[>|]", line)[0]), comments=True)  # variables hold numbers
    with tempfile.TemporaryDirectory() as empty:
        run = subprocess.run([quarry, *words[1:]], cwd=empty, capture_output=True, text=True)
    return run.stderr if run.returncode not in (0, 1, 75) else ""


def main(quarry, dev, block):
    usage = subprocess.run([dev], stdout=subprocess.PIPE, text=True).stdout
    verbs = set(re.findall(r"^  ([\w-]+) ", usage, re.MULTILINE))
    wrong = []
    for line in pathlib.Path(block).read_text().splitlines():
        if line.startswith("quarry "):
            wrong += [f"{line}\n{error}" for error in [usage_error(quarry, line)] if error]
        elif line.startswith("./dev") and not verbs.issuperset(shlex.split(line, comments=True)[1:2]):
            wrong.append(f"{line}\n./dev has no such verb")
    sys.exit("\n".join(wrong) or None)


main(*sys.argv[1:])
