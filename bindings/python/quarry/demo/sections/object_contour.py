"""Traces the largest object that moves in the clip."""

import cv2
import numpy as np
import quarry
from numpy.typing import NDArray
from quarry.demo.drawing import ORANGE, pixels, with_polygon
from quarry.demo.footage import Footage, Frame, Moving
from quarry.demo.page import Figure, Section, Shots, Timer, ends_of
from quarry.plot import Curves

WHOLE = quarry.RelRect(0, 0, 1, 1)
METHODS = {
    quarry.Tracing.EVERY_PIXEL: "every pixel",
    quarry.Tracing.RUN_ENDS: "ends of straight runs",
    quarry.Tracing.TEH_CHIN_L1: "what shapes it most, L1",
    quarry.Tracing.TEH_CHIN_K_COSINE: "what shapes it most, k-cosine",
}


def section(footage: Footage) -> Section:
    clip = footage.clip
    page = Section("Contour of an object", "Traces the largest object of a mask, in a rectangle of it or in all.")
    page.input = clip.moving_input
    page.timer = timer = Timer()
    page.counted = "without the background model"
    area = Curves("Area of the largest contour over time", "area, % of the frame")
    shots = Shots(area, ends_of(clip.moving_count, 3))
    largest: Moving | None = None  # of the second half, when the background is learnt
    largest_area = 0.0

    find = quarry.ObjectContour()
    found = 0
    for moving in clip.moving():
        with timer:
            outline = find(moving.mask, WHOLE)
        found += len(outline.points) > 0
        area.add(moving.seconds, outline.area * 100)
        if moving.place >= clip.moving_count // 2 and outline.area > largest_area:
            largest, largest_area = moving, outline.area
        if moving.place in shots:
            shots.add(moving.seconds, with_polygon(moving.pixels, outline.points), f"{len(outline.points)} points")

    page.picture = shots.middle
    page.facts(
        (timer.median, "per frame, median, without the background model"),
        (f"{100 * found / clip.moving_count:.0f} %", "of the frames have an object"),
        (f"{100 * largest_area:.2f} %", "of the frame: the largest of the second half"),
    )
    page.heading("How large it is")
    page.plot(area)
    page.text("Of each frame the contour of the largest area. Letters mark the instants shown below.")
    page.figures("three", shots.figures)
    if largest:
        page.heading(f"The largest of the second half, at {largest.seconds:.1f} s, and which points are kept")
        page.figures("four", [traced(largest, method, name) for method, name in METHODS.items()])
    return page


def traced(moving: Moving, method: quarry.Tracing, name: str) -> Figure:
    """The largest contour as one of the methods traces it."""
    points = quarry.ObjectContour(tracing=method)(moving.mask, WHOLE).points
    return Figure(close_up(moving.pixels, pixels(points, moving.pixels)), f"{name} · {len(points)} points")


def close_up(frame: Frame, points: NDArray[np.int32]) -> Frame:
    """A polygon from near, with a dot for each of its points."""
    x, y, width, height = cv2.boundingRect(points)
    margin = max(width, height) // 4 + 1
    left, top = max(0, x - margin), max(0, y - margin)
    near = frame[top : y + height + margin, left : x + width + margin]
    scale = 340 / max(near.shape[:2])
    picture: Frame = cv2.resize(near, None, fx=scale, fy=scale, interpolation=cv2.INTER_CUBIC)
    places = np.rint((points - (left, top) + 0.5) * scale).astype(np.int32)
    cv2.polylines(picture, [places], True, ORANGE, 1, cv2.LINE_AA)
    for place in places.tolist():
        cv2.circle(picture, place, 2, ORANGE, cv2.FILLED, cv2.LINE_AA)
    return picture
