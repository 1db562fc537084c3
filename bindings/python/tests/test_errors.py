"""What is refused, and how; nothing ends the interpreter."""

import copy
import os
import pickle
import shutil

import numpy as np
import pytest
import quarry
from conftest import random_frame

FRAME = random_frame(64, 48, 1)
POINTS = [(10, 10), (40, 12), (25, 30), (12, 40), (42, 41)]
ONE = [(0.5, 0.5)]
TIMING = dict(frame_width=80, frame_height=60, milliseconds=40)
OPERATIONS = [
    quarry.BackgroundModel,
    lambda: quarry.CascadeDetector(model_path="/usr/share/opencv4/haarcascades/haarcascade_eye.xml"),
    quarry.ClothingColors,
    quarry.ColorComparison,
    quarry.ContourClusters,
    quarry.ContourGrid,
    quarry.ContourIntersection,
    quarry.ContourRate,
    quarry.CosineSimilarity,
    quarry.DenseOpticalFlow,
    quarry.FaceVarianceOfLaplacian,
    quarry.FastNlMeansDenoising,
    quarry.FirePixels,
    quarry.ImageSubtractor,
    quarry.MosseTracker,
    quarry.ObjectContour,
    quarry.OpticalFlowLine,
    quarry.PeopleDetector,
    quarry.RectExtractor,
    lambda: quarry.RotationTransform(width=64, height=48),
    quarry.SimilarityTransform,
    quarry.VarianceOfLaplacian,
]


def test_opencv_error_says_all():
    with pytest.raises(quarry.OpenCVError, match="Assertion failed") as caught:
        quarry.ColorComparison()(FRAME, FRAME, area=(0.5, 0.5, 1, 1))
    error = caught.value
    assert isinstance(error, RuntimeError)
    assert error.code == -215
    assert "roi.x + roi.width <= m.cols" in error.expression
    assert error.file.endswith("matrix.cpp")
    assert error.line > 0
    assert error.function
    assert error.message == str(error)
    assert error.expression in error.message
    assert type(error).__module__ == "quarry"


def test_opencv_error_can_be_pickled():
    with pytest.raises(quarry.OpenCVError) as caught:
        quarry.ObjectContour()(np.zeros((4, 4), np.uint8), (0, 0, 2, 2))
    back = pickle.loads(pickle.dumps(caught.value))
    assert vars(back) == vars(caught.value)
    assert str(back) == str(caught.value)


def test_errors_of_opencv():
    for call in (
        lambda: quarry.FaceVarianceOfLaplacian()(FRAME, center_x=5, center_y=5, half_width=-1, half_height=2),
        lambda: quarry.ClothingColors()(FRAME, np.zeros((17, 2))),
        lambda: quarry.RectExtractor()(np.zeros((1, 40000, 3), np.uint8), center_x=5, center_y=5, width=2, height=2),
        lambda: quarry.PeopleDetector()(np.zeros((300, 300, 3), np.uint8), areas=[(0.5, 0, 1, 1)]),
        lambda: quarry.MosseTracker().start(FRAME, (5, 5, 0, 0)),
    ):
        with pytest.raises(quarry.OpenCVError):
            call()


def test_cascade_detector_refuses_what_is_no_model(tmp_path):
    with pytest.raises(ValueError, match="no file can be read"):
        quarry.CascadeDetector(model_path=tmp_path / "none.xml")
    with pytest.raises(ValueError, match="empty"):
        quarry.CascadeDetector(model_path="")
    model = tmp_path / "model.xml"
    model.write_text("no model")
    with pytest.raises(quarry.OpenCVError):
        quarry.CascadeDetector(model_path=model)


def test_a_model_may_lie_at_any_path(tmp_path):
    folder = tmp_path / os.fsdecode(b"caf\xe9")
    folder.mkdir()
    model = folder / "model.xml"
    with pytest.raises(ValueError, match=f'^quarry::CascadeDetector::Options.modelPath is "{model}"; no file can'):
        quarry.CascadeDetector(model_path=model)
    model.write_text('<?xml version="1.0"?>\n<opencv_storage>\n<a></b>\n')
    with pytest.raises(quarry.OpenCVError, match=str(model)):
        quarry.CascadeDetector(model_path=model)
    shutil.copy("/usr/share/opencv4/haarcascades/haarcascade_eye.xml", model)
    for path in (model, str(model), os.fsencode(model)):
        assert quarry.CascadeDetector(model_path=path)(np.zeros((48, 64, 3), np.uint8)) == []


