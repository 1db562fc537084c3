"""Detectors, against cv2."""

import math
import pathlib

import cv2
import numpy as np
import pytest
import quarry

MODEL = pathlib.Path("/usr/share/opencv4/haarcascades/haarcascade_frontalface_alt.xml")
PRESETS = {
    quarry.CascadeMode.CAREFUL: (5, cv2.CASCADE_SCALE_IMAGE),
    quarry.CascadeMode.EAGER: (1, cv2.CASCADE_SCALE_IMAGE),
    quarry.CascadeMode.BIGGEST: (2, cv2.CASCADE_DO_CANNY_PRUNING + cv2.CASCADE_FIND_BIGGEST_OBJECT),
}


@pytest.fixture(autouse=True)
def one_thread():
    """Detections come in the order in which OpenCV's threads find them."""
    before = cv2.getNumThreads()
    cv2.setNumThreads(1)
    yield
    cv2.setNumThreads(before)


@pytest.mark.parametrize("mode", quarry.CascadeMode)
def test_cascade_detector(portrait, mode):
    neighbours, flags = PRESETS[mode]
    height, width = portrait.shape[:2]
    part = np.ascontiguousarray(portrait[: height // 2 * 2, width // 4 : width // 4 * 3])
    grey = cv2.cvtColor(part, cv2.COLOR_BGR2GRAY)
    model = cv2.CascadeClassifier(str(MODEL))
    expected = model.detectMultiScale(grey, 1.1, neighbours, flags, (30, 30), (300, 300))
    assert len(expected) > 0
    detect = quarry.CascadeDetector(model_path=MODEL, min_side=30, max_side=300, mode=mode)
    found = detect(portrait, area=(0.25, 0, 0.5, 1))
    sides = np.float32((part.shape[1], part.shape[0]) * 2)
    np.testing.assert_array_equal(np.float32(found), np.float32(expected) / sides)
    assert isinstance(found[0], quarry.RelRect)


def test_cascade_detector_searches_the_whole_frame_without_limits_by_default(portrait):
    found = quarry.CascadeDetector(model_path=str(MODEL))(portrait)
    model = cv2.CascadeClassifier(str(MODEL))
    expected = model.detectMultiScale(cv2.cvtColor(portrait, cv2.COLOR_BGR2GRAY), 1.1, 5, cv2.CASCADE_SCALE_IMAGE)
    sides = np.float32((portrait.shape[1], portrait.shape[0]) * 2)
    np.testing.assert_array_equal(np.float32(found), np.float32(expected) / sides)


def test_limits_that_nothing_reaches_are_none(portrait, footage):
    faces = quarry.CascadeDetector(model_path=MODEL)(portrait)
    frame = cv2.resize(footage(100), None, fx=1.5, fy=1.5)
    persons = quarry.PeopleDetector()(frame)
    assert len(faces) > 0
    assert len(persons) > 0
    for limit in (math.inf, 1e300):
        assert quarry.CascadeDetector(model_path=MODEL, max_side=limit)(portrait) == faces
        assert quarry.CascadeDetector(model_path=MODEL, min_side=limit)(portrait) == []
        assert quarry.PeopleDetector(max_height=limit)(frame) == persons


def people(frame, shortest, tallest, stride, scale):
    """Those that the documentation of the operation keeps, in pixels."""
    descriptor = cv2.HOGDescriptor()
    descriptor.setSVMDetector(cv2.HOGDescriptor_getDefaultPeopleDetector())
    rects, weights = descriptor.detectMultiScale(
        frame, hitThreshold=0, winStride=(stride, stride), padding=(0, 0), scale=scale, groupThreshold=2
    )

    def inside(a, b):
        return a[0] >= b[0] and a[1] >= b[1] and a[0] + a[2] <= b[0] + b[2] and a[1] + a[3] <= b[1] + b[3]

    return [
        (*rect, weight)
        for i, (rect, weight) in enumerate(zip(rects, weights))
        if not any(inside(rect, other) for j, other in enumerate(rects) if j != i)
        and shortest <= rect[3] <= tallest
        and weight >= 0
    ]


def flat(found):
    return np.array([(*person.rect, person.weight) for person in found])


def test_people_detector(footage):
    frame = cv2.resize(footage(100), None, fx=1.5, fy=1.5)
    height, width = frame.shape[:2]
    expected = people(frame, 128, height, 4, 1.1)
    assert len(expected) > 1
    found = quarry.PeopleDetector()(frame)
    np.testing.assert_allclose(flat(found), np.array(expected) / (width, height, width, height, 1), rtol=1e-5)
    tall = quarry.PeopleDetector(min_height=0.3, max_height=0.4)(frame)
    assert len(tall) < len(found)
    assert all(0.3 * height - 1 <= person.rect.height * height <= 0.4 * height for person in tall)


def test_people_detector_in_areas(footage):
    frame = cv2.resize(footage(100), None, fx=1.5, fy=1.5)
    height, width = frame.shape[:2]
    half = np.ascontiguousarray(frame[:, : width // 2])
    expected = people(half, 128, height, 8, 1.12)
    detect = quarry.PeopleDetector(sensitivity=0.3)
    found = detect(frame, areas=[(0, 0, 0.5, 1), (0, 0, 0.01, 0.01)])
    assert len(expected) > 0
    np.testing.assert_allclose(flat(found), np.array(expected) / (width, height, width, height, 1), rtol=1e-5)
    assert detect(frame, areas=[]) == []
