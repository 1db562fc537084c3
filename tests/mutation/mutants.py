#!/usr/bin/env python3
"""Makes small changes to the library, one at a time, and says whether the tests notice: see docs/reliability.md.

usage: mutants.py [COUNT|all] [NAME...], in the tree's root, where the preset `mutants` has been configured. NAME is a
part of FILE:LINE: of what is changed. The tree itself is never written: a changed file stands in a folder of its own
that is searched before the tree, and what depends on it is compiled and linked there.
"""
import collections
import concurrent.futures
import json
import os
import pathlib
import queue
import random
import re
import resource
import shlex
import shutil
import subprocess
import sys
import threading
import time

import changes

ROOT = pathlib.Path.cwd()
BUILD = ROOT / "build/mutants"
JOBS = 2
ENOUGH = 0.9
SEED = 1
LIBRARY = "lib/libQuarry.OpenCV.so"
FLAME_TABLE = "Quarry.OpenCV/quarry_flame_table"  # a program whose output the library is compiled with
# What a change that a source's own tests missed has to get past: the tests of all operations.
SECOND_LINE = ["Drivers", "EveryOperation", "HostHeader", "HostHeaderMisuse", "HostHeaderProcessors",
               "HostHeaderUpdaters", "Memory", "Determinism", "StrongGuarantee", "AllocationTorture"]

Mutant = collections.namedtuple("Mutant", "file line before after text")
Program = collections.namedtuple("Program", "path arguments loads")  # whether it loads the library


class NotCounted(Exception):
    pass


def output_of(*command):
    return subprocess.run(command, cwd=BUILD, check=True, capture_output=True, text=True).stdout


def dependencies():
    """Of each object, the files of the tree and of the build that it is made from."""
    found, files = {}, set()
    for line in output_of("ninja", "-t", "deps").splitlines():
        if line.startswith(" "):
            path = os.path.normpath(BUILD / line.strip())
            if path.startswith(f"{ROOT}/"):
                files.add(os.path.relpath(path, ROOT))
        elif line:
            files = found[line.split(":")[0]] = set()
    return found


def suites_of(source):
    """The filter that picks the test suites of a source from those of its program."""
    suites = sorted(set(re.findall(r"(?m)^(?:TYPED_)?TEST(?:_[FP])?\((\w+),", source.read_text())))
    return "--gtest_filter=" + ":".join(f"{suite}.*:{suite}/*:*/{suite}.*:*/{suite}/*" for suite in suites)


def programs():
    """The tests by the name of their source, but for those of the interface, which load the library from where it was
    built."""
    found = {}
    targets = output_of("ninja", "-t", "targets", "all")
    for path in re.findall(r"(?m)^((?:tests|fuzz)/\w+): CXX_EXECUTABLE_LINKER", targets):
        name = path.split("/")[-1]
        if name.endswith("Replay"):
            name = name.removesuffix("Replay")
            found["Fuzz." + name] = Program(path, [str(ROOT / "fuzz/corpus" / name)], False)
        elif name.endswith("_tests") and name != "quarry_interface_tests":
            words = output_of("ninja", "-t", "query", path).split()
            for source in re.findall(r"(?m)/(\S+Test)\.cpp\.o$", "\n".join(words)):
                suites = suites_of(ROOT / "tests" / (source.split(".dir/")[-1] + ".cpp"))
                found[pathlib.Path(source).stem.removesuffix("Test")] = Program(
                    path, ["--gtest_fail_fast", suites], any(word.startswith("lib/libQuarry") for word in words))
    return found


def stems_of(objects):
    return {pathlib.Path(made.removesuffix(".o")).stem for made in objects}


