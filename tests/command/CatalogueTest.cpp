#include <Quarry/Quarry.h>

#include <algorithm>
#include <map>
#include <regex>

#include "host/CommandFixture.h"

using namespace quarry::test;

namespace {

const std::map<std::string, std::size_t> kLengths = {
    {"AffineTransformData", sizeof(AffineTransformData)},
    {"BackgroundData", sizeof(BackgroundData)},
    {"BackgroundOptions", sizeof(BackgroundOptions)},
    {"BackgroundResult", sizeof(BackgroundResult)},
    {"BinaryImageOperationData", sizeof(BinaryImageOperationData)},
    {"BinaryImageOperationOptions", sizeof(BinaryImageOperationOptions)},
    {"ClassificationData", sizeof(ClassificationData)},
    {"ClassificationOptions", sizeof(ClassificationOptions)},
    {"ClassificationResult", sizeof(ClassificationResult)},
    {"ClustererData", sizeof(ClustererData)},
    {"ClustererOptions", sizeof(ClustererOptions)},
    {"ClustererResult", sizeof(ClustererResult)},
    {"ColorComparingInputData", sizeof(ColorComparingInputData)},
    {"ColorComparingOptions", sizeof(ColorComparingOptions)},
    {"ColorComparingOutputData", sizeof(ColorComparingOutputData)},
    {"ContourCalcingInputData", sizeof(ContourCalcingInputData)},
    {"ContourCalcingOptions", sizeof(ContourCalcingOptions)},
    {"ContourInstersectionProcessorResult", sizeof(ContourInstersectionProcessorResult)},
    {"ContourIntersectionProcessorData", sizeof(ContourIntersectionProcessorData)},
    {"ContourIntersectionProcessorOptions", sizeof(ContourIntersectionProcessorOptions)},
    {"ContourMaskProcessorData", sizeof(ContourMaskProcessorData)},
    {"ContourMaskProcessorOptions", sizeof(ContourMaskProcessorOptions)},
    {"ContourMaskProcessorResult", sizeof(ContourMaskProcessorResult)},
    {"ContourRateMeasuringInputData", sizeof(ContourRateMeasuringInputData)},
    {"ContourRateMeasuringOptions", sizeof(ContourRateMeasuringOptions)},
    {"ContourRateMeasuringOutputData", sizeof(ContourRateMeasuringOutputData)},
    {"ContourResult", sizeof(ContourResult)},
    {"CosineOutputData", sizeof(CosineOutputData)},
    {"EmbeddingData", sizeof(EmbeddingData)},
    {"FaceVoLInputData", sizeof(FaceVoLInputData)},
    {"FilterData", sizeof(FilterData)},
    {"FilterOptions", sizeof(FilterOptions)},
    {"FilterResult", sizeof(FilterResult)},
    {"FireInputData", sizeof(FireInputData)},
    {"FireOutputData", sizeof(FireOutputData)},
    {"ImageOperationResult", sizeof(ImageOperationResult)},
    {"KMeanData", sizeof(KMeanData)},
    {"KMeanOptions", sizeof(KMeanOptions)},
    {"KMeanResult", sizeof(KMeanResult)},
    {"MosseTrackerData", sizeof(MosseTrackerData)},
    {"MosseTrackerOptions", sizeof(MosseTrackerOptions)},
    {"MosseTrackerResult", sizeof(MosseTrackerResult)},
    {"OFCData", sizeof(OFCData)},
    {"OFCOptions", sizeof(OFCOptions)},
    {"OFCResult", sizeof(OFCResult)},
    {"OFLineData", sizeof(OFLineData)},
    {"OFLineOptions", sizeof(OFLineOptions)},
    {"OFLineResult", sizeof(OFLineResult)},
    {"ProcessOptions", sizeof(ProcessOptions)},
    {"RectExtractorData", sizeof(RectExtractorData)},
    {"RectExtractorOptions", sizeof(RectExtractorOptions)},
    {"RectExtractorResult", sizeof(RectExtractorResult)},
    {"RotationTransformData", sizeof(RotationTransformData)},
    {"TransformOptions", sizeof(TransformOptions)},
    {"TransformResult", sizeof(TransformResult)},
    {"VoLInputData", sizeof(VoLInputData)},
    {"VoLOutputData", sizeof(VoLOutputData)},
};

const std::map<std::string, std::size_t> kSharedLengths = {
    {"AbsVector", sizeof(AbsVector)},
    {"AbsVectorMatrix", sizeof(AbsVectorMatrix)},
    {"Cluster", sizeof(Cluster)},
    {"Contour", sizeof(Contour)},
    {"FloatPoint", sizeof(FloatPoint)},
    {"Image", sizeof(Image)},
    {"Mask", sizeof(Mask)},
    {"PixelRect", sizeof(PixelRect)},
    {"PointArray", sizeof(PointArray)},
    {"RelRect", sizeof(RelRect)},
    {"Response", sizeof(Response)},
};

const std::map<std::string, std::size_t> kNumberSizes = {
    {"uint8_t", 1},  {"int16_t", 2},  {"uint16_t", 2}, {"int32_t", 4},
    {"uint32_t", 4}, {"uint64_t", 8}, {"float", 4},    {"double", 8},
};

/// What a type such as "uint32_t[3]", "const float*" or "Image" takes.
struct Layout {
    std::size_t size;
    std::size_t alignment;
};

Layout LayoutOf(const std::string& type) {
    if (type.back() == '*') return {sizeof(void*), sizeof(void*)};
    if (const auto bracket = type.find('['); bracket != std::string::npos) {
        const Layout element = LayoutOf(type.substr(0, bracket));
        return {element.size * std::stoul(type.substr(bracket + 1)), element.alignment};
    }
    if (const auto number = kNumberSizes.find(type); number != kNumberSizes.end()) {
        return {number->second, number->second};
    }
    const bool holdsEightBytes = type == "Image" || type == "Mask" || type == "Contour" || type == "PointArray" ||
                                 type == "AbsVectorMatrix" || type == "Response" || type == "Cluster";
    return {kSharedLengths.at(type), holdsEightBytes ? 8U : type == "PixelRect" ? 2U : 4U};
}

std::size_t RoundedUp(std::size_t value, std::size_t multiple) {
    return (value + multiple - 1) / multiple * multiple;
}

/// Each field begins where the one before it ends, but for the padding that its type needs; so does the end.
void ExpectLaidOutAsDescribed(const json& record) {
    const std::string name = record.at("name");
    std::size_t end = 0;
    std::size_t alignment = 1;
    EXPECT_FALSE(record.at("fields").empty()) << name;
    EXPECT_NE(record.at("meaning"), "") << name;
    for (const json& field : record.at("fields")) {
        const std::string named = name + "." + field.at("name").get<std::string>();
        const Layout layout = LayoutOf(field.at("type"));
        EXPECT_EQ(field.at("size"), layout.size) << named;
        EXPECT_EQ(field.at("offset"), RoundedUp(end, layout.alignment)) << named;
        EXPECT_NE(field.at("meaning"), "") << named;
        end = field.at("offset").get<std::size_t>() + field.at("size").get<std::size_t>();
        alignment = std::max(alignment, layout.alignment);
    }
    EXPECT_EQ(record.at("length"), RoundedUp(end, alignment)) << name;
}

/// The records of others that the fields of a record name.
std::set<std::string> NamedIn(const json& record) {
    std::set<std::string> names;
    for (const json& field : record.at("fields")) {
        const std::string type = field.at("type");
        const std::string bare = std::regex_replace(type, std::regex("const |\\*|\\[.*"), "");
        if (bare != "char" && kNumberSizes.count(bare) == 0) names.insert(bare);
    }
    return names;
}

/// Lines of a table follow each other with the same number of columns.
void ExpectWholeTables(const std::string& markdown) {
    std::ptrdiff_t columns = 0;
    int tables = 0;
    for (const std::string& line : Lines(markdown)) {
        const std::ptrdiff_t bars = std::count(line.begin(), line.end(), '|');
        EXPECT_TRUE(columns == 0 || bars == 0 || bars == columns) << line;
        if (columns == 0 && bars != 0) ++tables;
        columns = bars;
    }
    EXPECT_GE(tables, 5) << markdown;  // facts, three records, errors
}

class Catalogue : public QuarryCommand {
protected:
    std::vector<json> List() const { return JsonLines(Run({"list", "--json"}).out); }

