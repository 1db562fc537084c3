"""Runs a program and compares what it prints: prints.py EXPECTED PROGRAM [ARGUMENT...]; EXPECTED may be empty."""

import difflib
import pathlib
import subprocess
import sys

expected, *command = sys.argv[1:]
run = subprocess.run(command, stdout=subprocess.PIPE, text=True)
sys.stdout.write(run.stdout)
if run.returncode != 0:
    sys.exit(f"exit code {run.returncode}")
if expected:
    documented = pathlib.Path(expected).read_text().splitlines()
    sys.exit("\n".join(difflib.unified_diff(documented, run.stdout.splitlines(), "documented", "printed")) or None)
