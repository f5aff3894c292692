#include "tests/execution/executor.h"

#include "preview/gl_geometry.h"
#include "preview/gl_program.h"
#include "tests/execution/images.h"
#include "tests/host/host_checks.h"
#include "translation/translator.h"

#include <stdlib.h> // NOLINT: setenv is POSIX

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <span>
#include <stdexcept>

namespace patina::testing {

namespace {

constexpr std::array<float, 16> identity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
constexpr std::size_t cornersOfPoint = 4;
constexpr ShaderTarget glsl = {TargetLanguage::Glsl, 330};

std::unique_ptr<preview::GlContext> makeContext(const char* driver) {
    setenv("GALLIUM_DRIVER", driver, 1);
    setenv("MESA_SHADER_CACHE_DISABLE", "true", 1); // nothing is kept on disk
    return std::make_unique<preview::GlContext>();
}

std::string numberText(double number) {
    std::array<char, 64> digits = {};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number);
    return {digits.data(), end.ptr};
}

/// Where the pixels of a run of points lie.
std::vector<float> positionsOf(std::size_t first, std::size_t count) {
    std::vector<float> positions;
    for (std::size_t point = first; point < first + count; ++point) {
        const std::size_t column = point % targetWidth;
        const std::size_t row = point / targetWidth;
        for (const auto& [right, up] : {std::pair{0U, 0U}, {1U, 0U}, {1U, 1U}, {0U, 1U}}) {
            positions.push_back(static_cast<float>(column + right) * 2 / targetWidth - 1);
            positions.push_back(static_cast<float>(row + up) * 2 / targetHeight - 1);
            positions.push_back(0);
            positions.push_back(1);
        }
    }
    return positions;
}

std::vector<std::uint32_t> trianglesOf(std::size_t points) {
    std::vector<std::uint32_t> indices;
    for (std::uint32_t corner = 0; corner < points * cornersOfPoint; corner += cornersOfPoint) {
        indices.insert(indices.end(), {corner, corner + 1, corner + 2, corner, corner + 2, corner + 3});
    }
    return indices;
}

/// Draws a run of points with what the program reads per vertex.
void drawPoints(const preview::GlProgram& program, std::span<const InputSet> inputs, std::size_t first) {
    std::map<std::string, std::vector<float>> values;
    values["position"] = positionsOf(first, inputs.size());
    for (const InputSet& set : inputs) {
        for (const auto& [name, numbers] : set) {
            for (std::size_t corner = 0; corner < cornersOfPoint; ++corner) {
                values[name].insert(values[name].end(), numbers.begin(), numbers.end());
            }
        }
    }
    std::vector<preview::GlAttribute> attributes;
    for (const preview::GlVariable& variable : program.attributes()) {
        attributes.push_back({variable.location, 4, values.at(variable.name)});
    }
    preview::GlGeometry(attributes, trianglesOf(inputs.size())).draw();
}

bool isUniform(const GraphNode& node) { return node.type == "CoreConstant" && !node.isSet("Lock"); }

/// How many of an input's numbers the program's uniform has.
std::size_t uniformWidth(const GraphNode& node, const Graph& graph, std::size_t index) {
    const std::string type = node.setting("Constant Type", "Colour");
    if (type == "Scalar") {
        return 1;
    }
    if (type == "Vector") {
        return static_cast<std::size_t>(node.number("Component Count", 4));
    }
    // a colour has its alpha where something reads it
    bool isAlphaRead = graph.shown.node == index && graph.shown.port == "alpha";
    for (const GraphNode& reader : graph.nodes) {
        for (const auto& [input, source] : reader.inputs) {
            isAlphaRead = isAlphaRead || (source.node == index && source.port == "alpha");
        }
    }
    return isAlphaRead ? 4 : 3;
}

void setUniforms(preview::GlProgram& program, const Graph& graph, const InputSet& set) {
    program.setUniform("worldViewProjection", identity);
    for (std::size_t i = 0; i < graph.nodes.size(); ++i) {
        const GraphNode& node = graph.nodes[i];
        const auto found = set.find(node.name());
        if (isUniform(node) && found != set.end()) {
            program.setUniform(node.name(), std::span(found->second).first(uniformWidth(node, graph, i)));
        }
    }
}

std::string inputText(const InputSet& set) {
    std::string text;
    for (const auto& [name, numbers] : set) {
        text += name + " = (";
        for (std::size_t i = 0; i < numbers.size(); ++i) {
            text += (i == 0 ? "" : ", ") + numberText(static_cast<double>(numbers[i]));
        }
        text += ") ";
    }
    return text;
}

/// The four numbers that show a value of one to four components.
BoundedVector shownVector(BoundedVector value) {
    if (value.size() == 1) {
        value.resize(3, value.front());
    }
    if (value.size() == 2) {
        value.push_back({0, 0});
    }
    if (value.size() == 3) {
        value.push_back({1, 0});
    }
    return value;
}

const PluginSet& coreAndTypedPlugins() {
    static const PluginSet plugins = [] {
        PluginSet set;
        set.add(PATINA_CORENODES);
        set.add(PATINA_TYPED_NODES);
        return set;
    }();
    return plugins;
}

/// Whether results may cross from vertices to fragments. Infinities do not survive that.
bool runsPerVertex(const Graph& graph) {
    return std::any_of(graph.nodes.begin(), graph.nodes.end(), [](const GraphNode& node) {
        return node.setting("Execution Level", node.type == "CoreAnimatedUv" ? "Vertex" : "") == "Vertex";
    });
}

} // namespace

