// The programs depend on what the shader computes, and on nothing else.

#include "tests/host/host_checks.h"
#include "tests/host/process.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace patina {
namespace {

using testing::readText;
using testing::TemporaryDirectory;

struct Programs {
    std::string vertex;
    std::string fragment;

    bool operator==(const Programs&) const = default;
};

/// Exports a document with the command, in a process of its own.
Programs programsOf(const std::string& text, const testing::Environment& environment = {}) {
    const TemporaryDirectory directory;
    const auto material = directory.write("m.xml", text);
    const testing::Outcome outcome = testing::run(
        PATINA_COMMAND, {"export", "-q", material.string(), "-o", directory.path().string()}, environment);
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    return {readText(directory / "PaintedMetal.vert.cg"), readText(directory / "PaintedMetal.frag.cg")};
}

/// The text with the first occurrence of a piece replaced, which must be there.
std::string replaced(std::string text, const std::string& piece, const std::string& replacement) {
    const std::size_t found = text.find(piece);
    EXPECT_NE(found, std::string::npos) << piece;
    return text.replace(found, piece.size(), replacement);
}

/// The digests of the programs in a bindings file.
std::vector<std::string> hashesIn(const std::string& bindings) {
    constexpr std::string_view attribute = "sha256=\"";
    std::vector<std::string> hashes;
    for (std::size_t at = bindings.find(attribute); at != std::string::npos;
         at = bindings.find(attribute, at + 1)) {
        hashes.push_back(bindings.substr(at + attribute.size(), 64));
    }
    return hashes;
}

TEST(Determinism, AnotherProcessGivesTheSameBytes) {
    const std::string text = readText(PATINA_EXAMPLE);
    const Programs programs = programsOf(text);
    EXPECT_EQ(programsOf(text), programs);
    // another place for everything that is allocated
    EXPECT_EQ(programsOf(text, {{"MALLOC_PERTURB_", "85"}, {"MALLOC_MMAP_THRESHOLD_", "128"}}), programs);
    EXPECT_EQ(programsOf(text, {{"PATINA_PADDING", std::string(20000, 'x')}}), programs);
}

struct Change {
    const char* what;
    std::string piece;
    std::string replacement;
};

const std::string frameName = R"(<property name="Name" kind="string" value="RainFrame"/>)";

// what artists and editors change without changing the shader
const Change changes[] = {
    {"a value", R"(value="0.5, 0.022, 0.014")", R"(value="0.1, 0.2, 0.3")"},
    {"a limit", R"(name="Max Scalar" kind="float" value="16")",
     R"(name="Max Scalar" kind="float" value="32")"},
    {"a description", "value=\"Colour of the paint.\"", "value=\"What the customer wants.\""},
    {"a position", R"(<property name="PositionX" kind="float" value="0"/>)",
     R"(<property name="PositionX" kind="float" value="12.5"/>)"},
    {"a help link", frameName, frameName + R"(<property name="Help Url" kind="string" value="http://h"/>)"},
    {"a group", frameName, frameName + R"(<property name="BindingGroup" kind="string" value="Rain"/>)"},
    {"an order of bindings", frameName,
     frameName + R"(<property name="BindingIndex" kind="integer" value="-7"/>)"},
    {"a comment", "<!-- per-vertex data -->", "<!-- data\n of the\n mesh -->"},
};

TEST(Determinism, WhatTheShaderDoesNotComputeIsNotInIt) {
    const std::string text = readText(PATINA_EXAMPLE);
    const Programs programs = programsOf(text);
    for (const Change& change : changes) {
        EXPECT_EQ(programsOf(replaced(text, change.piece, change.replacement)), programs) << change.what;
    }
}

TEST(Determinism, MaterialsOfDifferentNamesShareTheirPrograms) {
    const std::string body = testing::node("uv", "CoreUv") + testing::node("t", "CoreTexture") +
                             testing::connection("uv", "read", "t", "in_uv") +
                             testing::output("colour", "t", "out_colour");
    const auto exportOf = [&](const std::string& name) {
        Material material = testing::built(body);
        material.name = name;
        return testing::exportedFrom(material);
    };
    const ExportedMaterial rust = exportOf("Rust");
    const ExportedMaterial snow = exportOf("Snow");
    EXPECT_EQ(rust.vertexProgram.name, "Rust.vert.cg");
    EXPECT_EQ(snow.vertexProgram.name, "Snow.vert.cg");
    EXPECT_EQ(rust.vertexProgram.content, snow.vertexProgram.content);
    EXPECT_EQ(rust.fragmentProgram.content, snow.fragmentProgram.content);
    EXPECT_EQ(hashesIn(rust.bindings.content).size(), 2U);
    EXPECT_EQ(hashesIn(rust.bindings.content), hashesIn(snow.bindings.content));
}

TEST(Determinism, WhatTheShaderComputesIsInIt) {
    const std::string text = readText(PATINA_EXAMPLE);
    const Programs programs = programsOf(text);
    EXPECT_NE(programsOf(replaced(text, "0.2, 0.205, 0.215", "0.2, 0.205, 0.216")).fragment,
              programs.fragment)
        << "a locked colour is code";
}

} // namespace
} // namespace patina
