"""Figures as SVG, light or dark as the reader's screen is; texts stay texts.

    python3 -m quarry.plot OUT.svg < values.json

draws a Strip; the JSON object has its fields: title, y_label, unit, x, columns and, where wanted, x_label and marks.
A value may be null where there is none. Needs Debian's python3-matplotlib.
"""

import dataclasses
import io
import json
import re
import sys
from collections.abc import Iterable, Sequence
from html import escape
from typing import Any, Protocol

import matplotlib
import numpy as np
from matplotlib.figure import Figure
from numpy.typing import NDArray

__all__ = ["PALETTE", "Bars", "Curves", "Plot", "Strip", "save", "small_svg", "style", "svg"]

#: A role's colour on a light screen and on a dark one.
PALETTE = {
    "card": ("#ffffff", "#1c1e22"),
    "ink": ("#1d1f23", "#eceae6"),
    "quiet": ("#676b73", "#9a9ea7"),
    "line": ("#e4e2dc", "#2f3238"),
    "accent": ("#c2560c", "#f08a3c"),
    "second": ("#2f6f8f", "#79b8d6"),
}
CARD, INK, QUIET, LINE, ACCENT, SECOND = (light for light, _ in PALETTE.values())
CURVES = (ACCENT, SECOND)
ABOVE, BELOW = (224, 112, 28), (48, 132, 176)  # red, green, blue; they show on both screens
SETTINGS = {
    "svg.fonttype": "none",
    "font.size": 13,
    "axes.facecolor": "none",
    "axes.edgecolor": QUIET,
    "axes.labelcolor": INK,
    "axes.spines.right": False,
    "axes.spines.top": False,
    "grid.color": LINE,
    "text.color": INK,
    "xtick.color": QUIET,
    "ytick.color": QUIET,
}
UNITS_PER_INCH = 72  # of the SVG: sizes below are in its units, which are pixels where it is not scaled

Axes = Any  # of Matplotlib, which has no types
Band = tuple[float, float, str]  # from, to, name
Mark = tuple[float, str]  # where, a letter or two


class Plot(Protocol):
    """What can be drawn."""

    title: str  #: for those who cannot see it

    def size(self) -> tuple[int, int]:
        """Width and height in the units of the SVG."""

    def draw(self, figure: Figure) -> None:
        """With axes and labels."""


@dataclasses.dataclass
class Curves:
    """One or more values over time. Where the axis begins at 0 a single curve is filled."""

    title: str
    y_label: str
    x_label: str = "time, s"
    names: Sequence[str] = ("",)
    from_zero: bool = True
    x: list[float] = dataclasses.field(default_factory=list)
    rows: list[tuple[float, ...]] = dataclasses.field(default_factory=list)
    bands: list[Band] = dataclasses.field(default_factory=list)
    marks: list[Mark] = dataclasses.field(default_factory=list)

    def add(self, x: float, *values: float) -> None:
        """The values of all curves at one place."""
        self.x.append(x)
        self.rows.append(values)

    def shade(self, low: float, high: float, name: str) -> None:
        """A stretch with a name. One that begins where the last one ended continues it."""
        if self.bands and self.bands[-1][1:] == (low, name):
            low, _, _ = self.bands.pop()
        self.bands.append((low, high, name))

    def values(self, curve: int = 0) -> list[float]:
        """Of one curve."""
        return [row[curve] for row in self.rows]

    def size(self) -> tuple[int, int]:
        return 960, 300

    def draw(self, figure: Figure) -> None:
        axes = figure.add_subplot()
        axes.set(xlabel=self.x_label, ylabel=self.y_label)
        axes.grid(axis="y")
        axes.spines["left"].set_visible(False)
        axes.tick_params(axis="y", length=0)
        self._draw_curves(axes)
        for low, high, name in self.bands:
            _draw_band(axes, low, high, name)
        _draw_marks(axes, self.marks)
        if self.x and len(self.names) > 1:
            _draw_names(axes, self.x[-1], list(zip(self.rows[-1], self.names)))

    def draw_small(self, axes: Axes) -> None:
        self._draw_curves(axes)

    def _draw_curves(self, axes: Axes) -> None:
        for curve in reversed(range(len(self.names))):
            axes.plot(self.x, self.values(curve), color=CURVES[curve], linewidth=2, zorder=3 - curve / 10)
        if self.from_zero and len(self.names) == 1:
            axes.fill_between(self.x, self.values(), color=ACCENT, alpha=0.13, linewidth=0)
        axes.margins(x=0, y=0.08)
        begin, end = (self.x[0], self.x[-1]) if self.x else (0, 1)
        axes.set_xlim(begin, end if end > begin else begin + 1)
        if self.from_zero:
            highest = max((value for row in self.rows for value in row), default=0)
            axes.set_ylim(0, highest * 1.08 or 1)


