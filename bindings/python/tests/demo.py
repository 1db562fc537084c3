"""Runs the demo as its users do, for the tests of its page."""

import subprocess
import sys

import cv2
import numpy as np


def demo(folder, *arguments, fails=False):
    """What the demo writes to stdout and stderr, run in a folder."""
    run = subprocess.run([sys.executable, "-m", "quarry.demo", *map(str, arguments)], cwd=folder, capture_output=True,
                         text=True)
    assert (run.returncode != 0) == fails, run.stderr
    return run.stdout, run.stderr


def write_clip(path, frames, width=160, height=120):
    """A bright square that moves over noise."""
    path.parent.mkdir(exist_ok=True)
    writer = cv2.VideoWriter(str(path), cv2.VideoWriter_fourcc(*"MJPG"), 10, (width, height))
    background = np.random.default_rng(1).integers(0, 90, (height, width, 3), dtype=np.uint8)
    for frame in range(frames):
        picture = background.copy()
        picture[40:70, 2 * frame : 2 * frame + 30] = 230
        writer.write(picture)
    writer.release()


def write_picture(path, seed, sigma=0):
    """Noise, blurred."""
    path.parent.mkdir(exist_ok=True)
    picture = np.random.default_rng(seed).integers(0, 256, (43, 61, 3), dtype=np.uint8)
    assert cv2.imwrite(str(path), cv2.GaussianBlur(picture, (0, 0), sigma) if sigma else picture)
