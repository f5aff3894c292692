// Translated programs, read by tools that know nothing of how they were made.

#include "tests/host/host_checks.h"
#include "tests/host/process.h"
#include "tests/translation/program_pairs.h"
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
    explicit Programs(std::vector<ShaderTarget> targets) : targets_(std::move(targets)) {}

    void add(const std::string& name, ProgramStage stage, const std::string& program) {
        const std::vector<TranslatedProgram> translated = translator().translate(stage, program, targets_);
        const std::string stageName = stage == ProgramStage::Vertex ? "vert" : "frag";
        for (std::size_t i = 0; i < translated.size(); ++i) {
            const TargetLanguage language = targets_[i].language;
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

    std::vector<ShaderTarget> targets_;
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

void expectAllValid(const std::vector<testing::ProgramPair>& pairs,
                    const std::vector<ShaderTarget>& targets = allTargets()) {
    Programs programs(targets);
    int number = 0;
    for (const testing::ProgramPair& pair : pairs) {
        SCOPED_TRACE(pair.name);
        const std::string name = "program" + std::to_string(++number);
        programs.add(name, ProgramStage::Vertex, pair.vertex);
        programs.add(name, ProgramStage::Fragment, pair.fragment);
    }
    programs.expectValid();
}

TEST_F(Validate, PaintedMetal) { expectAllValid({testing::examplePair()}); }

TEST_F(Validate, EveryNodeInEveryMode) { expectAllValid(testing::nodePairs()); }

TEST_F(Validate, ParametersInRegisters) { expectAllValid({testing::registerPair()}); }

// SPIR-V has none to keep
TEST_F(Validate, NamesThatTargetsKeep) {
    expectAllValid(testing::awkwardPairs(), {{TargetLanguage::Glsl, 330}, {TargetLanguage::Hlsl, 50}});
}

TEST_F(Validate, SizesOfPoints) { expectAllValid({testing::pointPair()}); }

} // namespace
} // namespace patina
