"""What of a body its clothing colours are taken from, to be drawn."""

import cv2
import numpy as np
from numpy.typing import NDArray
from quarry.demo.drawing import GREEN, ORANGE
from quarry.demo.footage import Frame

SHOULDER, HIP, KNEE, ANKLE = 5, 11, 13, 15  # places in a body of the left ones; right ones follow
CYAN = (220, 180, 40)

Quadrilateral = NDArray[np.int32]


def areas_of(body: NDArray[np.float32], width: int, height: int) -> tuple[Quadrilateral, list[Quadrilateral]]:
    """The torso, and thighs and shins, in pixels of a picture of this size."""
    joints = (body * np.array([width, height], np.float32)).astype(np.int32)
    unit = 0.25 * float(np.hypot(*(joints[SHOULDER + 1] - joints[HIP + 1])))
    hip, knee, ankle = int(0.5 * unit), int(0.4 * unit), int(0.3 * unit)
    torso = joints[[SHOULDER, SHOULDER + 1, HIP + 1, HIP]]
    legs = []
    for side in (0, 1):
        foot = joints[ANKLE + side].copy()
        foot[1] -= int(0.15 * abs(int(joints[KNEE + side][1] - foot[1])))  # the shin ends above the shoe
        legs.append(_limb(joints[HIP + side], hip, joints[KNEE + side], knee))
        legs.append(_limb(joints[KNEE + side], knee, foot, ankle))
    corner = np.array([width - 1, height - 1])
    return np.clip(torso, 0, corner), [np.clip(leg, 0, corner) for leg in legs]


def marked(picture: Frame, body: NDArray[np.float32]) -> Frame:
    """The picture with the points of a body and the areas."""
    result = picture.copy()
    height, width = picture.shape[:2]
    torso, legs = areas_of(body, width, height)
    cv2.polylines(result, legs, True, CYAN, 1, cv2.LINE_AA)
    cv2.polylines(result, [torso], True, ORANGE, 1, cv2.LINE_AA)
    for x, y in (body * (width, height)).astype(int).tolist():
        cv2.circle(result, (x, y), 1, GREEN, cv2.FILLED)
    return result


def _limb(top: Quadrilateral, half_top: int, bottom: Quadrilateral, half_bottom: int) -> Quadrilateral:
    return np.array([top - (half_top, 0), top + (half_top, 0), bottom + (half_bottom, 0), bottom - (half_bottom, 0)],
                    np.int32)


def zoomed(picture: Frame, body: NDArray[np.float32]) -> tuple[Frame, NDArray[np.float32]]:
    """What surrounds a body, enlarged, and the same body in it."""
    height, width = picture.shape[:2]
    points = body * np.array([width, height], np.float32)
    (left, top), (right, bottom) = np.floor(points.min(axis=0)).astype(int), np.ceil(points.max(axis=0)).astype(int)
    margin = round(0.15 * (bottom - top))
    side = bottom - top + 2 * margin
    x, y = max(0, (left + right - side) // 2), max(0, top - margin)
    near = picture[y : y + side, x : x + side]
    scale = 480 / near.shape[0]
    enlarged: Frame = cv2.resize(near, None, fx=scale, fy=scale, interpolation=cv2.INTER_CUBIC)
    return enlarged, ((points - (x, y)) / near.shape[1::-1]).astype(np.float32)


def drawn_figure() -> tuple[Frame, NDArray[np.float32], list[NDArray[np.float32]]]:
    """Someone whose colours are known: the picture, the body and the colours, which are red, green, blue."""
    red, cream, navy, skin = worn = [np.array(color, np.float32) for color in (
        (0.75, 0.16, 0.18), (0.95, 0.92, 0.82), (0.13, 0.2, 0.42), (0.86, 0.65, 0.52))]
    picture = np.full((240, 320, 3), (150, 165, 160), np.uint8)
    cv2.circle(picture, (160, 36), 18, (skin[::-1] * 255).tolist(), cv2.FILLED, cv2.LINE_AA)
    for color, *rectangle in [
        (red, 114, 60, 16, 70), (red, 190, 60, 16, 70), (red, 130, 58, 60, 74), (cream, 130, 84, 60, 16),
        (navy, 130, 132, 26, 46), (navy, 164, 132, 26, 46), (skin, 132, 178, 22, 40), (skin, 166, 178, 22, 40),
    ]:
        cv2.rectangle(picture, rectangle, (color[::-1] * 255).tolist(), cv2.FILLED)
    points = [(160, 40), (166, 34), (154, 34), (176, 36), (144, 36), (186, 62), (134, 62), (198, 96), (122, 96),
              (198, 128), (122, 128), (177, 132), (143, 132), (177, 178), (143, 178), (177, 220), (143, 220)]
    return picture, ((np.array(points) + 0.5) / (320, 240)).astype(np.float32), worn
