"""Finds faces in pictures."""

import quarry
from quarry import CascadeMode
from quarry.demo.drawing import box_of, boxed
from quarry.demo.footage import Footage, Picture
from quarry.demo.page import Figure, Section, Timer

PICTURES = 3
SMALLEST = 24  # pixels
MODES = {
    CascadeMode.CAREFUL: "mode 0: six neighbouring hits",
    CascadeMode.EAGER: "mode 1: two hits",
    CascadeMode.BIGGEST: "mode 2: three hits",
}


def section(footage: Footage) -> Section:
    page = Section("Cascade detector", "Finds objects of the kind that a model was trained for, here faces.")
    model = footage.face_model
    pictures = (footage.portraits or footage.pictures)[:PICTURES]
    timer = Timer()

    def searched(picture: Picture, mode: CascadeMode, caption: str) -> Figure:
        detect = quarry.CascadeDetector(model_path=model, min_side=SMALLEST, mode=mode)
        with timer:
            faces = detect(picture.pixels)
        boxes = [box_of(face, picture.pixels) for face in faces]
        return Figure(boxed(picture.pixels, boxes), caption, f"{len(faces) or 'none'}")

    try:
        found = [searched(picture, CascadeMode.CAREFUL, picture.name) for picture in pictures]
    except (ValueError, quarry.OpenCVError):
        page.input = "not run: no model of faces"
        page.text(f"Not run: there is no model of faces that can be read at {model}.")
        return page

    page.timer = timer
    page.counted = "per picture"
    shown = " that show faces" if footage.portraits else "; none is known to show a face"
    page.input = f"{len(pictures)} pictures{shown}"
    page.picture = found[0].picture
    page.text(f"Searched for faces seen from the front, at least {SMALLEST} pixels wide, with the model {model.name}. "
              "Bold: how many were found.")
    page.figures("three", found)
    page.heading("How sure it has to be")
    page.text("The fewer neighbouring hits make a detection, the more is found, and the more of it is wrong.")
    page.figures("three", [searched(pictures[0], mode, name) for mode, name in MODES.items()])
    return page
