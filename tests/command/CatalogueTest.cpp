#include <Quarry/Operations.h>
#include <Quarry/Quarry.h>

#include <algorithm>
#include <cctype>
#include <map>
#include <regex>

#include "command/CommandFixture.h"

using namespace quarry::test;

namespace {

/// What a type such as "uint32_t[3]", "const float*" or "Image" takes.
struct Layout {
    std::size_t size;
    std::size_t alignment;
};

/// A row of the table of operations, as far as the command shows it.
struct Row {
    std::string name, factory, kind, source, verb;
    std::vector<std::string> records;
};
#define QUARRY_ROW(Name, Factory, Options, Input, Result, Kind, Handle, Source, Verb) \
    {#Name, #Factory, #Kind, #Source, Verb, {#Options, #Input, #Result}},
const std::vector<Row> kRows = {QUARRY_OPERATIONS(QUARRY_ROW)};

#define QUARRY_LENGTHS(Name, Factory, Options, Input, Result, ...) \
    {#Options, sizeof(Options)}, {#Input, sizeof(Input)}, {#Result, sizeof(Result)},
const std::map<std::string, std::size_t> kLengths = {QUARRY_OPERATIONS(QUARRY_LENGTHS)};

#define QUARRY_LAYOUT(Record)               \
    {                                       \
#Record, {                          \
            sizeof(Record), alignof(Record) \
        }                                   \
    }
const std::map<std::string, Layout> kShared = {
    QUARRY_LAYOUT(AbsVector),  QUARRY_LAYOUT(AbsVectorMatrix), QUARRY_LAYOUT(Cluster), QUARRY_LAYOUT(Contour),
    QUARRY_LAYOUT(FloatPoint), QUARRY_LAYOUT(Image),           QUARRY_LAYOUT(Mask),    QUARRY_LAYOUT(PixelRect),
    QUARRY_LAYOUT(PointArray), QUARRY_LAYOUT(RelRect),         QUARRY_LAYOUT(Response)};

const std::map<std::string, std::size_t> kNumberSizes = {
    {"uint8_t", 1},  {"int16_t", 2},  {"uint16_t", 2}, {"int32_t", 4},
    {"uint32_t", 4}, {"uint64_t", 8}, {"float", 4},    {"double", 8},
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
    return kShared.at(type);
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
    std::vector<json> List() const { return RunJson({"list"}); }

    json Describe(const std::string& name) const { return RunJson({"describe", name}).at(0); }

    /// Descriptions of all operations.
    std::vector<json> All() const {
        std::vector<json> all;
        for (const json& listed : List()) all.push_back(Describe(listed.at("name")));
        return all;
    }
};

std::string Lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

TEST_F(Catalogue, IsTheTableOfOperationsInItsOrder) {
    const std::vector<json> listed = List();
    ASSERT_EQ(listed.size(), kRows.size());
    for (std::size_t i = 0; i < kRows.size(); ++i) {
        const Row& row = kRows[i];
        EXPECT_EQ(listed[i].at("name"), Lower(std::regex_replace(row.name, std::regex("(.)([A-Z])"), "$1-$2")));
        EXPECT_EQ(listed[i].at("factory"), row.factory);
        EXPECT_EQ(listed[i].at("kind"), Lower(row.kind));
        EXPECT_EQ(listed[i].at("verb"), row.verb);
        const json described = Describe(listed[i].at("name"));
        for (std::size_t k = 0; k < 3; ++k) {
            EXPECT_EQ(described.at(std::vector{"options", "input", "result"}[k]).at("name"), row.records[k])
                << row.name;
        }
    }
}

/// Kind, factory and the header of the records: that of the algorithm, or one that several share.
TEST_F(Catalogue, TheReadmeHasTheSameTable) {
    const fs::path source = QUARRY_SOURCE_DIRECTORY;
    std::vector<std::string> lines = Lines(ContentsOf(source / "README.md"));
    const auto head = std::find(lines.begin(), lines.end(), "| Operation | Kind | Factory | Records |");
    ASSERT_GT(lines.end() - head, static_cast<std::ptrdiff_t>(kRows.size()) + 2);
    for (std::size_t i = 0; i < kRows.size(); ++i) {
        const Row& row = kRows[i];
        const std::string& line = *(head + 2 + static_cast<std::ptrdiff_t>(i));
        EXPECT_NE(line.find(" | " + Lower(row.kind) + " | `" + row.factory + "` | "), std::string::npos) << line;
        std::smatch link;
        ASSERT_TRUE(
            std::regex_search(line, link, std::regex(R"(\[`(\w+)\.h`\]\((include/Quarry/Records/\1\.h)\) \|$)")))
            << line;
        const bool hasOwn = fs::exists(source / "include/Quarry/Records" / (row.source + ".h"));
        EXPECT_TRUE(!hasOwn || link[1] == row.source) << line;
        EXPECT_NE(ContentsOf(source / link[2].str()).find(row.records[1]), std::string::npos) << line;
    }
    EXPECT_NE((head + 2 + static_cast<std::ptrdiff_t>(kRows.size()))->rfind("| ", 0), 0U) << "no row too many";
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
            EXPECT_EQ(shared.at("length"), kShared.at(name).size) << name;
            met.insert(name);
        }
    }
    EXPECT_EQ(met.size(), kLengths.size() + kShared.size());
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
    ExpectOneLineError({"describe", "sharpness"}, 2, "variance-of-laplacian or face-variance-of-laplacian?");
    ExpectOneLineError({"describe", "contuor-grit"}, 2, "did you mean contour-grid?");
    ExpectOneLineError({"describe", "clothing-colours"}, 2, "did you mean clothing-colors?");
    ExpectOneLineError({"describe", "track"}, 2, "mosse-tracker?");
    ExpectOneLineError({"describe", "paint-by-numbers"}, 2, "quarry list");
    ExpectOneLineError({"describe", ""}, 2, "quarry list");
    ExpectOneLineError({"describe"}, 2, "OPERATION");
    ExpectOneLineError({"describe", "mosse-tracker", "--json", "--markdown"}, 2, "--json excludes --markdown");
    ExpectOneLineError({"describe", "mosse-tracker", "more"}, 2, "more");
    ExpectOneLineError({"list", "more"}, 2, "more");
}

}  // namespace
