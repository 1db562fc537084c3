"""A small archive, what one process makes of it, and what kills processes half-way."""

import os
import pathlib
import re
import shutil
import signal
import subprocess
import time

import pytest

VIDEOS = 8
FRAMES = 40
SIZE = (160, 120)
PATIENCE = 120  # seconds, for whatever takes one or two on an idle machine
DOCUMENT = pathlib.Path(__file__, "../../../docs/scale.md").resolve()
COMMAND = pathlib.Path(os.environ["QUARRY_COMMAND"])


def write_video(path, seed):
    cv2 = pytest.importorskip("cv2", reason="python3-opencv is not installed")
    import numpy

    path.parent.mkdir(parents=True, exist_ok=True)
    video = cv2.VideoWriter(str(path), cv2.VideoWriter_fourcc(*"MJPG"), 25, SIZE)
    scene = numpy.random.default_rng(seed).integers(0, 256, (SIZE[1], SIZE[0], 3), numpy.uint8)
    scene = cv2.blur(scene, (9, 9))
    for frame in range(FRAMES):
        video.write(numpy.roll(scene, frame * (1 + seed % 3), axis=1))
    video.release()


def recipe(section):
    """The first block of code of a section of the documentation."""
    text = DOCUMENT.read_text().partition(f"\n## {section}\n")[2].partition("\n## ")[0]
    return re.search(r"^```\w+\n(.*?)^```$", text, re.DOTALL | re.MULTILINE)[1]


class Archive:
    """A folder with `videos`; `results` grows beside it. Commands run there."""

    def __init__(self, folder):
        self.folder = folder.resolve()
        self.results = folder / "results"
        self.environment = {**os.environ, "PATH": f"{folder}/bin:{COMMAND.parent}:{os.environ['PATH']}"}
        self.names = [f"camera-{video % 2}/{video}.avi" for video in range(VIDEOS)]

    def start(self, command, **options):
        return subprocess.Popen(command, cwd=self.folder, env=self.environment, stdin=subprocess.DEVNULL, **options)

    def run(self, *command):
        return subprocess.run(command, cwd=self.folder, env=self.environment, stdin=subprocess.DEVNULL, text=True,
                              capture_output=True, timeout=PATIENCE)

    def stand_in(self, script):
        """Puts a script in the place of the command."""
        file = self.folder / "bin/quarry"
        file.parent.mkdir()
        file.write_text(f"#!/bin/sh\n{script}")
        file.chmod(0o755)

    def merged(self):
        run = self.run("quarry", "merge", "results", "--out", "merged.jsonl")
        assert run.returncode == 0, run.stderr
        return (self.folder / "merged.jsonl").read_bytes()

    def outputs(self):
        return [file.name for file in self.results.rglob("*.jsonl")]

    def finished(self):
        return [name for name in self.outputs() if not name.startswith(".")]

    def under_way(self):
        return [name for name in self.outputs() if name.startswith(".")]

    def wait_until_half_way(self):
        """Some videos are done, one is under way."""
        wait_until(lambda: len(self.finished()) >= 2 and self.under_way() or len(self.finished()) == VIDEOS,
                   "videos are done")
        assert len(self.finished()) < VIDEOS - 1, "the archive was done too quickly to be half-way"

    def processes(self, name=None):
        """What runs in this folder, by whomever it was started: ids of all processes, or of those of one program."""
        found = []
        for process in pathlib.Path("/proc").glob("[0-9]*"):
            try:
                place = pathlib.Path(os.readlink(process / "cwd"))
                here = self.folder in (place, *place.parents) and int(process.name) != os.getpid()
                if here and name in (None, (process / "comm").read_text().strip()):
                    found.append(int(process.name))
            except OSError:
                continue  # it has ended, or is another user's
        return found

    def kill(self, processes):
        for process in processes:
            try:
                os.kill(process, signal.SIGKILL)
            except ProcessLookupError:
                pass

    def kill_all(self):
        """Until none is left: what is killed may have been starting another."""
        def none_left():
            self.kill(self.processes())
            return not self.processes()
        wait_until(none_left, "all is killed")


def wait_until(condition, what):
    end = time.monotonic() + PATIENCE
    while not condition():
        assert time.monotonic() < end, f"waited {PATIENCE} s in vain until {what}"
        time.sleep(0.01)


def need(*programs):
    for program in programs:
        if not shutil.which(program):
            pytest.skip(f"{program} is not installed (./dev test installs it)")


@pytest.fixture(scope="session")
def videos(tmp_path_factory):
    folder = tmp_path_factory.mktemp("videos")
    for seed, name in enumerate(Archive(folder).names):
        write_video(folder / name, seed)
    return folder


@pytest.fixture
def archive(tmp_path, videos):
    archive = Archive(tmp_path)
    shutil.copytree(videos, tmp_path / "videos", copy_function=os.link)
    yield archive
    archive.kill_all()


@pytest.fixture(scope="session")
def reference(tmp_path_factory, videos):
    """What one process makes of the archive."""
    archive = Archive(tmp_path_factory.mktemp("reference"))
    run = archive.run("quarry", "scan", "flow", "--manifest", str(videos), "--out", "results")
    assert run.returncode == 0, run.stderr
    return archive.merged()
