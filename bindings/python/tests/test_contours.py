"""Contours, grids and clusters, against cv2."""

import cv2
import numpy as np
import pytest
import quarry
from conftest import blobs

METHODS = {
    quarry.Tracing.EVERY_PIXEL: cv2.CHAIN_APPROX_NONE,
    quarry.Tracing.RUN_ENDS: cv2.CHAIN_APPROX_SIMPLE,
    quarry.Tracing.TEH_CHIN_L1: cv2.CHAIN_APPROX_TC89_L1,
    quarry.Tracing.TEH_CHIN_K_COSINE: cv2.CHAIN_APPROX_TC89_KCOS,
}


def relative(contour, width, height):
    return contour.reshape(-1, 2).astype(np.float32) / np.float32((width, height))


@pytest.mark.parametrize("tracing", quarry.Tracing)
def test_object_contour(tracing):
    mask = np.zeros((60, 80), np.uint8)
    cv2.circle(mask, (50, 35), 18, 255, cv2.FILLED)
    mask[10:20, 20:30] = 1
    contours, _ = cv2.findContours(mask[6:54, 8:72].copy(), cv2.RETR_LIST, METHODS[tracing], offset=(8, 6))
    expected = max(contours, key=cv2.contourArea)
    outline = quarry.ObjectContour(tracing=tracing)(mask, (0.1, 0.1, 0.8, 0.8))
    np.testing.assert_array_equal(outline.points, relative(expected, 80, 60))
    assert outline.area == pytest.approx(cv2.contourArea(expected) / 4800)
    assert outline.perimeter == pytest.approx(cv2.arcLength(expected, True) / 80)


def test_object_contour_selects():
    mask = np.zeros((60, 80), np.uint8)
    mask[10:30, 10:30] = 255
    mask[40:43, 5:75] = 255
    whole = (0, 0, 1, 1)
    largest = quarry.ObjectContour()(mask, whole)
    longest = quarry.ObjectContour(selection=quarry.Selection.LONGEST_DIAGONAL)(mask, whole)
    assert largest.area == pytest.approx(19 * 19 / 4800)
    assert longest.area == pytest.approx(69 * 2 / 4800)


def test_object_contour_finds_nothing():
    outline = quarry.ObjectContour()(np.zeros((60, 80), np.uint8), (0, 0, 1, 1))
    assert outline.points.shape == (0, 2)
    assert (outline.area, outline.perimeter) == (0, 0)


def test_contour_grid():
    drawn = blobs()[..., 0] > 0
    drawn[4:10, 50:56] = False  # 5 x 5 between its pixels' centres: too small
    counts = drawn.reshape(6, 10, 8, 10).sum(axis=(1, 3))
    grid = quarry.ContourGrid(cell_fill_rate=0.25, min_contour_area_rate=0.01)(blobs(), width=8, height=6)
    assert 0 < np.count_nonzero(grid) < grid.size
    np.testing.assert_array_equal(grid, counts > 25)


def test_contour_grid_keeps_all_and_asks_for_halves_by_default():
    counts = (blobs()[..., 0] > 0).reshape(12, 5, 16, 5).sum(axis=(1, 3))
    np.testing.assert_array_equal(quarry.ContourGrid()(blobs(), width=16, height=12), counts > 12)


@pytest.mark.parametrize(
    ("precision", "method"), [(1.0, cv2.CHAIN_APPROX_NONE), (0.5, cv2.CHAIN_APPROX_TC89_KCOS)]
)
def test_contour_clusters(precision, method):
    contours, _ = cv2.findContours(blobs()[..., 0].copy(), cv2.RETR_EXTERNAL, method)
    expected = [contour for contour in contours if cv2.contourArea(contour) >= 48]
    clusters = quarry.ContourClusters(outline_precision=precision, min_contour_area_rate=0.01)(blobs())
    assert len(clusters) == len(expected) == 2
    for cluster, contour in zip(clusters, expected):
        np.testing.assert_array_equal(cluster.points, relative(contour, 80, 60))
        assert cluster.area == pytest.approx(cv2.contourArea(contour) / 4800)
        assert cluster.perimeter == pytest.approx(cv2.arcLength(contour, True) / 80)
        moments = cv2.moments(contour)
        assert cluster.center_x == pytest.approx(int(moments["m10"] / moments["m00"]) / 80)
        assert cluster.center_y == pytest.approx(int(moments["m01"] / moments["m00"]) / 60)


def test_contour_clusters_by_default():
    clusters = quarry.ContourClusters()(blobs())
    assert [len(cluster.points) for cluster in clusters] == [2 * 29 + 2 * 24, 2 * 19 + 2 * 9, 2 * 5 + 2 * 5]


@pytest.mark.parametrize(
    ("contour", "position"),
    [
        ([(3, 3), (4, 3), (4, 4)], quarry.ContourPosition.INSIDE),
        ([(3, 3), (9, 3), (4, 4)], quarry.ContourPosition.CROSSING),
        ([(8, 3), (9, 3), (9, 4)], quarry.ContourPosition.OUTSIDE),
    ],
)
def test_contour_intersection(contour, position):
    polygon = [(0, 0), (6, 0), (6, 6), (0, 6)]
    sides = [cv2.pointPolygonTest(np.float32(polygon), point, False) for point in contour]
    assert (min(sides), max(sides)) == {-1: (-1, -1), 0: (-1, 1), 1: (1, 1)}[position]
    found = quarry.ContourIntersection()(polygon, np.array(contour))
    assert found is position


@pytest.mark.parametrize("measure", quarry.ShapeMeasure)
def test_contour_rate(measure):
    current = np.array([(10, 10), (60, 12), (55, 40), (12, 30)])
    previous = np.array([(10, 10), (40, 10), (42, 50), (8, 44)])
    expected = cv2.matchShapes(current, previous, int(measure), 0) / 0.04
    half = 0.5 / np.float32((80, 60))  # keeps whole pixels whole where they are truncated
    first, second = relative(current, 80, 60) + half, relative(previous, 80, 60) + half
    rate = quarry.ContourRate(measure=measure)
    assert rate(first, second, frame_width=80, frame_height=60, milliseconds=40) == pytest.approx(expected)
    assert rate(first, second, frame_width=0, frame_height=60, milliseconds=40, default_rate=-2) == -2


def test_contour_rate_takes_the_first_measure_by_default():
    first, second = [(0, 0), (0.5, 0), (0.5, 0.9)], [(0, 0), (0.5, 0.1), (0.4, 0.6)]
    timing = dict(frame_width=100, frame_height=100, milliseconds=1000)
    expected = quarry.ContourRate(measure=quarry.ShapeMeasure.I1)(first, second, **timing)
    assert quarry.ContourRate()(first, second, **timing) == expected > 0
