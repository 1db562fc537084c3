"""Pictures and masks that operations make of a frame, against cv2."""

import cv2
import numpy as np
import pytest
import quarry
from conftest import random_frame, smooth_frame


def test_image_subtractor():
    first, second = random_frame(33, 21, 1), random_frame(33, 21, 2)
    np.testing.assert_array_equal(quarry.ImageSubtractor()(first, second), cv2.absdiff(first, second))


def test_image_subtractor_of_nothing():
    nothing = np.zeros((0, 5, 3), np.uint8)
    assert quarry.ImageSubtractor()(nothing, nothing).shape == (0, 5, 3)


def test_fast_nl_means_denoising():
    frame = random_frame(24, 18, 3)
    expected = cv2.fastNlMeansDenoisingColored(frame, None, 10, 10, 7, 21)
    np.testing.assert_array_equal(quarry.FastNlMeansDenoising()(frame), expected)


@pytest.mark.parametrize("interpolation", quarry.Interpolation)
def test_rect_extractor(interpolation):
    frame = random_frame(80, 60, 4)
    angle = np.float32(np.float32(30) * np.pi / 180)
    cos, sin = np.cos(float(angle)), np.sin(float(angle))
    matrix = np.array([[cos, -sin, 40 - cos * 15 + sin * 10], [sin, cos, 30 - sin * 15 - cos * 10]])
    flags = cv2.WARP_INVERSE_MAP | (cv2.INTER_NEAREST, cv2.INTER_LINEAR)[interpolation]
    expected = cv2.warpAffine(frame, matrix, (31, 21), flags=flags)
    part = quarry.RectExtractor(interpolation=interpolation)(
        frame, center_x=40, center_y=30, width=31, height=21, degrees=30
    )
    np.testing.assert_array_equal(part, expected)


def test_rect_extractor_cuts_bilinearly_and_upright_by_default():
    frame = random_frame(80, 60, 4)
    rect = dict(center_x=40, center_y=30, width=20, height=10)
    np.testing.assert_array_equal(quarry.RectExtractor()(frame, **rect), frame[25:35, 30:50])
    bilinear = quarry.RectExtractor(interpolation=quarry.Interpolation.BILINEAR)(frame, degrees=5, **rect)
    np.testing.assert_array_equal(quarry.RectExtractor()(frame, degrees=5, **rect), bilinear)


def test_similarity_transform():
    frame = smooth_frame(160, 120)
    source = np.array([(50, 40), (90, 42), (70, 60), (55, 80), (88, 82)], float)
    turn = 0.4 * np.array([(np.cos(0.3), -np.sin(0.3)), (np.sin(0.3), np.cos(0.3))])
    destination = source @ turn.T + (20, 5)
    expected = cv2.warpAffine(frame, np.column_stack([turn, (20, 5)]), (64, 48))
    aligned = quarry.SimilarityTransform(width=64, height=48)(frame, source, destination)
    assert aligned.shape == (48, 64, 3)
    inside = cv2.erode((expected > 0).all(axis=2).astype(np.uint8), np.ones((3, 3))) > 0
    assert inside.sum() > 1000
    assert np.abs(aligned.astype(int) - expected)[inside].max() <= 1
    assert quarry.SimilarityTransform()(frame, source, source).shape == (112, 112, 3)


@pytest.mark.parametrize(("degrees", "scale"), [(30, 1), (-100.5, 0.7)])
def test_rotation_transform(degrees, scale):
    frame = random_frame(64, 48, 5)
    matrix = cv2.getRotationMatrix2D((31.5, 23.5), degrees, scale)
    corners = cv2.boxPoints(((0, 0), (64, 48), degrees)).astype(np.float32)
    canvas = corners.max(axis=0) - corners.min(axis=0)
    matrix[:, 2] += canvas.astype(float) * 0.5 - (32, 24)
    turned = cv2.warpAffine(frame, matrix, tuple(int(round(float(side))) for side in canvas))
    expected = cv2.resize(turned, (64, 48), interpolation=cv2.INTER_LINEAR)
    rotate = quarry.RotationTransform(width=64, height=48)
    difference = np.abs(rotate(frame, degrees, scale).astype(int) - expected)
    assert difference.max() <= 8  # places are rounded to 1/32 of a pixel
    assert difference.mean() < 0.05


def is_flame(frame):
    """The rule as the documentation of the operation states it."""
    c = frame / 255.0
    linear = 100 * np.where(c > 0.04045, ((c + 0.055) / 1.055) ** 2.4, c / 12.92)
    blue, green, red = np.moveaxis(linear, 2, 0)

    def curve(t):
        return np.where(t > 0.008856, np.cbrt(t), 7.787 * t + 16 / 116)

    x = curve((0.4124 * red + 0.3576 * green + 0.1805 * blue) / 95.047)
    y = curve((0.2126 * red + 0.7152 * green + 0.0722 * blue) / 100)
    z = curve((0.0193 * red + 0.1192 * green + 0.9505 * blue) / 108.883)
    light, a, b = 116 * y - 16, 500 * (x - y), 200 * (y - z)
    with np.errstate(invalid="ignore"):
        light_and_a = (-23 < a) & (a < 51)
        light_and_a &= np.where(a > 17.9, light > 59, light > 34 + np.sqrt(4200 - (a + 42) ** 2))
        light_and_a &= np.where(a > 5, light < 92.5 - 0.54 * a, light < 59.5 + np.sqrt(1600 - (a + 7) ** 2))
    a_and_b = np.where(a > 4, b > 1.1 * a - 12, b > 0.13 * (a - 6) ** 2 - 8)
    return light_and_a & a_and_b & (light > 92 - 0.95 * b)


def test_fire_pixels():
    frame = random_frame(120, 90, 6) // 4
    cv2.circle(frame, (60, 45), 20, (40, 170, 250), cv2.FILLED)
    cv2.circle(frame, (100, 20), 5, (40, 170, 250), cv2.FILLED)
    candidates = is_flame(frame).astype(np.uint8)
    contours, _ = cv2.findContours(candidates, cv2.RETR_TREE, cv2.CHAIN_APPROX_NONE)
    expected = np.zeros((90, 120), np.uint8)
    cv2.drawContours(expected, [max(contours, key=cv2.contourArea)], -1, 255, cv2.FILLED)
    ellipse = cv2.getStructuringElement(cv2.MORPH_ELLIPSE, (11, 11))
    expected = cv2.dilate(expected, ellipse, iterations=2)
    flames = quarry.FirePixels()(frame)
    assert flames[45, 60] == 255 and flames[20, 100] == 0
    np.testing.assert_array_equal(flames, expected)
