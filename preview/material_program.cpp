#include "preview/material_program.h"

#include "nodemodel/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <set>

namespace patina::preview {

using namespace detail;

namespace {

const TargetProgram& programOf(const ExportedMaterial& exported, ProgramStage stage) {
    return *std::find_if(exported.targetPrograms.begin(), exported.targetPrograms.end(),
                         [&](const TargetProgram& program) { return program.stage == stage; });
}

GlProgram link(const ExportedMaterial& exported) {
    return {programOf(exported, ProgramStage::Vertex).file.content,
            programOf(exported, ProgramStage::Fragment).file.content};
}

// Vertex streams

using ReadStream = Vec4 (*)(const Vertex& vertex);

Vec4 widened(const Vec3& value, float last) { return {value[0], value[1], value[2], last}; }

Vec4 position(const Vertex& vertex) { return widened(vertex.position, 1.0F); }
Vec4 normal(const Vertex& vertex) { return widened(vertex.normal, 0.0F); }
Vec4 tangent(const Vertex& vertex) { return vertex.tangent; }
Vec4 uv(const Vertex& vertex) { return {vertex.uv[0], vertex.uv[1], 0.0F, 1.0F}; }
Vec4 colour(const Vertex& vertex) { return vertex.colour; }

Vec4 binormal(const Vertex& vertex) {
    const Vec3 along = {vertex.tangent[0], vertex.tangent[1], vertex.tangent[2]};
    return widened(cross(vertex.normal, along) * vertex.tangent[3], 0.0F);
}

struct StreamEntry {
    BindingKind kind;
    const char* name; ///< of an attribute that no binding presents
    ReadStream read;
};

constexpr std::array<StreamEntry, 6> streamTable = {{
    {BindingKind::Position, "position", position},
    {BindingKind::Normal, "normal", normal},
    {BindingKind::Tangent, "tangent", tangent},
    {BindingKind::Binormal, "binormal", binormal},
    {BindingKind::Uv, "uv", uv},
    {BindingKind::Colour, "colour", colour},
}};

/// Whether a name begins as those of texture coordinates do: "uv1", "texcoord0".
bool isUvName(const std::string& name) {
    const std::string lower = lowerCase(name);
    return lower.rfind("uv", 0) == 0 || lower.rfind("texcoord", 0) == 0;
}

ReadStream findStream(const std::string& attribute, const Binding* binding) {
    for (const StreamEntry& entry : streamTable) {
        if (binding != nullptr ? binding->kind == entry.kind : attribute == entry.name) {
            return entry.read;
        }
    }
    return binding == nullptr && isUvName(attribute) ? uv : nullptr;
}

int locationOf(const ProgramParameter& parameter) {
    int location = 0;
    for (const auto& [key, text] : parameter.place) {
        if (key == "location") {
            std::from_chars(text.data(), text.data() + text.size(), location);
        }
    }
    return location;
}

// Uniforms

/// What is set beside the values of bindings.
constexpr std::array<const char*, 8> suppliedUniforms = {
    "worldViewProjection", "world",        "eyePosition",  "lightDirections",
    "lightColours",        "ambientAbove", "ambientBelow", "time"};

/// Those of them that are the framework's in a lit material. In another, a node has them for itself.
constexpr std::array<const char*, 6> litUniforms = {"world",        "eyePosition",  "lightDirections",
                                                    "lightColours", "ambientAbove", "ambientBelow"};

std::size_t numberCount(const ShaderType& type) {
    return static_cast<std::size_t>(type.columns) * static_cast<std::size_t>(type.rows) *
           static_cast<std::size_t>(type.arraySize);
}

// Textures

/// A texture of one dimension takes the middle row of an image.
std::vector<float> middleRow(const TextureLevel& level) {
    const std::ptrdiff_t rowSize = std::ptrdiff_t{4} * level.width;
    const auto begin = level.texels.begin() + rowSize * (level.height / 2);
    return {begin, begin + rowSize};
}

bool canLoadTexture(const ProgramParameter& parameter) {
    return parameter.type.componentType == ComponentType::Sampler1D ||
           parameter.type.componentType == ComponentType::Sampler2D;
}

GlTexture loadTexture(const ProgramParameter& parameter, const MaterialInputs& inputs,
                      const GlContext& context, Warnings& warnings, Errors& errors) {
    constexpr float anisotropy = 8.0F;
    const TextureInput input = inputs.texture(parameter.name, context.textureLimit(), warnings, errors);
    const TextureOptions options = {.format = input.format,
                                    .anisotropy = std::min(anisotropy, context.anisotropyLimit())};
    if (parameter.type.componentType == ComponentType::Sampler1D) {
        return {middleRow(input.levels.front()), options};
    }
    return {input.levels, options};
}

} // namespace

MaterialProgram::MaterialProgram(const ExportedMaterial& exported, MaterialInputs inputs,
                                 const GlContext& context, Warnings& warnings, Errors& errors)
    : program_(link(exported)), inputs_(std::move(inputs)), lit_(exported.lit) {
    for (const TargetProgram& program : exported.targetPrograms) {
        parameters_.insert(parameters_.end(), program.parameters.begin(), program.parameters.end());
    }
    loadTextures(context, warnings, errors);
    warnOfUnsetUniforms(warnings);
    chooseStreams(warnings);
    setLights();
    setTime(0.0);
}

/// The programs may have the parameter under different names, if at all.
void MaterialProgram::set(const std::string& parameter, std::span<const float> values) {
    for (const ProgramParameter& entry : parameters_) {
        if (entry.name == parameter && entry.kind == ParameterKind::Uniform) {
            std::vector<float> fitting(values.begin(), values.end());
            fitting.resize(numberCount(entry.type));
            program_.setUniform(entry.targetName, fitting);
        }
    }
}

/// Of a parameter that both a binding and the framework have, the value is the framework's unless the options
/// say otherwise.
bool MaterialProgram::isBindings(const std::string& parameter) const {
    const Binding* binding = inputs_.find(parameter);
    const bool isFrameworks =
        parameter == "worldViewProjection" ||
        (lit_ && std::find(litUniforms.begin(), litUniforms.end(), parameter) != litUniforms.end());
    return binding != nullptr && binding->kind == BindingKind::Float &&
           (!isFrameworks || inputs_.isGiven(*binding));
}

void MaterialProgram::supply(const std::string& parameter, std::span<const float> values) {
    if (!isBindings(parameter)) {
        set(parameter, values);
    }
}

void MaterialProgram::setLights() {
    const Lighting& lighting = studioLighting();
    std::vector<float> directions;
    std::vector<float> colours;
    for (const Light& light : lighting.lights) {
        directions.insert(directions.end(), light.direction.begin(), light.direction.end());
        colours.insert(colours.end(), light.colour.begin(), light.colour.end());
    }
    supply("lightDirections", directions);
    supply("lightColours", colours);
    supply("ambientAbove", lighting.above);
    supply("ambientBelow", lighting.below);
}

void MaterialProgram::setTime(double seconds) {
    supply("time", std::array<float, 1>{static_cast<float>(seconds)});
    for (const ProgramParameter& parameter : parameters_) {
        if (parameter.kind == ParameterKind::Uniform && isBindings(parameter.name)) {
            set(parameter.name, inputs_.value(*inputs_.find(parameter.name), seconds));
        }
    }
}

void MaterialProgram::setView(const Matrix& world, const Matrix& worldViewProjection, const Vec3& eye) {
    supply("world", world);
    supply("worldViewProjection", worldViewProjection);
    supply("eyePosition", eye);
}

Warning MaterialProgram::warning(std::string text) const {
    Warning made;
    made.position.file = inputs_.materialFile();
    made.text = std::move(text);
    return made;
}

void MaterialProgram::warnOfUnsetUniforms(Warnings& warnings) const {
    std::set<std::string> known(suppliedUniforms.begin(), suppliedUniforms.end());
    for (const ProgramParameter& parameter : parameters_) {
        if (parameter.kind == ParameterKind::Uniform && inputs_.find(parameter.name) == nullptr &&
            known.insert(parameter.name).second) {
            warnings.push_back(warning(joinText(
                {"no binding presents the uniform \"", parameter.name, "\"; it is 0 in this preview"})));
        }
    }
}

/// Each sampler reads a texture unit of its own, in both programs; also one that has nothing to read, as
/// samplers of different types must not share a unit.
void MaterialProgram::loadTextures(const GlContext& context, Warnings& warnings, Errors& errors) {
    std::map<std::string, int> units;
    for (const ProgramParameter& parameter : parameters_) {
        if (parameter.kind != ParameterKind::Sampler) {
            continue;
        }
        const auto [unit, isNew] = units.try_emplace(parameter.name, static_cast<int>(units.size()));
        if (isNew && canLoadTexture(parameter)) {
            textures_.emplace(unit->second, loadTexture(parameter, inputs_, context, warnings, errors));
        } else if (isNew) {
            warnings.push_back(warning(
                joinText({"the texture \"", parameter.name, "\" is a ", componentTypeName(parameter.type),
                          "; previews show those of 1D and 2D, and black for it"})));
        }
        program_.setSampler(parameter.targetName, unit->second);
    }
}

void MaterialProgram::chooseStreams(Warnings& warnings) {
    for (const ProgramParameter& parameter : parameters_) {
        if (parameter.kind != ParameterKind::Attribute) {
            continue;
        }
        if (const ReadStream read = findStream(parameter.name, inputs_.find(parameter.name))) {
            streams_.push_back({locationOf(parameter), read});
        } else {
            warnings.push_back(warning(joinText({"no mesh of a preview has the vertex stream \"",
                                                 parameter.name, "\"; it is (0, 0, 0, 1)"})));
        }
    }
}

GlGeometry MaterialProgram::geometry(const Mesh& mesh) const {
    constexpr int components = 4;
    std::vector<std::vector<float>> values;
    std::vector<GlAttribute> attributes;
    for (const Stream& stream : streams_) {
        std::vector<float> list;
        list.reserve(mesh.vertices.size() * components);
        for (const Vertex& vertex : mesh.vertices) {
            const Vec4 value = stream.read(vertex);
            list.insert(list.end(), value.begin(), value.end());
        }
        attributes.push_back({stream.location, components, list});
        values.push_back(std::move(list)); // the floats stay where they are
    }
    return {attributes, mesh.indices};
}

void MaterialProgram::use() const {
    program_.use();
    for (const auto& [unit, texture] : textures_) {
        texture.bind(unit);
    }
}

} // namespace patina::preview
