"""Finds which cells of a grid are occupied by what moves in the clip."""

import cv2
import numpy as np
import quarry
from numpy.typing import NDArray
from quarry.demo.drawing import ORANGE, with_cells
from quarry.demo.footage import Footage, Frame
from quarry.demo.page import Figure, Section, Shots, Timer, ends_of
from quarry.plot import Curves

COLUMNS, ROWS = 32, 24


def section(footage: Footage) -> Section:
    clip = footage.clip
    page = Section("Occupancy grid", "Which cells of a coarse grid are covered by what is not black in a frame.")
    page.input = clip.moving_input
    page.timer = timer = Timer()
    page.counted = "without the background model"
    share = Curves("Share of the cells that are occupied, over time", "occupied, % of the cells")
    shots = Shots(share, ends_of(clip.moving_count, 3))
    columns, rows = min(COLUMNS, clip.size[0]), min(ROWS, clip.size[1])
    times = np.zeros((rows, columns))

    find = quarry.ContourGrid(cell_fill_rate=0.3, min_contour_area_rate=0.001)
    for moving in clip.moving():
        on_black = moving.on_black()
        with timer:
            cells = find(on_black, width=columns, height=rows)
        times += cells
        occupied = np.count_nonzero(cells)
        share.add(moving.seconds, 100 * occupied / cells.size)
        if moving.place in shots:
            shots.add(moving.seconds, with_cells(moving.pixels, cells), f"{occupied} occupied")

    page.picture = shots.middle
    page.inset(
        Figure(heat_picture(moving.pixels, times), "How often each cell is occupied over the time of the clip."),
        (timer.median, "per frame, median, without the background model"),
        (f"{columns} × {rows}", "cells"),
        (f"{100 * times.max() / clip.moving_count:.0f} %", "of the time: the cell that is occupied most"),
    )
    page.heading("How much of the grid is occupied")
    page.plot(share)
    page.text("A cell is occupied when more than 30 % of it is covered. Letters mark the instants shown below.")
    page.figures("three", shots.figures)
    return page


def heat_picture(frame: Frame, times: NDArray[np.float64]) -> Frame:
    """A frame in grey with its cells in colour, the stronger the more often they are occupied."""
    height, width = frame.shape[:2]
    share = cv2.resize(times / max(1, times.max()) * 0.75, (width, height), interpolation=cv2.INTER_NEAREST)[..., None]
    grey = cv2.cvtColor(frame, cv2.COLOR_BGR2GRAY)[..., None]
    picture: Frame = (grey * (1 - share) + np.array(ORANGE) * share).astype(np.uint8)
    return picture
