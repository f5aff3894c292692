// Generated programs, read by a real compiler's front end: no file of it knows how they were made.

#include "tests/host/host_checks.h"
#include "tests/host/process.h"
#include "tests/host/sample_materials.h"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace patina {
namespace {

using testing::exported;
using testing::maths;
using testing::output;
using testing::Sample;
using testing::TemporaryDirectory;

constexpr const char* compiler = "glslangValidator";

bool hasCompiler() { return testing::run(compiler, {"--version"}).exitCode == 0; }

/// Programs as files of one directory, behind the prelude that gives the front end Cg's functions.
class Programs {
public:
    void add(const std::string& name, const ExportedMaterial& material) {
        write(vertex_, name + ".vert.hlsl", material.vertexProgram.content);
        write(fragment_, name + ".frag.hlsl", material.fragmentProgram.content);
    }

    /// Reads all programs of each stage in one process. Linking them fails, since each has a main; only what
    /// is reported of a file counts.
    void expectRead() const {
        for (const auto& [stage, files] : {std::pair{"vert", &vertex_}, {"frag", &fragment_}}) {
            std::vector<std::string> arguments = {"-D",   "-S", stage, "-e",
                                                  "main", "-V", "-o",  (directory_ / "linked.spv").string()};
            arguments.insert(arguments.end(), files->begin(), files->end());
            const testing::Outcome outcome = testing::run(compiler, arguments);
            EXPECT_LT(outcome.exitCode, 128) << "the compiler crashed";
            for (const std::string& file : *files) {
                EXPECT_NE(outcome.output.find(file + "\n"), std::string::npos) << file << " was not read";
                const std::size_t error = outcome.output.find("ERROR: " + file + ":");
                if (error != std::string::npos) {
                    ADD_FAILURE() << outcome.output.substr(error, 500) << "\n" << testing::readText(file);
                }
            }
        }
    }

    /// Compiles each program to the end.
    void expectCompiled() const {
        for (const auto& [stage, files] : {std::pair{"vert", &vertex_}, {"frag", &fragment_}}) {
            for (const std::string& file : *files) {
                const auto binary = directory_ / "program.spv";
                const testing::Outcome outcome = testing::run(
                    compiler, {"-D", "-S", stage, "-e", "main", "-V", "-o", binary.string(), file});
                EXPECT_EQ(outcome.exitCode, 0) << outcome.output << outcome.errors << testing::readText(file);
                EXPECT_TRUE(std::filesystem::exists(binary));
                std::filesystem::remove(binary);
            }
        }
    }

private:
    void write(std::vector<std::string>& files, const std::string& name, const std::string& program) {
        static const std::string prelude = testing::readText(PATINA_CG_PRELUDE);
        files.push_back(directory_.write(name, prelude + program).string());
    }

    TemporaryDirectory directory_;
    std::vector<std::string> vertex_;
    std::vector<std::string> fragment_;
};

void expectRead(const std::vector<Sample>& samples) {
    if (!hasCompiler()) {
        GTEST_SKIP() << "there is no " << compiler;
    }
    Programs programs;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        SCOPED_TRACE(samples[i].name);
        std::string name = std::to_string(i) + "_" + samples[i].name;
        for (char& letter : name) {
            letter = letter == ' ' ? '_' : letter;
        }
        try {
            programs.add(name, exported(samples[i].body));
        } catch (const HostError& error) {
            ADD_FAILURE() << error.what();
        }
    }
    programs.expectRead();
}

TEST(Compiler, TellsGoodProgramsFromBad) {
    if (!hasCompiler()) {
        GTEST_SKIP() << "there is no " << compiler;
    }
    ExportedMaterial material = exported(maths("m", "Invert") + output("colour", "m", "out_value"));
    Programs good;
    good.add("good", material);
    good.expectCompiled();
    material.fragmentProgram.content += "void broken( { }\n";
    Programs bad;
    bad.add("bad", material);
    EXPECT_NONFATAL_FAILURE(bad.expectRead(), "bad.frag.hlsl");
}

TEST(Compile, Examples) {
    if (!hasCompiler()) {
        GTEST_SKIP() << "there is no " << compiler;
    }
    Programs programs;
    for (const auto& entry : std::filesystem::directory_iterator(PATINA_EXAMPLES)) {
        if (entry.path().extension() == ".xml") {
            Warnings warnings;
            Material material = buildMaterial(readMaterial(entry.path()), testing::corePlugins(), warnings);
            EXPECT_TRUE(warnings.empty()) << entry.path();
            programs.add(entry.path().stem().string(), testing::exportedFrom(material));
        }
    }
    programs.expectCompiled();
}

TEST(Compile, ParametersInRegisters) {
    if (!hasCompiler()) {
        GTEST_SKIP() << "there is no " << compiler;
    }
    const testing::CgPrograms printed = testing::programsWithRegisters();
    for (const char* line :
         {"uniform float4x4 worldViewProjection : register( c0 );\n",
          "uniform float4x4 Turn : register( c6 );\n", "uniform float4 Far : register( c1023 );\n",
          "uniform float4 Near : register( c5 );\n", "uniform half Last : register( c4 );\n",
          "float4 Wear : ATTR7,\n"}) {
        EXPECT_NE(printed.vertex.find(line), std::string::npos) << line << " in: " << printed.vertex;
    }
    ExportedMaterial material;
    material.vertexProgram.content = printed.vertex;
    material.fragmentProgram.content = printed.fragment;
    Programs programs;
    programs.add("registers", material);
    programs.expectCompiled();
}

TEST(Compile, EveryNodeInEveryMode) {
    for (const testing::SampleGroup& group : testing::sampleGroups()) {
        SCOPED_TRACE(group.name);
        expectRead(group.samples);
    }
}

} // namespace
} // namespace patina
