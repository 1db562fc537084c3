"""The page: what a section is made of, and how it becomes HTML."""

import base64
import dataclasses
import inspect
import math
import pathlib
import time
from collections.abc import Callable, Collection, Iterable, Sequence
from types import ModuleType
from typing import Any, NamedTuple

import cv2
import jinja2
import numpy as np
import quarry
from markupsafe import Markup
from numpy.typing import NDArray
from quarry import plot
from quarry.demo.drawing import middle_of
from quarry.demo.footage import Footage, Frame

Pixels = NDArray[np.uint8]  # a Frame, a mask, or B, G, R and alpha

TABLE_WIDTH = 480
#: How wide pictures are at most, by the layout of the figures that they are in.
WIDTHS = {"two": 560, "three": 420, "three cuts": 420, "four": 340, "inset": 640}
JPEG_QUALITY = 85
LONGEST_BAR = 20_000  # squared grey levels


class Timer:
    """How long something takes, again and again: `with timer: ...`."""

    def __init__(self) -> None:
        self.milliseconds: list[float] = []

    def __enter__(self) -> None:
        self._start = time.perf_counter()

    def __exit__(self, *_: object) -> None:
        self.milliseconds.append((time.perf_counter() - self._start) * 1000)

    def quantile(self, rank: float) -> str:
        """What the share `rank` of the times does not exceed, with a fitting unit."""
        if not self.milliseconds:
            return "–"
        return in_words(float(np.quantile(self.milliseconds, rank)))

    @property
    def median(self) -> str:
        """What half of the times do not exceed."""
        return self.quantile(0.5)

    @property
    def in_the_long_run(self) -> str:
        """For the fact that shows the median."""
        return f"per frame, median; 95\N{NO-BREAK SPACE}% take under {self.quantile(0.95)}"


def in_words(milliseconds: float) -> str:
    """A time with a fitting unit."""
    if milliseconds >= 0.1:
        return f"{milliseconds:.{0 if milliseconds >= 100 else 1}f}\N{NO-BREAK SPACE}ms"
    return f"{milliseconds * 1000:.1f}\N{NO-BREAK SPACE}µs"


class Fact(NamedTuple):
    """A number that catches the eye, over what it means."""

    value: str
    meaning: str
    colour: str = ""  #: to show beside it, as CSS writes it


class Figure(NamedTuple):
    """A picture over a caption."""

    picture: Pixels
    caption: str
    value: str = ""  #: in bold, at the end of the caption
    share: float | None = None  #: 0 to 1: a bar as long as this
    exact: bool = False  #: whether the pixels are shown without loss


class Block(NamedTuple):
    """A piece of a section, as the template knows it."""

    kind: str
    content: dict[str, Any]


@dataclasses.dataclass
class Section:
    """What the page shows of one operation."""

    title: str
    summary: str  #: what it does, one sentence
    input: str = ""  #: what it ran on
    picture: Pixels | plot.Curves | plot.Strip | None = None  #: of the overview and of the operation's page in the docs
    timer: Timer | None = None  #: None: it did not run
    counted: str = ""  #: what the time is of, where it is not a frame of the clip: "per pair"
    blocks: list[Block] = dataclasses.field(default_factory=list)
    name: str = ""  #: of the class
    source: str = ""  #: Python

    @property
    def id(self) -> str:
        """Its anchor on the page."""
        return snake_case(self.name).replace("_", "-")

    def facts(self, *facts: Fact | tuple[str, str]) -> None:
        self._add("facts", facts=[Fact(*fact) for fact in facts])

    def heading(self, text: str, aside: str = "", letter: str = "") -> None:
        self._add("heading", text=text, aside=aside, letter=letter)

    def text(self, text: str) -> None:
        self._add("text", text=text)

    def plot(self, what: plot.Plot) -> None:
        self._add("plot", plot=what)

    def figures(self, layout: str, figures: Iterable[Figure]) -> None:
        """Pictures in a grid with as many columns as the layout says: "two", "three", "three cuts", "four"."""
        self._add("figures", layout=layout, figures=list(figures))

    def inset(self, figure: Figure, *facts: tuple[str, str]) -> None:
        """A large picture with facts beside it."""
        self._add("inset", figure=figure, facts=[Fact(*fact) for fact in facts])

    def legend(self, picture: Pixels, text: str) -> None:
        """A small picture that a text beside it explains."""
        self._add("legend", picture=picture, text=text)

    def matrix(self, names: Sequence[str], pictures: Sequence[Frame], values: Sequence[Sequence[float]]) -> None:
        """Values from 0 to 1 of all pairs of some pictures."""
        self._add("matrix", names=names, pictures=pictures, values=values)

    def _add(self, kind: str, **content: object) -> None:
        self.blocks.append(Block(kind, content))


