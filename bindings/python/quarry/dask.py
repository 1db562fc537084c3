"""Runs `quarry scan` over an archive of videos on a Dask cluster, one task per video.

Workers need Dask and the command, but not this package: its code travels with the tasks.
"""

import os
import subprocess
import sys
from collections.abc import Iterable, Iterator
from typing import Any, NamedTuple

import cloudpickle
from distributed import Client, as_completed

__all__ = ["Outcome", "scan"]

# Exit codes that the command gives at every run. After any other code another run may succeed.
FINE, WRONG_USAGE, BAD_VIDEO, BUG = 0, 2, 65, 70

cloudpickle.register_pickle_by_value(sys.modules[__name__])


class Outcome(NamedTuple):
    """The outcome of one video. The output file of a bad one says what is wrong with it."""

    name: str
    code: int  #: exit code of `quarry scan`
    outcome: str  #: "fine" or "bad"


def scan(
    client: Client,
    videos: Iterable[str | os.PathLike[str]],
    operation: str,
    *,
    out: str | os.PathLike[str],
    retries: int = 3,
    command: str = "quarry",
    **options: Any,
) -> list[Outcome]:
    """Runs an operation on each video and returns an `Outcome` for each, in their order.

    Videos and `out` are paths on the client, absolute or relative to its working directory; workers must see the same
    files under the same paths. `options` are those of the verb: `detail=0.3` becomes `--detail=0.3`, `True` gives a
    flag, a tuple gives values with commas.

    A command that could not read or write, was killed or lacked memory is run again, up to `retries` times. If the last
    run fails too, RuntimeError is raised after all other videos are done. Wrong usage and bugs raise RuntimeError at
    once. Bad videos are results.
    """
    names = [os.fspath(video) for video in videos]
    for name in names:
        if not name or name.startswith("#") or "\n" in name:
            raise ValueError(f"a line of a manifest cannot name this video: {name!r}")
    line = [command, "scan", operation, *_arguments(options), "--manifest", "-", "--out", os.fspath(out)]
    folder = os.getcwd()
    # A function without a name that others could import it by: Dask hands it over by value.
    tasks = client.map(lambda name: _scan_one(name, line, folder), names, key=f"quarry-{operation}", pure=False,
                       retries=retries)
    try:
        for task, result in as_completed(tasks, with_results=True, raise_errors=False):
            if task.status == "finished" and result[0] in (WRONG_USAGE, BUG):
                raise RuntimeError(_failure(*result))
        codes = [code for code, _ in client.gather(tasks)]
    except BaseException:
        client.cancel(tasks)
        raise
    return [Outcome(name, code, "bad" if code == BAD_VIDEO else "fine") for name, code in zip(names, codes)]


def _arguments(options: dict[str, Any]) -> Iterator[str]:
    for name, value in options.items():
        option = "--" + name.replace("_", "-")
        if value is True:
            yield option
        elif isinstance(value, (list, tuple)):
            yield f"{option}={','.join(map(str, value))}"
        elif value is not None and value is not False:
            yield f"{option}={value}"


def _scan_one(name: str, line: list[str], folder: str) -> tuple[int, str]:
    # The command ends with its worker: the scheduler gives the video of a lost worker to another one.
    run = subprocess.run(["setpriv", "--pdeathsig", "TERM", "--", *line], cwd=folder, input=name + "\n",
                         stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True)
    if run.returncode not in (FINE, WRONG_USAGE, BAD_VIDEO, BUG):
        raise RuntimeError(_failure(run.returncode, run.stderr))
    return run.returncode, run.stderr


def _failure(code: int, said: str) -> str:
    return f"exit code {code}: {said.strip()}"
