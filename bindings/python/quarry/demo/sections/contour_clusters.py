"""Finds the things that move in the clip."""

import quarry
from quarry.demo.drawing import with_clusters
from quarry.demo.footage import Footage
from quarry.demo.page import Section, Shots, Timer, ends_of
from quarry.plot import Curves


def section(footage: Footage) -> Section:
    clip = footage.clip
    page = Section("Clusters", "The things in a frame that is black between them: contour, centre and size of each.")
    page.input = clip.moving_input
    page.timer = timer = Timer()
    page.counted = "without the background model"
    count = Curves("Number of clusters over time", "clusters")
    shots = Shots(count, ends_of(clip.moving_count, 3))
    areas: list[float] = []

    find = quarry.ContourClusters(outline_precision=0, min_contour_area_rate=0.001)
    for moving in clip.moving():
        on_black = moving.on_black()
        with timer:
            clusters = find(on_black)
        count.add(moving.seconds, len(clusters))
        areas += [cluster.area for cluster in clusters]
        if moving.place in shots:
            shots.add(moving.seconds, with_clusters(moving.pixels, clusters), f"{len(clusters)} clusters")

    page.picture = shots.middle
    page.facts(
        (timer.median, "per frame, median, without the background model"),
        (f"{len(areas) / clip.moving_count:.1f}", "clusters per frame on average"),
        (f"{100 * sum(areas) / max(1, len(areas)):.2f} %", "of the frame: the mean area of a cluster"),
    )
    page.heading("How many there are")
    page.plot(count)
    page.text("Things smaller than 0.1 % of the frame are left out. Letters mark the instants shown below; crosses are "
              "centres of mass.")
    page.figures("three", shots.figures)
    return page
