#include "Catalogue/Describing.h"
#include "Catalogue/Families.h"

namespace quarry::command {
namespace {

Operation ColourComparison() {
    return {"colour-comparison",
            "How alike the colours of the same region are in two frames: hue and saturation histograms",
            Kind::Processor,
            "CreateCVColorComparator",
            "colours",
            "",
            QUARRY_RECORD(ColorComparingOptions, "How histograms are compared.",
                          QUARRY_FIELD(ColorComparingOptions, Header, kHeader),
                          QUARRY_FIELD(ColorComparingOptions, Reserved, kNotRead),
                          QUARRY_FIELD(ColorComparingOptions, CompareMethod,
                                       "0 correlation, 1 chi-square, 2 intersection, 3 Bhattacharyya, 4 alternative "
                                       "chi-square, 5 Kullback-Leibler")),
            QUARRY_RECORD(ColorComparingInputData, "Two frames and the region to compare.",
                          QUARRY_FIELD(ColorComparingInputData, Header, kHeader),
                          QUARRY_FIELD(ColorComparingInputData, FirstImage, kBgr),
                          QUARRY_FIELD(ColorComparingInputData, SecondImage, kBgr),
                          QUARRY_FIELD(ColorComparingInputData, Area,
                                       "relative to the first frame; the same pixels in both, inside both")),
            QUARRY_RECORD(ColorComparingOutputData, "The similarity; holds no buffer.",
                          QUARRY_FIELD(ColorComparingOutputData, Status, kStatus),
                          QUARRY_FIELD(ColorComparingOutputData, Similarity, "in the measure of CompareMethod")),
            {kWrongFrame,
             {"std::invalid_argument", "a frame's row has more than 2147483647 bytes"},
             {"cv::Exception",
              "data is null while a frame is not empty, the region is empty or does not lie inside both frames, or "
              "CompareMethod is unknown"}}};
}

Operation FirePixels() {
    return {"fire-pixels",
            "The flame region of a frame: the largest region of flame colours in CIE L*a*b*",
            Kind::Processor,
            "CreateCVPixelwiseFireProcessor",
            "fire",
            "",
            PlainOptions(),
            QUARRY_RECORD(FireInputData, "A frame to search.", QUARRY_FIELD(FireInputData, Header, kHeader),
                          QUARRY_FIELD(FireInputData, Frame, kBgr)),
            QUARRY_RECORD(FireOutputData, "The fire; give it back with DisposeResult.",
                          QUARRY_FIELD(FireOutputData, Status, kStatus),
                          QUARRY_FIELD(FireOutputData, FireMask, "of the frame's size: 255 flame, 0 none")),
            {kWrongFrame,
             {"std::invalid_argument", "the frame has more than 2147483647 pixels"},
             {"cv::Exception", "the frame is empty, data is null, or a side of the frame is negative"}}};
}

}  // namespace

std::vector<Operation> ColourOperations() {
    return {ColourComparison(), FirePixels()};
}

}  // namespace quarry::command
