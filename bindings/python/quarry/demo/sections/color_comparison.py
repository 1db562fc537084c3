"""Watches whether the target still has the colours that it had at first."""

import cv2
import numpy as np
import quarry
from numpy.typing import NDArray
from quarry.demo.body import areas_of
from quarry.demo.drawing import ORANGE
from quarry.demo.footage import Footage, Frame
from quarry.demo.page import Figure, Section, Timer, spread
from quarry.plot import Curves


def section(footage: Footage) -> Section:
    clip = footage.clip
    what, first, place = clip.target
    count = clip.count - first
    page = Section("Colour comparison", "How alike the hues and saturations of the same area are in two pictures.")
    page.input = f"{clip.name}, {'the jacket of one of ' if clip.body is not None else ''}{what}, {count} frames"
    page.timer = timer = Timer()
    page.picture = likeness = Curves("Likeness of colours over time", "correlation with the start",
                                     names=("target followed", "place it left"))
    figures: list[Figure] = []
    shown = spread(count, 4)

    # The torso of a body where one is known goes along with the target.
    part = place if clip.body is None else quarry.Box(*cv2.boundingRect(areas_of(clip.body, *clip.size)[0]))
    start = middle_of(part)
    from_target = start - middle_of(place)
    page.counted = f"per pair of {part.width} × {part.height}"

    compare = quarry.ColorComparison(measure=quarry.HistogramMeasure.CORRELATION)
    for index, frame, box in clip.followed():
        middle = middle_of(box) + from_target
        followed, left = (around(frame, center, part.width, part.height) for center in (middle, start))
        if index == first:
            at_first = left
        with timer:
            alike = compare(at_first, followed)
        likeness.add(clip.seconds(index), alike, compare(at_first, left))
        if index - first in shown:
            letter = chr(ord("A") + len(figures))
            likeness.marks.append((clip.seconds(index), letter))
            view = around(frame, middle, part.height * 8 // 3, part.height * 2)
            figures.append(Figure(outlined(view, part), f"{letter} · {clip.seconds(index):.1f} s", f"{alike:.2f}"))

    page.facts(
        (f"{np.median(likeness.values(0)):.2f}", "correlation of the followed target, median"),
        (f"{np.median(likeness.values(1)):.2f}", "correlation of the place it left, median"),
    )
    page.heading("Is it still the same?")
    page.plot(likeness)
    page.text("Each frame against the first: the part that goes along with what the correlation tracker follows "
              "(outlined below), and the place where it was at first. 1 is alike, 0 nothing in common.")
    page.figures("four", figures)
    return page


def middle_of(box: quarry.Box) -> NDArray[np.int64]:
    return np.array([box.x + box.width // 2, box.y + box.height // 2])


def around(frame: Frame, center: NDArray[np.int64], width: int, height: int) -> Frame:
    """A part of the frame, black where it leaves it."""
    cut = quarry.RectExtractor(interpolation=quarry.Interpolation.NEAREST)
    return cut(frame, center_x=int(center[0]), center_y=int(center[1]), width=width, height=height)


def outlined(view: Frame, part: quarry.Box) -> Frame:
    result = view.copy()
    corner = ((view.shape[1] - part.width) // 2, (view.shape[0] - part.height) // 2)
    cv2.rectangle(result, (*corner, part.width, part.height), ORANGE)
    return result
