"""Finds people in frames of the clip."""

import numpy as np
import quarry
from quarry.demo.drawing import box_of, boxed
from quarry.demo.footage import Footage, Frame
from quarry.demo.page import Figure, Section, Shots, Timer
from quarry.plot import Curves

SEARCHED = 40  # frames of the clip
SENSITIVITIES = (0.1, 0.4, 0.6)


def section(footage: Footage) -> Section:
    clip = footage.clip
    every = -(-clip.count // SEARCHED)
    searched = -(-clip.count // every)
    page = Section("People detector", "Finds standing and walking people, in each frame for itself.")
    page.input = f"{clip.name}, {searched} frames"
    page.timer = timer = Timer()
    count = Curves("People found over time", "people found")
    shots = Shots(count, range(0, clip.count, every * -(-searched // 6)))
    crowded: tuple[int, Frame | None] = (-1, None)

    detect = quarry.PeopleDetector(sensitivity=0.4)
    for index, frame in enumerate(clip.frames()):
        if index % every:
            continue
        with timer:
            people = detect(frame)
        count.add(clip.seconds(index), len(people))
        if len(people) > crowded[0]:
            crowded = (len(people), frame)
        if index in shots:
            shots.add(clip.seconds(index), with_people(frame, people))

    page.picture = shots.middle
    page.facts(
        (timer.median, timer.in_the_long_run),
        (f"{max(count.values()):.0f}", "people found in one frame at most"),
        (f"{np.median(count.values()):.0f}", "people found in the median"),
    )
    page.heading("How many are found")
    page.plot(count)
    page.text(f"One frame in {every} was searched, at sensitivity 0.4. Letters mark the instants shown below. A "
              "rectangle has a margin around the person and is 128 pixels high or higher, so smaller people are "
              "missed.")
    page.figures("three", shots.figures)
    page.heading("How finely it searches")
    page.text("The searched frame with the most people, from the coarsest search on. Bold: time for this frame.")
    assert crowded[1] is not None
    page.figures("three", [at_sensitivity(crowded[1], sensitivity) for sensitivity in SENSITIVITIES])
    return page


def at_sensitivity(frame: Frame, sensitivity: float) -> Figure:
    """A frame, searched as finely as this."""
    detect, timer = quarry.PeopleDetector(sensitivity=sensitivity), Timer()
    with timer:
        people = detect(frame)
    return Figure(with_people(frame, people), f"sensitivity {sensitivity}: {len(people)} found", timer.median)


def with_people(frame: Frame, people: list[quarry.Person]) -> Frame:
    return boxed(frame, [box_of(person.rect, frame) for person in people])
