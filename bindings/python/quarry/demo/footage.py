"""What the demo runs on: a clip and some pictures of a folder, or what it draws itself where there are none."""

import dataclasses
import functools
import os
import pathlib
from collections.abc import Callable, Iterator
from typing import NamedTuple

import cv2
import numpy as np
import quarry
from numpy.typing import NDArray
from quarry.demo import scene

Frame = NDArray[np.uint8]  # (height, width, 3): B, G, R

CLIP = "vtest.avi"
FRAMES_PLAYED = 300
PICTURES = 8
#: Shown first where they are there: from plainly blurred to richly textured.
PREFERRED = ["building.jpg", "fruits.jpg", "baboon.jpg", "home.jpg", "aloeL.jpg", "text_defocus.jpg", "butterfly.jpg",
             "text_motion.jpg"]
PORTRAITS = ["basketball1.png", "messi5.jpg", "basketball2.png"]
#: Of so many frames one is looked at where what moves is looked at.
MOVING_EVERY = 2
TICKS_PER_SECOND = 10_000_000

PEDESTRIANS_SIZE = (768, 576)
#: One of the walkers of the clip of pedestrians, seen from behind, in pixels.
WALKER = [(648, 259), (647, 257), (650, 257), (643, 258), (653, 258), (636, 273), (662, 274), (633, 288), (662, 290),
          (631, 304), (658, 305), (643, 309), (652, 309), (644, 328), (653, 327), (646, 348), (653, 341)]


class Picture(NamedTuple):
    """A still picture."""

    name: str
    pixels: Frame


class Target(NamedTuple):
    """Something in the clip that is worth following."""

    what: str
    frame: int  #: that shows it first
    place: quarry.Box


class Line(NamedTuple):
    """A line that something crosses, in fractions of the frame's width and height."""

    start: tuple[float, float]
    end: tuple[float, float]


class Moving(NamedTuple):
    """A frame with what moves in it."""

    place: int  #: among the frames that are looked at
    seconds: float
    pixels: Frame
    mask: NDArray[np.uint8]  #: 255 foreground, 0 background

    def on_black(self) -> Frame:
        """What moves, as R, G, B; the rest is black."""
        picture: Frame = cv2.cvtColor(cv2.bitwise_and(self.pixels, self.pixels, mask=self.mask), cv2.COLOR_BGR2RGB)
        return picture


class Followed(NamedTuple):
    """A frame with the clip's target in it."""

    frame: int
    pixels: Frame
    target: quarry.Box


