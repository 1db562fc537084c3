"""Cuts turned rectangles out of pictures."""

import cv2
import numpy as np
import quarry
from quarry.demo.drawing import ORANGE
from quarry.demo.footage import Footage, Frame
from quarry.demo.page import Figure, Section, Timer

ANGLES = (-30, 0, 30, 75)  # degrees
FOLLOWED = 120  # frames
CUTS = 8
ROOM = 1.4  # around the target, as a share of its longer side


def section(footage: Footage) -> Section:
    clip = footage.clip
    name, pixels = footage.pictures[0]
    page = Section("Turned rectangles", "Cuts a rectangle at any angle out of a picture and turns it upright.")
    page.input = f"{clip.name}, around {clip.target.what}, and {name}"
    page.timer = timer = Timer()

    cut = quarry.RectExtractor()
    height = max(3, min(pixels.shape[:2]) // 2)
    x, y, width = pixels.shape[1] // 2, pixels.shape[0] // 2, height * 4 // 3
    places, cuts = [], []
    for degrees in ANGLES:
        with timer:
            part = cut(pixels, center_x=x, center_y=y, width=width, height=height, degrees=degrees)
        places.append(Figure(with_rectangle(pixels, ((x, y), (width, height), degrees)), f"turned by {degrees}°"))
        cuts.append(Figure(part, "its cut"))
    page.heading("One place, several angles")
    page.figures("four", places + cuts)

    followed: list[Figure] = []
    count = min(FOLLOWED, clip.count - clip.target.frame)
    height = round(max(clip.target.place[2:]) * ROOM)
    for index, frame, box in clip.followed():
        since = index - clip.target.frame
        if since == count:
            break
        x, y = box.x + box.width // 2, box.y + box.height // 2
        with timer:
            part = cut(frame, center_x=x, center_y=y, width=height * 4 // 3, height=height)
        if since % max(1, count // CUTS) == 0 and len(followed) < CUTS:
            followed.append(Figure(part, f"{clip.seconds(index):.1f} s"))
    page.heading("Cut around a target that is followed")
    page.figures("four", followed)
    page.text("The correlation tracker says where the target is; each cut is centred on it. What lies beyond the "
              "frame is black.")

    page.picture = followed[0].picture
    page.counted = f"per cut of {height * 4 // 3} × {height}"
    return page


def with_rectangle(picture: Frame, rectangle: tuple[tuple[int, int], tuple[int, int], float]) -> Frame:
    """The picture with a rectangle: centre, size, degrees."""
    result = picture.copy()
    corners = np.rint(cv2.boxPoints(rectangle)).astype(np.int32)
    cv2.polylines(result, [corners], True, ORANGE, max(1, picture.shape[1] // 200), cv2.LINE_AA)
    return result
