"""The demo as a command."""

import argparse
import pathlib
import sys

from quarry.demo import glance, page
from quarry.demo.footage import open_footage
from quarry.demo.sections import OPERATIONS, section_of

FACE_MODEL = "/usr/share/opencv4/haarcascades/haarcascade_frontalface_alt.xml"  # as Debian has it


def main() -> None:
    """Writes the page and says where it is."""
    parser = argparse.ArgumentParser(
        prog="python3 -m quarry.demo",
        description="Runs every operation on footage and writes one page that shows what came out. Without footage it "
                    "draws scenes of its own. The page is one file, pictures included.")
    parser.add_argument("--media", type=pathlib.Path, default="media", help="folder with vtest.avi and pictures")
    parser.add_argument("--out", type=pathlib.Path, default="demo", help="folder to write report.html to")
    parser.add_argument("--cascade", type=pathlib.Path, default=FACE_MODEL,
                        help="model of faces for the detector; without it, it does not run")
    parser.add_argument("--pictures", type=pathlib.Path, metavar="FOLDER",
                        help="also write a picture of each operation here, as the documentation shows it")
    parser.add_argument("--scene", type=pathlib.Path, metavar="FILE",
                        help="instead, write one picture of what some operations find in the drawn scene")
    options = parser.parse_args()
    try:
        if options.scene:
            glance.save(options.scene)
        else:
            write(options)
    except OSError as refused:
        sys.exit(f"quarry.demo: {refused.filename}: {refused.strerror}")


def write(options: argparse.Namespace) -> None:
    report = options.out / "report.html"
    for folder in (options.out, options.pictures):
        if folder:
            folder.mkdir(parents=True, exist_ok=True)
    report.open("a").close()  # to know at once whether it can be written
    footage = open_footage(options.media, options.cascade)
    if footage.missing():
        print(f"quarry.demo: {options.media}: no {footage.missing()} there that can be read; the demo draws its own",
              file=sys.stderr)
    sections = []
    for place, operation in enumerate(OPERATIONS, 1):
        say(f"{place}/{len(OPERATIONS)} {operation.__name__}")
        sections.append(section_of(operation, footage))
    say("")
    report.write_text(page.html(footage, sections), encoding="utf-8")
    for section in sections if options.pictures else []:
        page.save_picture(section, options.pictures)
    print(report)


def say(what: str) -> None:
    """On a terminal, what is being done, on a line that goes again."""
    if sys.stderr.isatty():
        print(f"\r{what}\033[K", end="", file=sys.stderr, flush=True)


if __name__ == "__main__":
    main()
