"""Brings a picture into one layout, however it lies."""

import cv2
import numpy as np
import quarry
from numpy.typing import NDArray
from quarry.demo.drawing import GREEN, with_crosses
from quarry.demo.footage import Footage, Frame
from quarry.demo.page import Figure, Section, Timer

# In fractions of the picture's width and height.
FACE = np.array([(0.344, 0.111), (0.654, 0.105), (0.463, 0.75), (0.385, 0.87), (0.6, 0.865)])
MIDDLE = np.array([(0.3, 0.3), (0.7, 0.3), (0.5, 0.5), (0.3, 0.7), (0.7, 0.7)])

WIDTH, HEIGHT = 320, 240
PART = 0.7  # of the result that the landmarks take
# How the picture is turned, scaled and shifted downwards by a share of its height.
DISORDERS = [(0, 1, 0), (25, 0.8, 0), (-40, 0.75, 0.1), (150, 0.7, -0.05)]


def section(footage: Footage) -> Section:
    name, pixels = footage.picture("baboon.jpg")
    shares = FACE if name == "baboon.jpg" else MIDDLE
    page = Section("Alignment by landmarks",
                   "Turns, scales and shifts a picture so that five landmarks lie where they should.")
    page.input = f"{name}, {len(DISORDERS)} ways to lie"
    page.timer = timer = Timer()
    page.counted = "per picture"

    height, width = pixels.shape[:2]
    landmarks = shares * np.array([width, height], float)
    layout = fitted(landmarks)
    align = quarry.SimilarityTransform(width=WIDTH, height=HEIGHT)
    before: list[Figure] = []
    after: list[Figure] = []
    for degrees, scale, shift in DISORDERS:
        matrix = cv2.getRotationMatrix2D((width / 2, height / 2), degrees, scale)
        matrix[1, 2] += shift * height
        picture = cv2.warpAffine(pixels, matrix, (width, height))
        places = landmarks @ matrix[:, :2].T + matrix[:, 2]
        with timer:
            aligned = align(picture, places, layout)
        marked = with_crosses(picture, places, GREEN, max(4, width // 20))
        before.append(Figure(marked, f"{degrees}°, scale {scale:.2f}"))
        if not after:
            first = aligned
        apart = f", {difference(first, aligned):.1f} from the first" if after else ""
        after.append(Figure(with_crosses(aligned, layout, GREEN, WIDTH // 20), f"aligned{apart}"))

    page.picture = after[-1].picture
    page.heading("From any position into one layout")
    page.figures("four", before + after)
    page.text("Above: the picture turned, scaled and shifted, with its landmarks. Below: aligned; the crosses are "
              "where the landmarks are wanted. “From the first” is the mean difference amid the landmarks, in grey "
              "levels: what two resamplings cost.")
    return page


def fitted(landmarks: NDArray[np.float64]) -> NDArray[np.float64]:
    """The landmarks as they lie in the picture, as large as they fit and in the middle of the result."""
    low, high = landmarks.min(axis=0), landmarks.max(axis=0)
    size = np.array([WIDTH, HEIGHT])
    layout: NDArray[np.float64] = size / 2 + (landmarks - (low + high) / 2) * PART * (size / (high - low)).min()
    return layout


def difference(first: Frame, second: Frame) -> float:
    """Mean absolute difference amid the landmarks."""
    middle = slice(HEIGHT * 2 // 5, HEIGHT * 3 // 5), slice(WIDTH * 2 // 5, WIDTH * 3 // 5)
    return float(cv2.absdiff(first[middle], second[middle]).mean())
