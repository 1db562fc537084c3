"""Measures how fast a walker's outline changes its shape."""

import numpy as np
import quarry
from quarry.demo.drawing import GREEN, RED, boxed, rel_rect_of, with_polygon
from quarry.demo.footage import MOVING_EVERY, Footage
from quarry.demo.page import Section, Shots, Timer, ends_of
from quarry.plot import Curves

# Shapes of which only one has an area cannot be compared: they are as far apart as numbers go.
NOT_COMPARABLE = 1e200


def section(footage: Footage) -> Section:
    clip = footage.clip
    width, height = clip.size
    apart = MOVING_EVERY / clip.rate  # seconds
    page = Section("Shape change rate", "How fast a contour changes its shape, whatever its place, size and rotation.")
    page.input = f"{clip.moving_input}: {clip.target.what}"
    page.timer = timer = Timer()
    page.counted = "per pair of contours"
    page.picture = rates = Curves("Shape change per second, over time", "change per second")
    shots = Shots(rates, ends_of(clip.moving_count, 3))

    find = quarry.ObjectContour()
    rate_of = quarry.ContourRate()
    before = np.empty((0, 2), np.float32)
    for index, frame, box in clip.followed():
        place, rest = divmod(index, MOVING_EVERY)
        if rest:
            continue  # the target is followed in all frames, but only some have a mask
        box = within(box, width, height)
        points = before[:0]
        if box.width > 0 and box.height > 0:
            points = find(clip.masks[place], rel_rect_of(box, frame)).points
        if len(before) and len(points):
            with timer:
                rate = rate_of(points, before, frame_width=width, frame_height=height, milliseconds=apart * 1000)
            if rate > NOT_COMPARABLE:
                rate = rates.values()[-1] if rates.rows else 0
            rates.add(clip.seconds(index), rate)
        before = points
        if place in shots:
            picture = with_polygon(boxed(frame, [box], GREEN if len(points) else RED), points)
            shots.add(clip.seconds(index), picture, f"{len(points)} points")

    page.facts(
        (timer.median, "per pair of contours, median"),
        (f"{np.median(rates.values() or [0]):.2f}", "per second, median of the change"),
        (f"{len(rates.rows)}", f"pairs of contours, {apart:.2f} s apart"),
    )
    page.heading("How fast the shape changes")
    page.plot(rates)
    page.text("The contour is that of what moves within the tracked rectangle, against the one before it. Somebody "
              "who walks changes shape with every step; peaks are contours that fell apart or grew together. Letters "
              "mark the instants shown below.")
    page.figures("three", shots.figures)
    return page


def within(box: quarry.Box, width: int, height: int) -> quarry.Box:
    """The part of a box that lies in a frame."""
    x, y = max(0, box.x), max(0, box.y)
    return quarry.Box(x, y, min(width, box.x + box.width) - x, min(height, box.y + box.height) - y)