@pytest.mark.parametrize("count", [0, 4, 6])
def test_alignment_needs_five_points(count):
    """The library ends the process there."""
    points = np.zeros((count, 2))
    align = quarry.SimilarityTransform()
    with pytest.raises(ValueError, match=f"{count} source points and 5 destination points are given"):
        align(FRAME, points, POINTS)
    with pytest.raises(ValueError, match=f"5 source points and {count} destination points are given"):
        align(FRAME, POINTS, points)
    with pytest.raises(ValueError, match="5 of each are needed"):
        align(FRAME, points, points)


def test_contours_need_points():
    """The library ends the process where the shape change rate gets none."""
    none = np.zeros((0, 2))
    rate, place = quarry.ContourRate(), quarry.ContourIntersection()
    for call in (
        lambda: rate(none, ONE, **TIMING),
        lambda: rate(ONE, none, **TIMING),
        lambda: place(none, ONE),
        lambda: place(ONE, none),
    ):
        with pytest.raises(ValueError, match="0 points are given; at least 1 is needed"):
            call()


def test_colours_of_frames_of_odd_widths_can_be_compared():
    """The library ends the process where rows are not packed; frames that get there always are."""
    narrow, wide = random_frame(1, 7, 2), random_frame(63, 49, 3)
    assert quarry.ColorComparison()(narrow, narrow) == pytest.approx(1)
    assert quarry.ColorComparison()(FRAME[:, 1:, :], FRAME[:, 1:, :], copy=True) == pytest.approx(1)
    with pytest.raises(quarry.OpenCVError):
        quarry.ColorComparison()(wide, narrow)


@pytest.mark.parametrize(
    "call",
    [
        lambda: quarry.BackgroundModel(sensitivity=1.5),
        lambda: quarry.BackgroundModel(sensitivity=float("nan")),
        lambda: quarry.ClothingColors()(FRAME, np.zeros((16, 2))),
        lambda: quarry.ClothingColors()(FRAME, np.zeros((17, 3))),
        lambda: quarry.ContourGrid()(FRAME, width=0, height=4),
        lambda: quarry.ContourGrid()(FRAME, width=50000, height=50000),
        lambda: quarry.ContourIntersection()([0, 1, 2], ONE),
        lambda: quarry.ContourRate()(ONE, ONE, frame_width=40000, frame_height=1, milliseconds=1),
        lambda: quarry.CosineSimilarity()(np.zeros(511), np.zeros(512)),
        lambda: quarry.CosineSimilarity()(np.zeros(512), np.zeros((1, 512))),
        lambda: quarry.DenseOpticalFlow(detail=2),
        lambda: quarry.FaceVarianceOfLaplacian()(FRAME, center_x=40000, center_y=1, half_width=1, half_height=1),
        lambda: quarry.ImageSubtractor()(FRAME, FRAME[:40]),
        lambda: quarry.MosseTracker().start(FRAME, (0, 0, 40000, 2)),
        lambda: quarry.OpticalFlowLine()(np.zeros((4, 4, 2), "f4"), start=(0, 0), end=(1, 1), values_count=-1),
        lambda: quarry.CascadeDetector(model_path="", max_side=float("nan")),
        lambda: quarry.PeopleDetector(sensitivity=-0.1),
        lambda: quarry.PeopleDetector(max_height=float("nan")),
        lambda: quarry.RectExtractor()(FRAME, center_x=1, center_y=1, width=-1, height=1),
        lambda: quarry.RotationTransform(width=0, height=4),
        lambda: quarry.RotationTransform(width=4, height=4)(FRAME, 1),
        lambda: quarry.SimilarityTransform(width=4, height=-4),
    ],
)
def test_values_that_do_not_fit_are_value_errors(call):
    with pytest.raises(ValueError, match="quarry|shape|Data"):
        call()


