"""The types of the operations' arguments and results other than arrays and numbers."""

import enum
from typing import NamedTuple

import numpy as np
import numpy.typing as npt

__all__ = [
    "BackgroundResult",
    "Box",
    "CascadeMode",
    "ClothingColorsResult",
    "Cluster",
    "ContourPosition",
    "HistogramMeasure",
    "Interpolation",
    "MarshalingError",
    "OpenCVError",
    "Outline",
    "Person",
    "RelRect",
    "Selection",
    "ShapeMeasure",
    "State",
    "Tracing",
    "Track",
    "TrackerMode",
]


class MarshalingError(RuntimeError):
    """The library and this package disagree about a record, because their versions differ."""


class OpenCVError(RuntimeError):
    """OpenCV refused the input: a rectangle outside the frame, for example."""

    def __init__(
        self, message: str, code: int = 0, function: str = "", expression: str = "", file: str = "", line: int = 0
    ) -> None:
        super().__init__(message)
        self.message = message  #: the whole text
        self.code = code  #: OpenCV's number of the error, such as -215
        self.function = function  #: the function of OpenCV that refused the input
        self.expression = expression  #: the condition that did not hold, or a text that says what is wrong
        self.file = file  #: the source file of that function
        self.line = line  #: the line in that file

    def __reduce__(self) -> tuple[type["OpenCVError"], tuple[str, int, str, str, str, int]]:
        fields = (self.message, self.code, self.function, self.expression, self.file, self.line)
        return type(self), fields


class State(enum.IntEnum):
    """How far an updater has come."""

    NO_RESULT = 0  #: nothing computed yet
    ACCUMULATING = 1  #: frames are taken in, the result is not final
    READY = 2  #: the result reflects a complete computation


class HistogramMeasure(enum.IntEnum):
    """How ColorComparison compares histograms."""

    CORRELATION = 0
    CHI_SQUARE = 1
    INTERSECTION = 2
    BHATTACHARYYA = 3
    ALTERNATIVE_CHI_SQUARE = 4
    KULLBACK_LEIBLER = 5


class Interpolation(enum.IntEnum):
    """How RectExtractor interpolates pixels."""

    NEAREST = 0
    BILINEAR = 1


class Tracing(enum.IntEnum):
    """How ObjectContour traces contours."""

    EVERY_PIXEL = 1  #: every border pixel
    RUN_ENDS = 2  #: ends of straight runs
    TEH_CHIN_L1 = 3  #: Teh-Chin chain, L1
    TEH_CHIN_K_COSINE = 4  #: Teh-Chin chain, k-cosine


class Selection(enum.IntEnum):
    """Which of several contours ObjectContour selects."""

    LARGEST_AREA = 0
    LONGEST_DIAGONAL = 1  #: of the bounding box


class ContourPosition(enum.IntEnum):
    """Where a contour lies with respect to a polygon."""

    OUTSIDE = -1
    CROSSING = 0
    INSIDE = 1  #: also if the first point lies on the border, whatever the others are


class ShapeMeasure(enum.IntEnum):
    """How ContourRate compares the Hu moments of shapes."""

    I1 = 1
    I2 = 2
    I3 = 3


class CascadeMode(enum.IntEnum):
    """How thoroughly a CascadeDetector searches."""

    CAREFUL = 0  #: six overlapping hits make a detection
    EAGER = 1  #: two overlapping hits make a detection
    BIGGEST = 2  #: three overlapping hits; with models of OpenCV 1, only the biggest object


class TrackerMode(enum.IntEnum):
    """How a MosseTracker adapts."""

    CAREFUL = 0  #: learning rate 0.2, peak-to-sidelobe threshold 5.7
    EAGER = 1  #: learning rate 0.3, peak-to-sidelobe threshold 3.0


class RelRect(NamedTuple):
    """A rectangle in fractions of a picture's width and height."""

    x: float
    y: float
    width: float
    height: float


class Box(NamedTuple):
    """A rectangle in pixels."""

    x: int
    y: int
    width: int
    height: int


class ClothingColorsResult(NamedTuple):
    """The colours of a person's clothing: rows of red, green, blue, each 0 to 1; that of more pixels comes first."""

    torso: npt.NDArray[np.float32]  #: (2, 3)
    legs: npt.NDArray[np.float32]  #: (2, 3)


class Outline(NamedTuple):
    """The outline of one object."""

    points: npt.NDArray[np.float32]  #: (N, 2): x, y in fractions of the frame's size; N is 0 if nothing was found
    area: float  #: share of the frame's area
    perimeter: float  #: arc length, divided by the frame's width


class Cluster(NamedTuple):
    """A blob: its outline and its centre of mass."""

    points: npt.NDArray[np.float32]  #: (N, 2): x, y in fractions of the frame's size
    area: float  #: share of the frame's area
    perimeter: float  #: arc length, divided by the frame's width
    center_x: float  #: in fractions of the frame's width
    center_y: float  #: in fractions of the frame's height


class Person(NamedTuple):
    """A person that a PeopleDetector found."""

    rect: RelRect  #: relative to the frame
    weight: float  #: how sure the detector is: 0 or more, larger is surer


class BackgroundResult(NamedTuple):
    """The result of a BackgroundModel after its last frame."""

    mask: npt.NDArray[np.uint8]  #: (height, width): 255 foreground, 0 background
    background: npt.NDArray[np.uint8]  #: (height, width, 3)


class Track(NamedTuple):
    """Where a target is."""

    target: Box  #: the filter's window: as large as the started rectangle, or a little larger
    found: bool  #: whether the last frame showed the target
