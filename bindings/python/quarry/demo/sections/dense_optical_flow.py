"""Finds how every pixel moves, at three instants of the clip."""

import cv2
import numpy as np
import quarry
from quarry.demo.drawing import motion, wheel
from quarry.demo.footage import Footage
from quarry.demo.page import Figure, Section, Timer

INSTANTS = 3
FRAMES_PER_INSTANT = 4  # the first is where the motion starts from
FULL_MOTION = 5  # pixels per frame


def section(footage: Footage) -> Section:
    clip = footage.clip
    page = Section("Dense optical flow", "How far every pixel moved since the frame before.")
    page.timer = timer = Timer()
    page.legend(
        wheel(190),
        "The colour is the direction of the motion, that in which it lies on the wheel; the brightness is the speed, "
        f"up to {FULL_MOTION} pixels per frame. What stands still is black. Frames are taken at full size, but only a "
        "few of them: this is slow work.",
    )

    apart = max(FRAMES_PER_INSTANT, clip.count // (INSTANTS + 1))
    flow = quarry.DenseOpticalFlow()
    for index, frame in enumerate(clip.frames()):
        instant, place = divmod(index, apart)
        if clip.count > apart and not 1 <= instant <= INSTANTS or place >= FRAMES_PER_INSTANT:
            continue
        red_first = cv2.cvtColor(frame, cv2.COLOR_BGR2RGB)
        with timer:
            flow.update(red_first)
            field = flow.result()
        if place == 0:
            timer.milliseconds.pop()  # it has nothing to compare with
        if place < FRAMES_PER_INSTANT - 1 and index < clip.count - 1:
            continue
        speed = np.hypot(field[..., 0], field[..., 1])
        picture = motion(field, FULL_MOTION)
        page.heading(f"{clip.seconds(index):.1f} s",
                     f"{speed.mean():.2f} pixels per frame in the mean, {speed.max():.1f} at most")
        page.figures("two", [Figure(frame, "frame"), Figure(picture, "motion")])
        if page.picture is None:
            page.picture = picture

    page.input = f"{clip.name}, {len(timer.milliseconds)} pairs of frames"
    return page
