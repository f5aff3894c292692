// Translated programs, read by tools that know nothing of how they were made.

#include "tests/host/host_checks.h"
#include "tests/host/process.h"
#include "tests/host/sample_materials.h"
#include "translation/translator.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

namespace patina {
namespace {

using testing::Outcome;
using testing::TemporaryDirectory;

constexpr const char* compiler = "glslangValidator";
constexpr const char* moduleValidator = "spirv-val";

bool hasTools() {
    return testing::run(compiler, {"--version"}).exitCode == 0 &&
           testing::run(moduleValidator, {"--version"}).exitCode == 0;
}

const std::vector<ShaderTarget>& allTargets() {
    static const std::vector<ShaderTarget> targets = {{TargetLanguage::Glsl, 330},
                                                      {TargetLanguage::Essl, 300},
                                                      {TargetLanguage::Hlsl, 50},
                                                      {TargetLanguage::Msl, 20},
                                                      {TargetLanguage::Spirv, 10}};
    return targets;
}

const ShaderTranslator& translator() {
    static const std::unique_ptr<ShaderTranslator> made = makeTranslator();
    return *made;
}

/// Programs as files of one directory, by stage and language.
class Programs {
public:
    void add(const std::string& name, ProgramStage stage, const std::string& program) {
        const std::vector<TranslatedProgram> translated =
            translator().translate(stage, program, allTargets());
        const std::string stageName = stage == ProgramStage::Vertex ? "vert" : "frag";
        for (std::size_t i = 0; i < translated.size(); ++i) {
            const TargetLanguage language = allTargets()[i].language;
            const std::string file = name + "." + targetName(language) + "." + stageName;
            files_[{stageName, language}].push_back(directory_.write(file, translated[i].content).string());
        }
    }

    void expectValid() const {
        for (const auto& [kind, files] : files_) {
            const auto& [stage, language] = kind;
            switch (language) {
            case TargetLanguage::Spirv:
                expectValidModules(files);
                break;
            case TargetLanguage::Hlsl:
                expectReadAsHlsl(stage, files);
                break;
            case TargetLanguage::Glsl:
            case TargetLanguage::Essl:
                expectReadAsGlsl(stage, files);
                break;
            case TargetLanguage::Msl:
            case TargetLanguage::Cg:
                break; // nothing here reads it
            }
        }
    }

private:
    static void expectValidModules(const std::vector<std::string>& files) {
        for (const std::string& file : files) {
            const Outcome outcome = testing::run(moduleValidator, {"--target-env", "vulkan1.0", file});
            EXPECT_EQ(outcome.exitCode, 0) << file << ": " << outcome.errors << outcome.output;
        }
    }

    static void expectReadAsGlsl(const std::string& stage, const std::vector<std::string>& files) {
        std::vector<std::string> arguments = {"-S", stage};
        arguments.insert(arguments.end(), files.begin(), files.end());
        const Outcome outcome = testing::run(compiler, arguments);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.output;
    }

    /// Linking all in one process fails, since each has a main; only what is reported of a file counts.
    void expectReadAsHlsl(const std::string& stage, const std::vector<std::string>& files) const {
        std::vector<std::string> arguments = {"-D",   "-S", stage, "-e",
                                              "main", "-V", "-o",  (directory_ / "linked.spv").string()};
        arguments.insert(arguments.end(), files.begin(), files.end());
        const Outcome outcome = testing::run(compiler, arguments);
        EXPECT_LT(outcome.exitCode, 128) << "the compiler crashed";
        for (const std::string& file : files) {
            EXPECT_NE(outcome.output.find(file + "\n"), std::string::npos) << file << " was not read";
            const std::size_t error = outcome.output.find("ERROR: " + file + ":");
            if (error != std::string::npos) {
                ADD_FAILURE() << outcome.output.substr(error, 500) << "\n" << testing::readText(file);
            }
        }
    }

