#include <cxxabi.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <memory>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "interface/Library.h"

namespace {

using Names = std::set<std::string>;

/// What a program prints, line by line.
std::vector<std::string> LinesOf(const std::string& command) {
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    if (pipe == nullptr) throw std::runtime_error("cannot run " + command);
    std::vector<std::string> lines(1);
    for (int c = std::fgetc(pipe.get()); c != EOF; c = std::fgetc(pipe.get())) {
        if (c == '\n') {
            lines.emplace_back();
        } else {
            lines.back().push_back(static_cast<char>(c));
        }
    }
    lines.pop_back();
    return lines;
}

/// The symbols that a built object defines for others, as nm names them: the last word of each line.
std::vector<std::string> BuiltSymbols(const std::string& object = QUARRY_LIBRARY) {
    std::vector<std::string> symbols;
    for (const std::string& line : LinesOf(QUARRY_NM " -D --defined-only '" + object + "'")) {
        symbols.push_back(line.substr(line.rfind(' ') + 1));
    }
    return symbols;
}

std::vector<std::string> ListedSymbols(const std::string& folder = "Quarry.OpenCV") {
    std::ifstream list(QUARRY_SOURCE_DIRECTORY "/" + folder + "/exports.txt");
    return {std::istream_iterator<std::string>(list), std::istream_iterator<std::string>()};
}

std::string Demangled(const std::string& symbol) {
    int status = 0;
    const std::unique_ptr<char, void (*)(void*)> name(abi::__cxa_demangle(symbol.c_str(), nullptr, nullptr, &status),
                                                      std::free);
    return status == 0 ? name.get() : symbol;
}

Names Set(const std::vector<std::string>& names) {
    return {names.begin(), names.end()};
}

/// The names of one set that the other lacks, for the message.
std::string Missing(const Names& from, const Names& in) {
    std::ostringstream missing;
    for (const std::string& name : in) {
        if (from.count(name) == 0) missing << "\n  " << name;
    }
    return missing.str();
}

/// The functions with C linkage: they have no mangled name.
const Names kDrivers = {"Process", "DisposeResult", "Update", "GetUpdateResult", "Dispose"};
const Names kFactories = {
    "CreateCVAffineTransformProcessor",
    "CreateCVBackgroundModel",
    "CreateCVCascadeClassifier",
    "CreateCVClustererContours",
    "CreateCVColorComparator",
    "CreateCVContourCalculator",
    "CreateCVContourIntersectionProcessor",
    "CreateCVContourMaskProcessor",
    "CreateCVContourRateCalculator",
    "CreateCVCosineSimilarity",
    "CreateCVDenseOpticalFlowCalculator",
    "CreateCVFaceLaplacianVarianceProcessor",
    "CreateCVFastNlMeansDenoisingFilter",
    "CreateCVHogSvmHumanClassifier",
    "CreateCVImageAbsSubtractor",
    "CreateCVKMeanColorExtractor",
    "CreateCVLaplacianVarianceProcessor",
    "CreateCVMosseTracker",
    "CreateCVOpticalFlowLineProcessor",
    "CreateCVPixelwiseFireProcessor",
    "CreateCVRectExtractor",
    "CreateCVRotationTransformProcessor",
};

const Names kMemory = {
    "CreateImage(int, int, int, unsigned long long)",
    "DestroyImage(Image*&)",
    "CreateMask(int, int)",
    "DestroyMask(Mask*&)",
    "CreateContour(int)",
    "DestroyContour(Contour*&)",
    "CreateRectArray(int)",
    "DestroyRectArray(RectArray*&)",
    "CreatePointArray(int)",
    "DestroyPointArray(PointArray*&)",
    "CreateFloatImage(int, int)",
    "DestroyFloatImage(FloatImage*&)",
    "CreateAbsVectorMatrix(int, int)",
    "DestroyAbsVectorMatrix(AbsVectorMatrix*&)",
    "CreateCluster(int)",
    "DestroyCluster(Cluster*&)",
    "CreateResponse(float, float, float, float, double, Response*)",
    "DestroyResponse(Response*)",
    "CreateImageOperationResult(int, int, int, unsigned long long)",
    "DestroyImageOperationResult(ImageOperationResult*)",
    "CreateFilterResult(int, int, int, unsigned long long)",
    "DestroyFilterResult(FilterResult*)",
    "CreateTransformResult(int, int, int, unsigned long long)",
    "DestroyTransformResult(TransformResult*)",
    "CreateRectExtractorResult(int, int, int, unsigned long long)",
    "DestroyRectExtractorResult(RectExtractorResult*)",
    "CreateContourMaskProcessorResult(int, int)",
    "DestroyContourMaskProcessorResult(ContourMaskProcessorResult*)",
    "CreateFireOutputData(int, int)",
    "DestroyFireOutputData(FireOutputData*)",
    "CreateContourResult(int)",
    "DestroyContourResult(ContourResult*)",
    "CreateClassificationResult(int)",
    "CreateClassificationResult(int, RelRect*)",
    "DestroyClassificationResult(ClassificationResult*&)",
    "CreateKMeanResult(int)",
    "DestroyKMeanResult(KMeanResult*)",
    "CreateClustererResult(int)",
    "DestroyClustererResult(ClustererResult*)",
    "CreateOFLineResult(int)",
    "DestroyOFLineResult(OFLineResult*)",
    "CreateBackgroundResult(int, int, int, unsigned long long)",
    "DestroyBackgroundResult(BackgroundResult*&)",
    "CreateOFCResult(int, int)",
    "DestroyOFCResult(OFCResult*&)",
    "CreateFloatImageUpdaterResult(int, int)",
    "DestroyFloatImageUpdaterResult(FloatImageUpdaterResult*&)",
    "CreateDepthMapCalcResult(int, int)",
    "DestroyDepthMapCalcResult(DepthMapCalcResult*)",
    "CreateSODResult(int, int, int)",
    "DestroySODResult(SODResult*&)",
};

/// What a host needs to catch the exception.
const Names kException = {
    "typeinfo for MarshalingException",
    "typeinfo name for MarshalingException",
    "vtable for MarshalingException",
};

TEST(Exports, AreTheListedSymbolsAndNoOthers) {
    const Names built = Set(BuiltSymbols());
    const Names listed = Set(ListedSymbols());
    EXPECT_EQ(built, listed) << "listed but not built:" << Missing(built, listed)
                             << "\nbuilt but not listed:" << Missing(listed, built);
}

TEST(Exports, AreDriversFactoriesMemoryFunctionsAndTheException) {
    Names expected;
    for (const Names& part : {kDrivers, kFactories, kMemory, kException}) expected.insert(part.begin(), part.end());
    Names demangled;
    for (const std::string& symbol : ListedSymbols()) demangled.insert(Demangled(symbol));
    EXPECT_EQ(demangled, expected) << "missing from the list:" << Missing(demangled, expected)
                                   << "\nnot expected in the list:" << Missing(expected, demangled);
}

TEST(Exports, OfDriversAndFactoriesHaveCLinkage) {
    const Names built = Set(BuiltSymbols());
    for (const std::string& name : kDrivers) EXPECT_EQ(built.count(name), 1U) << name;
    for (const std::string& name : kFactories) EXPECT_EQ(built.count(name), 1U) << name;
}

TEST(Exports, AreListedInOrderAndOnce) {
    const std::vector<std::string> listed = ListedSymbols();
    ASSERT_FALSE(listed.empty());
    EXPECT_EQ(std::adjacent_find(listed.begin(), listed.end(),
                                 [](const std::string& a, const std::string& b) { return a >= b; }),
              listed.end());
}

TEST(Exports, HaveNoStandardTemplateAmongThem) {
    for (const std::string& symbol : BuiltSymbols()) {
        EXPECT_EQ(Demangled(symbol).find("std::"), std::string::npos) << Demangled(symbol);
    }
}

TEST(Exports, AreFoundByName) {
    const quarry::test::Library library;
    for (const std::string& symbol : ListedSymbols()) {
        EXPECT_NE(library.Find<void()>(symbol.c_str()), nullptr) << symbol;
    }
}

TEST(GuardExports, AreDriversAndFactoriesTheMessageAndTheGridsRelease) {
    Names expected = {"GuardMessage", "GuardDestroyContourMaskProcessorResult"};
    for (const std::string& name : kDrivers) expected.insert("Guard" + name);
    for (const std::string& name : kFactories) expected.insert("Guard" + name);
    EXPECT_EQ(Set(BuiltSymbols(QUARRY_GUARD)), expected);
    EXPECT_EQ(Set(ListedSymbols("Quarry.Guard")), expected);
}

/// The line of the dynamic section that names the interface of an object.
std::string SonameOf(const std::string& object) {
    for (const std::string& line : LinesOf(QUARRY_READELF " -d '" + object + "'")) {
        if (line.find("(SONAME)") != std::string::npos) return line;
    }
    return "none";
}

TEST(SharedObjects, NameTheirInterfaceVersion) {
    EXPECT_NE(SonameOf(QUARRY_LIBRARY).find("[libQuarry.OpenCV.so.1]"), std::string::npos) << SonameOf(QUARRY_LIBRARY);
    EXPECT_NE(SonameOf(QUARRY_GUARD).find("[libQuarry.Guard.so.1]"), std::string::npos) << SonameOf(QUARRY_GUARD);
}

}  // namespace
