#include "Catalogue/Describing.h"
#include "Catalogue/Families.h"

namespace quarry::command {
namespace {

Record DetectorOptions() {
    return QUARRY_RECORD(
        ClassificationOptions, "What a detector looks for.", QUARRY_FIELD(ClassificationOptions, Header, kHeader),
        QUARRY_FIELD(ClassificationOptions, Sensitivity,
                     "people only: 0..1, in steps at 0.25, 0.5 and 0.75; higher searches finer and slower"),
        QUARRY_FIELD(ClassificationOptions, MinSize,
                     "cascade: smallest side in pixels, negative none; people: share of the frame's height"),
        QUARRY_FIELD(ClassificationOptions, MaxSize,
                     "cascade: largest side in pixels, negative none; people: share of the frame's height"),
        QUARRY_FIELD(ClassificationOptions, Mode,
                     "cascade only: 0 needs 6 overlapping hits, 1 two, 2 three (and with models of OpenCV 1 the "
                     "biggest object alone)"),
        QUARRY_FIELD(ClassificationOptions, CascadePath, "cascade only: model file; read when it is created"));
}

Record DetectorData() {
    return QUARRY_RECORD(
        ClassificationData, "A frame and where to look in it.", QUARRY_FIELD(ClassificationData, Header, kHeader),
        QUARRY_FIELD(ClassificationData, Frame, kBgr),
        QUARRY_FIELD(ClassificationData, WholeFrame, "people only: 1 searches the whole frame, whatever the areas"),
        QUARRY_FIELD(ClassificationData, Reserved, kNotRead),
        QUARRY_FIELD(ClassificationData, AreasCount, "people only: number of areas, 0 or more"),
        QUARRY_FIELD(ClassificationData, Areas,
                     "where to search, inside the frame; the cascade reads the first alone"));
}

Record Detections() {
    return QUARRY_RECORD(
        ClassificationResult, "The detections; give them back with DisposeResult.",
        QUARRY_FIELD(ClassificationResult, Status, kStatus),
        QUARRY_FIELD(ClassificationResult, Count, "number of detections"),
        QUARRY_FIELD(
            ClassificationResult, Responses,
            "Count detections, null when there are none; people: relative to the frame, cascade: to the area"));
}

Operation CascadeDetector() {
    return {"cascade-detector",
            "Finds objects of one kind in a region of a frame with a cascade of boosted features",
            Kind::Processor,
            "CreateCVCascadeClassifier",
            "detect",
            "Viola and Jones, CVPR 2001",
            DetectorOptions(),
            DetectorData(),
            Detections(),
            {kWrongFrame,
             {"std::invalid_argument", "Mode is above 2 or CascadePath is null (when created), or Areas is null"},
             {"cv::Exception",
              "CascadePath is empty or names a file that cannot be parsed (when created); data is null while the frame "
              "is not empty, the area does not lie inside the frame, or there is no such file (when processing)"}}};
}

Operation PeopleDetector() {
    return {"people-detector",
            "Finds standing people with histograms of oriented gradients and a linear support vector machine",
            Kind::Processor,
            "CreateCVHogSvmHumanClassifier",
            "people",
            "Dalal and Triggs, CVPR 2005",
            DetectorOptions(),
            DetectorData(),
            Detections(),
            {kWrongFrame,
             {"std::invalid_argument",
              "AreasCount is negative, or Areas is null where some are counted, unless WholeFrame is 1"},
             {"cv::Exception",
              "data is null while the frame is not empty, a side of the frame is negative, or an area that is searched "
              "does not lie inside the frame"}}};
}

Operation ClothingColours() {
    return {
        "clothing-colours",
        "The two dominant colours of a person's upper body and the two of the legs, by k-means",
        Kind::Processor,
        "CreateCVKMeanColorExtractor",
        "clothing",
        "Arthur and Vassilvitskii, 2007 (first centres)",
        QUARRY_RECORD(KMeanOptions, "Holds nothing that is read.", QUARRY_FIELD(KMeanOptions, Header, kHeader),
                      QUARRY_FIELD(KMeanOptions, Reserved, kNotRead)),
        QUARRY_RECORD(
            KMeanData, "A frame and the body in it.", QUARRY_FIELD(KMeanData, Header, kHeader),
            QUARRY_FIELD(KMeanData, Image, "8-bit, 3 channels, rows packed; stride and timestamp are not read"),
            QUARRY_FIELD(KMeanData, Keypoints, "17 points in the COCO body order, relative; Count is not read")),
        QUARRY_RECORD(KMeanResult, "The colours; give them back with DisposeResult.",
                      QUARRY_FIELD(KMeanResult, Status, kStatus),
                      QUARRY_FIELD(KMeanResult, Count, "number of colours, always 4"),
                      QUARRY_FIELD(KMeanResult, Colors,
                                   "Count x 3 floats, 0..1, channels in reverse order: torso first and second, legs "
                                   "first and second")),
        {kWrongFrame,
         {"std::invalid_argument", "Keypoints.Points is null"},
         {"cv::Exception", "data is null while the frame is not empty, or torso or legs cover fewer than two pixels"}}};
}

}  // namespace

std::vector<Operation> PersonOperations() {
    return {CascadeDetector(), PeopleDetector(), ClothingColours()};
}

}  // namespace quarry::command
