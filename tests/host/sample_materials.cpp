#include "tests/host/sample_materials.h"

#include "tests/host/host_checks.h"
#include "tests/host/sample_flow.h"

namespace patina::testing {

namespace {

/// The value as a colour: a width of two or four is split first.
std::string show(const std::string& id, const std::string& port, int width) {
    if (width == 1 || width == 3) {
        return output("colour", id, port);
    }
    const std::string vector = property("Vector Type", "enum", "Vector") +
                               property("Component Count", "integer", std::to_string(width));
    return node("show", "CoreSwizzle", vector) + connection(id, port, "show", "in_vec") +
           output("colour", "show", "out_x") + output("alpha", "show", "out_y");
}

/// A source of that width, uniform or varying.
std::string source(const std::string& id, int width) {
    const std::string name = property("Name", "string", "U_" + id);
    if (width == 1) {
        return node(id, "CoreConstant", name + property("Constant Type", "enum", "Scalar"));
    }
    return node(id, "CoreConstant",
                name + property("Constant Type", "enum", "Vector") +
                    property("Component Count", "integer", std::to_string(width)));
}

struct FunctionRow {
    const char* name;
    std::vector<const char*> inputs; ///< a "1" in front marks a scalar
};

const FunctionRow functions[] = {
    {"Multiply", {"in_value1", "in_value2"}},
    {"Addition", {"in_value1", "in_value2"}},
    {"Subtraction", {"in_value1", "in_value2"}},
    {"Invert", {"in_value1"}},
    {"Power", {"in_value1", "1in_power"}},
    {"Clamp", {"in_value1", "in_min", "in_max"}},
    {"Range", {"in_value1", "in_min", "in_max", "in_oldmin", "in_oldmax"}},
    {"Lerp", {"in_value1", "in_value2", "1in_blend"}},
    {"SmoothStep", {"in_value1", "in_value2", "1in_blend"}},
    {"Compare", {"in_value1", "in_value2", "1in_test1", "1in_test2"}},
    {"Dot Product", {"in_value1", "in_value2"}},
    {"Fresnel", {"1in_facing", "1in_min", "1in_scale", "1in_power"}},
    {"Ceil", {"in_value1"}},
    {"Floor", {"in_value1"}},
    {"Frac", {"in_value1"}},
};

std::vector<Sample> mathsSamples() {
    std::vector<Sample> samples;
    for (const auto& [name, inputs] : functions) {
        const bool isFresnel = std::string(name) == "Fresnel";
        if (!isFresnel) {
            samples.push_back({name, maths("m", name) + output("colour", "m", "out_value")});
        }
        for (const int width : {1, 2, 3, 4}) {
            // everything connected, and only the first input
            for (const std::size_t connected : {inputs.size(), std::size_t{1}}) {
                std::string body = maths("m", name);
                for (std::size_t i = 0; i < connected; ++i) {
                    const bool isScalar = inputs[i][0] == '1';
                    const std::string port = inputs[i] + (isScalar ? 1 : 0);
                    const std::string id = "s" + std::to_string(i);
                    body += source(id, isScalar ? 1 : width) + connection(id, "read", "m", port);
                }
                samples.push_back(
                    {name + std::to_string(width), body + show("m", "out_value", isFresnel ? 1 : width)});
            }
        }
    }
    return samples;
}

std::vector<Sample> mixedMathsSamples() {
    std::vector<Sample> samples;
    for (const std::string name : {"Multiply", "Addition", "Subtraction", "Lerp", "Compare", "Dot Product"}) {
        for (const std::string level : {"Vertex", "Fragment", "Automatic"}) {
            const std::string colour = node("v", "CoreVertexColour", property("Name", "string", "V"));
            samples.push_back({name + level, colour + source("s", 1) + maths("m", name, level) +
                                                 connection("v", "out_colour", "m", "in_value1") +
                                                 connection("s", "read", "m", "in_value2") +
                                                 output("colour", "m", "out_value")});
        }
    }
    for (const std::string name : {"Ceil", "Floor", "Frac"}) {
        samples.push_back({name, node("uv", "CoreUv") + node("t", "CoreTexture") +
                                     maths("m", name, "Vertex") + connection("uv", "read", "m", "in_value1") +
                                     connection("m", "out_value", "t", "in_uv") +
                                     output("colour", "t", "out_colour")});
    }
    return samples;
}

std::vector<Sample> layerBlendSamples() {
    std::vector<Sample> samples;
    for (const std::string mode : {"Darken", "Lighten", "Multiply", "Screen", "Overlay", "Colour Dodge",
                                   "Colour Burn", "Hard Light", "Vivid Light", "Difference", "Exclusion"}) {
        const std::string blend = node("b", "CoreLayerBlend", property("Mode", "enum", mode));
        samples.push_back({mode, blend + output("colour", "b", "out_value")});
        for (const int width : {1, 2, 3, 4}) {
            samples.push_back({mode + std::to_string(width), blend + source("x", width) + source("y", width) +
                                                                 connection("x", "read", "b", "in_value1") +
                                                                 connection("y", "read", "b", "in_value2") +
                                                                 show("b", "out_value", width)});
        }
        samples.push_back({mode + "_mixed", blend + source("x", 3) + source("y", 1) +
                                                connection("x", "read", "b", "in_value1") +
                                                connection("y", "read", "b", "in_value2") +
                                                output("colour", "b", "out_value")});
    }
    return samples;
}

std::vector<Sample> litSamples() {
    const std::string nodes =
        node("uv", "CoreUv") + node("t", "CoreTexture", property("Alpha", "bool", "Yes")) +
        node("n", "CoreTexture",
             property("Name", "string", "Bumps") + property("Colour Type", "enum", "Normal")) +
        connection("uv", "read", "t", "in_uv") + connection("uv", "read", "n", "in_uv") + source("s", 1);
    const std::string lit[] = {output("normal", "n", "out_colour"), output("emissive", "t", "out_colour"),
                               output("emissive", "s", "read"), output("gloss", "t", "out_alpha")};
    std::vector<Sample> samples;
    for (unsigned set = 1; set < 16; ++set) {
        if ((set & 6U) == 6U) {
            continue; // one emission is enough
        }
        for (const char* colour : {"t", "s"}) {
            std::string body =
                nodes + output("colour", colour, colour == std::string("t") ? "out_colour" : "read");
            for (unsigned i = 0; i < 4; ++i) {
                body += (set >> i & 1U) != 0 ? lit[i] : "";
            }
            samples.push_back({"lit" + std::to_string(set) + colour, body});
            samples.push_back({"alpha" + std::to_string(set) + colour, body + output("alpha", "s", "read")});
        }
    }
    return samples;
}

struct ColourOutput {
    const char* type;
    const char* port;
    int width;
};

constexpr ColourOutput textureOutputs[] = {
    {"Colour", "out_colour", 3}, {"Normal", "out_colour", 3},      {"Component", "out_green", 1},
    {"Vector", "out_colour", 4}, {"DXT5 Normal", "out_colour", 3},
};

std::vector<Sample> textureSamples() {
    std::vector<Sample> samples;
    for (const auto& [type, port, width] : textureOutputs) {
        for (const std::string dimension : {"1D", "2D"}) {
            for (const bool alpha : {false, true}) {
                for (const bool wide : {false, true}) {
                    // "wide" asks for float precision through a second texture's coordinate
                    const std::string properties = property("Colour Type", "enum", type) +
                                                   property("Texture Type", "enum", dimension) +
                                                   property("Alpha", "bool", alpha ? "Yes" : "No");
                    const std::string coordinate = dimension == "1D"
                                                       ? node("uv", "CoreConstant",
                                                              property("Constant Type", "enum", "Scalar") +
                                                                  property("Name", "string", "U"))
                                                       : node("uv", "CoreUv");
                    std::string body = coordinate + node("t", "CoreTexture", properties) +
                                       connection("uv", "read", "t", "in_uv") + show("t", port, width);
                    const bool hasAlphaPort = alpha && width != 4 && std::string(type) != "DXT5 Normal";
                    if (hasAlphaPort) {
                        body += output("alpha", "t", "out_alpha");
                    }
                    if (wide && (width == 1 || hasAlphaPort)) {
                        body += node("t2", "CoreTexture",
                                     property("Name", "string", "Second") +
                                         property("Texture Type", "enum", "1D")) +
                                connection("t", width == 1 ? port : "out_alpha", "t2", "in_uv") +
                                maths("sum", "Addition") + connection("t2", "out_colour", "sum", "in_value1");
                        // show the sum instead
                        const std::string shown = output("colour", "t", port);
                        const std::size_t at = body.find(shown);
                        body.replace(at, shown.size(), output("colour", "sum", "out_value"));
                    }
                    samples.push_back({std::string(type) + dimension + (alpha ? "alpha" : ""), body});
                }
            }
        }
    }
    return samples;
}

constexpr ColourOutput constantOutputs[] = {
    {"Colour", "read", 3},
    {"Scalar", "read", 1},
    {"Component", "blue", 1},
};

std::vector<Sample> constantSamples() {
    std::vector<Sample> samples;
    for (const std::string lock : {"No", "Yes"}) {
        for (const auto& [type, port, width] : constantOutputs) {
            for (const std::string alpha : {"No", "Yes"}) {
                std::string body =
                    node("c", "CoreConstant",
                         property("Constant Type", "enum", type) + property("Lock", "bool", lock) +
                             property("Alpha", "bool", alpha) +
                             property("Default Colour", "colour", "0.8, 1, 1e-7")) +
                    output("colour", "c", port);
                samples.push_back({type, body});
                if (alpha == "Yes" && std::string(type) != "Scalar") {
                    samples.push_back({std::string(type) + "_alpha", body + output("alpha", "c", "alpha")});
                }
            }
        }
        for (const int width : {2, 3, 4}) {
            samples.push_back(
                {"Vector" + std::to_string(width),
                 node("c", "CoreConstant",
                      property("Constant Type", "enum", "Vector") + property("Lock", "bool", lock) +
                          property("Component Count", "integer", std::to_string(width))) +
                     show("c", "read", width)});
        }
    }
    return samples;
}

std::vector<Sample> swizzleSamples() {
    std::vector<Sample> samples;
    const struct {
        const char* type;
        int width;
    } rows[] = {{"Uv", 2}, {"Colour", 3}, {"Vector", 2}, {"Vector", 3}, {"Vector", 4}};
    const std::vector<std::string> letters = {"x", "y", "z", "w"};
    for (const auto& [type, width] : rows) {
        const std::string properties = property("Vector Type", "enum", type) +
                                       property("Component Count", "integer", std::to_string(width));
        const std::string merge = node("j", "CoreSwizzle", properties + property("Reverse", "bool", "Yes"));
        const std::string split = node("k", "CoreSwizzle", properties);
        const std::string name = type + std::to_string(width);
        const auto& last = letters.at(static_cast<std::size_t>(width - 1));
        samples.push_back({name + "_nothing", split + output("colour", "k", "out_" + last)});
        samples.push_back({name + "_merge_nothing", merge + show("j", "out_vec", width)});
        samples.push_back({name + "_round", source("s", width) + split + merge + maths("m", "Invert") +
                                                connection("s", "read", "k", "in_vec") +
                                                connection("k", "out_" + last, "m", "in_value1") +
                                                connection("m", "out_value", "j", "in_" + last) +
                                                connection("k", "out_x", "j", "in_x") +
                                                show("j", "out_vec", width)});
        samples.push_back({name + "_splat", source("s", 1) + split + connection("s", "read", "k", "in_vec") +
                                                output("colour", "k", "out_" + last)});
    }
    return samples;
}

constexpr ColourOutput colourSetOutputs[] = {
    {"Colour", "out_colour", 3}, {"Component", "out_red", 1}, {"Vector", "out_colour", 4}};

std::vector<Sample> colourSetSamples() {
    std::vector<Sample> samples;
    for (const auto& [type, port, width] : colourSetOutputs) {
        const std::string set =
            node("v", "CoreVertexColour",
                 property("Colour Type", "enum", type) + property("Alpha", "bool", "Yes"));
        samples.push_back({type, set + show("v", port, width)});
        if (width != 4) {
            samples.push_back({std::string(type) + "_alpha",
                               set + output("colour", "v", port) + output("alpha", "v", "out_alpha")});
        }
    }
    return samples;
}

std::vector<Sample> animatedUvSamples() {
    std::vector<Sample> samples;
    for (const std::string level : {"Vertex", "Fragment"}) {
        for (const bool connected : {false, true}) {
            const auto animated = [&](const std::string& mode) {
                return node("a", "CoreAnimatedUv",
                            property("Mode", "enum", mode) + property("Execution Level", "enum", level) +
                                property("Rows", "integer", "3")) +
                       node("uv", "CoreUv") + source("f", 1) +
                       (connected ? connection("f", "read", "a", "in_frame") : "");
            };
            samples.push_back(
                {"Basic" + level,
                 animated("Basic") + (connected ? connection("uv", "read", "a", "in_uv") : "") +
                     node("t1", "CoreTexture") +
                     node("t2", "CoreTexture", property("Reference", "node", "t1")) + maths("m", "Lerp") +
                     connection("a", "out_uv1", "t1", "in_uv") + connection("a", "out_uv2", "t2", "in_uv") +
                     connection("t1", "out_colour", "m", "in_value1") +
                     connection("t2", "out_colour", "m", "in_value2") +
                     connection("a", "out_blend", "m", "in_blend") + output("colour", "m", "out_value")});
            samples.push_back({"Advanced" + level,
                               animated("Advanced") + maths("p", "Addition") + maths("q", "Multiply") +
                                   node("t", "CoreTexture") + connection("uv", "read", "p", "in_value1") +
                                   connection("a", "out_offset1", "p", "in_value2") +
                                   connection("p", "out_value", "q", "in_value1") +
                                   connection("a", "out_scale", "q", "in_value2") +
                                   connection("q", "out_value", "t", "in_uv") +
                                   output("colour", "t", "out_colour") + output("alpha", "a", "out_blend")});
        }
    }
    return samples;
}

} // namespace

CgPrograms programsWithRegisters() {
    constexpr ShaderType vector = typeOf(ComponentType::Float, 4);
    Flow flow;
    const auto atRegister = [&](std::size_t node, RegisterReference place) {
        flow.flow.nodes[node].generated->registerReference = place;
        return node;
    };
    const std::vector<std::size_t> uniforms = {
        flow.uniform("Turn", {ComponentType::Float, 4, 4, 1}),
        atRegister(flow.uniform("Far", vector), {registers::vertexConstant, 1023}),
        flow.uniform("Bones", {ComponentType::Float, 4, 3, 6}),
        atRegister(flow.uniform("Near", vector), {registers::vertexConstant, 5}),
        flow.uniform("Last", typeOf(ComponentType::Half, 1))};
    std::vector<std::size_t> vertexInputs = uniforms;
    vertexInputs.push_back(atRegister(flow.varying("Wear", vector), {registers::vertexAttribute, 7}));
    std::vector<std::size_t> fragmentInputs = uniforms;
    fragmentInputs.push_back(flow.function(ExecutionLevel::Vertex, vertexInputs));
    fragmentInputs.push_back(flow.uniform("Paint", typeOf(ComponentType::Sampler2D, 1)));
    const StagedShader stages = flow.place(flow.function(ExecutionLevel::Fragment, fragmentInputs));
    const AssembledShader shader = {flow.material,
                                    flow.flow,
                                    stages,
                                    nameShader(flow.material, flow.flow, stages),
                                    assignRegisters(flow.material, flow.flow, stages),
                                    {}};
    return {printVertexProgram(shader), printFragmentProgram(shader)};
}

std::vector<SampleGroup> sampleGroups() {
    return {{"EveryMathsFunction", mathsSamples()},   {"MathsOfMixedWidthsAndLevels", mixedMathsSamples()},
            {"EveryLayerBlend", layerBlendSamples()}, {"EveryLitMaterial", litSamples()},
            {"EveryTexture", textureSamples()},       {"EveryConstant", constantSamples()},
            {"SwizzlesBothWays", swizzleSamples()},   {"EveryColourSet", colourSetSamples()},
            {"EveryAnimatedUv", animatedUvSamples()}};
}

} // namespace patina::testing
