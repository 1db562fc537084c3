// The headers assert where every field of a record lies. The frozen interface is their witness: what abidw read of the
// library when its interface was last meant to change.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <string>

namespace {

/// The length of each record in bytes, and the place of each of its fields, as "Image.width".
using Layouts = std::map<std::string, int>;

std::string TextOf(const std::filesystem::path& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

Layouts Asserted() {
    const std::regex assertion(R"(QUARRY_LAYOUT_(?:SIZE|FIELD)\((\w+), (?:(\w+), )?(\d+)\))");
    Layouts layouts;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(QUARRY_SOURCE_DIRECTORY "/include/Quarry")) {
        if (entry.is_directory()) continue;
        const std::string text = TextOf(entry.path());
        for (std::sregex_iterator at(text.begin(), text.end(), assertion), end; at != end; ++at) {
            layouts[(*at)[1].str() + ((*at)[2].matched ? "." + (*at)[2].str() : "")] = std::stoi((*at)[3]);
        }
    }
    return layouts;
}

Layouts Frozen() {
    const std::regex line(R"(<class-decl name='(\w+)' size-in-bits='(\d+)'|<data-member[^>]*?(?:bits='(\d+)')?>|)"
                          R"(<var-decl name='(\w+)' type-id|</(class)-decl>)");
    const std::string text = TextOf(QUARRY_SOURCE_DIRECTORY "/packaging/abi/Quarry.OpenCV.abi");
    Layouts layouts;
    std::string record;
    int offset = 0;
    for (std::sregex_iterator at(text.begin(), text.end(), line), end; at != end; ++at) {
        const std::smatch& match = *at;
        if (match[1].matched) layouts[record = match[1]] = std::stoi(match[2]) / 8;
        if (match.str().find("<data-member") == 0) offset = match[3].matched ? std::stoi(match[3]) / 8 : 0;
        if (match[4].matched && !record.empty()) layouts[record + "." + match[4].str()] = offset;
        if (match[5].matched) record.clear();
    }
    return layouts;
}

TEST(Layouts, AreThoseOfTheFrozenInterface) {
    const Layouts asserted = Asserted();
    int compared = 0;
    for (const auto& [name, bytes] : Frozen()) {
        const auto found = asserted.find(name);
        if (found == asserted.end()) continue;
        EXPECT_EQ(found->second, bytes) << name;
        ++compared;
    }
    EXPECT_GT(compared, 100);
}

}  // namespace
