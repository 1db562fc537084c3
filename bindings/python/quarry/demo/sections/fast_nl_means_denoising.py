"""Takes noise out of pictures."""

import cv2
import numpy as np
import quarry
from quarry.demo.drawing import middle_of
from quarry.demo.footage import Footage, Frame
from quarry.demo.page import Figure, Section, Timer

NOISE = 12  # standard deviation, grey levels
PICTURES = 3


def section(footage: Footage) -> Section:
    pictures = footage.pictures[:PICTURES]
    page = Section("Denoising", "Averages pixels whose surroundings look alike, so that noise goes and edges stay.")
    page.input = f"the middle of {len(pictures)} pictures with noise added"
    page.timer = timer = Timer()
    page.text(f"Gaussian noise with a standard deviation of {NOISE} grey levels was added to the middle of each "
              "picture. Bold: peak signal-to-noise ratio against the picture without noise; higher is nearer to it. "
              "Fine texture that looks like noise goes with the noise.")

    random = np.random.default_rng(1)
    denoise = quarry.FastNlMeansDenoising()
    for name, pixels in pictures:
        clean = middle_of(pixels, 320, 240)
        noisy = np.clip(np.rint(clean + random.normal(0, NOISE, clean.shape)), 0, 255).astype(np.uint8)
        with timer:
            denoised = denoise(noisy)
        page.heading(name)
        page.figures("three", [
            against(clean, noisy, "noisy"),
            against(clean, denoised, "denoised"),
            Figure(clean, "before the noise was added", exact=True),
        ])
        if page.picture is None:
            page.picture = denoised
            page.counted = f"per picture of {clean.shape[1]} × {clean.shape[0]}"
    return page


def against(clean: Frame, picture: Frame, caption: str) -> Figure:
    """A picture with its peak signal-to-noise ratio."""
    return Figure(picture, caption, f"{cv2.PSNR(clean, picture):.1f} dB", exact=True)
