"""A program that uses all of the package, with the type of every result written down: for mypy, and to be run."""

import pathlib

import numpy as np
import quarry
from numpy.typing import NDArray

Bytes = NDArray[np.uint8]
Floats = NDArray[np.float32]

MODEL = pathlib.Path("/usr/share/opencv4/haarcascades/haarcascade_eye.xml")


def measure(frame: Bytes, body: Floats) -> None:
    sharpness: float = quarry.VarianceOfLaplacian()(frame)
    face: float = quarry.FaceVarianceOfLaplacian()(
        frame, center_x=30, center_y=20, half_width=9, half_height=12, copy=True
    )
    similarity: float = quarry.CosineSimilarity()(np.ones(512, np.float32), [1.0] * 512)
    compare = quarry.ColorComparison(measure=quarry.HistogramMeasure.BHATTACHARYYA)
    likeness: float = compare(frame, frame, area=(0, 0, 0.5, 0.5), copy=False)
    field = np.zeros((48, 64, 2), np.float32)
    values: Floats = quarry.OpticalFlowLine()(field, start=(0, 0.5), end=(1, 0.5), values_count=8, copy=True)
    colors: quarry.ClothingColorsResult = quarry.ClothingColors()(frame, body, copy=True)
    torso: Floats = colors.torso
    legs: Floats = colors.legs
    print(sharpness + face + similarity + likeness, values.sum(), torso.shape, legs.shape)


def transform(frame: Bytes) -> None:
    points = [(10, 10), (40, 12), (25, 30), (12, 40), (42, 41)]
    pictures: list[Bytes] = [
        quarry.ImageSubtractor()(frame, frame, copy=True),
        quarry.FastNlMeansDenoising()(frame, copy=True),
        quarry.FirePixels()(frame, copy=True),
        quarry.RectExtractor(interpolation=quarry.Interpolation.NEAREST)(
            frame, center_x=9, center_y=9, width=5, height=5, degrees=3.5, copy=True
        ),
        quarry.SimilarityTransform(width=20, height=10)(frame, points, np.array(points), copy=True),
        quarry.RotationTransform(width=64, height=48)(frame, 20, 0.5, copy=True),
    ]
    print(*(picture.shape for picture in pictures))


def find(frame: Bytes) -> None:
    contour = quarry.ObjectContour(
        tracing=quarry.Tracing.EVERY_PIXEL, selection=quarry.Selection.LONGEST_DIAGONAL
    )
    outline: quarry.Outline = contour(np.ascontiguousarray(frame[..., 0]), quarry.RelRect(0, 0, 1, 1), copy=True)
    points: Floats = outline.points
    total: float = outline.area + outline.perimeter
    grid: Bytes = quarry.ContourGrid(cell_fill_rate=0.4, min_contour_area_rate=0.001)(
        frame, width=8, height=6, copy=True
    )
    clusters: list[quarry.Cluster] = quarry.ContourClusters(outline_precision=0.4, min_contour_area_rate=0.001)(
        frame, copy=True
    )
    for cluster in clusters:
        total += cluster.area + cluster.perimeter + cluster.center_x + cluster.center_y + len(cluster.points)
    position: quarry.ContourPosition = quarry.ContourIntersection()(points, [(0.5, 0.5)])
    rate: float = quarry.ContourRate(measure=quarry.ShapeMeasure.I2)(
        points, points, frame_width=64, frame_height=48, milliseconds=40, default_rate=1
    )
    cascade = quarry.CascadeDetector(model_path=MODEL, min_side=20, max_side=40, mode=quarry.CascadeMode.EAGER)
    eyes: list[quarry.RelRect] = cascade(frame, area=(0, 0, 1, 1), copy=True)
    detector = quarry.PeopleDetector(sensitivity=0.2, min_height=0.1, max_height=0.9)
    people: list[quarry.Person] = detector(frame, areas=[(0, 0, 1, 1)], copy=True)
    for person in people:
        rect: quarry.RelRect = person.rect
        total += rect.x + rect.y + rect.width + rect.height + person.weight
    print(total, grid.sum(), position.name, rate, len(eyes))


def follow(frames: list[Bytes]) -> None:
    model = quarry.BackgroundModel(sensitivity=0.4, history_length=9, adaptation_seconds=1, learning_speedup=2)
    flow = quarry.DenseOpticalFlow(detail=0.5, quality=0.5)
    tracker = quarry.MosseTracker(mode=quarry.TrackerMode.EAGER)
    found: bool = tracker.start(frames[0], quarry.Box(9, 9, 20, 20), copy=True)
    for number, frame in enumerate(frames):
        learnt: quarry.State = model.update(frame, 1 + number, copy=True)
        state: quarry.State = flow.update(frame, copy=True)
        found = tracker.update(frame, copy=True) or found
    result: quarry.BackgroundResult = model.result()
    pictures: tuple[Bytes, Bytes] = (result.mask, result.background)
    motion: Floats = flow.result()
    track: quarry.Track = tracker.result()
    box: quarry.Box = track.target
    seen: bool = track.found
    print(learnt is quarry.State.READY, state.name, found, pictures[0].shape, motion.shape, box.x + box.width, seen)


def fail(frame: Bytes) -> None:
    try:
        quarry.ColorComparison()(frame, frame, area=(0.5, 0.5, 1, 1))
    except quarry.MarshalingError as refused:
        print(refused)
    except quarry.OpenCVError as refused:
        where: tuple[str, int, str] = (refused.file, refused.line, refused.function)
        what: tuple[int, str, str] = (refused.code, refused.expression, refused.message)
        print(*where, *what)


def main() -> None:
    version: str = quarry.__version__
    print(version)
    quarry.set_opencv_threads(1)
    frame: Bytes = np.random.default_rng(1).integers(0, 256, (48, 64, 3), dtype=np.uint8)
    measure(frame, np.random.default_rng(2).uniform(0.1, 0.9, (17, 2)).astype(np.float32))
    transform(frame)
    find(frame)
    follow([frame, frame])
    fail(frame)


if __name__ == "__main__":
    main()