ShownPrograms exportShown(const Graph& graph) {
    Material material =
        built(graph.elements() + output("colour", Graph::idOf(graph.shown.node), graph.shown.port),
              coreAndTypedPlugins());
    const ExportedMaterial exported = exportedFrom(material, {.showValue = true});
    return {exported.vertexProgram.content, exported.fragmentProgram.content};
}

Executor::Executor(const char* driver)
    : context_(makeContext(driver)), target_(static_cast<int>(targetWidth), static_cast<int>(targetHeight)),
      translator_(makeTranslator()) {}

Executor::~Executor() = default;

const preview::GlTexture& Executor::texture(const std::string& name, int dimensions) {
    const auto found = textures_.find({name, dimensions});
    if (found != textures_.end()) {
        return found->second;
    }
    const Image& image = imageOf(name, dimensions);
    std::vector<float> texels;
    for (const std::uint8_t channel : image.channels) {
        texels.push_back(static_cast<float>(channel) / 255);
    }
    const preview::TextureOptions options = {preview::TexelFormat::Byte, preview::TextureFilter::Nearest};
    const preview::TextureLevel level = {image.width, image.height, texels};
    preview::GlTexture texture = dimensions == 1 ? preview::GlTexture(texels, options)
                                                 : preview::GlTexture(std::span(&level, 1), options);
    return textures_.emplace(std::pair(name, dimensions), std::move(texture)).first->second;
}

std::string Executor::translated(ProgramStage stage, const std::string& program) const {
    return translator_->translate(stage, program, {glsl}).front().content;
}

Pixels Executor::draw(const ShownPrograms& programs, const Graph& graph,
                      const std::vector<InputSet>& inputs) {
    preview::GlProgram program(translated(ProgramStage::Vertex, programs.vertex),
                               translated(ProgramStage::Fragment, programs.fragment));
    program.use();
    // all are made before any is bound: making one binds it too
    std::vector<std::pair<const preview::GlTexture*, std::string>> textures;
    for (const GraphNode& node : graph.nodes) {
        if (node.type == "CoreTexture") {
            const int dimensions = node.setting("Texture Type", "2D") == "1D" ? 1 : 2;
            textures.emplace_back(&texture(node.name(), dimensions), node.name());
        }
    }
    int unit = 0;
    for (const auto& [image, name] : textures) {
        if (program.setSampler(name, unit)) {
            image->bind(unit++);
        }
    }
    if (inputs.size() > targetWidth * targetHeight) {
        throw std::invalid_argument("there are more points than pixels");
    }
    target_.bind();
    target_.clear({-7, -7, -7, -7});
    const bool hasUniforms = std::any_of(graph.nodes.begin(), graph.nodes.end(), isUniform);
    const std::size_t atOnce = hasUniforms ? 1 : inputs.size();
    for (std::size_t first = 0; first < inputs.size(); first += atOnce) {
        setUniforms(program, graph, inputs[first]);
        drawPoints(program, std::span(inputs).subspan(first, atOnce), first);
    }
    const std::vector<float> values = target_.read();
    Pixels pixels;
    for (std::size_t i = 0; i < inputs.size(); ++i) {
        pixels.push_back({values[4 * i], values[4 * i + 1], values[4 * i + 2], values[4 * i + 3]});
    }
    return pixels;
}

Outcome compare(const Case& shown, const Pixels& pixels) {
    const Reference reference(shown.graph);
    const auto width = static_cast<std::size_t>(reference.shownWidth());
    const bool isInterpolated = runsPerVertex(shown.graph);
    Outcome outcome = {{1, shown.inputs.size(), 0, 0}, {}};
    for (std::size_t i = 0; i < shown.inputs.size(); ++i) {
        const BoundedVector expected = shownVector(reference.evaluate(shown.inputs[i]));
        for (std::size_t component = 0; component < expected.size(); ++component) {
            const Bounded& bounded = expected[component];
            const auto got = static_cast<double>(pixels[i][component]);
            if (bounded.isAnything() || (isInterpolated && std::isinf(bounded.value))) {
                continue;
            }
            outcome.executed.numbers += component < width ? 1 : 0;
            if (!bounded.accepts(got)) {
                outcome.mismatches.push_back(inputText(shown.inputs[i]) + "gives component " +
                                             std::to_string(component) + " = " + numberText(got) +
                                             ", expected " + numberText(bounded.value) + ", bound " +
                                             numberText(bounded.error));
            } else if (bounded.error > 0) {
                outcome.executed.worst =
                    std::max(outcome.executed.worst, std::abs(got - bounded.value) / bounded.error);
            }
        }
    }
    return outcome;
}

} // namespace patina::testing
