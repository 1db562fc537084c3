"""Sharpness, similarity, colours and motion across a line, against numpy and cv2."""

import math

import cv2
import numpy as np
import pytest
import quarry
from conftest import random_frame


def variance_of_laplacian(grey):
    laplacian = cv2.Laplacian(grey, cv2.CV_64F).astype(np.int64)
    mean = int(laplacian.sum()) / laplacian.size
    square = int((laplacian**2).sum()) / laplacian.size
    deviation = np.float32(math.sqrt(max(square - mean**2, 0)))
    return float(deviation * deviation)


def test_variance_of_laplacian():
    frame = random_frame(61, 47, 1)
    assert quarry.VarianceOfLaplacian()(frame) == variance_of_laplacian(cv2.cvtColor(frame, cv2.COLOR_BGR2GRAY))


def test_face_variance_of_laplacian():
    frame = random_frame(61, 47, 2)
    mask = np.zeros((47, 61), np.uint8)
    cv2.ellipse(mask, (30, 20), (12, 17), 0, 0, 360, 255, cv2.FILLED)
    expected = variance_of_laplacian(cv2.cvtColor(frame, cv2.COLOR_BGR2GRAY) & mask)
    sharpness = quarry.FaceVarianceOfLaplacian()
    assert sharpness(frame, center_x=30, center_y=20, half_width=12, half_height=17) == expected


def test_cosine_similarity():
    first, second = np.random.default_rng(3).normal(size=(2, 512)).astype(np.float32)
    expected = first.astype(float) @ second / np.linalg.norm(first.astype(float)) / np.linalg.norm(second.astype(float))
    similarity = quarry.CosineSimilarity()
    assert similarity(first, second) == pytest.approx(expected, abs=1e-6)
    assert similarity(first.astype(float), list(second)) == similarity(first, second)
    assert math.isnan(similarity(first, np.zeros(512)))


@pytest.mark.parametrize("measure", quarry.HistogramMeasure)
def test_color_comparison(measure):
    first, second = random_frame(40, 30, 4), random_frame(40, 30, 5) // 2

    def histogram(frame):
        part = cv2.cvtColor(np.ascontiguousarray(frame[6:21, 10:30]), cv2.COLOR_BGR2HSV)
        return cv2.calcHist([part], [0, 1], None, [50, 60], [0, 180, 0, 256])

    compare = quarry.ColorComparison(measure=measure)
    expected = cv2.compareHist(histogram(first), histogram(second), int(measure))
    assert compare(first, second, area=(0.25, 0.2, 0.5, 0.5)) == expected
    assert compare(first, second) != expected


def test_color_comparison_takes_correlation_by_default():
    first, second = random_frame(40, 30, 4), random_frame(40, 30, 5) // 2
    correlation = quarry.ColorComparison(measure=quarry.HistogramMeasure.CORRELATION)
    assert quarry.ColorComparison()(first, second) == correlation(first, second)


def test_optical_flow_line():
    field = np.zeros((60, 80, 2), np.float32)
    field[..., 1] = np.arange(80)  # the further to the right, the faster down
    values = quarry.OpticalFlowLine()(field, start=(0.125, 0.5), end=(0.875, 0.5), values_count=61)
    assert values.dtype == np.float32
    np.testing.assert_allclose(values, np.arange(10, 71), rtol=1e-3)
    back = quarry.OpticalFlowLine()(field, start=(0.875, 0.5), end=(0.125, 0.5), values_count=61)
    np.testing.assert_allclose(back, -np.arange(70, 9, -1), rtol=1e-3)


def test_clothing_colors():
    body = np.zeros((17, 2), np.float32)
    for left, x in [(5, 0.6), (11, 0.6), (13, 0.6), (15, 0.6)]:  # shoulder, hip, knee, ankle, and those to the right
        body[left], body[left + 1] = (x, 0), (0.4, 0)
    body[[5, 6], 1], body[[11, 12], 1], body[[13, 14], 1], body[[15, 16], 1] = 0.2, 0.4, 0.6, 0.9
    frame = np.zeros((200, 100, 3), np.uint8)
    frame[:65] = (200, 0, 0)  # B, G, R: the torso is blue
    frame[65:81] = (0, 250, 0)  # with a green belt,
    frame[81:130] = (10, 20, 30)  # thighs are dark
    frame[130:] = (0, 0, 255)  # and shins red
    colors = quarry.ClothingColors()(frame, body)
    assert colors.torso.shape == colors.legs.shape == (2, 3)
    np.testing.assert_allclose(colors.torso, np.array([(0, 0, 200), (0, 250, 0)]) / 255, atol=1e-6)
    np.testing.assert_allclose(colors.legs, np.array([(30, 20, 10), (255, 0, 0)]) / 255, atol=0.05)


def test_clothing_colors_draw_from_the_random_numbers_of_cv2():
    """One OpenCV serves both: seeded alike, its k-means gives the same to the last bit."""
    frame = random_frame(100, 200, 6)
    body = np.zeros((17, 2), np.float32)
    body[5], body[6], body[11], body[12] = (0.7, 0.1), (0.2, 0.1), (0.7, 0.4), (0.2, 0.4)
    body[13], body[14], body[15], body[16] = (0.7, 0.6), (0.2, 0.6), (0.7, 0.9), (0.2, 0.9)
    area = np.zeros((200, 100), np.uint8)
    cv2.fillConvexPoly(area, np.array([(70, 20), (20, 20), (20, 80), (70, 80)]), 255)
    pixels = frame[area > 0].astype(np.float32)
    criteria = (cv2.TERM_CRITERIA_EPS + cv2.TERM_CRITERIA_MAX_ITER, 10, 1.0)
    cv2.setRNGSeed(7)
    _, labels, centers = cv2.kmeans(pixels, 2, None, criteria, 10, cv2.KMEANS_PP_CENTERS)
    if np.count_nonzero(labels == 0) <= np.count_nonzero(labels == 1):
        centers = centers[::-1]
    cv2.setRNGSeed(7)
    colors = quarry.ClothingColors()(frame, body)
    np.testing.assert_array_equal(colors.torso, centers[:, ::-1] / np.float32(255))
