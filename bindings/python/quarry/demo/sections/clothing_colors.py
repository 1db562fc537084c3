"""Finds the colours of what people wear."""

import cv2
import numpy as np
import quarry
from numpy.typing import NDArray
from quarry.demo.body import drawn_figure, marked, zoomed
from quarry.demo.footage import Footage, Frame
from quarry.demo.page import Fact, Figure, Section, Timer

REPEATS = 9  # from which the time is taken


def section(footage: Footage) -> Section:
    clip = footage.clip
    page = Section("Clothing colours", "The two main colours of a person’s torso and of the legs.")
    page.timer = timer = Timer()
    page.counted = "per person"
    figure, body, worn = drawn_figure()
    people = [("a drawn figure", figure, body)]
    if clip.body is not None:
        people.insert(0, (f"a walker of {clip.name}", clip.target_frame(), clip.body))
    page.input = " and ".join(name for name, _, _ in people)
    page.text("Hosts have the 17 points of a body from some model; these were set by hand. The figure was drawn in a "
              "red shirt with a cream stripe, navy shorts and bare shins, so its colours are known: "
              f"{', '.join(map(hex_of, worn))}. Where an area reaches over an edge, a little of the neighbouring "
              "colour is mixed in.")

    colors_of = quarry.ClothingColors()
    for name, picture, body in people:
        for _ in range(REPEATS):
            with timer:
                torso, legs = colors_of(picture, body)
        near, body = zoomed(picture, body)
        areas = over_swatches(marked(near, body), [*torso, *legs])
        if page.picture is None:
            page.picture = areas
        page.heading(f"The colours of {name}")
        page.figures("two", [Figure(near, f"{name}, enlarged"),
                             Figure(areas, "the areas, over the colours found in them", exact=True)])
        page.facts(*(Fact(hex_of(color), f"{part}, {rank}", hex_of(color))
                     for part, colors in (("torso", torso), ("legs", legs))
                     for color, rank in zip(colors, ("first", "second"))))
    return page


def bytes_of(color: NDArray[np.float32]) -> list[int]:
    """Red, green and blue of 0 to 1, as bytes."""
    return [int(part) for part in np.clip(np.rint(np.asarray(color) * 255), 0, 255)]


def hex_of(color: NDArray[np.float32]) -> str:
    """The same as CSS writes it."""
    return "#" + bytes(bytes_of(color)).hex()


def over_swatches(picture: Frame, colors: list[NDArray[np.float32]]) -> Frame:
    """The picture over a strip with colours in their order."""
    strip = np.array([[bytes_of(color)[::-1] for color in colors]], np.uint8)
    height, width = picture.shape[:2]
    swatches = cv2.resize(strip, (width, max(16, height // 10)), interpolation=cv2.INTER_NEAREST)
    return np.vstack([picture, swatches])
