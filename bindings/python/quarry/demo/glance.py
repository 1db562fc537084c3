"""What some operations find in the drawn scene, side by side: the picture of the README."""

import pathlib

import cv2
import numpy as np
import quarry
from matplotlib.figure import Figure
from quarry.demo import scene
from quarry.demo.drawing import (
    BLUE, GREEN, GREY, ORANGE, WHITE, boxed, motion, tinted, with_cells, with_clusters, with_polygon,
)
from quarry.demo.footage import Frame, Moving, drawn_clip
from quarry.plot import INK, QUIET

INSTANT = 6.2  # seconds: all shapes are in
ZONE = [(0.12, 0.62), (0.5, 0.34), (0.95, 0.5), (0.6, 0.95), (0.2, 0.95)]
COLOURS = {quarry.ContourPosition.INSIDE: ORANGE, quarry.ContourPosition.CROSSING: BLUE,
           quarry.ContourPosition.OUTSIDE: GREY}


def save(file: pathlib.Path) -> None:
    """Draws it."""
    figure = Figure(figsize=(12, 6.5), dpi=100, layout="constrained")
    for axes, (name, (what, picture)) in zip(figure.subplots(2, 3).flat, find().items()):
        axes.imshow(cv2.cvtColor(picture, cv2.COLOR_BGR2RGB))
        axes.set_title(name, loc="left", fontsize=14, fontweight="bold", color=INK)
        axes.set_title(what, loc="right", fontsize=12, color=QUIET)
        axes.axis("off")
    figure.savefig(file, pil_kwargs={"quality": 85})


def find() -> dict[str, tuple[str, Frame]]:
    """By operation, what it finds and a picture of that."""
    clip = drawn_clip()
    model = quarry.BackgroundModel(sensitivity=0.9)
    flow, tracker = quarry.DenseOpticalFlow(), quarry.MosseTracker()
    path: list[tuple[int, int]] = []
    last = round(INSTANT * clip.rate)
    for index in range(last + 1):
        frame = scene.draw(clip.seconds(index))
        model.update(frame, clip.timestamp(index))
        if index >= clip.target.frame:
            tracker.update(frame) if path else tracker.start(frame, clip.target.place)
            box = tracker.result().target
            path.append((box.x + box.width // 2, box.y + box.height // 2))
        if index >= last - 1:
            flow.update(cv2.cvtColor(frame, cv2.COLOR_BGR2RGB))

    moving = Moving(last, INSTANT, frame, model.result().mask)
    clusters = quarry.ContourClusters(outline_precision=0, min_contour_area_rate=0.001)(moving.on_black())
    cells = quarry.ContourGrid(cell_fill_rate=0.3)(moving.on_black(), width=32, height=24)
    tracked = boxed(frame, [box])
    cv2.polylines(tracked, [np.array(path, np.int32)], False, GREEN, 2, cv2.LINE_AA)
    zone = with_polygon(frame, ZONE, WHITE)
    for cluster in clusters:
        zone = with_polygon(zone, cluster.points, COLOURS[quarry.ContourIntersection()(ZONE, cluster.points)])
    return {
        "BackgroundModel": ("what is new", tinted(frame, moving.mask)),
        "MosseTracker": ("where the ball went", tracked),
        "DenseOpticalFlow": ("how things move", motion(flow.result(), 5)),
        "ContourClusters": ("things and their centres", with_clusters(frame, clusters)),
        "ContourGrid": ("occupied cells", with_cells(frame, cells)),
        "ContourIntersection": ("what is in the zone", zone),
    }
