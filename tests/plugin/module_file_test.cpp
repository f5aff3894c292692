// What the module's file says about itself.

#include "tests/plugin/loaded_module.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace patina {
namespace {

using Lines = std::vector<std::string>;

/// What a command prints; it must succeed.
Lines outputOf(const std::string& command) {
    std::FILE* pipe = popen(command.c_str(), "r");
    EXPECT_NE(pipe, nullptr) << command;
    Lines lines;
    std::string text;
    std::array<char, 4096> block;
    while (const std::size_t size = std::fread(block.data(), 1, block.size(), pipe)) {
        text.append(block.data(), size);
    }
    EXPECT_EQ(pclose(pipe), 0) << command;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

std::string quoted(const std::string& path) { return "'" + path + "'"; }

std::string afterLast(const std::string& text, char separator) {
    return text.substr(text.rfind(separator) + 1);
}

TEST(ModuleFile, ExportsExactlyTheTwoEntryPoints) {
    if (PATINA_TEST_INSTRUMENTED) {
        GTEST_SKIP() << "instrumentation exports symbols of its own";
    }
    std::multiset<std::string> exported;
    for (const std::string& line :
         outputOf(quoted(PATINA_TEST_NM) + " -D --defined-only " + quoted(testing::modulePath()))) {
        exported.insert(afterLast(line, ' '));
        EXPECT_NE(line.find(" T "), std::string::npos) << "no function: " << line;
    }
    EXPECT_EQ(exported, (std::multiset<std::string>{"CreateNodeFactory", "GetMaterialLibVersion"}));
}

TEST(ModuleFile, NeedsOnlyXmlAndTheStandardLibrary) {
    if (PATINA_TEST_INSTRUMENTED) {
        GTEST_SKIP() << "instrumentation needs libraries of its own";
    }
    const std::set<std::string> allowed = {"libxml2", "libstdc++", "libgcc_s", "libc", "libm"};
    std::set<std::string> needed;
    for (const std::string& line :
         outputOf(quoted(PATINA_TEST_READELF) + " -d --wide " + quoted(testing::modulePath()))) {
        if (line.find("(NEEDED)") != std::string::npos) {
            const std::string name = afterLast(line, '[');
            needed.insert(name.substr(0, name.find(".so")));
        }
    }
    EXPECT_TRUE(std::includes(allowed.begin(), allowed.end(), needed.begin(), needed.end()))
        << ::testing::PrintToString(needed);
    EXPECT_EQ(needed.count("libxml2"), 1U);
}

TEST(ModuleFile, HoldsNoWritableDataOfOurs) {
    if (PATINA_TEST_INSTRUMENTED) {
        GTEST_SKIP() << "instrumentation counts in data of its own";
    }
    // constants that hold addresses lie in .data.rel.ro, which is read-only once the module is loaded
    const std::set<std::string> writable = {".data", ".bss", ".tdata", ".tbss"};
    bool sawOurs = false;
    for (const std::string& line :
         outputOf(quoted(PATINA_TEST_NM) + " -C --format=sysv " + quoted(testing::modulePath()))) {
        const bool ours =
            line.find("patina::") != std::string::npos || line.find("Icon") != std::string::npos;
        sawOurs = sawOurs || ours;
        if (ours) {
            EXPECT_EQ(writable.count(afterLast(line, '|')), 0U) << line;
        }
    }
    EXPECT_TRUE(sawOurs) << "the module keeps its symbol table in the build tree";
    const Lines segments =
        outputOf(quoted(PATINA_TEST_READELF) + " -l --wide " + quoted(testing::modulePath()));
    EXPECT_TRUE(std::any_of(segments.begin(), segments.end(), [](const std::string& line) {
        return line.find("GNU_RELRO") != std::string::npos;
    })) << "constants that hold addresses stay writable";
}

} // namespace
} // namespace patina
