"""What was found, drawn into pictures. All functions give a new picture."""

from collections.abc import Sequence

import cv2
import numpy as np
import quarry
from numpy.typing import ArrayLike, NDArray
from quarry.demo.footage import Frame, Line

Mask = NDArray[np.uint8]
Colour = tuple[int, int, int]

ORANGE: Colour = (40, 120, 255)  # B, G, R
GREEN: Colour = (80, 220, 60)
RED: Colour = (50, 50, 235)
BLUE: Colour = (240, 150, 30)
GREY: Colour = (190, 190, 190)
WHITE: Colour = (255, 255, 255)
LINE_WIDTH = 2


def pixels(shares: ArrayLike, picture: Frame | Mask) -> NDArray[np.int32]:
    """Points in fractions of a picture's width and height, or a rectangle as its corner and extent, in pixels."""
    height, width = picture.shape[:2]
    points = np.asarray(shares, np.float32).reshape(-1, 2)
    places: NDArray[np.int32] = np.rint(points * np.array([width, height], np.float32)).astype(np.int32)
    return places


def box_of(rect: quarry.RelRect, picture: Frame) -> quarry.Box:
    """A rectangle in fractions of a picture, in pixels."""
    return quarry.Box(*map(int, pixels(rect, picture).ravel()))


def rel_rect_of(box: quarry.Box, picture: Frame | Mask) -> quarry.RelRect:
    """A rectangle that the library takes these pixels of."""
    height, width = picture.shape[:2]
    # Half a pixel more keeps rounding to whole pixels from taking a whole one.
    shares = ((part + 0.5) / side for part, side in zip(box, (width, height, width, height)))
    return quarry.RelRect(*shares)


def tinted(picture: Frame, where: Mask, colour: Colour = ORANGE, share: float = 0.45) -> Frame:
    """The picture with a colour over some of its pixels, and a line around them."""
    result = picture.copy()
    result[where > 0] = (picture[where > 0] * (1 - share) + np.array(colour) * share).astype(np.uint8)
    contours, _ = cv2.findContours(where, cv2.RETR_EXTERNAL, cv2.CHAIN_APPROX_SIMPLE)
    cv2.drawContours(result, contours, -1, colour, 1, cv2.LINE_AA)
    return result


def boxed(picture: Frame, boxes: Sequence[quarry.Box], colour: Colour = GREEN) -> Frame:
    """The picture with rectangles."""
    result = picture.copy()
    for box in boxes:
        cv2.rectangle(result, box, colour, 3)
    return result


def outlined(picture: Frame, region: Mask) -> Frame:
    """The picture with a green line around a region."""
    result = picture.copy()
    contours, _ = cv2.findContours(region, cv2.RETR_CCOMP, cv2.CHAIN_APPROX_NONE)
    cv2.drawContours(result, contours, -1, GREEN, 3)
    return result


def with_polygon(picture: Frame, points: ArrayLike, colour: Colour = ORANGE) -> Frame:
    """The picture with a polygon in fractions of its width and height; as it is where there are no points."""
    result = picture.copy()
    places = pixels(points, picture)
    if len(places):
        cv2.polylines(result, [places], True, colour, LINE_WIDTH, cv2.LINE_AA)
    return result


def with_crosses(picture: Frame, places: ArrayLike, colour: Colour = WHITE, size: int = 15) -> Frame:
    """The picture with crosses, in pixels."""
    result = picture.copy()
    for x, y in np.rint(np.asarray(places, float)).astype(int).tolist():
        cv2.drawMarker(result, (x, y), colour, cv2.MARKER_CROSS, size, LINE_WIDTH, cv2.LINE_AA)
    return result


def with_clusters(picture: Frame, clusters: Sequence[quarry.Cluster]) -> Frame:
    """The picture with the outlines of blobs, and crosses at their centres of mass."""
    for cluster in clusters:
        picture = with_polygon(picture, cluster.points)
    # The centre of a line or a dot is a division by its area.
    centres = [(cluster.center_x, cluster.center_y) for cluster in clusters if cluster.area > 0]
    return with_crosses(picture, pixels(centres, picture))


def with_cells(picture: Frame, cells: NDArray[np.uint8]) -> Frame:
    """The picture under a grid, its occupied cells tinted."""
    rows, columns = cells.shape
    height, width = picture.shape[0] // rows, picture.shape[1] // columns
    result = picture.copy()
    for row, column in np.ndindex(rows, columns):
        x, y = column * width, row * height
        if cells[row, column]:
            part = result[y : y + height, x : x + width]
            part[:] = (part * 0.6 + np.array(ORANGE) * 0.4).astype(np.uint8)
        cv2.rectangle(result, (x, y, width, height), (150, 150, 150), 1)
    return result


def with_line(picture: Frame, line: Line) -> Frame:
    """The picture with a line, and a dot at its start."""
    result = picture.copy()
    start, end = pixels(line, picture).tolist()
    cv2.line(result, start, end, WHITE, 2, cv2.LINE_AA)
    cv2.circle(result, start, 5, WHITE, cv2.FILLED, cv2.LINE_AA)
    return result


def with_ellipse(picture: Frame, center: tuple[int, int], half: tuple[int, int]) -> Frame:
    """The picture with an ellipse, in pixels."""
    result = picture.copy()
    cv2.ellipse(result, center, half, 0, 0, 360, ORANGE, 2, cv2.LINE_AA)
    return result


def motion(field: NDArray[np.float32], full: float) -> Frame:
    """Motion in colour: the hue is its direction, the brightness its speed up to `full`; what stands still is black."""
    speed, direction = cv2.cartToPolar(field[..., 0], field[..., 1], angleInDegrees=True)
    hsv = cv2.merge([direction, np.ones_like(speed), np.minimum(speed / full, 1)])
    picture: Frame = np.rint(cv2.cvtColor(hsv, cv2.COLOR_HSV2BGR) * 255).astype(np.uint8)
    return picture


def wheel(diameter: int) -> NDArray[np.uint8]:
    """The colour of each direction of motion, with an alpha channel."""
    along = ((np.arange(diameter) + 0.5) * 2 / diameter - 1).astype(np.float32)
    field = np.stack(np.meshgrid(along, along), axis=2)
    disc = np.zeros((diameter, diameter), np.uint8)
    cv2.circle(disc, (diameter // 2, diameter // 2), diameter // 2 - 1, 255, cv2.FILLED, cv2.LINE_AA)
    return np.dstack([motion(field, 1), disc])


def middle_of(picture: Frame, width: int, height: int) -> Frame:
    """The middle of a picture, of this size where it is as large."""
    rows, columns = picture.shape[:2]
    width, height = min(width, columns), min(height, rows)
    x, y = (columns - width) // 2, (rows - height) // 2
    return np.ascontiguousarray(picture[y : y + height, x : x + width])
