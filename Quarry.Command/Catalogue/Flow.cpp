#include "Catalogue/Describing.h"
#include "Catalogue/Families.h"

namespace quarry::command {
namespace {

Operation DenseOpticalFlow() {
    return {"dense-optical-flow",
            "How far every pixel moved from the previous frame to the current one",
            Kind::Updater,
            "CreateCVDenseOpticalFlowCalculator",
            "flow",
            "Farneback, SCIA 2003",
            QUARRY_RECORD(
                OFCOptions, "How fine the flow is. A value outside 0..1, or not a number, leaves the default.",
                QUARRY_FIELD(OFCOptions, Header, kHeader),
                QUARRY_FIELD(OFCOptions, Detail, "0..1: side of the averaging window, 27 to 7 pixels; 18 by default"),
                QUARRY_FIELD(OFCOptions, Reserved, kNotRead),
                QUARRY_FIELD(OFCOptions, Quality,
                             "0..1: pyramid levels and iterations, 0 to 10 each (1 iteration at exactly 0), "
                             "Gaussian window above 0.7; 5 and 3 by default")),
            QUARRY_RECORD(
                OFCData,
                "The next frame; one of another size, null or not, begins anew, one with null data gives no result.",
                QUARRY_FIELD(OFCData, Header, kHeader), QUARRY_FIELD(OFCData, Image, kRgb)),
            QUARRY_RECORD(OFCResult, "The flow. The buffer stays the updater's, valid until the next Update.",
                          QUARRY_FIELD(OFCResult, Status, kStatus),
                          QUARRY_FIELD(OFCResult, FlowMatrix,
                                       "how far each pixel of the previous frame moved, right and down, pixels")),
            {kWrongFrame,
             {"cv::Exception", "data is not null but the frame is empty"},
             {"std::invalid_argument", "the frame has more than 2147483647 pixels"},
             kNoResultYet}};
}

Operation OpticalFlowLine() {
    return {"optical-flow-line",
            "Motion across a line of a motion field: how far its pixels lie from it once they have moved",
            Kind::Processor,
            "CreateCVOpticalFlowLineProcessor",
            "flow",
            "",
            QUARRY_RECORD(OFLineOptions, "Holds nothing that is read.", QUARRY_FIELD(OFLineOptions, Header, kHeader),
                          QUARRY_FIELD(OFLineOptions, Reserved, kNotRead)),
            QUARRY_RECORD(OFLineData, "A motion field and the line through it.",
                          QUARRY_FIELD(OFLineData, Header, kHeader), QUARRY_FIELD(OFLineData, Reserved, kNotRead),
                          QUARRY_FIELD(OFLineData, FlowMatrix, "the motion field; an empty or null one gives zeros"),
                          QUARRY_FIELD(OFLineData, LineStartX, "share of the field's width, 0..1"),
                          QUARRY_FIELD(OFLineData, LineStartY, "share of the field's height, 0..1"),
                          QUARRY_FIELD(OFLineData, LineEndX, "share of the field's width, 0..1"),
                          QUARRY_FIELD(OFLineData, LineEndY, "share of the field's height, 0..1"),
                          QUARRY_FIELD(OFLineData, ValuesCount, "number of values wanted, 0 or more"),
                          QUARRY_FIELD(OFLineData, ReservedEnd, kNotRead)),
            QUARRY_RECORD(
                OFLineResult, "The profile along the line; give it back with DisposeResult.",
                QUARRY_FIELD(OFLineResult, Unwritten, "left as it is"),
                QUARRY_FIELD(OFLineResult, Values,
                             "ValuesCount signed distances from the line, pixels, from its start to its end; not a "
                             "number where rounding leaves no distance"),
                QUARRY_FIELD(OFLineResult, ValuesCount, "number of values")),
            {kWrongFrame, {"std::invalid_argument", "ValuesCount is negative"}}};
}

}  // namespace

std::vector<Operation> FlowOperations() {
    return {DenseOpticalFlow(), OpticalFlowLine()};
}

}  // namespace quarry::command
