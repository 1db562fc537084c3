"""Figures: SVG that follows the reader's screen, and the program that draws a strip from JSON."""

import json
import re
import subprocess
import sys
import xml.etree.ElementTree as xml

import numpy as np
from quarry import plot

STRIP = {
    "title": "motion <across> a line", "y_label": "place, %", "unit": "px", "x": [0, 0.5, 1],
    "columns": [[0, 1, None, -2], [0, 0, 0, 0], [4, None, None, 2]],
}


def draw(folder, text, *arguments):
    """Runs the program."""
    return subprocess.run([sys.executable, "-m", "quarry.plot", *arguments], cwd=folder, input=text, text=True,
                          capture_output=True)


def curves():
    two = plot.Curves("Two", "value", names=("first", "second"))
    for x in range(20):
        two.add(x / 10, x % 5, x / 10)
    two.marks.append((0.5, "A"))
    return two


def texts(svg):
    return re.findall(r"<text[^>]*>([^<]*)</text>", svg)


def test_texts_are_texts_and_values_are_within_the_axes():
    svg = plot.svg(curves())
    assert {"time, s", "value", "first", "second", "A"} <= set(texts(svg))
    assert 'aria-label="Two"' in svg
    labels = [float(text) for text in texts(svg) if re.fullmatch(r"[\d.]+", text)]
    assert max(labels) == 4, "the largest value that an axis names; the curves go to 4"


def test_no_colour_is_without_its_dark_counterpart():
    every = [curves(), plot.Strip(**STRIP), plot.Bars("Bars", "ratio", ["a", "b"], [0.5, 3])]
    used = {colour for one in every for colour in re.findall(r"(?:fill|stroke): (#[0-9a-f]{6})", plot.svg(one))}
    assert used and used <= {light for light, _ in plot.PALETTE.values()}
    for light, dark in plot.PALETTE.values():
        assert f'[style*="fill: {light}"] {{ fill: {dark} !important; }}' in plot.style()
        assert f'[style*="stroke: {light}"] {{ stroke: {dark} !important; }}' in plot.style()


def test_two_figures_share_no_name():
    names = [re.findall(r'\bid="([^"]*)"', plot.svg(one)) for one in (curves(), plot.Strip(**STRIP))]
    assert names[0] and names[1]
    assert not set(names[0]) & set(names[1])
    assert all(len(some) == len(set(some)) for some in names)


def test_a_stretch_that_goes_on_is_one_band():
    one = curves()
    for second in (0, 1, 3):
        one.shade(second, second + 1, "lost")
    assert one.bands == [(0, 2, "lost"), (3, 4, "lost")]


def test_nothing_to_draw_is_drawn():
    for empty in (plot.Curves("None", "y"), plot.Strip("None", "y", "px")):
        assert "nan" not in plot.svg(empty) + plot.small_svg(empty)


def test_the_mean_leaves_out_what_is_no_number():
    columns = [[1, None, 3], [None, None, None], [0, -4, float("nan")]]
    strip = plot.Strip("Some", "y", "px", x=[0, 1, 2], columns=columns)
    assert np.array_equal(strip.means(), [2, 0, -2])


def test_the_program_draws_what_it_reads(tmp_path):
    run = draw(tmp_path, json.dumps(STRIP), "strip.svg")
    assert (run.returncode, run.stdout, run.stderr) == (0, "", "")
    file = (tmp_path / "strip.svg").read_text()
    root = xml.fromstring(file)
    assert root.tag == "{http://www.w3.org/2000/svg}svg" and root.get("aria-label") == STRIP["title"]
    assert {"place, %", "time, s", "mean, px", "0 px"} <= set(texts(file))
    assert "nan" not in re.sub(r"base64,[^\"]*", "", file)


def test_the_program_refuses_what_is_no_strip(tmp_path):
    assert draw(tmp_path, "{}").stderr == "usage: python3 -m quarry.plot OUT.svg < values.json\n"
    for text in ("{}", "no JSON", json.dumps(STRIP | {"more": 1})):
        run = draw(tmp_path, text, "strip.svg")
        assert run.returncode != 0 and run.stderr
    assert list(tmp_path.iterdir()) == []
