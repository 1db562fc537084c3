"""Says which of the things that move in the clip are in a zone."""

from collections import Counter

import quarry
from quarry import ContourPosition
from quarry.demo.drawing import BLUE, GREY, ORANGE, WHITE, with_polygon
from quarry.demo.footage import Footage
from quarry.demo.page import Section, Shots, Timer, ends_of
from quarry.plot import Curves

ZONE = [(0.3, 0.3), (0.7, 0.25), (0.85, 0.6), (0.7, 0.9), (0.25, 0.85)]
COLOURS = {ContourPosition.INSIDE: ORANGE, ContourPosition.CROSSING: BLUE, ContourPosition.OUTSIDE: GREY}


def section(footage: Footage) -> Section:
    clip = footage.clip
    page = Section("Contour against a polygon",
                   "Whether a contour is inside a polygon, outside of it or across its border.")
    page.timer = timer = Timer()
    page.counted = "per contour"
    counts = Curves("Contours inside the zone and across its border, over time", "contours",
                    names=("inside", "crossing"))
    shots = Shots(counts, ends_of(clip.moving_count, 3))

    find = quarry.ContourClusters(outline_precision=0, min_contour_area_rate=0.001)
    place = quarry.ContourIntersection()
    for moving in clip.moving():
        picture = with_polygon(moving.pixels, ZONE, WHITE)
        positions: Counter[ContourPosition] = Counter()
        for cluster in find(moving.on_black()):
            with timer:
                position = place(ZONE, cluster.points)
            positions[position] += 1
            picture = with_polygon(picture, cluster.points, COLOURS[position])
        inside, crossing = positions[ContourPosition.INSIDE], positions[ContourPosition.CROSSING]
        counts.add(moving.seconds, inside, crossing)
        if moving.place in shots:
            shots.add(moving.seconds, picture, f"{inside} inside, {crossing} crossing")

    placed = len(timer.milliseconds)
    occupied = sum(any(row) for row in counts.rows)
    page.input = f"{clip.moving_input}, {placed} contours"
    page.picture = shots.middle
    page.facts(
        (timer.median, "per contour, median"),
        (f"{placed}", "contours were placed"),
        (f"{100 * occupied / clip.moving_count:.0f} %", "of the frames have something in the zone"),
    )
    page.heading("Who is in the zone")
    page.plot(counts)
    page.text("The zone is drawn white. Contours are orange inside of it, blue across its border and grey outside. "
              "Letters mark the instants shown below.")
    page.figures("three", shots.figures)
    return page