class Tree:
    """What the build knows of the tree."""

    def __init__(self):
        self.programs = programs()
        paths = sorted({program.path for program in self.programs.values()})
        subprocess.run(["ninja", f"-j{JOBS}", *paths], cwd=BUILD, check=True)
        self.needs = dependencies()
        entries = json.loads((BUILD / "compile_commands.json").read_text())
        commands = [shlex.split(entry["command"]) for entry in entries]
        self.compile = {command[command.index("-o") + 1]: command for command in commands}
        self.links, self.limits, self.lock = {}, {}, threading.Lock()

    def link(self, path):
        if path not in self.links:
            target = os.path.relpath(os.path.realpath(BUILD / path), BUILD)
            steps = output_of("ninja", "-t", "commands", "-s", target).strip().split(" && ")
            self.links[path] = shlex.split(next(step for step in steps if " -o " in step))
        return self.links[path]

    def dependants(self, file):
        return {made for made, files in self.needs.items() if file in files and made in self.compile}

    def tests_of(self, file, changed):
        """The tests that concern a file first, then those that may notice as well."""
        stem = pathlib.Path(file).stem
        users = self.users(file) | changed
        if "/Records/" in file:
            own = ["Memory"]
        elif stem in self.programs:
            own = [stem]
        else:
            neighbours = {path.stem for path in (ROOT / file).parent.iterdir()}
            own = [name for name in self.tests_named_like(users) if name in neighbours]
        if not {"Processor", "Updatable"}.isdisjoint(own):
            own.append("Exchange")  # what the two do alike
        for made in list(users):
            users |= self.users(os.path.relpath(self.compile[made][-1], ROOT))
        # A test that has the change in itself would have to be compiled anew: it is not worth that here.
        others = [name for name in self.tests_named_like(users) if name + "Test" not in stems_of(changed)]
        return own, ["Fuzz." + name for name in own] + others + SECOND_LINE

    def users(self, file):
        """The objects that the header of a source is in."""
        return self.dependants(str(pathlib.Path(file).with_suffix(".h")))

    def tests_named_like(self, objects):
        return [name for name in self.programs if not {name, name + "Test"}.isdisjoint(stems_of(objects))]

    def limit(self, name):
        """How long a test may take, by what it takes unchanged."""
        with self.lock:
            if name not in self.limits:
                started = time.monotonic()
                program = self.programs[name]
                if not passes([BUILD / program.path, *program.arguments], 600):
                    sys.exit(f"mutants: {name} fails as it is")
                self.limits[name] = 10 + 5 * (time.monotonic() - started)
            return self.limits[name]


def restrict():
    resource.setrlimit(resource.RLIMIT_AS, (8 << 30, 8 << 30))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


def passes(command, limit, **environment):
    try:
        return subprocess.run(command, cwd=BUILD / "tests", timeout=limit, preexec_fn=restrict, check=False,
                              env={**os.environ, **environment}, stdin=subprocess.DEVNULL,
                              stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL).returncode == 0
    except subprocess.TimeoutExpired:
        return False


class Trial:
    """One mutant, in a folder of its own."""

    def __init__(self, tree, mutant, folder):
        self.tree, self.mutant, self.folder = tree, mutant, folder
        shutil.rmtree(folder, ignore_errors=True)
        changed = folder / mutant.file
        changed.parent.mkdir(parents=True)
        changed.write_text(mutant.text)
        self.changed, self.objects = tree.dependants(mutant.file), {}
        table = self.linked(FLAME_TABLE)
        if table:
            with open(folder / "FlameTable.inc", "wb") as out:
                self.run([table], stdout=out)
            self.changed |= tree.dependants("build/mutants/Quarry.OpenCV/FlameTable.inc")

    def compiled(self, made):
        if made not in self.objects:
            command = list(self.tree.compile[made])
            first = next(i for i, word in enumerate(command) if word.startswith("-"))
            command[command.index("-o") + 1] = target = str(self.folder / f"{len(self.objects)}.o")
            if command[-1] == str(ROOT / self.mutant.file):
                command[-1] = str(self.folder / self.mutant.file)
            command[first:first] = [f"-I{self.folder}", f"-fmacro-prefix-map={self.folder}/="]
            self.run(command)
            self.objects[made] = target
        return self.objects[made]

    def linked(self, path, only=lambda made: True):
        """The program or library at `path` with the change in it; None where it has no part in it."""
        changed = [word for word in self.tree.link(path) if word in self.changed and only(word)]
        if not changed:
            return None
        command = [word for word in self.tree.link(path) if word not in changed]
        # In front: of what several objects hold, the linker takes the first.
        command[1:1] = [self.compiled(made) for made in changed]
        command[command.index("-o") + 1] = target = str(self.folder / os.path.basename(path))
        self.run(command)
        return target

    def run(self, command, stdout=subprocess.DEVNULL):
        try:
            subprocess.run(command, cwd=BUILD, stdout=stdout, stderr=subprocess.DEVNULL, check=True, timeout=600)
        except subprocess.SubprocessError as failure:
            raise NotCounted from failure

    def noticed_by(self, name, only=lambda made: True):
        program, environment = self.tree.programs[name], {}
        if program.loads:
            path, library = BUILD / program.path, self.linked(LIBRARY)
            if library:
                os.replace(library, library + ".1")
                environment = {"LD_LIBRARY_PATH": str(self.folder)}
        else:
            # Other tests of the program stay as they are, whatever they include.
            path = self.linked(program.path, lambda made: only(made) and self.is_part_of(name, made))
        if not path or (program.loads and not environment):
            return False
        return not passes([path, *program.arguments], self.tree.limit(name), **environment)

    @staticmethod
    def is_part_of(name, made):
        stem, = stems_of([made])
        return not stem.endswith("Test") or stem == name + "Test"

    def verdict(self):
        """The test that notices the change, or None."""
        own, others = self.tree.tests_of(self.mutant.file, self.changed)
        if self.mutant.file.endswith(".h"):
            # A header is in many objects: first in those that are named like it or its tests alone.
            stems = {pathlib.Path(self.mutant.file).stem, *own, *(name + "Test" for name in own)}
            for name in own:
                if self.noticed_by(name, lambda made: not stems.isdisjoint(stems_of([made]))):
                    return name
        for name in dict.fromkeys([*own, *others]):
            if name in self.tree.programs and self.noticed_by(name):
                return name
        return None


