"""A scene of shapes that move over a still, textured background while the focus is lost and found again."""

import functools
import math
from collections.abc import Iterator

import cv2
import numpy as np
from numpy.typing import ArrayLike, NDArray

Frame = NDArray[np.uint8]  # (height, width, 3): B, G, R

SIZE = (640, 480)
RATE = 20.0  # frames per second
STRONGEST_BLUR = 3.5  # pixels, sigma
# The shapes come in one after the other, so that the background is seen empty first.
FIRST_ENTRY, BETWEEN_ENTRIES = 1, 2  # seconds
BALL_RADIUS = 38  # pixels


def play(count: int) -> Iterator[Frame]:
    """The frames of the scene."""
    for frame in range(count):
        picture = draw(frame / RATE)
        sigma = STRONGEST_BLUR * math.sin(frame / count * math.pi) ** 6
        yield blurred(picture, sigma) if sigma > 0.2 else picture


def draw(seconds: float) -> Frame:
    """The scene in focus."""
    frame = _background().copy()
    _draw_ball(frame, *_ball_centre(seconds))
    left = SIZE[0] - _column(seconds, 1, 8) - 35
    cv2.rectangle(frame, (left, 210, 70, 90), (240, 235, 225), cv2.FILLED)
    for top in (220, 250, 280):
        cv2.rectangle(frame, (left + 10, top, 50, 10), (190, 160, 150), cv2.FILLED)
    x, y = _column(seconds, 2, 5), 330 - _bob(seconds)
    cv2.fillConvexPoly(frame, np.array([(x, y), (x + 45, y + 90), (x - 45, y + 90)]), (185, 160, 255), cv2.LINE_AA)
    return frame


def ball_at(seconds: float) -> tuple[int, int, int, int]:
    """What surrounds the ball: x, y, width, height in pixels."""
    x, y = _ball_centre(seconds)
    return x - BALL_RADIUS, y - BALL_RADIUS, 2 * BALL_RADIUS, 2 * BALL_RADIUS


def pictures() -> list[tuple[str, Frame]]:
    """Pictures of different sharpness, with their names."""
    all_shapes_are_in = 7.5  # seconds
    return [("drawn: scene", draw(all_shapes_are_in)), ("drawn: lettering", _lettering()), ("drawn: rings", _rings()),
            ("drawn: haze", blurred(_texture(5, (150, 130, 110)), 6))]


def blurred(picture: Frame, sigma: float) -> Frame:
    """Under a Gaussian blur; as it is when sigma is 0."""
    result: Frame = cv2.GaussianBlur(picture, (0, 0), sigma) if sigma > 0 else picture
    return result


def _texture(seed: int, colour: ArrayLike) -> Frame:
    """Noise at several scales, each coarser one stronger, in a colour or in one per row."""
    random = np.random.default_rng(seed)
    width, height = SIZE
    total = np.zeros((height, width), np.float32)
    for cell in (2, 8, 32, 128):
        noise = random.uniform(-1, 1, (height // cell + 2, width // cell + 2)).astype(np.float32)
        total += cv2.resize(noise, SIZE, interpolation=cv2.INTER_CUBIC) * (6 + 2 * math.log2(cell))
    return np.clip(total[..., None] + np.asarray(colour, np.float32), 0, 255).astype(np.uint8)


@functools.cache
def _background() -> Frame:
    sky, meadow = np.array((185, 150, 115)), np.array((85, 135, 105))
    down = np.linspace(0, 1, SIZE[1])[:, None, None]
    background = _texture(1, sky * (1 - down) + meadow * down)
    cv2.rectangle(background, (0, 400, 640, 80), (88, 84, 82), cv2.FILLED)
    for x in range(20, 640, 90):
        cv2.rectangle(background, (x, 436, 50, 6), (150, 160, 165), cv2.FILLED)
    return background


def _column(seconds: float, number: int, crossing: float) -> int:
    """Where a shape that comes in as this number and crosses the width in `crossing` seconds has its centre."""
    beyond_the_edge = 60
    since = max(0.0, seconds - FIRST_ENTRY - number * BETWEEN_ENTRIES)
    return int(since % crossing / crossing * (SIZE[0] + 2 * beyond_the_edge)) - beyond_the_edge


def _bob(seconds: float) -> int:
    return int(12 * math.sin(seconds * 3))


def _ball_centre(seconds: float) -> tuple[int, int]:
    return _column(seconds, 0, 6), 120 + _bob(seconds)


def _draw_ball(frame: Frame, x: int, y: int) -> None:
    """With spots, so that there is something to hold on to when it is followed."""
    dark, light = (30, 70, 150), (240, 250, 255)
    spots = [(0, 0, BALL_RADIUS, (80, 215, 255)), (-13, -8, 12, dark), (14, -16, 7, light), (10, 14, 15, dark),
             (-15, 19, 6, light)]
    for right, down, radius, colour in spots:
        cv2.circle(frame, (x + right, y + down), radius, colour, cv2.FILLED, cv2.LINE_AA)


def _lettering() -> Frame:
    picture = np.full((SIZE[1], SIZE[0], 3), (230, 235, 238), np.uint8)
    for line in range(12):
        cv2.putText(picture, "sharp edges, sharp letters", (24, 50 + line * 38), cv2.FONT_HERSHEY_COMPLEX, 1.2,
                    (70, 45, 30), 2, cv2.LINE_AA)
    return picture


def _rings() -> Frame:
    picture = np.full((SIZE[1], SIZE[0], 3), (235, 238, 240), np.uint8)
    for radius in range(230, 0, -10):
        colour = (120, 90, 40) if radius % 20 == 0 else (225, 220, 200)
        cv2.circle(picture, (320, 240), radius, colour, cv2.FILLED, cv2.LINE_AA)
    return picture


def flame() -> Frame:
    """A fire between a red and a blue disc."""
    picture = np.full((360, 480, 3), (48, 36, 30), np.uint8)
    cv2.rectangle(picture, (130, 312, 220, 26), (40, 60, 90), cv2.FILLED)
    cv2.circle(picture, (80, 110), 34, (40, 30, 190), cv2.FILLED, cv2.LINE_AA)
    cv2.circle(picture, (400, 110), 34, (180, 120, 40), cv2.FILLED, cv2.LINE_AA)
    for scale, colour in [(1, (20, 95, 235)), (0.75, (40, 170, 252)), (0.5, (110, 225, 255)), (0.25, (215, 248, 255))]:
        _draw_tongue(picture, scale, colour)
    return blurred(picture, 3)


def _draw_tongue(picture: Frame, scale: float, colour: tuple[int, int, int]) -> None:
    height = np.linspace(0, 1, 61)
    half = 75 * np.sin(math.pi * height**0.6)
    sway = 22 * height * np.sin(5 * height)
    right, left = (np.stack([sway + side * half, -260 * height], axis=1) for side in (1, -1))
    outline = np.rint(np.concatenate([right, left[::-1]]) * scale + (240, 320)).astype(np.int32)
    cv2.fillPoly(picture, [outline], colour, cv2.LINE_AA)
