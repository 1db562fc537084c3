"""How arrays come in and go out: without copies, and back to the library in the end."""

import gc
import tracemalloc

import numpy as np
import pytest
import quarry
from conftest import blobs, random_frame

PAGE = 4096


def resident():
    """Bytes of this process that are in memory."""
    with open("/proc/self/statm") as figures:
        return int(figures.read().split()[1]) * PAGE


def allocated_by(call):
    """The most bytes that Python and numpy held more during a call than before it."""
    tracemalloc.start()
    try:
        before, _ = tracemalloc.get_traced_memory()
        tracemalloc.reset_peak()
        call()
        _, peak = tracemalloc.get_traced_memory()
        return peak - before
    finally:
        tracemalloc.stop()


def test_frames_are_read_where_they_are():
    frame, sharpness = random_frame(640, 480, 1), quarry.VarianceOfLaplacian()
    assert allocated_by(lambda: sharpness(frame)) < 10_000
    assert allocated_by(lambda: sharpness(frame, copy=True)) < 10_000, "it was packed already"


def test_only_what_is_not_packed_is_copied_and_only_when_asked():
    frame, sharpness = random_frame(640, 480, 1), quarry.VarianceOfLaplacian()
    part = frame[:, 100:500]
    with pytest.raises(ValueError, match=r"strides \(1920, 3, 1\) is given.*C-contiguous.*copy=True"):
        sharpness(part)
    assert allocated_by(lambda: sharpness(part, copy=True)) >= part.nbytes
    assert sharpness(part, copy=True) == sharpness(part.copy())
    assert sharpness(frame[::-1, :, ::-1], copy=True) == sharpness(frame[::-1, :, ::-1].copy())


