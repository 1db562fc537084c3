"""Measures the sharpness of a face."""

import cv2
import numpy as np
import quarry
from quarry.demo.drawing import with_ellipse
from quarry.demo.footage import Footage, Frame
from quarry.demo.page import Figure, Section, Timer, measured
from quarry.demo.scene import blurred

REPEATS = 15  # from which the time is taken


def section(footage: Footage) -> Section:
    name, pixels = footage.picture("baboon.jpg")
    height, width = pixels.shape[:2]
    center, half = (width // 2, height // 2), (width // 5, height // 3)
    if name == "baboon.jpg":
        center, half = (width // 2, height * 46 // 100), (width // 4, height * 42 // 100)
    page = Section("Face sharpness", "The same within an ellipse: what lies outside does not count.")
    page.input = f"{name}, {width} × {height} pixels"
    page.picture = with_ellipse(pixels, center, half)
    page.timer = timer = Timer()
    page.counted = "per picture"

    measure = quarry.FaceVarianceOfLaplacian()
    measure_all = quarry.VarianceOfLaplacian()

    def face(picture: Frame) -> float:
        return measure(picture, center_x=center[0], center_y=center[1], half_width=half[0], half_height=half[1])

    def figure(picture: Frame, caption: str) -> Figure:
        return measured(with_ellipse(picture, center, half), caption, face(picture), whole=True)

    for _ in range(REPEATS):
        with timer:
            face(pixels)

    blur = blurred(pixels, 4)
    inside = np.zeros((height, width, 1), np.uint8)
    cv2.ellipse(inside, center, half, 0, 0, 360, 1, cv2.FILLED)
    page.heading("Only the face counts")
    page.figures("three", [
        figure(picture, f"{caption} · all: {measure_all(picture):.0f}")
        for caption, picture in [
            ("as it is", pixels),
            ("all but the face blurred", np.where(inside, pixels, blur)),
            ("the face blurred", np.where(inside, blur, pixels)),
        ]
    ])
    page.text("Bold: sharpness of the ellipse, in grey levels²; bars are on a logarithmic scale. “All” is the "
              "sharpness of the whole picture, which a blurred background pulls down and a blurred face hardly "
              "changes. Outside the ellipse all counts as black, so its border and its size are part of the value.")
    page.heading("From blurred to sharp")
    page.figures("four", [figure(blurred(pixels, sigma), f"σ = {sigma} px" if sigma else "as it is")
                          for sigma in (4, 2, 1, 0)])
    return page
