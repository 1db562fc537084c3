"""The page of the demo in Chromium: narrow and wide, light and dark, without a fault."""

import json
import pathlib
import re
import shutil
import subprocess

import pytest
from conftest import MEDIA
from demo import demo

WATCHER = pathlib.Path(__file__).with_name("PageWatcher.html")
DARK, LIGHT = 0, 1  # in the numbers of the browser's setting

pytestmark = pytest.mark.skipif(not shutil.which("chromium"), reason="no chromium (./dev browser installs it)")


def seen(folder, page, scheme):
    """What the watcher says of a page of the folder, with what went to the browser's console as further faults."""
    shutil.copy(WATCHER, folder / "watcher.html")
    run = subprocess.run([
        "chromium", "--headless", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage", "--no-first-run",
        "--disable-background-networking", "--disable-component-update", "--disable-sync", "--disable-quic",
        "--host-resolver-rules=MAP * ~NOTFOUND", "--allow-file-access-from-files", "--enable-logging=stderr",
        f"--blink-settings=preferredColorScheme={scheme}", "--virtual-time-budget=5000",
        f"--user-data-dir={folder}/profile", "--dump-dom", f"file://{folder}/watcher.html?page={page}",
    ], env={"HOME": str(folder), "PATH": "/usr/bin:/bin"}, capture_output=True, text=True, timeout=120)
    assert run.returncode == 0, run.stderr
    result = json.loads(re.search(r'\{"faults".*\}', run.stdout)[0])
    result["faults"] += re.findall(":CONSOLE.*", run.stderr)
    return result


def check(folder, *arguments):
    demo(folder, *arguments)
    for scheme in (LIGHT, DARK):
        result = seen(folder, "demo/report.html", scheme)
        assert result["faults"] == []
        assert result["pictures"] >= 60
        assert result["dark"] == (scheme == DARK)
        assert result["darkPlots"] == (scheme == DARK)


def test_drawn_scenes_narrow_and_wide_in_light_and_dark(tmp_path):
    check(tmp_path, "--media", "missing")


def test_real_footage_narrow_and_wide_in_light_and_dark(tmp_path):
    if not (MEDIA / "vtest.avi").exists():
        pytest.skip("no footage")
    check(tmp_path, "--media", MEDIA)


@pytest.mark.parametrize("body, fault", [
    ('<img alt="lost" src="lost.png">', "at 360 px: no picture: lost"),
    ('<img alt="broken" src="data:image/png;base64,AAAA">', "at 1600 px: no picture: broken"),
    ('<p style="width: 900px">wide</p>', "at 360 px: 548 px too wide"),
    ("<script>throw new Error('thrown')</script>", "Uncaught Error: thrown"),
    ("<script>console.error('logged')</script>", "logged"),
    ("<script>fetch('http://far.example/')</script>", "asks for http://far.example/"),
    ('<link rel="stylesheet" href="http://far.example/">', "asks for http://far.example/"),
])
def test_the_watcher_would_tell_of_faults(tmp_path, body, fault):
    page = f'<!DOCTYPE html><body style="color: #000; background: #fff">{body}</body>'
    (tmp_path / "page.html").write_text(page)
    assert any(fault in one for one in seen(tmp_path, "page.html", LIGHT)["faults"])
