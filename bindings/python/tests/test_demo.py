"""The page of the demo: one section per operation, all in one file, whatever footage there is."""

import base64
import html.parser
import inspect
import pathlib
import re

import cv2
import numpy as np
import pytest
from conftest import MEDIA
from demo import demo, write_clip, write_picture
from quarry import _quarry
from quarry.demo import sections

OPERATIONS = {name for name, value in vars(_quarry).items() if isinstance(value, type)}
VOID = {"meta", "img", "rect", "path", "use", "image"}


def kebab_case(name):
    return re.sub("(?<!^)(?=[A-Z])", "-", name).lower()


class Balance(html.parser.HTMLParser):
    """Fails where a tag that was opened last is not the one that ends."""

    def __init__(self, page):
        super().__init__()
        self.open = []
        self.feed(page)
        assert self.open == []

    def handle_starttag(self, tag, attributes):
        if tag not in VOID:
            self.open.append(tag)

    def handle_startendtag(self, tag, attributes):
        pass

    def handle_endtag(self, tag):
        if tag not in VOID:
            assert self.open.pop() == tag, self.getpos()


def check_page(page):
    """A whole page that needs nothing from outside."""
    assert page.startswith("<!DOCTYPE html>")
    Balance(page)
    for outside in ("http:", "https:", "<script", "<link", "@import", 'src="/', 'src="."'):
        assert outside not in page
    assert set(re.findall(r'(?:src|href)="([a-z]+:[a-z/]+)', page)) <= {"data:image/jpeg", "data:image/png"}
    ids = re.findall(r'\bid="([^"]*)"', page)
    assert set(re.findall(r'(?:href="#|url\(#)([^")]*)', page)) <= set(ids)
    assert [name for name in ids if kebab_case(name) == name and re.search("[a-z]-|^operations", name)] == [
        "operations", *(kebab_case(operation.__name__) for operation in sections.OPERATIONS)]
    for part in ("Time per frame, median", "<svg", "learning", "time, s", "foreground mask", "prefers-color-scheme"):
        assert part in page


def check_pictures(page):
    """All of them can be decoded."""
    pictures = re.findall(r";base64,([^\"]*)", page)
    assert len(pictures) >= 60
    for picture in pictures:
        assert cv2.imdecode(np.frombuffer(base64.b64decode(picture), np.uint8), cv2.IMREAD_COLOR) is not None


def texts(page):
    """The page without the letters that stand for pixels."""
    return re.sub(r";base64,[^\"]*", "", page)


def test_every_operation_has_one_section():
    names = [operation.__name__ for operation in sections.OPERATIONS]
    assert sorted(names) == sorted(OPERATIONS)
    folder = pathlib.Path(sections.__file__).parent
    files = {path.stem for path in folder.glob("*.py")} - {"__init__"}
    assert files == {kebab_case(name).replace("-", "_") for name in names}


@pytest.mark.parametrize("operation", sections.OPERATIONS, ids=lambda operation: operation.__name__)
def test_a_section_uses_its_operation(operation):
    module = f"{kebab_case(operation.__name__).replace('-', '_')}.py"
    source = pathlib.Path(sections.__file__).with_name(module).read_text()
    assert f"quarry.{operation.__name__}(" in source
    assert len(source.splitlines()) <= 90, "an example is short"


def test_without_footage_it_draws_its_own_and_says_so(tmp_path):
    out, err = demo(tmp_path, "--media", "missing", "--out", "page/here", "--pictures", "pictures")
    assert out == "page/here/report.html\n"
    assert err == "quarry.demo: missing: no vtest.avi and pictures there that can be read; the demo draws its own\n"
    assert [path.name for path in (tmp_path / "page/here").iterdir()] == ["report.html"]
    page = (tmp_path / "page/here/report.html").read_text()
    check_page(page)
    check_pictures(page)
    assert "No real footage" in page
    pictures = list((tmp_path / "pictures").iterdir())
    assert {path.stem for path in pictures} == set(map(kebab_case, OPERATIONS))
    for path in pictures:
        assert path.suffix == ".svg" and "</svg>" in path.read_text() or cv2.imread(str(path)) is not None


def test_it_shows_the_folder_that_it_is_given(tmp_path):
    write_clip(tmp_path / "media/vtest.avi", 50)
    write_picture(tmp_path / "media/a<b>&.png", 10)
    write_picture(tmp_path / "media/soft.jpg", 11, 2)
    (tmp_path / "media/broken.jpg").write_text("not a picture")
    assert demo(tmp_path) == ("demo/report.html\n", "")
    page = (tmp_path / "demo/report.html").read_text()
    check_page(page)
    assert "No real footage" not in page
    assert "a&lt;b&gt;&amp;.png" in page and "a<b>" not in page
    assert "vtest.avi, 50 frames" in page
    assert "broken.jpg" not in page


def test_one_frame_and_one_picture_are_enough(tmp_path):
    write_clip(tmp_path / "media/vtest.avi", 1)
    write_picture(tmp_path / "media/only.png", 12)
    _, err = demo(tmp_path, "--cascade", "no<model>.xml")
    assert err == ""
    page = (tmp_path / "demo/report.html").read_text()
    check_page(page)
    assert "nan" not in re.sub("<details>.*?</details>", "", texts(page), flags=re.DOTALL)
    assert "there is no model of faces that can be read at no&lt;model&gt;.xml" in page


def test_an_output_that_cannot_be_written_is_named(tmp_path):
    (tmp_path / "file").write_text("")
    (tmp_path / "taken/report.html").mkdir(parents=True)
    assert demo(tmp_path, "--out", "file", fails=True)[1] == "quarry.demo: file: File exists\n"
    assert demo(tmp_path, "--out", "taken", fails=True)[1] == "quarry.demo: taken/report.html: Is a directory\n"


def test_it_runs_on_real_footage(tmp_path):
    if not (MEDIA / "vtest.avi").exists():
        pytest.skip("no footage")
    assert demo(tmp_path, "--media", MEDIA) == ("demo/report.html\n", "")
    page = (tmp_path / "demo/report.html").read_text()
    check_page(page)
    check_pictures(page)
    assert "first 300 of 795" in page, "the page says that it shows a part"
    assert "two walkers" in page


def test_the_picture_of_the_readme_is_small(tmp_path):
    demo(tmp_path, "--scene", "scene.jpg")
    assert cv2.imread(str(tmp_path / "scene.jpg")).shape[1] == 1200
    assert (tmp_path / "scene.jpg").stat().st_size < 150_000


def test_the_page_shows_the_code_of_its_sections(tmp_path):
    from quarry.demo.sections import rotation_transform

    write_clip(tmp_path / "media/vtest.avi", 1)
    write_picture(tmp_path / "media/only.png", 12)
    demo(tmp_path, "--cascade", "none")
    shown = html.unescape((tmp_path / "demo/report.html").read_text())
    assert inspect.getsource(rotation_transform) in shown
