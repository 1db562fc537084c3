"""The types that the package declares are those it has."""

import ast
import pathlib
import re
import subprocess
import sys

import pytest
import quarry
from quarry import _quarry, _types

PUBLIC = {name for name in vars(_quarry) if not name.startswith("_")} | set(_types.__all__)
PACKAGE = pathlib.Path(quarry.__file__).parent
SAMPLE = pathlib.Path(__file__).with_name("everything.py")
SETTINGS = pathlib.Path(__file__).parents[1] / "mypy.ini"


def mypy(*arguments, folder):
    """Runs a part of mypy on the package, in a folder where its cache does no harm."""
    environment = {"MYPYPATH": str(PACKAGE.parent), "PYTHONPATH": str(PACKAGE.parent), "PATH": "/usr/bin:/bin"}
    run = subprocess.run(
        [sys.executable, "-m", *map(str, arguments)], cwd=folder, env=environment, capture_output=True, text=True
    )
    assert run.returncode == 0, run.stdout + run.stderr


def test_a_program_that_uses_everything_has_the_types_that_it_says(tmp_path):
    mypy("mypy", "--strict", SAMPLE, folder=tmp_path)


def test_a_program_that_uses_everything_runs():
    subprocess.run([sys.executable, SAMPLE], check=True, stdout=subprocess.DEVNULL)


def test_the_program_uses_everything():
    used = set(re.findall(r"quarry\.(\w+)", SAMPLE.read_text()))
    assert PUBLIC <= used


def test_the_package_is_strict_itself(tmp_path):
    mypy("mypy", "--config-file", SETTINGS, "-p", "quarry", folder=tmp_path)


def test_stubtest_finds_no_difference(tmp_path):
    allowed = tmp_path / "allowed"
    # The metaclass of pybind11 cannot be named; NamedTuple is a function.
    allowed.write_text("quarry\\._quarry\\.[A-Z]\\w+\n.*\\.NamedTuple\n")
    arguments = ["--allowlist", allowed, "--ignore-unused-allowlist", "--mypy-config-file", SETTINGS]
    mypy("mypy.stubtest", "quarry._quarry", *arguments, folder=tmp_path)


def declared():
    """Parameters of every method in the stub, as (name, keyword only, has a default)."""
    methods = {}
    for statement in ast.parse((PACKAGE / "_quarry.pyi").read_text()).body:
        functions = statement.body if isinstance(statement, ast.ClassDef) else [statement]
        prefix = f"{statement.name}." if isinstance(statement, ast.ClassDef) else ""
        for function in functions:
            if isinstance(function, ast.FunctionDef):
                arguments = function.args
                first = len(arguments.args) - len(arguments.defaults)
                methods[prefix + function.name] = [
                    (argument.arg, False, index >= first) for index, argument in enumerate(arguments.args)
                ] + [
                    (argument.arg, True, default is not None)
                    for argument, default in zip(arguments.kwonlyargs, arguments.kw_defaults)
                ]
    return methods


def signature(function):
    """The same of what pybind11 writes into the first line of a docstring."""
    line = re.fullmatch(r"\w+\((.*)\) -> .*", function.__doc__.splitlines()[0]).group(1)
    parameters, only = [], False
    bracketed = r"\[(?:[^][]|\[[^]]*\])*\]"
    for part in re.findall(rf"(\*|\w+: (?:[^,\[(]|{bracketed}|\([^)]*\))+)", line):
        if part == "*":
            only = True
        else:
            parameters.append((part.split(":")[0], only, " = " in part))
    return parameters


def present():
    """The same of the module."""
    methods = {}
    for name, value in vars(_quarry).items():
        if isinstance(value, type):
            for method, function in vars(value).items():
                if not method.startswith("_") or method in ("__init__", "__call__", "__reduce__"):
                    methods[f"{name}.{method}"] = signature(getattr(value, method))
        elif not name.startswith("__"):
            methods[name] = signature(value)
    return methods


def test_the_stub_declares_what_the_module_has():
    assert declared() == present()
    assert len(declared()) > 60


@pytest.mark.parametrize("name", sorted(PUBLIC & set(vars(_quarry))))
def test_everything_is_explained(name):
    value = getattr(quarry, name)
    assert value.__doc__
    if not isinstance(value, type):
        return
    assert value.__module__ == "quarry"
    methods = {key.split(".")[1]: value for key, value in declared().items() if key.startswith(name + ".")}
    for method, parameters in methods.items():
        explained = getattr(value, method).__doc__.split("\n", 1)[1]
        for parameter, _, _ in parameters[1:]:
            assert re.search(rf"\b{parameter}\b.*:", explained), f"{method}: {parameter}"
        if "frame" in dict((parameter, 0) for parameter, _, _ in parameters):
            assert "(height, width, 3)" in explained and "raises ValueError" in explained
