#include <cxxabi.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <regex>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "Quarry/Operations.h"
#include "interface/Library.h"

namespace {

using Names = std::set<std::string>;

#define QUARRY_FACTORY_NAME(Name, Factory, ...) #Factory,
constexpr const char* kDriversAndFactories[] = {
    "Process", "DisposeResult", "Update", "GetUpdateResult", "Dispose", QUARRY_OPERATIONS(QUARRY_FACTORY_NAME)};
#undef QUARRY_FACTORY_NAME

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

/// The symbols of the frozen interface: what abidw read of a library when its interface was last meant to change.
std::vector<std::string> FrozenSymbols(const std::string& library = "Quarry.OpenCV") {
    std::ifstream file(QUARRY_SOURCE_DIRECTORY "/packaging/abi/" + library + ".abi");
    const std::regex symbol("<elf-symbol name='([^']+)'");
    std::vector<std::string> symbols;
    for (std::string line; std::getline(file, line);) {
        std::smatch match;
        if (std::regex_search(line, match, symbol)) symbols.push_back(match[1]);
    }
    return symbols;
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

TEST(Exports, AreThoseOfTheFrozenInterface) {
    const Names built = Set(BuiltSymbols());
    const Names frozen = Set(FrozenSymbols());
    EXPECT_EQ(built, frozen) << "frozen but not built:" << Missing(built, frozen)
                             << "\nbuilt but not frozen:" << Missing(frozen, built);
}

TEST(Exports, OfDriversAndFactoriesHaveCLinkage) {
    const Names built = Set(BuiltSymbols());
    for (const char* const name : kDriversAndFactories) EXPECT_EQ(built.count(name), 1U) << name;
}

TEST(Exports, HoldWhatAHostNeedsToCatchTheException) {
    Names demangled;
    for (const std::string& symbol : BuiltSymbols()) demangled.insert(Demangled(symbol));
    for (const char* const name : {"typeinfo for MarshalingException", "typeinfo name for MarshalingException",
                                   "vtable for MarshalingException"}) {
        EXPECT_EQ(demangled.count(name), 1U) << name;
    }
}

TEST(Exports, HaveNoStandardTemplateAmongThem) {
    for (const std::string& symbol : BuiltSymbols()) {
        EXPECT_EQ(Demangled(symbol).find("std::"), std::string::npos) << Demangled(symbol);
    }
}

TEST(Exports, AreFoundByName) {
    const quarry::test::Library library;
    for (const std::string& symbol : FrozenSymbols()) {
        EXPECT_NE(library.Find<void()>(symbol.c_str()), nullptr) << symbol;
    }
}

TEST(GuardExports, AreDriversAndFactoriesTheMessageAndTheGridsRelease) {
    Names expected = {"GuardMessage", "GuardDestroyContourMaskProcessorResult"};
    for (const char* const name : kDriversAndFactories) expected.insert(std::string("Guard") + name);
    EXPECT_EQ(Set(BuiltSymbols(QUARRY_GUARD)), expected);
    EXPECT_EQ(Set(FrozenSymbols("Quarry.Guard")), expected);
}

/// The line of the dynamic section that names the interface of an object.
std::string SonameOf(const std::string& object) {
    for (const std::string& line : LinesOf(QUARRY_READELF " -d '" + object + "'")) {
        if (line.find("(SONAME)") != std::string::npos) return line;
    }
    return "none";
}

TEST(SharedObjects, NameTheirInterfaceVersion) {
    EXPECT_NE(SonameOf(QUARRY_LIBRARY).find("[libQuarry.OpenCV.so." QUARRY_MAJOR_VERSION "]"), std::string::npos)
        << SonameOf(QUARRY_LIBRARY);
    EXPECT_NE(SonameOf(QUARRY_GUARD).find("[libQuarry.Guard.so." QUARRY_MAJOR_VERSION "]"), std::string::npos)
        << SonameOf(QUARRY_GUARD);
}

}  // namespace