    TemporaryDirectory directory_;
    std::map<std::pair<std::string, TargetLanguage>, std::vector<std::string>> files_;
};

class Validate : public ::testing::Test {
protected:
    void SetUp() override {
        if (!hasTools()) {
            GTEST_SKIP() << "there is no " << compiler << ", or no " << moduleValidator;
        }
    }
};

TEST_F(Validate, PaintedMetal) {
    Warnings warnings;
    Material material = buildMaterial(readMaterial(PATINA_EXAMPLE), testing::corePlugins(), warnings);
    const ExportedMaterial exported = testing::exportedFrom(material);
    Programs programs;
    programs.add("painted_metal", ProgramStage::Vertex, exported.vertexProgram.content);
    programs.add("painted_metal", ProgramStage::Fragment, exported.fragmentProgram.content);
    programs.expectValid();
}

TEST_F(Validate, EveryNodeInEveryMode) {
    Programs programs;
    int number = 0;
    for (const testing::SampleGroup& group : testing::sampleGroups()) {
        for (const testing::Sample& sample : group.samples) {
            SCOPED_TRACE(group.name + ": " + sample.name);
            const ExportedMaterial exported = testing::exported(sample.body);
            const std::string name = "program" + std::to_string(++number);
            programs.add(name, ProgramStage::Vertex, exported.vertexProgram.content);
            programs.add(name, ProgramStage::Fragment, exported.fragmentProgram.content);
        }
    }
    programs.expectValid();
}

TEST_F(Validate, ParametersInRegisters) {
    const testing::CgPrograms printed = testing::programsWithRegisters();
    Programs programs;
    programs.add("registers", ProgramStage::Vertex, printed.vertex);
    programs.add("registers", ProgramStage::Fragment, printed.fragment);
    programs.expectValid();
}

TEST_F(Validate, WordsOfHlslAsNames) {
    const std::string vertex = "void main( float4 position : ATTR0, float2 NAME : ATTR1,\n"
                               "\tout float4 place : POSITION, out float2 handed : TEXCOORD0 )\n"
                               "{ place = position; handed = NAME; }\n";
    const std::string fragmentBody =
        "void main( float2 STREAM : TEXCOORD0, out float4 colour : COLOR0 )\n"
        "{ float2 LOCAL = STREAM * 2.0; colour = f4tex2D( PAINT, LOCAL ) + TINT; }\n";
    Programs programs;
    int number = 0;
    for (const std::string word : {"globallycoherent", "SubpassInput", "linear", "sample", "min16float",
                                   "min12int3", "WPOS", "TEXUNIT0", "line", "SamplerState"}) {
        const auto withWord = [&](std::string text, const std::string& mark) {
            for (const std::string name : {"NAME", "STREAM", "LOCAL", "PAINT", "TINT"}) {
                const std::string& used = name == mark ? word : name + "_";
                for (std::size_t at = text.find(name); at != std::string::npos; at = text.find(name, at)) {
                    text.replace(at, name.size(), used);
                    at += used.size();
                }
            }
            return text;
        };
        const std::string fragment =
            "uniform sampler2D PAINT : TEXUNIT0;\nuniform float4 TINT : register( c0 );\n" + fragmentBody;
        const std::string name = "word" + std::to_string(++number);
        programs.add(name, ProgramStage::Vertex, withWord(vertex, "NAME"));
        for (const std::string mark : {"STREAM", "LOCAL", "PAINT", "TINT"}) {
            programs.add(name + mark, ProgramStage::Fragment, withWord(fragment, mark));
        }
    }
    programs.expectValid();
}

TEST_F(Validate, SizesOfPoints) {
    Programs programs;
    programs.add("points", ProgramStage::Vertex,
                 "void main( float4 position : ATTR0, out float4 place : POSITION, out float size : PSIZE )\n"
                 "{ place = position; size = position.x; }\n");
    programs.expectValid();
}

} // namespace
} // namespace patina