class Shots:
    """Some instants of a clip, which letters mark in a plot.

    frames: those that are shown
    """

    def __init__(self, curves: plot.Curves, frames: Collection[int]) -> None:
        self.figures: list[Figure] = []
        self._curves = curves
        self._frames = frames

    def __contains__(self, frame: int) -> bool:
        return frame in self._frames

    def add(self, seconds: float, picture: Frame, caption: str = "") -> None:
        """The next one."""
        letter = chr(ord("A") + len(self.figures))
        self._curves.marks.append((seconds, letter))
        self.figures.append(Figure(picture, " · ".join(filter(None, [letter, f"{seconds:.1f} s", caption]))))

    @property
    def middle(self) -> Pixels:
        """The one to stand for all."""
        return self.figures[len(self.figures) // 2].picture


def spread(count: int, parts: int) -> set[int]:
    """So many places from the first of `count` to the last."""
    return {part * (count - 1) // max(1, parts - 1) for part in range(parts)}


def ends_of(count: int, parts: int) -> set[int]:
    """The last places of so many equal parts of `count`."""
    return {max(0, part * count // parts - 1) for part in range(1, parts + 1)}


def measured(picture: Frame, caption: str, variance: float, whole: bool = False) -> Figure:
    """A picture over its sharpness and a bar as long as that on a logarithmic scale.

    Unless it is to be shown whole, the middle is shown pixel by pixel: scaled down, a blurred picture looks sharp.
    """
    value = f"{variance:.{1 if variance < 100 else 0}f}"
    share = min(1.0, math.log1p(max(0.0, variance)) / math.log1p(LONGEST_BAR))
    return Figure(picture if whole else middle_of(picture, 340, 255), caption, value, share)


def snake_case(name: str) -> str:
    """FireLine becomes fire_line."""
    return "".join("_" * (place > 0 and letter.isupper()) + letter.lower() for place, letter in enumerate(name))


def run(operation: type, module: ModuleType, footage: Footage) -> Section:
    """Makes the section of an operation."""
    section: Section = module.section(footage)
    section.name = operation.__name__
    section.source = inspect.getsource(module)
    return section


def html(footage: Footage, sections: Sequence[Section]) -> str:
    """The whole page, in one file."""
    environment = jinja2.Environment(
        loader=jinja2.FileSystemLoader(pathlib.Path(__file__).parent / "templates"),
        autoescape=True, trim_blocks=True, lstrip_blocks=True, undefined=jinja2.StrictUndefined,
    )
    functions: dict[str, Callable[..., Any]] = {"image": _image, "drawing": _drawing, "small": _small}
    environment.globals |= functions
    return environment.get_template("page.html").render(
        footage=footage, sections=sections, version=quarry.__version__, opencv=cv2.__version__, widths=WIDTHS,
        palette=plot.PALETTE, plot_style=Markup(plot.style()),
    )


def save_picture(section: Section, folder: pathlib.Path) -> None:
    """The picture of the overview as a file; a curve is too small there and is drawn anew."""
    file = folder / section.id
    if isinstance(section.picture, plot.Curves | plot.Strip):
        plot.save(section.picture, f"{file}.svg")
    elif section.picture is not None:
        file.with_suffix(".jpg").write_bytes(_encoded(section.picture, TABLE_WIDTH, ".jpg").tobytes())


def _scaled(picture: Pixels, width: int) -> Pixels:
    if picture.shape[1] <= width:
        return picture
    height = max(1, picture.shape[0] * width // picture.shape[1])
    scaled: Pixels = cv2.resize(picture, (width, height), interpolation=cv2.INTER_AREA)
    return scaled


def _encoded(picture: Pixels, width: int, kind: str) -> Pixels:
    parameters = [cv2.IMWRITE_JPEG_QUALITY, JPEG_QUALITY] if kind == ".jpg" else []
    encoded: Pixels = cv2.imencode(kind, _scaled(picture, width), parameters)[1]
    return encoded


def _image(picture: Pixels, width: int, alt: str, exact: bool = False) -> Markup:
    """An `img` with its pixels in it: masks and what is to be shown exactly without loss, all else as a photograph."""
    kind = "jpeg" if picture.ndim == 3 and picture.shape[2] == 3 and not exact else "png"
    rows, columns = _scaled(picture, width).shape[:2]
    data = base64.b64encode(_encoded(picture, width, "." + kind.replace("e", "")).tobytes()).decode()
    return Markup('<img alt="{}" width="{}" height="{}" src="data:image/{};base64,{}">').format(
        alt, columns, rows, kind, data)


def _drawing(what: plot.Plot) -> Markup:
    return Markup(plot.svg(what))


def _small(picture: Pixels | plot.Curves | plot.Strip, alt: str) -> Markup:
    if isinstance(picture, plot.Curves | plot.Strip):
        return Markup(plot.small_svg(picture))
    return _image(picture, TABLE_WIDTH, alt)
