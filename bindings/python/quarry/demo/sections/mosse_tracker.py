"""Follows a target through the clip."""

import quarry
from quarry.demo.drawing import GREEN, RED, boxed
from quarry.demo.footage import Footage
from quarry.demo.page import Section, Shots, Timer, spread
from quarry.plot import Curves


def section(footage: Footage) -> Section:
    clip = footage.clip
    what, first, place = clip.target
    count = clip.count - first
    page = Section("Correlation tracker", "Follows one rectangle through a video, and says when it has lost it.")
    page.input = f"{clip.name}, {what}, {count} frames"
    page.timer = timer = Timer()
    middle = Curves("The middle of the rectangle over time", "middle of the rectangle, pixels", names=("x", "y"),
                    from_zero=False)
    shots = Shots(middle, spread(count, 6))
    frames_found = 0

    tracker = quarry.MosseTracker()
    for index, frame in enumerate(clip.frames()):
        if index < first:
            continue
        with timer:
            if index == first:
                tracker.start(frame, place)
            else:
                tracker.update(frame)
        box, found = tracker.result()
        seconds = clip.seconds(index)
        middle.add(seconds, box.x + box.width / 2, box.y + box.height / 2)
        frames_found += found
        if not found:
            middle.shade(seconds, clip.seconds(index + 1), "lost")
        if index - first in shots:
            shots.add(seconds, boxed(frame, [box], GREEN if found else RED), "" if found else "lost")

    page.picture = shots.middle
    page.facts(
        (timer.median, timer.in_the_long_run),
        (f"{100 * frames_found / count:.0f} %", "of the frames show the target, the tracker says"),
        (f"{place.width} × {place.height}", f"pixels: {what}"),
    )
    page.heading("Where the target is")
    page.plot(middle)
    page.text("Letters mark the instants shown below. The rectangle is green where the target was found and red where "
              "it was lost. y grows downwards, as rows do.")
    page.figures("three", shots.figures)
    return page