@dataclasses.dataclass
class Clip:
    """A video that each section plays from its first frame."""

    name: str
    size: tuple[int, int]  #: width, height
    rate: float  #: frames per second
    count: int  #: frames that are played
    count_in_all: int
    target: Target
    line: Line
    frames: Callable[[], Iterator[Frame]]  #: starts anew
    body: NDArray[np.float32] | None = None  #: of someone in the frame that first shows the target
    drawn: bool = False

    def seconds(self, frame: int) -> float:
        """When a frame is shown."""
        return frame / self.rate

    def timestamp(self, frame: int) -> int:
        """The same in ticks of 100 ns; never 0, since a clock that stands at 0 has not begun."""
        return round((frame + 1) * TICKS_PER_SECOND / self.rate)

    def target_frame(self) -> Frame:
        """The first frame that shows the target."""
        return next(frame for index, frame in enumerate(self.frames()) if index == self.target.frame)

    @functools.cached_property
    def masks(self) -> list[NDArray[np.uint8]]:
        """What moves in every second frame, learnt once for all sections that look at it."""
        model = quarry.BackgroundModel()
        masks = []
        for index, frame in enumerate(self.frames()):
            if index % MOVING_EVERY == 0:
                model.update(frame, self.timestamp(index))
                masks.append(model.result().mask)
        return masks

    def moving(self) -> Iterator[Moving]:
        """Every second frame, with what moves in it."""
        for index, frame in enumerate(self.frames()):
            place, rest = divmod(index, MOVING_EVERY)
            if rest == 0:
                yield Moving(place, self.seconds(index), frame, self.masks[place])

    @property
    def moving_count(self) -> int:
        """How many frames `moving` gives."""
        return -(-self.count // MOVING_EVERY)

    @property
    def moving_input(self) -> str:
        """What they are, in words."""
        return f"what moves in {self.name}, {self.moving_count} frames (every second one)"

    def followed(self) -> Iterator[Followed]:
        """The frames from the first that shows the target, with its place as a tracker sees it."""
        tracker = quarry.MosseTracker()
        for index, frame in enumerate(self.frames()):
            if index < self.target.frame:
                continue
            if index == self.target.frame:
                tracker.start(frame, self.target.place)
            else:
                tracker.update(frame)
            yield Followed(index, frame, tracker.result().target)


@dataclasses.dataclass
class Footage:
    """All that the sections are given."""

    clip: Clip
    pictures: list[Picture]
    pictures_drawn: bool
    portraits: list[Picture]  #: that are known to show faces; often none
    face_model: pathlib.Path  #: need not be there

    def picture(self, name: str) -> Picture:
        """That of this name, or else the first."""
        return next((picture for picture in self.pictures if picture.name == name), self.pictures[0])

    def missing(self) -> str:
        """What could not be read and was drawn instead."""
        return " and ".join([CLIP] * self.clip.drawn + ["pictures"] * self.pictures_drawn)


def open_footage(folder: pathlib.Path, face_model: pathlib.Path) -> Footage:
    """The clip and the pictures of a folder; what cannot be read there is drawn."""
    pictures = _readable(_candidates(folder))
    return Footage(
        clip=_real_clip(folder / CLIP) or drawn_clip(),
        pictures=pictures or [Picture(*drawn) for drawn in scene.pictures()],
        pictures_drawn=not pictures,
        portraits=_readable([folder / name for name in PORTRAITS]),
        face_model=face_model,
    )


def drawn_clip() -> Clip:
    """The scene that the demo draws."""
    ball = 40  # the frame in which it is well within the picture
    return Clip(
        name="drawn scene", size=scene.SIZE, rate=scene.RATE, count=FRAMES_PLAYED, count_in_all=FRAMES_PLAYED,
        target=Target("the spotted ball", ball, quarry.Box(*scene.ball_at(ball / scene.RATE))),
        line=Line((0.5, 0.95), (0.5, 0.05)), frames=lambda: scene.play(FRAMES_PLAYED), drawn=True,
    )


def _real_clip(path: pathlib.Path) -> Clip | None:
    """The frames are counted by reading them: what a file declares need not hold."""
    count, size = 0, (0, 0)
    for frame in _play(path):
        count, size = count + 1, (frame.shape[1], frame.shape[0])
    if count == 0:
        return None
    capture = cv2.VideoCapture(os.fspath(path))
    rate, declared = capture.get(cv2.CAP_PROP_FPS), int(capture.get(cv2.CAP_PROP_FRAME_COUNT))
    clip = Clip(
        name=path.name, size=size, rate=rate if rate > 0 else 25.0, count=count,
        count_in_all=count if count < FRAMES_PLAYED else max(declared, count),
        target=_middle(*size), line=Line((0.5, 0.9), (0.5, 0.1)), frames=lambda: _play(path),
    )
    if size == PEDESTRIANS_SIZE and count > 30:
        clip.target = Target("two walkers", 30, quarry.Box(663, 248, 55, 96))
        clip.line = Line((0.62, 0.72), (0.62, 0.2))
        clip.body = ((np.array(WALKER) + 0.5) / size).astype(np.float32)
    return clip


def _play(path: pathlib.Path) -> Iterator[Frame]:
    # Left to itself, OpenCV goes on to look for cameras and numbered pictures.
    capture = cv2.VideoCapture(os.fspath(path), cv2.CAP_FFMPEG) if path.is_file() else cv2.VideoCapture()
    for _ in range(FRAMES_PLAYED):
        found, frame = capture.read()
        if not found:
            return
        yield frame


def _middle(width: int, height: int) -> Target:
    """In a clip that nothing is known of."""
    part = max(2, width // 4), max(2, height // 4)
    place = quarry.Box((width - part[0]) // 2, (height - part[1]) // 2, *part)
    return Target("the middle of the first frame", 0, place)


def _candidates(folder: pathlib.Path) -> list[pathlib.Path]:
    """The preferred names, then all others by name."""
    paths = [*folder.glob("*.jpg"), *folder.glob("*.png")]
    rank = {name: place for place, name in enumerate(PREFERRED)}
    return sorted(paths, key=lambda path: (rank.get(path.name, PICTURES), path.name))


def _readable(paths: list[pathlib.Path]) -> list[Picture]:
    """As many as are shown; one that cannot be read is passed over, like one that is not there."""
    pictures: list[Picture] = []
    for path in paths:
        pixels = cv2.imread(os.fspath(path)) if len(pictures) < PICTURES and path.is_file() else None
        if pixels is not None:
            pictures.append(Picture(path.name, pixels))
    return pictures
