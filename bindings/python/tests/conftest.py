"""Pictures that the tests share."""

import pathlib

import cv2
import numpy as np
import pytest

MEDIA = pathlib.Path(__file__).parents[3] / "media"


def random_frame(width, height, seed):
    return np.random.default_rng(seed).integers(0, 256, (height, width, 3), dtype=np.uint8)


def smooth_frame(width, height):
    """Colours that change slowly, so that a thousandth of a pixel makes no difference."""
    y, x = np.mgrid[0:height, 0:width]
    return np.stack([x * 255 // width, y * 255 // height, (x + y) * 255 // (width + height)], axis=2).astype(np.uint8)


def blobs():
    """Three white rectangles on black."""
    frame = np.zeros((60, 80, 3), np.uint8)
    for x, y, width, height in [(5, 5, 20, 10), (40, 30, 30, 25), (50, 4, 6, 6)]:
        frame[y : y + height, x : x + width] = 255
    return frame


@pytest.fixture
def footage():
    """Frames of the pedestrian clip, by number."""
    path = MEDIA / "vtest.avi"
    if not path.exists():
        pytest.skip("no footage")

    def read(number):
        clip = cv2.VideoCapture(str(path))
        clip.set(cv2.CAP_PROP_POS_FRAMES, number)
        found, frame = clip.read()
        assert found
        return frame

    return read


@pytest.fixture
def portrait():
    path = MEDIA / "messi5.jpg"
    if not path.exists():
        pytest.skip("no footage")
    return cv2.imread(str(path))
