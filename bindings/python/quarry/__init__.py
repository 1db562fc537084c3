"""Computer-vision building blocks for video analysis: the operations of the shared library, one class each.

Frames and masks are C-contiguous numpy arrays of uint8, (height, width, 3) and (height, width). They are read where they
are, without a copy, and must not change during the call. Results of processors are arrays over the library's own
buffers, which are given back with the last reference; results of updaters are copies.

Calls release the interpreter's lock: threads with an object each run side by side, threads that share one take turns.
Sub-interpreters are refused.
"""

from quarry._quarry import (
    BackgroundModel,
    CascadeDetector,
    ClothingColors,
    ColorComparison,
    ContourClusters,
    ContourGrid,
    ContourIntersection,
    ContourRate,
    CosineSimilarity,
    DenseOpticalFlow,
    FaceVarianceOfLaplacian,
    FastNlMeansDenoising,
    FirePixels,
    ImageSubtractor,
    MosseTracker,
    ObjectContour,
    OpticalFlowLine,
    PeopleDetector,
    RectExtractor,
    RotationTransform,
    SimilarityTransform,
    VarianceOfLaplacian,
    __version__,
    set_opencv_threads,
)
from quarry._types import (
    BackgroundResult,
    Box,
    CascadeMode,
    ClothingColorsResult,
    Cluster,
    ContourPosition,
    HistogramMeasure,
    Interpolation,
    MarshalingError,
    OpenCVError,
    Outline,
    Person,
    RelRect,
    Selection,
    ShapeMeasure,
    State,
    Track,
    TrackerMode,
    Tracing,
)

__all__ = [
    "BackgroundModel",
    "BackgroundResult",
    "Box",
    "CascadeDetector",
    "CascadeMode",
    "ClothingColors",
    "ClothingColorsResult",
    "Cluster",
    "ColorComparison",
    "ContourClusters",
    "ContourGrid",
    "ContourIntersection",
    "ContourPosition",
    "ContourRate",
    "CosineSimilarity",
    "DenseOpticalFlow",
    "FaceVarianceOfLaplacian",
    "FastNlMeansDenoising",
    "FirePixels",
    "HistogramMeasure",
    "ImageSubtractor",
    "Interpolation",
    "MarshalingError",
    "MosseTracker",
    "ObjectContour",
    "OpenCVError",
    "OpticalFlowLine",
    "Outline",
    "PeopleDetector",
    "Person",
    "RectExtractor",
    "RelRect",
    "RotationTransform",
    "Selection",
    "ShapeMeasure",
    "SimilarityTransform",
    "State",
    "Track",
    "TrackerMode",
    "Tracing",
    "VarianceOfLaplacian",
    "__version__",
    "set_opencv_threads",
]

# They are quarry.OpenCVError and so on, in messages too, wherever they are defined.
for _name in __all__:
    if isinstance(globals()[_name], type):
        globals()[_name].__module__ = __name__
del _name
