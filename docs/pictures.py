"""Takes the picture of each operation out of the demo's page: pictures.py report.html FOLDER

It is that of the overview: a photograph, NAME.jpg. Curves are too small there; the plot of the operation's section
stands for them, NAME.svg, in the colours of the page.
"""

import base64
import pathlib
import re
import sys


def first(pattern, text):
    found = re.search(pattern, text, re.DOTALL)
    return found and found[1]


def main(report, folder):
    page = pathlib.Path(report).read_text()
    style = first("<style>(.*?)</style>", page)
    pathlib.Path(folder).mkdir(exist_ok=True)
    for name, row in re.findall('<tr><td><a href="#([a-z-]+)">(.*?)</tr>', page, re.DOTALL):
        target = pathlib.Path(folder, name)
        photograph = first('src="data:image/jpeg;base64,([^"]*)"', row)
        if photograph:
            target.with_suffix(".jpg").write_bytes(base64.b64decode(photograph))
        else:
            section = first(f'<section id="{name}">(.*?)</section>', page)
            plot = first("<svg(.*?</svg>)", section) or first("<svg(.*?</svg>)", row)
            font = "<style>text { font-family: sans-serif; }" + style + "</style>"
            target.with_suffix(".svg").write_text(
                '<svg xmlns="http://www.w3.org/2000/svg"' + plot.replace(">", ">" + font, 1)
            )


main(*sys.argv[1:])
