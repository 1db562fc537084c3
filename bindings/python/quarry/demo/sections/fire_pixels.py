"""Finds what has the colours of a flame."""

import cv2
import numpy as np
import quarry
from quarry.demo.drawing import outlined
from quarry.demo.footage import Footage, Frame, Picture
from quarry.demo.page import Figure, Section, Timer
from quarry.demo.scene import flame

SHOWN = 2  # pictures, besides the drawn one


def section(footage: Footage) -> Section:
    page = Section("Fire pixels", "The largest region of a picture that has the colours of a flame.")
    page.input = f"a drawn flame, and {len(footage.pictures)} pictures"
    page.timer = timer = Timer()
    page.counted = "per picture"

    find = quarry.FirePixels()
    drawn = Picture("a drawn flame", flame())
    regions = {}
    for picture in [drawn, *footage.pictures]:
        with timer:
            regions[picture.name] = find(picture.pixels)

    def share(picture: Picture) -> float:
        return float((regions[picture.name] > 0).mean())

    def show(picture: Picture) -> None:
        region = regions[picture.name]
        page.heading(picture.name, f"{100 * share(picture):.1f} % of the pixels")
        page.figures("three", [Figure(picture.pixels, "picture"), Figure(region, "flame mask"),
                               Figure(outlined(picture.pixels, region), "outlined")])

    page.picture = outlined(drawn.pixels, regions[drawn.name])
    page.heading("Which colours count as flame")
    page.text("Hue from red over green and blue back to red, lightness from dark at the bottom to light at the top. "
              "What is not a flame colour is washed out.")
    page.figures("two", [Figure(chart(find, saturation), f"saturation {saturation} %", exact=True)
                         for saturation in (100, 50)])
    show(drawn)
    page.text("The region is grown by up to 10 pixels. Below: the pictures with the largest regions. Colour alone "
              "decides, so that things which do not burn are found too.")
    for picture in sorted(footage.pictures, key=share, reverse=True)[:SHOWN]:
        show(picture)
    return page


def chart(find: quarry.FirePixels, saturation: int) -> Frame:
    """Hue from left to right, lightness from bottom to top; what is no flame colour is nearly grey."""
    rows, columns, cell = 20, 60, 8
    hls = np.full((rows, columns, 3), round(2.55 * saturation), np.uint8)
    hls[..., 0] = np.arange(columns) * 3
    hls[..., 1] = np.rint(255 * (np.arange(rows, 0, -1)[:, None] - 0.5) / rows)
    colours = cv2.cvtColor(hls, cv2.COLOR_HLS2BGR)
    for place in np.ndindex(rows, columns):
        # It judges regions: the colour fills a picture of its own.
        if not find(np.full((cell, cell, 3), colours[place], np.uint8)).any():
            colours[place] = np.rint(colours[place] * 0.2 + np.array((96, 92, 90)) * 0.8)
    picture: Frame = cv2.resize(colours, None, fx=cell, fy=cell, interpolation=cv2.INTER_NEAREST)
    return picture
