"""Turns a picture."""

import quarry
from quarry.demo.footage import Footage
from quarry.demo.page import Figure, Section, Timer

TURNS = [(0, 1), (15, 1), (45, 1), (90, 1), (180, 1), (-30, 0.6), (0, 0.5), (30, 1.6)]  # degrees, scale


def section(footage: Footage) -> Section:
    name, pixels = footage.pictures[0]
    height, width = pixels.shape[:2]
    page = Section("Rotation", "Turns a picture about its middle; corners and size are kept.")
    page.input = f"{name}, {len(TURNS)} turns"
    page.timer = timer = Timer()
    page.counted = f"per picture of {width} × {height}"

    rotate = quarry.RotationTransform(width=width, height=height)
    figures = []
    for degrees, scale in TURNS:
        with timer:
            turned = rotate(pixels, degrees, scale)
        figures.append(Figure(turned, f"{degrees}°" if scale == 1 else f"{degrees}°, scale {scale}"))

    page.picture = figures[1].picture
    page.heading("Angles and scales")
    page.figures("four", figures)
    page.text("Positive angles turn counter-clockwise. The picture is turned on a canvas that has room for all of "
              "it, and the canvas is squeezed into the size of the picture, so that its proportions change with the "
              "angle. The scale enlarges the picture, not the canvas.")
    return page
