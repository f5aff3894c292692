#pragma once

#include "shadergraph/shader_type.h"

#include <exception>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace patina {

/// Which of a material's two programs.
enum class ProgramStage { Vertex, Fragment };

enum class TargetLanguage { Cg, Hlsl, Glsl, Essl, Msl, Spirv };

/// A language that programs are exported in, and its version: 330 or 450 of GLSL, 300 or 310 of ESSL, 50 and
/// up for shader models of HLSL, 20 and up of MSL, 10 and up of SPIR-V; 0 for Cg.
struct ShaderTarget {
    TargetLanguage language = TargetLanguage::Cg;
    int version = 0;

    bool operator==(const ShaderTarget&) const = default;
};

enum class ParameterKind { Uniform, Sampler, Attribute, Interpolant, Output };

/// A parameter of a translated program, and where it landed.
struct ProgramParameter {
    std::string name; ///< in the Cg program
    ParameterKind kind = ParameterKind::Uniform;
    ShaderType type;        ///< in the Cg program
    std::string targetName; ///< in the target; the same, unless the target has that for itself
    /// Where it is to be found in the target, as names and numbers: "location" "1", "offset" "64".
    std::vector<std::pair<std::string, std::string>> place;
};

/// A program in another language: text, or the words of SPIR-V as bytes, little-endian.
struct TranslatedProgram {
    std::string content;
    std::vector<ProgramParameter> parameters; ///< those that the program reads or writes
};

/// Why a program cannot be translated.
class TranslationError : public std::exception {
public:
    TranslationError(std::string message, int line) : message_(std::move(message)), line_(line) {}

    const char* what() const noexcept override { return message_.c_str(); }
    int line() const noexcept { return line_; } ///< of the Cg program, from 1; 0 when none is to blame

private:
    std::string message_;
    int line_;
};

/// Brings Cg programs into other languages. Threads: thread-safe.
class ShaderTranslator {
public:
    virtual ~ShaderTranslator() = default;

    /// The program in each of the targets, in their order. Uniforms, samplers and varyings keep their names,
    /// and where a target has one for itself the new one depends on nothing but the old: the two programs of
    /// a material agree about it, and no two become one.
    /// Throws TranslationError when the program does not compile, or cannot be expressed in a target.
    virtual std::vector<TranslatedProgram> translate(ProgramStage stage, std::string_view program,
                                                     const std::vector<ShaderTarget>& targets) const = 0;
};

} // namespace patina
