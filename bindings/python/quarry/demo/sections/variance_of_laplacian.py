"""Measures the sharpness of frames and pictures."""

import numpy as np
import quarry
from quarry.demo.footage import Footage
from quarry.demo.page import Section, Timer, measured
from quarry.demo.scene import blurred
from quarry.plot import Curves

SIGMAS = (8, 4, 2, 1, 0.5, 0)  # of the Gaussian, in pixels


def section(footage: Footage) -> Section:
    clip, pictures = footage.clip, footage.pictures
    page = Section("Sharpness",
                   "The variance of the Laplacian of the grey picture: fine detail raises it, blur lowers it.")
    page.input = f"{clip.name}, {clip.count} frames, and {len(pictures)} pictures"
    page.timer = timer = Timer()
    page.picture = sharpness = Curves("Sharpness of the frames over time", "sharpness, grey levels²",
                                      from_zero=clip.drawn)

    measure = quarry.VarianceOfLaplacian()
    for index, frame in enumerate(clip.frames()):
        with timer:
            variance = measure(frame)
        sharpness.add(clip.seconds(index), variance)

    values = sharpness.values()
    page.facts(
        (timer.median, timer.in_the_long_run),
        (f"{min(values):.0f} – {max(values):.0f}", "grey levels², over the clip"),
        (f"{np.median(values):.0f}", "grey levels², median of the clip"),
    )
    page.heading("One picture, from blurred to sharp")
    name, pixels = pictures[0]
    page.text(f"{name} under a Gaussian blur of growing σ. Values are in grey levels²; bars are on a logarithmic "
              "scale. The middle is shown pixel by pixel; the whole picture is measured.")
    series = [(f"σ = {sigma} px" if sigma else "as it is", blurred(pixels, sigma)) for sigma in SIGMAS]
    page.figures("three cuts", [measured(picture, caption, measure(picture)) for caption, picture in series])
    page.heading("Different pictures, from blurred to sharp")
    by_sharpness = sorted(pictures, key=lambda picture: measure(picture.pixels))
    page.figures("four", [measured(picture, name, measure(picture)) for name, picture in by_sharpness])
    page.heading("Over the time of the clip")
    page.plot(sharpness)
    return page
