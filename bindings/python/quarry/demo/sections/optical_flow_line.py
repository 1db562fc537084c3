"""Measures the motion across a line of the clip."""

import cv2
import quarry
from quarry.demo.drawing import with_line
from quarry.demo.footage import Footage
from quarry.demo.page import Figure, Section, Timer
from quarry.plot import Strip

EVERY = 2  # of so many frames one is taken
VALUES = 96


def section(footage: Footage) -> Section:
    clip = footage.clip
    page = Section("Motion across a line", "Reads a motion field along a line: who crosses it, where and which way.")
    page.timer, flow_timer = timer, _ = Timer(), Timer()
    page.counted = "without the flow"
    page.picture = strip = Strip("Motion across the line over time", "place on the line, %", "px")

    flow = quarry.DenseOpticalFlow()
    across = quarry.OpticalFlowLine()
    for index, frame in enumerate(clip.frames()):
        if index <= clip.count // 2:
            shown = frame
        if index % EVERY:
            continue
        half = cv2.cvtColor(cv2.resize(frame, None, fx=0.5, fy=0.5, interpolation=cv2.INTER_AREA), cv2.COLOR_BGR2RGB)
        with flow_timer:
            flow.update(half)
            field = flow.result()
        with timer:
            values = across(field, start=clip.line.start, end=clip.line.end, values_count=VALUES)
        strip.add(clip.seconds(index), values)

    height, width = half.shape[:2]
    page.input = f"{clip.name}, {len(strip.x)} frames, scaled to a half"
    page.inset(
        Figure(with_line(shown, clip.line), "The line; the dot is its start."),
        (timer.median, "per frame, median, for the line"),
        (flow_timer.median, "per frame, median, for the flow before it"),
        (f"{VALUES}", "values along the line"),
    )
    page.heading("Motion across the line, and its mean")
    page.plot(strip)
    page.text("Each column is an instant, from the line’s start at the bottom to its end at the top. Orange moves to "
              "the right of somebody who walks along the line from its start, blue to the left. Every second frame "
              f"was taken, scaled to {width} × {height}; motion is in pixels of these frames from one to the next, "
              f"{EVERY / clip.rate:.2f} s apart.")
    return page
