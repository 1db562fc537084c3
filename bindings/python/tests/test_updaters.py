"""Operations that keep state from frame to frame, against cv2 and a scene with a known answer."""

import cv2
import numpy as np
import pytest
import quarry
from conftest import random_frame

SECOND = 10_000_000


def noisy_scene(number):
    """Grey with noise; a bright square is there from the ninth frame on."""
    frame = np.random.default_rng(number).integers(85, 96, (48, 64, 3), dtype=np.uint8)
    if number >= 9:
        frame[10:30, 20:30] = 200
    return frame


def test_background_model():
    options = dict(sensitivity=0.25, history_length=100, adaptation_seconds=8.0, learning_speedup=2.0)
    model = quarry.BackgroundModel(**options)
    mixture = cv2.createBackgroundSubtractorMOG2(history=100, varThreshold=16, detectShadows=True)
    states = []
    for number in range(1, 11):
        frame = noisy_scene(number)
        states.append(model.update(frame, number * SECOND))
        period = 8.0 if quarry.State.READY in states[:-1] else 4.0
        rate = np.float32(1) - np.exp(-np.float32(1) / np.float32(period / 2.15), dtype=np.float32)
        mixture.apply(frame, learningRate=float(rate))
    assert states == [quarry.State.ACCUMULATING] * 4 + [quarry.State.READY] * 6
    background = mixture.getBackgroundImage()
    grey = cv2.cvtColor(cv2.absdiff(frame, background), cv2.COLOR_BGR2GRAY)
    _, mask = cv2.threshold(grey, 55, 255, cv2.THRESH_BINARY)
    result = model.result()
    assert np.abs(result.background.astype(int) - background).max() <= 1  # the rate's last bit
    np.testing.assert_array_equal(result.mask, mask)
    assert np.count_nonzero(result.mask) == 200


def test_background_result_stays_as_it_was():
    model = quarry.BackgroundModel()
    model.update(noisy_scene(1), SECOND)
    result = model.result()
    kept = [part.copy() for part in result]
    model.update(random_frame(64, 48, 3), 2 * SECOND)
    for part, copy in zip(result, kept):
        np.testing.assert_array_equal(part, copy)
    model.update(random_frame(32, 24, 3), 3 * SECOND)
    assert model.result().background.shape == (24, 32, 3)
    del model
    for part, copy in zip(result, kept):
        np.testing.assert_array_equal(part, copy)


def test_background_model_refuses_a_wrong_clock():
    model = quarry.BackgroundModel()
    with pytest.raises(ValueError, match="timestamp is 0"):
        model.update(noisy_scene(1), 0)
    model.update(noisy_scene(1), 5)
    with pytest.raises(ValueError, match="timestamp is 4"):
        model.update(noisy_scene(2), 4)


def moved(frame, pixels):
    return np.ascontiguousarray(np.roll(frame, pixels, axis=1))


@pytest.mark.parametrize(
    ("options", "window", "levels", "iterations", "flags"),
    [
        ({}, 18, 5, 3, 0),
        ({"detail": 0.5, "quality": 0.3}, 17, 3, 3, 0),
        ({"detail": 1.0, "quality": 0.8}, 7, 8, 8, cv2.OPTFLOW_FARNEBACK_GAUSSIAN),
    ],
)
def test_dense_optical_flow(options, window, levels, iterations, flags):
    first = cv2.GaussianBlur(random_frame(160, 120, 4), (9, 9), 3)
    second = moved(first, 2)
    flow = quarry.DenseOpticalFlow(**options)
    assert flow.update(first) is quarry.State.ACCUMULATING
    assert not flow.result().any()
    assert flow.update(second) is quarry.State.READY
    grey = [cv2.cvtColor(frame, cv2.COLOR_RGB2GRAY) for frame in (first, second)]
    expected = cv2.calcOpticalFlowFarneback(
        *grey, None, float(np.float32(0.4)), levels, window, iterations, 3, 1.1, flags
    )
    result = flow.result()
    np.testing.assert_array_equal(result, expected)
    assert abs(np.median(result[..., 0]) - 2) < 0.5
    flow.update(first)
    np.testing.assert_array_equal(result, expected)


@pytest.mark.parametrize("mode", quarry.TrackerMode)
def test_mosse_tracker(mode):
    world = cv2.GaussianBlur(random_frame(480, 360, 5), (0, 0), 3)
    world = cv2.normalize(world, None, 0, 255, cv2.NORM_MINMAX)

    def frame(step):
        """What a camera sees that turns to the right and down: the target moves to the left and up."""
        return np.ascontiguousarray(world[100 + 2 * step : 220 + 2 * step, 100 + 3 * step : 260 + 3 * step])

    tracker = quarry.MosseTracker(mode=mode)
    assert tracker.start(frame(0), (60, 40, 40, 40)) is True
    for step in range(1, 11):
        assert tracker.update(frame(step)) is True
        assert tracker.result() == quarry.Track(quarry.Box(60 - 3 * step, 40 - 2 * step, 40, 40), True)
    assert tracker.update(np.zeros((120, 160, 3), np.uint8)) is False
    assert tracker.result() == quarry.Track(quarry.Box(30, 20, 40, 40), False)


def test_mosse_tracker_is_careful_by_default():
    frame = cv2.GaussianBlur(random_frame(160, 120, 5), (5, 5), 1)
    target = (40, 40, 30, 30)  # so much alike everywhere that its peak is low
    assert quarry.MosseTracker(mode=quarry.TrackerMode.EAGER).start(frame, target)
    assert not quarry.MosseTracker(mode=quarry.TrackerMode.CAREFUL).start(frame, target)
    assert not quarry.MosseTracker().start(frame, target)


def test_results_come_after_frames():
    for early in (quarry.BackgroundModel().result, quarry.DenseOpticalFlow().result, quarry.MosseTracker().result):
        with pytest.raises(RuntimeError):
            early()
    with pytest.raises(RuntimeError, match="start|Start"):
        quarry.MosseTracker().update(random_frame(64, 48, 7))
    tracker = quarry.MosseTracker()
    tracker.start(random_frame(64, 48, 7), (10, 10, 20, 20))
    with pytest.raises(RuntimeError, match="another tracker"):
        tracker.start(random_frame(64, 48, 7), (10, 10, 20, 20))