@dataclasses.dataclass
class Strip:
    """Values along a line over time as colours, orange above 0 and blue below it, and their mean."""

    title: str
    y_label: str
    unit: str
    x_label: str = "time, s"
    x: list[float] = dataclasses.field(default_factory=list)  #: at equal distances
    #: One per x, as many values each, the first one at the bottom; not a number or None where there is no value.
    columns: list[Sequence[float | None]] = dataclasses.field(default_factory=list)
    marks: list[Mark] = dataclasses.field(default_factory=list)

    def add(self, x: float, values: Iterable[float]) -> None:
        """The values along the line at one instant."""
        self.x.append(x)
        self.columns.append(list(values))

    def size(self) -> tuple[int, int]:
        return 960, 440

    def draw(self, figure: Figure) -> None:
        above, below = figure.subplots(2, 1, sharex=True, height_ratios=(1.7, 1))
        self._draw_values(above)
        above.set(ylabel=self.y_label)
        above.tick_params(axis="x", length=0)
        _draw_marks(above, self.marks)
        self._draw_legend(figure, above)
        below.set(xlabel=self.x_label, ylabel=f"mean, {self.unit}")
        below.axhline(0, color=QUIET, linewidth=0.8)
        below.grid(axis="y")
        below.spines["left"].set_visible(False)
        below.tick_params(axis="y", length=0)
        below.plot(self.x, self.means(), color=ACCENT, linewidth=2)
        figure.align_ylabels()

    def draw_small(self, axes: Axes) -> None:
        self._draw_values(axes)

    def _values(self) -> NDArray[np.float64]:
        """With places in rows, the line's end at the top."""
        values = np.array(self.columns, float).T if self.columns else np.zeros((1, 1))
        return np.flipud(values)

    def means(self) -> NDArray[np.float64]:
        """Of the values of each column that are numbers; 0 where there are none."""
        values = self._values()[:, : len(self.x)]
        known = ~np.isnan(values)
        return np.asarray(np.where(known, values, 0).sum(axis=0) / np.maximum(1, known.sum(axis=0)))

    def _full(self) -> float:
        """The magnitude that is shown at full colour: all but a hundredth of the values are smaller."""
        values = self._values()
        known = np.abs(values[~np.isnan(values)])
        return max(0.1, float(np.quantile(known, 0.99))) if known.size else 0.1

    def _draw_values(self, axes: Axes) -> None:
        step = (self.x[-1] - self.x[0]) / (len(self.x) - 1) if len(self.x) > 1 else 1
        begin = self.x[0] if self.x else 0
        end = self.x[-1] + step if self.x else 1
        axes.imshow(_coloured(self._values(), self._full()), extent=(begin, end, 0, 100), aspect="auto",
                    interpolation="none")

    def _draw_legend(self, figure: Figure, beside: Axes) -> None:
        """From the largest value above to the smallest below."""
        full = self._full()
        axes = beside.inset_axes((1.02, 0, 0.014, 1))
        axes.imshow(_coloured(np.linspace(full, -full, 65)[:, None], full), extent=(0, 1, -full, full), aspect="auto",
                    interpolation="none")
        axes.set_xticks([])
        axes.set_yticks([-full, 0, full], [f"\N{MINUS SIGN}{full:.1f}", f"0 {self.unit}", f"+{full:.1f}"])
        axes.yaxis.tick_right()
        axes.tick_params(length=0)
        for spine in axes.spines.values():
            spine.set_visible(False)


@dataclasses.dataclass
class Bars:
    """Ratios as bars on a logarithmic scale, those that are above 1 by more than noise in colour."""

    title: str
    x_label: str
    labels: Sequence[str]
    ratios: Sequence[float]
    noise: float = 0.1

    def size(self) -> tuple[int, int]:
        return 900, 60 + 20 * len(self.ratios)

    def draw(self, figure: Figure) -> None:
        axes = figure.add_subplot()
        colours = [SECOND if ratio > 1 + self.noise else QUIET for ratio in self.ratios]
        axes.barh(self.labels, self.ratios, color=colours)
        for place, ratio in enumerate(self.ratios):
            axes.text(ratio * 1.05, place, f"{ratio:.3g}", va="center")
        axes.set_xscale("log")
        axes.set_xlim(0.5, max(self.ratios) * 2)
        axes.xaxis.set_major_formatter("{x:g}")
        axes.set_xlabel(self.x_label)
        axes.axvline(1, color=INK, linewidth=0.8)
        axes.tick_params(axis="y", length=0)
        axes.margins(y=0.01)


def svg(plot: Plot) -> str:
    """An element for a page that has the style below."""
    figure = _figure(plot.size(), layout="constrained")
    with matplotlib.rc_context(SETTINGS):
        plot.draw(figure)
    return _element(figure, plot.title)


def small_svg(plot: Curves | Strip) -> str:
    """The same for a table: the values alone."""
    figure = _figure((240, 90))
    with matplotlib.rc_context(SETTINGS):
        axes = figure.add_axes((0.01, 0.02, 0.98, 0.96))
        plot.draw_small(axes)
        axes.set_xticks([])
        axes.set_yticks([])
        axes.spines["left"].set_visible(False)
    return _element(figure, plot.title + ", small")