def mutants_of(file):
    text = (ROOT / file).read_text()
    for begin, end, after in sorted(set(changes.changes(text))):
        yield Mutant(file, text.count("\n", 0, begin) + 1, text[begin:end], after, text[:begin] + after + text[end:])


def sample(count, names):
    """`count` mutants, as many of one file as of another while they last, one of each at a time; the same each time."""
    files = sorted(str(path.relative_to(ROOT)) for folder in ("Quarry.Frame", "Quarry.OpenCV")
                   for path in (ROOT / folder).rglob("*") if path.suffix in (".h", ".cpp"))
    ranked = []
    for file in files:
        generator = random.Random(f"{SEED} {file}")
        mutants = [mutant for mutant in mutants_of(file)
                   if not names or any(name in f"{file}:{mutant.line}:" for name in names)]
        generator.shuffle(mutants)
        ranked += [(rank, generator.random(), mutant) for rank, mutant in enumerate(mutants)]
    return [mutant for _, _, mutant in sorted(ranked)[:count]]


def short(text):
    return re.sub(r"\s+", " ", text) or "nothing"


def described(mutant):
    return f"{mutant.file}:{mutant.line}: {short(mutant.before)}  ->  {short(mutant.after)}"


def main(arguments):
    count = None
    if arguments and (arguments[0] == "all" or arguments[0].isdigit()):
        first = arguments.pop(0)
        count = int(first) if first.isdigit() else sys.maxsize
    mutants = sample(count or 60, arguments)
    tree = Tree()
    folders = queue.SimpleQueue()
    for job in range(JOBS):
        folders.put(BUILD / f"trial-{job}")

    def tried(mutant):
        folder = folders.get()
        try:
            name = Trial(tree, mutant, folder).verdict()
            return "killed" if name else "survived", name
        except NotCounted:
            return "not counted", None
        finally:
            folders.put(folder)

    interrupted, counts = False, collections.defaultdict(collections.Counter)
    with concurrent.futures.ThreadPoolExecutor(JOBS) as pool:
        try:
            for mutant, (verdict, name) in zip(mutants, pool.map(tried, mutants)):
                print(f"{verdict + (f' by {name}' if name else ''):<40} {described(mutant)}", flush=True)
                counts[mutant.file][verdict] += 1
        except KeyboardInterrupt:
            pool.shutdown(cancel_futures=True)
            interrupted = True
    print(f"\n{'':<60} killed survived not counted")
    for file, of in [*sorted(counts.items()), ("together", sum(counts.values(), collections.Counter()))]:
        tested = of["killed"] + of["survived"]
        share = f"{of['killed'] / tested:.0%}" if tested else ""
        print(f"{file:<60} {of['killed']:>6} {of['survived']:>8} {of['not counted']:>11} {share:>5}")
    if interrupted:
        return 130
    return 0 if tested and of["killed"] >= ENOUGH * tested else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