@pytest.mark.parametrize(
    "call",
    [
        lambda: quarry.VarianceOfLaplacian()(FRAME.tolist()),
        lambda: quarry.VarianceOfLaplacian()(None),
        lambda: quarry.VarianceOfLaplacian()(bytes(9)),
        lambda: quarry.VarianceOfLaplacian()(FRAME, True),
        lambda: quarry.VarianceOfLaplacian()(),
        lambda: quarry.VarianceOfLaplacian(3),
        lambda: quarry.BackgroundModel(0.5),
        lambda: quarry.BackgroundModel(sensitivity="high"),
        lambda: quarry.BackgroundModel().update(FRAME, "now"),
        lambda: quarry.BackgroundModel().update(FRAME, -1),
        lambda: quarry.ColorComparison(measure=3),
        lambda: quarry.ColorComparison(measure=quarry.ShapeMeasure.I1),
        lambda: quarry.ColorComparison()(FRAME, FRAME, area=(0, 0, 1)),
        lambda: quarry.CascadeDetector(),
        lambda: quarry.CascadeDetector(model_path=3),
        lambda: quarry.MosseTracker().start(FRAME, (1.5, 2, 3, 4)),
        lambda: quarry.PeopleDetector()(FRAME, areas=[3]),
    ],
)
def test_wrong_types_are_type_errors(call):
    with pytest.raises(TypeError):
        call()


def test_what_is_no_array_of_numbers_is_a_value_error():
    for given in ("zone", [[0, 1], [2]], [[0, "x"]], [[0, {}]], object()):
        with pytest.raises(ValueError, match="^polygon: .+; numbers are needed$"):
            quarry.ContourIntersection()(given, ONE)


@pytest.mark.parametrize("error", [KeyboardInterrupt, MemoryError, OSError])
def test_what_else_goes_wrong_while_floats_are_made_is_passed_on(error):
    class Endless:
        def __array__(self, dtype=None):
            raise error

    with pytest.raises(error):
        quarry.CosineSimilarity()(Endless(), Endless())


def test_memory_that_is_not_there_is_a_memory_error():
    resource = pytest.importorskip("resource")
    before = resource.getrlimit(resource.RLIMIT_AS)
    field = np.zeros((4, 4, 2), np.float32)
    align = quarry.SimilarityTransform(width=30000, height=20000)
    resource.setrlimit(resource.RLIMIT_AS, (1 << 30, before[1]))
    try:
        with pytest.raises(MemoryError):
            quarry.OpticalFlowLine()(field, start=(0, 0), end=(1, 1), values_count=2**31 - 1)
        with pytest.raises(MemoryError):
            align(FRAME, POINTS, POINTS)
    finally:
        resource.setrlimit(resource.RLIMIT_AS, before)
    assert len(quarry.OpticalFlowLine()(field, start=(0, 0), end=(1, 1), values_count=3)) == 3


@pytest.mark.parametrize("create", OPERATIONS)
def test_operations_are_neither_pickled_nor_copied(create):
    for take in (pickle.dumps, copy.copy, copy.deepcopy):
        with pytest.raises(TypeError, match="quarry.[A-Z][A-Za-z]+ cannot be pickled or copied"):
            take(create())


@pytest.mark.parametrize("create", OPERATIONS)
def test_objects_that_were_not_initialised_are_refused(create):
    kind = type(create())
    raw = kind.__new__(kind)
    with pytest.raises(TypeError):
        raw.result() if hasattr(kind, "result") else raw(FRAME)

    class Forgetful(kind):
        def __init__(self):
            pass

    with pytest.raises(TypeError, match="__init__"):
        Forgetful()


def test_initialising_again_changes_nothing():
    model = quarry.BackgroundModel()
    model.update(FRAME, 1)
    model.__init__()
    np.testing.assert_array_equal(model.result().background, FRAME)


def test_a_failed_update_leaves_no_result_behind():
    model = quarry.BackgroundModel()
    model.update(FRAME, 1)
    with pytest.raises(ValueError):
        model.update(FRAME[:0], 2)
    np.testing.assert_array_equal(model.result().background, FRAME)


def test_named_tuples_and_enumerations_can_be_pickled():
    for value in (quarry.Box(1, 2, 3, 4), quarry.State.READY, quarry.Track(quarry.Box(1, 2, 3, 4), True)):
        assert pickle.loads(pickle.dumps(value)) == value