def save(plot: Plot, file: str) -> None:
    """A file of its own."""
    begin, rest = svg(plot).split(">", 1)
    width, height = plot.size()
    with open(file, "w", encoding="utf-8") as stream:
        stream.write(f'{begin} xmlns="http://www.w3.org/2000/svg" xmlns:xlink="http://www.w3.org/1999/xlink" '
                     f'width="{width}" height="{height}"><style>{style()}</style>\n'
                     f'<rect width="{width}" height="{height}" style="fill: {CARD}"/>{rest}')


def style() -> str:
    """What makes figures dark on dark screens. They are drawn in the light colours, which all viewers understand."""
    dark = "".join(
        f'svg [style*="{what}: {light}"] {{ {what}: {dark} !important; }}\n'
        for light, dark in PALETTE.values()
        for what in ("fill", "stroke")
    )
    return (
        "svg text { font-family: system-ui, sans-serif !important; font-variant-numeric: tabular-nums; }\n"
        f"@media (prefers-color-scheme: dark) {{\n{dark}}}\n"
    )


def _figure(size: tuple[int, int], layout: str | None = None) -> Figure:
    with matplotlib.rc_context(SETTINGS):
        width, height = size
        return Figure(figsize=(width / UNITS_PER_INCH, height / UNITS_PER_INCH), facecolor="none", layout=layout)


def _element(figure: Figure, title: str) -> str:
    """The figure without what belongs to a file, and without names that a page with several figures has twice."""
    text = io.StringIO()
    with matplotlib.rc_context(SETTINGS | {"svg.hashsalt": title}):
        figure.savefig(text, format="svg", metadata={"Date": None})
    whole = text.getvalue()
    box = re.search(r'viewBox="([^"]*)"', whole)
    assert box
    content = whole[whole.index("</metadata>") + len("</metadata>") :]
    content = re.sub(r'<g id="[^"]*"/>', "", content)
    content = re.sub(r'<g id="[^"]*">', "<g>", content)
    content = re.sub(r"<style type=.*?</style>", "", content, flags=re.DOTALL)
    content = re.sub(r"\s*\n\s*", "\n", content)
    return f'<svg viewBox="{box[1]}" role="img" aria-label="{escape(title)}">{content}'


def _coloured(values: NDArray[np.float64], full: float) -> NDArray[np.uint8]:
    """Red, green, blue and how much of it, which is nothing at 0 and where there is no number."""
    picture = np.empty((*values.shape, 4), np.uint8)
    picture[..., :3] = np.where((values > 0)[..., None], ABOVE, BELOW)
    picture[..., 3] = np.nan_to_num(np.minimum(1, np.abs(values) / full)) * 255
    return picture


def _draw_band(axes: Axes, low: float, high: float, name: str) -> None:
    """Shaded, with its name where it is wide enough for one."""
    axes.axvspan(low, high, color=SECOND, alpha=0.11, linewidth=0)
    begin, end = axes.get_xlim()
    if high - low > 0.013 * (end - begin):
        _label(axes, (low + high) / 2, 0.04, name, SECOND, transform=axes.get_xaxis_transform(), ha="center")


def _draw_marks(axes: Axes, marks: Iterable[Mark]) -> None:
    """A dashed line with a letter in a disc above it."""
    for x, letter in marks:
        axes.axvline(x, color=SECOND, linewidth=1, linestyle=(0, (3, 4)))
        axes.plot([x], [1.1], marker="o", markersize=20, markeredgewidth=0, color=SECOND, clip_on=False,
                  transform=axes.get_xaxis_transform())
        axes.text(x, 1.095, letter, transform=axes.get_xaxis_transform(), color=CARD, weight="bold", size=12,
                  ha="center", va="center")


def _draw_names(axes: Axes, x: float, ends: list[tuple[float, str]]) -> None:
    """The curves' names above their ends, moved apart where they would lie on each other."""
    low, high = axes.get_ylim()
    apart = 0.09 * (high - low)
    (first, _), (second, _) = ends
    if abs(first - second) < apart:
        second = first + (apart if second > first else -apart)
    for place, (y, (_, name)) in enumerate(zip((first, second), ends)):
        _label(axes, x, y + 0.02 * (high - low), name, CURVES[place], ha="right")


def _label(axes: Axes, x: float, y: float, text: str, colour: str, **more: object) -> None:
    axes.text(x, y, text, color=colour, weight="bold", va="bottom", zorder=5,
              bbox={"facecolor": CARD, "alpha": 0.7, "linewidth": 0, "pad": 1}, **more)


def main() -> None:
    """Draws the strip that standard input describes."""
    if len(sys.argv) != 2:
        sys.exit("usage: python3 -m quarry.plot OUT.svg < values.json")
    save(Strip(**json.load(sys.stdin)), sys.argv[1])


if __name__ == "__main__":
    main()
