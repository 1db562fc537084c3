"""Compares each frame of the clip with the one a second before it."""

from collections import deque

import numpy as np
import quarry
from quarry.demo.footage import Footage, Frame
from quarry.demo.page import Figure, Section, Timer
from quarry.plot import Curves

AMPLIFIED = 4  # for view


def section(footage: Footage) -> Section:
    clip = footage.clip
    page = Section("Absolute difference", "What differs between two frames of the same size, byte by byte.")
    page.timer = timer = Timer()
    page.counted = "per pair"
    mean = Curves("Mean absolute difference over time", "mean difference, grey levels")
    most = -1.0

    # The two frames are the same one in a clip that is too short for more.
    apart = min(int(clip.rate), clip.count - 1)
    before = f"{apart / clip.rate:.1f} s"
    subtract = quarry.ImageSubtractor()
    last: deque[Frame] = deque(maxlen=apart + 1)
    for index, frame in enumerate(clip.frames()):
        last.append(frame)
        if index < apart:
            continue
        with timer:
            difference = subtract(last[0], frame)
        mean.add(clip.seconds(index), float(difference.mean()))
        if mean.values()[-1] > most:
            most = mean.values()[-1]
            seconds, pair, largest = clip.seconds(index), (last[0], frame), difference

    amplified = np.minimum(largest.astype(int) * AMPLIFIED, 255).astype(np.uint8)
    mean.marks.append((seconds, "A"))
    page.input = f"{clip.name}, {len(timer.milliseconds)} pairs of frames {before} apart"
    page.picture = amplified
    page.facts(
        (f"{most:.2f}", "grey levels, mean of the pair below"),
        (f"{100 * largest.any(axis=2).mean():.1f} %", "of its pixels differ at all"),
        (f"{largest.max()}", "grey levels, its largest difference"),
    )
    page.heading(f"The pair that differs most, at {seconds:.1f} s", letter="A")
    page.figures("three", [
        Figure(pair[0], f"{before} before"),
        Figure(pair[1], "the frame"),
        Figure(amplified, f"their difference, {AMPLIFIED} × amplified for view"),
    ])
    page.heading("Over the time of the clip")
    page.plot(mean)
    page.text(f"Each frame against the one {before} before it. What does not move adds the noise of the camera alone.")
    return page
