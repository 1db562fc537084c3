"""Compares descriptions of pictures."""

import numpy as np
import quarry
from numpy.typing import NDArray
from quarry.demo.drawing import middle_of
from quarry.demo.footage import Footage, Frame
from quarry.demo.page import Section, Timer

LEVELS = 8  # per channel: 8 x 8 x 8 bins are 512 values


def section(footage: Footage) -> Section:
    names, pictures = zip(*footage.pictures)
    page = Section("Cosine similarity",
                   "How alike two descriptions of 512 numbers are: 1 the same direction, 0 nothing in common.")
    page.input = f"colour histograms of {len(pictures)} pictures"
    page.timer = timer = Timer()
    page.counted = "per pair"

    compare = quarry.CosineSimilarity()
    descriptions = [histogram(picture) for picture in pictures]
    similarities = np.empty((len(pictures), len(pictures)))
    for pair in np.ndindex(similarities.shape):
        first, second = (descriptions[place] for place in pair)
        with timer:
            similarities[pair] = compare(first, second)

    others = similarities - 2 * np.eye(len(pictures))
    page.picture = np.hstack([middle_of(pictures[place], 240, 240) for place in divmod(others.argmax(), len(pictures))])
    page.heading("Pictures by their colours")
    page.text("Hosts compare descriptions of faces or people that some model made. Here, for want of a model, a "
              "picture is described by its colours: how often each of 8 × 8 × 8 = 512 occurs, scaled to length 1.")
    page.matrix(names, pictures, similarities.tolist())
    return page


def histogram(picture: Frame) -> NDArray[np.float32]:
    """The colours of a picture: how often each of 512 occurs, scaled to length 1."""
    blue, green, red = np.moveaxis(picture.astype(int) * LEVELS // 256, 2, 0)
    counts = np.bincount(((blue * LEVELS + green) * LEVELS + red).ravel(), minlength=LEVELS**3)
    return (counts / np.linalg.norm(counts)).astype(np.float32)
