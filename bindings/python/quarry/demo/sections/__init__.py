"""The sections of the page, an operation each.

A section is in the module that has the operation's name: `section(footage)` runs the operation and gives what it shows.
"""

import importlib

import quarry
from quarry.demo.footage import Footage
from quarry.demo.page import Section, run, snake_case

#: In the order of the page.
OPERATIONS: tuple[type, ...] = (
    quarry.BackgroundModel,
    quarry.MosseTracker,
    quarry.DenseOpticalFlow,
    quarry.OpticalFlowLine,
    quarry.ImageSubtractor,
    quarry.ObjectContour,
    quarry.ContourGrid,
    quarry.ContourClusters,
    quarry.ContourIntersection,
    quarry.ContourRate,
    quarry.VarianceOfLaplacian,
    quarry.FaceVarianceOfLaplacian,
    quarry.FastNlMeansDenoising,
    quarry.CosineSimilarity,
    quarry.RectExtractor,
    quarry.ClothingColors,
    quarry.ColorComparison,
    quarry.SimilarityTransform,
    quarry.RotationTransform,
    quarry.PeopleDetector,
    quarry.CascadeDetector,
    quarry.FirePixels,
)


def section_of(operation: type, footage: Footage) -> Section:
    """Runs an operation."""
    return run(operation, importlib.import_module(f"{__name__}.{snake_case(operation.__name__)}"), footage)
