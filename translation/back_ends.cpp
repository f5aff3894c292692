#include "translation/back_ends.h"

#include "nodemodel/text.h"
#include "translation/target_words.h"
#include "translation/text_pieces.h"

#include <spirv_glsl.hpp>
#include <spirv_hlsl.hpp>
#include <spirv_msl.hpp>

#include <algorithm>
#include <map>
#include <set>

namespace patina {

using namespace detail;

namespace {

/// A module on its way into one target.
struct Translation {
    ProgramStage stage;
    SpirvModule module;
    std::vector<SpirvParameter> parameters;
    std::uint32_t version;
};

using Place = std::vector<std::pair<std::string, std::string>>;

ProgramParameter describe(const SpirvParameter& parameter, std::string targetName, Place place) {
    return {parameter.name, parameter.kind, parameter.type, std::move(targetName), std::move(place)};
}

bool isBlockMember(const SpirvParameter& parameter) { return parameter.kind == ParameterKind::Uniform; }

// SPIR-V

TranslatedProgram writeSpirv(const Translation& translation) {
    TranslatedProgram program;
    for (const std::uint32_t word : translation.module.words()) {
        for (std::uint32_t shift = 0; shift < 32; shift += 8) {
            program.content += static_cast<char>(static_cast<unsigned char>((word >> shift) & 0xFFU));
        }
    }
    const std::string set = std::to_string(descriptorSet(translation.stage));
    for (const SpirvParameter& parameter : translation.parameters) {
        const std::string number = std::to_string(parameter.number);
        Place place = {{"location", number}};
        if (isBlockMember(parameter)) {
            place = {{"set", set},
                     {"binding", std::to_string(uniformBlockBinding)},
                     {"offset", std::to_string(parameter.offset)}};
        } else if (parameter.kind == ParameterKind::Sampler) {
            place = {{"set", set}, {"binding", number}};
        } else if (!parameter.builtIn.empty()) {
            place = {{"builtin", parameter.builtIn}};
        }
        program.parameters.push_back(describe(parameter, parameter.name, std::move(place)));
    }
    return program;
}

// GLSL and ESSL

constexpr std::uint32_t glslWithLocations = 410; ///< the first in which all that is handed over may have them
constexpr std::uint32_t esslWithLocations = 310;

std::string glslBuiltIn(const std::string& builtIn) { return joinText({"gl_", builtIn}); }

Place glslPlace(const SpirvParameter& parameter, ProgramStage stage, bool hasLocations) {
    const bool isFree = parameter.kind == ParameterKind::Uniform ||
                        parameter.kind == ParameterKind::Sampler || !parameter.builtIn.empty();
    const bool isAtEnd = parameter.kind == ParameterKind::Attribute ||
                         (stage == ProgramStage::Fragment && parameter.kind == ParameterKind::Output);
    if (isFree || !(isAtEnd || hasLocations)) {
        return {};
    }
    return {{"location", std::to_string(parameter.number)}};
}

TranslatedProgram writeGlsl(Translation translation, bool isEs) {
    splitUniformBlock(translation.module, translation.parameters);
    spirv_cross::CompilerGLSL compiler(translation.module.words());
    spirv_cross::CompilerGLSL::Options options = compiler.get_common_options();
    options.version = translation.version;
    options.es = isEs;
    options.enable_420pack_extension = false;
    // what is not half in Cg is a float
    options.fragment.default_float_precision = spirv_cross::CompilerGLSL::Options::Highp;
    compiler.set_common_options(options);
    for (const SpirvParameter& parameter : translation.parameters) {
        if (parameter.kind == ParameterKind::Sampler) {
            // one numbering would hold for both programs, and each has its own
            compiler.unset_decoration(parameter.id, spv::DecorationBinding);
        }
    }
    TranslatedProgram program;
    program.content = compiler.compile();
    const bool hasLocations = translation.version >= (isEs ? esslWithLocations : glslWithLocations);
    for (const SpirvParameter& parameter : translation.parameters) {
        program.parameters.push_back(describe(parameter,
                                              parameter.builtIn.empty() ? compiler.get_name(parameter.id)
                                                                        : glslBuiltIn(parameter.builtIn),
                                              glslPlace(parameter, translation.stage, hasLocations)));
    }
    return program;
}

// HLSL

/// How the back end is to name a uniform; its own names have that of the block in front.
constexpr const char* uniformMark = "PatinaUniform";

using Names = std::set<std::string, std::less<>>;
using Replacements = std::map<std::string, std::string, std::less<>>;

/// Whether a name is like those that the back end makes up for the second thing of a name: "Tint_1".
bool isNumbered(std::string_view name) {
    const std::size_t end = name.find_last_not_of("0123456789");
    return end != std::string_view::npos && end + 1 < name.size() && name[end] == '_';
}

/// The name with the lowest number that makes it none of those that are taken, which it is then.
std::string allocate(Names& taken, const std::string& name) {
    for (int number = 1;; ++number) {
        std::string numbered = joinText({name, "_", std::to_string(number)});
        if (taken.insert(numbered).second) {
            return numbered;
        }
    }
}

/// Gives what has the name of a uniform another, since the back end does not know what they will be called.
void giveWay(SpirvModule& module, const std::vector<SpirvParameter>& parameters) {
    Names uniforms;
    for (const SpirvParameter& parameter : parameters) {
        if (isBlockMember(parameter)) {
            uniforms.insert(nameInTarget(TargetLanguage::Hlsl, parameter.name));
        }
    }
    Names taken = module.names();
    Replacements others;
    renameAll(module, [&](std::string_view name) {
        if (!uniforms.contains(name)) {
            return std::string(name);
        }
        std::string& other = others[std::string(name)];
        other = other.empty() ? allocate(taken, std::string(name)) : other;
        return other;
    });
}

/// Replaces names in a text. A name that the back end made up gives way to one that a uniform is to have.
std::string replaceNames(const std::string& text, const Replacements& replacements) {
    Names taken;
    forEachPiece(text, [&](std::string_view piece) { taken.emplace(piece); });
    Replacements all = replacements;
    for (const auto& [from, to] : replacements) {
        if (isNumbered(to) && !taken.insert(to).second) {
            all[to] = allocate(taken, to);
        }
    }
    std::string result;
    forEachPiece(text, [&](std::string_view piece) {
        const auto found = all.find(piece);
        result += found != all.end() ? std::string_view(found->second) : piece;
    });
    return result;
}

constexpr const char* pointSize = "PointSize";

std::string hlslSemantic(const SpirvParameter& parameter, ProgramStage stage) {
    if (parameter.builtIn == "Position" || parameter.builtIn == "FragCoord") {
        return "SV_Position";
    }
    if (parameter.builtIn == "FragDepth") {
        return "SV_Depth";
    }
    if (parameter.builtIn == "FrontFacing") {
        return "SV_IsFrontFace";
    }
    if (parameter.kind == ParameterKind::Attribute) {
        return joinText({"ATTR", std::to_string(parameter.number)});
    }
    const bool isColour = stage == ProgramStage::Fragment && parameter.kind == ParameterKind::Output;
    return joinText({isColour ? "SV_Target" : "TEXCOORD", std::to_string(parameter.number)});
}

TranslatedProgram writeHlsl(Translation translation) {
    giveWay(translation.module, translation.parameters);
    spirv_cross::CompilerHLSL compiler(translation.module.words());
    spirv_cross::CompilerHLSL::Options options = compiler.get_hlsl_options();
    options.shader_model = translation.version;
    options.point_size_compat = true;
    compiler.set_hlsl_options(options);
    Replacements names;
    for (const SpirvParameter& parameter : translation.parameters) {
        if (isBlockMember(parameter)) {
            const std::string code = joinText({"u", std::to_string(parameter.member)});
            compiler.set_name(parameter.id, uniformMark);
            compiler.set_member_name(compiler.get_type_from_variable(parameter.id).self, parameter.member,
                                     code);
            names[joinText({uniformMark, "_", code})] = nameInTarget(TargetLanguage::Hlsl, parameter.name);
        }
        if (parameter.kind == ParameterKind::Uniform || parameter.kind == ParameterKind::Sampler) {
            // buffers, textures and samplers have numbers of their own in each program
            compiler.set_decoration(parameter.id, spv::DecorationDescriptorSet, 0);
            compiler.set_decoration(parameter.id, spv::DecorationBinding, parameter.number);
        }
        if (parameter.kind == ParameterKind::Attribute) {
            compiler.add_vertex_attribute_remap(
                {parameter.number, hlslSemantic(parameter, translation.stage)});
        }
    }
    TranslatedProgram program;
    program.content = replaceNames(compiler.compile(), names);
    for (const SpirvParameter& parameter : translation.parameters) {
        const std::string number = std::to_string(parameter.number);
        if (parameter.builtIn == pointSize) {
            continue; // its points have one size, and the program does not write it
        }
        if (isBlockMember(parameter)) {
            program.parameters.push_back(
                describe(parameter, nameInTarget(TargetLanguage::Hlsl, parameter.name),
                         {{"buffer", "0"}, {"offset", std::to_string(parameter.offset)}}));
        } else if (parameter.kind == ParameterKind::Sampler) {
            program.parameters.push_back(describe(parameter, compiler.get_name(parameter.id),
                                                  {{"texture", number}, {"sampler", number}}));
        } else {
            program.parameters.push_back(describe(
                parameter,
                parameter.builtIn.empty() ? compiler.get_name(parameter.id) : glslBuiltIn(parameter.builtIn),
                {{"semantic", hlslSemantic(parameter, translation.stage)}}));
        }
    }
    return program;
}

// MSL

Place mslPlace(const SpirvParameter& parameter) {
    const std::string number = std::to_string(parameter.number);
    if (!parameter.builtIn.empty()) {
        return {};
    }
    switch (parameter.kind) {
    case ParameterKind::Uniform:
        return {{"buffer", "0"}, {"offset", std::to_string(parameter.offset)}};
    case ParameterKind::Sampler:
        return {{"texture", number}, {"sampler", number}};
    case ParameterKind::Attribute:
        return {{"attribute", number}};
    case ParameterKind::Output:
        return {{"color", number}};
    case ParameterKind::Interpolant:
        break;
    }
    return {{"user", joinText({"locn", number})}};
}

TranslatedProgram writeMsl(const Translation& translation) {
    spirv_cross::CompilerMSL compiler(translation.module.words());
    spirv_cross::CompilerMSL::Options options = compiler.get_msl_options();
    options.set_msl_version(translation.version / 10, translation.version % 10);
    options.enable_decoration_binding = true;
    compiler.set_msl_options(options);
    for (const SpirvParameter& parameter : translation.parameters) {
        if (isBlockMember(parameter) || parameter.kind == ParameterKind::Sampler) {
            compiler.set_decoration(parameter.id, spv::DecorationBinding, parameter.number);
        }
    }
    TranslatedProgram program;
    program.content = compiler.compile();
    for (const SpirvParameter& parameter : translation.parameters) {
        std::string name =
            parameter.builtIn.empty() ? compiler.get_name(parameter.id) : glslBuiltIn(parameter.builtIn);
        if (isBlockMember(parameter)) {
            name = compiler.get_member_name(compiler.get_type_from_variable(parameter.id).self,
                                            parameter.member);
        }
        program.parameters.push_back(describe(parameter, std::move(name), mslPlace(parameter)));
    }
    return program;
}

TranslatedProgram writeLanguage(const Translation& translation, TargetLanguage language) {
    switch (language) {
    case TargetLanguage::Glsl:
        return writeGlsl(translation, false);
    case TargetLanguage::Essl:
        return writeGlsl(translation, true);
    case TargetLanguage::Hlsl:
        return writeHlsl(translation);
    case TargetLanguage::Msl:
        return writeMsl(translation);
    case TargetLanguage::Spirv:
        return writeSpirv(translation);
    case TargetLanguage::Cg:
        break;
    }
    throw TranslationError("a Cg program need not be translated into Cg", 0);
}

} // namespace

TranslatedProgram detail::writeTarget(ProgramStage stage, const SpirvModule& module,
                                      const std::vector<SpirvParameter>& parameters,
                                      const ShaderTarget& target) {
    try {
        Translation translation = {stage, module, parameters, static_cast<std::uint32_t>(target.version)};
        renameAll(translation.module,
                  [&](std::string_view name) { return nameInTarget(target.language, name); });
        nameUniformBlock(translation.module, parameters);
        return writeLanguage(translation, target.language);
    } catch (const spirv_cross::CompilerError& error) {
        throw TranslationError(error.what(), 0);
    }
}

} // namespace patina