    json Describe(const std::string& name) const {
        const Outcome outcome = Run({"describe", name, "--json"});
        EXPECT_EQ(outcome.exitCode, 0) << name << outcome.err;
        return JsonLines(outcome.out).at(0);
    }

    /// Descriptions of all operations.
    std::vector<json> All() const {
        std::vector<json> all;
        for (const json& listed : List()) all.push_back(Describe(listed.at("name")));
        return all;
    }
};

TEST_F(Catalogue, ListsEveryFactoryOfTheLibraryOnce) {
    std::vector<std::string> exported;
    for (const std::string& line :
         Lines(ContentsOf(fs::path(QUARRY_SOURCE_DIRECTORY) / "Quarry.OpenCV" / "exports.txt"))) {
        if (line.rfind("CreateCV", 0) == 0) exported.push_back(line);
    }
    std::vector<std::string> listed;
    std::set<std::string> names;
    for (const json& operation : List()) {
        listed.push_back(operation.at("factory"));
        names.insert(operation.at("name").get<std::string>());
        EXPECT_TRUE(std::regex_match(operation.at("name").get<std::string>(), std::regex("[a-z]+(-[a-z]+)+")))
            << operation;
    }
    std::sort(exported.begin(), exported.end());
    std::sort(listed.begin(), listed.end());
    EXPECT_EQ(exported.size(), 22U);
    EXPECT_EQ(listed, exported);
    EXPECT_EQ(names.size(), listed.size());
}

TEST_F(Catalogue, ListIsATableWithALineForEach) {
    const Outcome outcome = Run({"list"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.err, "");
    const std::vector<std::string> lines = Lines(outcome.out);
    const std::vector<json> listed = List();
    ASSERT_EQ(lines.size(), listed.size() + 1);
    for (std::size_t i = 0; i < listed.size(); ++i) {
        const std::string& line = lines[i + 1];
        EXPECT_EQ(line.rfind(listed[i].at("name").get<std::string>() + " ", 0), 0U) << line;
        for (const char* const column : {"kind", "verb", "summary"}) {
            EXPECT_NE(line.find(listed[i].at(column).get<std::string>()), std::string::npos) << line;
        }
    }
}

TEST_F(Catalogue, NamesVerbsThatExist) {
    for (const json& operation : List()) {
        const std::string verb = operation.at("verb");
        EXPECT_NE(Run({verb, "--help"}).out.find("\nUsage: quarry " + verb + " "), std::string::npos) << verb;
    }
}

TEST_F(Catalogue, KindsAreThoseOfTheCallsThatAHostMakes) {
    const std::set<std::string> updaters = {"background-model", "mosse-tracker", "dense-optical-flow"};
    for (const json& operation : List()) {
        EXPECT_EQ(operation.at("kind"), updaters.count(operation.at("name")) != 0 ? "updater" : "processor");
    }
}

TEST_F(Catalogue, RecordsHaveTheirLengthsAndTags) {
    std::set<std::string> met;
    for (const json& operation : All()) {
        EXPECT_EQ(operation.at("options").at("tag"), QUARRY_OPTIONS_TAG);
        EXPECT_EQ(operation.at("input").at("tag"), QUARRY_INPUT_TAG);
        EXPECT_EQ(operation.at("result").at("tag"), QUARRY_RESULT_TAG);
        for (const char* const role : {"options", "input", "result"}) {
            const std::string name = operation.at(role).at("name");
            EXPECT_EQ(operation.at(role).at("length"), kLengths.at(name)) << name;
            met.insert(name);
        }
        for (const json& shared : operation.at("records")) {
            const std::string name = shared.at("name");
            EXPECT_EQ(shared.at("length"), kSharedLengths.at(name)) << name;
            met.insert(name);
        }
    }
    EXPECT_EQ(met.size(), kLengths.size() + kSharedLengths.size());
}

TEST_F(Catalogue, FieldsCoverTheirRecordsButForPadding) {
    for (const json& operation : All()) {
        for (const char* const role : {"options", "input", "result"}) ExpectLaidOutAsDescribed(operation.at(role));
        for (const json& shared : operation.at("records")) ExpectLaidOutAsDescribed(shared);
    }
}

TEST_F(Catalogue, EveryRecordThatAFieldNamesIsDescribedOnce) {
    for (const json& operation : All()) {
        std::set<std::string> named;
        std::multiset<std::string> described;
        for (const char* const role : {"options", "input", "result"}) named.merge(NamedIn(operation.at(role)));
        for (const json& shared : operation.at("records")) {
            described.insert(shared.at("name").get<std::string>());
            named.merge(NamedIn(shared));
        }
        EXPECT_EQ(std::multiset<std::string>(named.begin(), named.end()), described) << operation.at("name");
    }
}

TEST_F(Catalogue, EveryOperationSaysWhatItThrows) {
    for (const json& operation : All()) {
        EXPECT_EQ(operation.at("errors").at(0).at("error"), "MarshalingException") << operation.at("name");
        for (const json& error : operation.at("errors")) EXPECT_NE(error.at("when"), "") << operation.at("name");
    }
}

TEST_F(Catalogue, TextAndMarkdownTellWhatJsonTells) {
    for (const json& operation : All()) {
        const std::string name = operation.at("name");
        const std::string text = Run({"describe", name}).out;
        const std::string markdown = Run({"describe", name, "--markdown"}).out;
        EXPECT_EQ(Lines(text).at(0), name);
        EXPECT_EQ(Lines(markdown).at(0), "# " + name);
        ExpectWholeTables(markdown);
        for (const std::string& page : {text, markdown}) {
            for (const char* const fact : {"factory", "kind", "method"}) {
                EXPECT_NE(page.find(operation.at(fact).get<std::string>()), std::string::npos) << name << fact;
            }
        }
        for (const char* const role : {"options", "input", "result"}) {
            for (const json& field : operation.at(role).at("fields")) {
                const std::string row = "| " + field.at("offset").dump() + " | " + field.at("size").dump() + " | `" +
                                        field.at("name").get<std::string>() + "` | `" +
                                        field.at("type").get<std::string>() + "` | ";
                EXPECT_NE(markdown.find(row), std::string::npos) << name << ": " << row;
            }
        }
    }
}

TEST_F(Catalogue, UnknownOperationsAreWrongUsageThatHelps) {
    ExpectOneLineError({"describe", "mose-traker"}, 2, "mose-traker; did you mean mosse-tracker?");
    ExpectOneLineError({"describe", "sharpness"}, 2, "frame-sharpness or face-sharpness?");
    ExpectOneLineError({"describe", "track"}, 2, "mosse-tracker?");
    ExpectOneLineError({"describe", "paint-by-numbers"}, 2, "quarry list");
    ExpectOneLineError({"describe", ""}, 2, "quarry list");
    ExpectOneLineError({"describe"}, 2, "OPERATION");
    ExpectOneLineError({"describe", "mosse-tracker", "--json", "--markdown"}, 2, "--json excludes --markdown");
    ExpectOneLineError({"describe", "mosse-tracker", "more"}, 2, "more");
    ExpectOneLineError({"list", "more"}, 2, "more");
}

}  // namespace
