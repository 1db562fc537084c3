// The public headers in a C++ host: they compile as C++17, every record is plain and every factory has its type.
#include <type_traits>

#include "Quarry/MarshalingException.h"
#include "Quarry/Memory.h"
#include "Quarry/Operations.h"
#include "Quarry/Quarry.h"

namespace {

template <class... Records>
constexpr bool kArePlain = ((std::is_standard_layout_v<Records> && std::is_trivial_v<Records>)&&...);

static_assert(
    kArePlain<Image, Mask, FloatPoint, Contour, RelRect, PixelRect, RectArray, PointArray, FloatImage, AbsVector,
              AbsVectorMatrix, Response, Cluster, FloatImageUpdaterResult, DepthMapCalcResult, SODResult>,
    "a record can be copied byte by byte");

#define QUARRY_IS_PLAIN(Name, Factory, Options, Input, Result, ...)                                  \
    static_assert(kArePlain<Options, Input, Result>, "a record can be copied byte by byte: " #Name); \
    static_assert(std::is_same_v<decltype(Factory), void(void**, Options*)>, #Factory);
QUARRY_OPERATIONS(QUARRY_IS_PLAIN)
#undef QUARRY_IS_PLAIN

// What lies behind these fields is padding, so that their places do not tell how wide they are.
static_assert(sizeof(ClassificationData::WholeFrame) == 1 && sizeof(ClassificationData::AreasCount) == 4 &&
              sizeof(ContourRateMeasuringInputData::FrameHeight) == 2 &&
              sizeof(RectExtractorOptions::Interpolation) == 2 && sizeof(OFLineResult::ValuesCount) == 4 &&
              sizeof(ClustererResult::Count) == 4 && sizeof(ImageOperationResult::Status) == 4);

static_assert(sizeof(MarshalingException) == sizeof(void*), "the exception holds nothing but its table");

}  // namespace