def test_every_operation_that_reads_pixels_can_copy_them():
    frame = random_frame(128, 96, 2)[:, 32:96]
    packed = frame.copy()
    field = np.random.default_rng(3).normal(size=(96, 128, 2)).astype(np.float32)[:, ::2]
    line = dict(start=(0, 0.5), end=(1, 0.5), values_count=64)
    rect = dict(center_x=30, center_y=20, width=20, height=10)
    face = dict(center_x=30, center_y=20, half_width=20, half_height=10)
    points = [(10, 10), (40, 12), (25, 30), (12, 50), (42, 52)]
    body = np.random.default_rng(4).uniform(0.1, 0.9, (17, 2))
    calls = {
        "FaceVarianceOfLaplacian": lambda pixels, copy: quarry.FaceVarianceOfLaplacian()(pixels, **face, copy=copy),
        "ColorComparison": lambda pixels, copy: quarry.ColorComparison()(pixels, pixels // 2, copy=copy),
        "ClothingColors": lambda pixels, copy: quarry.ClothingColors()(pixels, body, copy=copy).torso.shape,
        "ImageSubtractor": lambda pixels, copy: quarry.ImageSubtractor()(pixels, packed[::-1].copy(), copy=copy),
        "FastNlMeansDenoising": lambda pixels, copy: quarry.FastNlMeansDenoising()(pixels[:32], copy=copy),
        "FirePixels": lambda pixels, copy: quarry.FirePixels()(pixels, copy=copy),
        "RectExtractor": lambda pixels, copy: quarry.RectExtractor()(pixels, **rect, copy=copy),
        "SimilarityTransform": lambda pixels, copy: quarry.SimilarityTransform()(pixels, points, points, copy=copy),
        "RotationTransform": lambda pixels, copy: quarry.RotationTransform(width=64, height=96)(pixels, 20, copy=copy),
        "ContourGrid": lambda pixels, copy: quarry.ContourGrid()(pixels, width=8, height=6, copy=copy),
        "ContourClusters": lambda pixels, copy: quarry.ContourClusters()(pixels, copy=copy)[0].points,
        "PeopleDetector": lambda pixels, copy: quarry.PeopleDetector()(pixels, copy=copy),
        "BackgroundModel": lambda pixels, copy: quarry.BackgroundModel().update(pixels, 1, copy=copy),
        "DenseOpticalFlow": lambda pixels, copy: quarry.DenseOpticalFlow().update(pixels, copy=copy),
        "MosseTracker": lambda pixels, copy: quarry.MosseTracker().start(pixels, (9, 9, 30, 30), copy=copy),
    }
    for name, call in calls.items():
        np.testing.assert_array_equal(call(frame, True), call(packed, False), err_msg=name)
        with pytest.raises(ValueError, match="C-contiguous"):
            call(frame, False)
            pytest.fail(name)
    mask, contour = frame[..., 0], quarry.ObjectContour()
    np.testing.assert_array_equal(
        contour(mask, (0, 0, 1, 1), copy=True).points, contour(mask.copy(), (0, 0, 1, 1)).points
    )
    across = quarry.OpticalFlowLine()
    np.testing.assert_array_equal(across(field, **line, copy=True), across(field.copy(), **line))
    for call in (lambda: contour(mask, (0, 0, 1, 1)), lambda: across(field, **line)):
        with pytest.raises(ValueError, match="C-contiguous"):
            call()


def test_fields_must_be_aligned():
    flow = np.zeros(4 * 5 * 2 * 4 + 1, np.uint8)[1:].view(np.float32).reshape(4, 5, 2)
    with pytest.raises(ValueError, match="aligned"):
        quarry.OpticalFlowLine()(flow, start=(0, 0), end=(1, 1), values_count=3)


class OwnCopy(np.ndarray):
    """An array whose copies are others than numpy's."""

    def copy(self, order="C"):
        return np.zeros((9, 9, 0), np.uint8)


def test_copies_are_numpys_own():
    frame = random_frame(64, 48, 1)[:, ::2]
    difference = quarry.ImageSubtractor()(frame.view(OwnCopy), frame, copy=True)
    assert difference.shape == frame.shape
    assert not difference.any()


def test_floats_that_are_not_aligned_are_copied():
    values = np.zeros(512 * 4 + 1, np.uint8)[1:].view(np.float32)
    values[:] = np.arange(512)
    packed, similarity = values.copy(), quarry.CosineSimilarity()
    assert similarity(values, packed) == similarity(packed, packed)
    assert allocated_by(lambda: similarity(packed, packed)) < values.nbytes <= allocated_by(
        lambda: similarity(values, packed)
    )


def test_read_only_arrays_are_fine():
    frame = random_frame(64, 48, 5)
    frame.flags.writeable = False
    assert quarry.VarianceOfLaplacian()(frame) == quarry.VarianceOfLaplacian()(frame.copy())


@pytest.mark.parametrize(
    ("frame", "message"),
    [
        (np.zeros((48, 64, 3), np.float32), "frame: an array of float32 is given; uint8 is needed"),
        (np.zeros((48, 64, 3), np.int8), "frame: an array of int8 is given; uint8 is needed"),
        (np.zeros((48, 64, 3), bool), "frame: an array of bool is given; uint8 is needed"),
        (np.zeros((48, 64), np.uint8), r"frame: the shape is \(48, 64\); \(height, width, 3\) is needed"),
        (np.zeros((48, 64, 4), np.uint8), r"frame: the shape is \(48, 64, 4\); \(height, width, 3\) is needed"),
        (np.zeros((1, 48, 64, 3), np.uint8), r"frame: the shape is \(1, 48, 64, 3\); \(height, width, 3\) is needed"),
        (np.zeros((0, 64, 3), np.uint8), r"frame: the shape is \(0, 64, 3\); each side must be 1 or more"),
        (np.zeros((48, 0, 3), np.uint8), r"frame: the shape is \(48, 0, 3\); each side must be 1 or more"),
        (np.zeros((2**31, 0, 3), np.uint8), "at most 2147483647 is allowed for a side"),
    ],
)
def test_frames_of_another_kind_are_refused(frame, message):
    with pytest.raises(ValueError, match=message):
        quarry.VarianceOfLaplacian()(frame)


def test_masks_and_fields_of_another_kind_are_refused():
    with pytest.raises(ValueError, match=r"mask: the shape is \(4, 5, 3\); \(height, width\) is needed"):
        quarry.ObjectContour()(np.zeros((4, 5, 3), np.uint8), (0, 0, 1, 1))
    with pytest.raises(ValueError, match="mask: an array of bool is given"):
        quarry.ObjectContour()(np.zeros((4, 5), bool), (0, 0, 1, 1))
    for wrong in (np.zeros((4, 5, 2)), np.zeros((4, 5, 2), ">f4"), np.zeros((4, 5, 3), np.float32)):
        with pytest.raises(ValueError, match="field: .*needed"):
            quarry.OpticalFlowLine()(wrong, start=(0, 0), end=(1, 1), values_count=3)


def test_pictures_lie_in_the_library_until_their_last_reference_dies():
    frame = np.zeros((3000, 4000, 3), np.uint8)  # so large that the allocator returns it to the system at once
    subtract = quarry.ImageSubtractor()
    before = resident()
    assert allocated_by(lambda: subtract(frame, frame)) < 10_000, "it is no array of numpy's own"
    difference = subtract(frame, frame)
    assert not difference.flags.owndata
    part = difference[10:20]
    difference = subtract = None
    gc.collect()
    assert resident() - before > 0.9 * frame.nbytes
    assert not part.any()
    part[:] = 7  # it is the host's as any other array
    del part
    gc.collect()
    assert resident() - before < 0.1 * frame.nbytes


def results_of_all_kinds():
    body = np.random.default_rng(4).uniform(0.1, 0.9, (17, 2))
    mask = np.zeros((300, 300), np.uint8)
    mask[::2, 10:290] = 255
    mask[:, 10] = 255  # a comb: its contour has many points
    comb = np.dstack([mask] * 3)
    clothing, contour, grid = quarry.ClothingColors(), quarry.ObjectContour(), quarry.ContourGrid()
    clusters, fire, line = quarry.ContourClusters(), quarry.FirePixels(), quarry.OpticalFlowLine()
    field = np.zeros((4, 5, 2), np.float32)
    model, flow = quarry.BackgroundModel(), quarry.DenseOpticalFlow()
    model.update(comb, 1)
    flow.update(comb)
    return {
        "clothing": (lambda: clothing(random_frame(50, 100, 6), body), 12 * 4),
        "contour": (lambda: contour(mask, (0, 0, 1, 1)), 100_000),
        "grid": (lambda: grid(blobs(), width=300, height=300), 90_000),
        "clusters": (lambda: clusters(comb), 100_000),
        "fire": (lambda: fire(comb), 90_000),
        "line": (lambda: line(field, start=(0, 0), end=(1, 1), values_count=25_000), 100_000),
        "background": (model.result, 360_000),
        "flow": (flow.result, 720_000),
    }


@pytest.mark.parametrize("kind", ["contour", "grid", "clusters", "fire", "line", "background", "flow"])
def test_results_of_all_kinds_are_given_back(kind):
    call, size = results_of_all_kinds()[kind]
    for _ in range(20):
        call()
    before = resident()
    for _ in range(300):
        call()
    assert resident() - before < 0.3 * 300 * size


def test_what_is_shown_outlives_the_operation_and_the_other_parts_of_the_result():
    frame = blobs()
    points = [cluster.points for cluster in quarry.ContourClusters()(frame)]
    expected = [part.copy() for part in points]
    for _ in range(100):
        quarry.ContourClusters()(frame)
    last = points[1]
    del points
    gc.collect()
    np.testing.assert_array_equal(last, expected[1])
