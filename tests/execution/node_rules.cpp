#include "tests/execution/node_rules.h"

#include "tests/execution/images.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <stdexcept>
#include <utility>

namespace patina::testing {

namespace {

using Outputs = std::map<std::string, BoundedVector>;
using Names = std::vector<std::string>;

/// The operands of one component.
using Components = std::map<std::string, Bounded>;

Bounded one() { return {1, 0}; }
Bounded half() { return {0.5, 0}; }
Bounded two() { return {2, 0}; }

std::invalid_argument unknown(const std::string& what) {
    return std::invalid_argument("no reference for " + what);
}

// ---- maths

struct MathsRule {
    std::vector<InputRule> inputs;
    Bounded (*formula)(const Arithmetic& a, const Components& in); ///< of each component by itself
    int outputWidth = nodeWidth;
};

InputRule value1() { return {"in_value1", nodeWidth, "Default Value 1", 0}; }
InputRule value2() { return {"in_value2", nodeWidth, "Default Value 2", 0}; }
InputRule minimumInput() { return {"in_min", nodeWidth, "Default Min", 0}; }
InputRule maximumInput() { return {"in_max", nodeWidth, "Default Max", 1}; }
InputRule power() { return {"in_power", 1, "Default Power", 5}; }
InputRule blend() { return {"in_blend", 1, "Default Blend", 0.5}; }

const std::map<std::string, MathsRule>& mathsRules() {
    static const std::map<std::string, MathsRule> rules = {
        {"Multiply",
         {{value1(), value2()},
          [](const Arithmetic& a, const Components& in) {
              return a.multiply(in.at("in_value1"), in.at("in_value2"));
          }}},
        {"Addition",
         {{value1(), value2()},
          [](const Arithmetic& a, const Components& in) {
              return a.add(in.at("in_value1"), in.at("in_value2"));
          }}},
        {"Subtraction",
         {{value1(), value2()},
          [](const Arithmetic& a, const Components& in) {
              return a.subtract(in.at("in_value1"), in.at("in_value2"));
          }}},
        {"Invert",
         {{value1()},
          [](const Arithmetic& a, const Components& in) { return a.subtract(one(), in.at("in_value1")); }}},
        {"Power",
         {{value1(), power()},
          [](const Arithmetic& a, const Components& in) {
              return a.power(in.at("in_value1"), in.at("in_power"));
          }}},
        {"Clamp",
         {{value1(), minimumInput(), maximumInput()},
          [](const Arithmetic&, const Components& in) {
              return clamp(in.at("in_value1"), in.at("in_min"), in.at("in_max"));
          }}},
        {"Range",
         {{value1(),
           minimumInput(),
           maximumInput(),
           {"in_oldmin", nodeWidth, "Default Old Min", 0},
           {"in_oldmax", nodeWidth, "Default Old Max", 1}},
          [](const Arithmetic& a, const Components& in) {
              const Bounded position = a.divide(a.subtract(in.at("in_value1"), in.at("in_oldmin")),
                                                a.subtract(in.at("in_oldmax"), in.at("in_oldmin")));
              return a.mix(in.at("in_min"), in.at("in_max"), saturate(position));
          }}},
        {"Lerp",
         {{value1(), value2(), blend()},
          [](const Arithmetic& a, const Components& in) {
              return a.mix(in.at("in_value1"), in.at("in_value2"), in.at("in_blend"));
          }}},
        {"SmoothStep",
         {{value1(), value2(), blend()},
          [](const Arithmetic& a, const Components& in) {
              return a.mix(in.at("in_value1"), in.at("in_value2"), a.smoothStep(in.at("in_blend")));
          }}},
        {"Compare",
         {{value1(), value2(), {"in_test1", 1, "Default Test 1", 0}, {"in_test2", 1, "Default Test 2", 0}},
          [](const Arithmetic&, const Components& in) {
              return selectLess(in.at("in_test1"), in.at("in_test2"), in.at("in_value1"), in.at("in_value2"));
          }}},
        {"Dot Product", {{value1(), value2()}, nullptr}},
        {"Fresnel",
         {{{"in_facing", 1}, minimumInput(), {"in_scale", nodeWidth, "Default Scale", 1}, power()},
          [](const Arithmetic& a, const Components& in) {
              const Bounded edge = saturate(a.subtract(one(), in.at("in_facing")));
              return a.add(in.at("in_min"), a.multiply(in.at("in_scale"), a.power(edge, in.at("in_power"))));
          },
          1}},
        {"Ceil",
         {{value1()}, [](const Arithmetic&, const Components& in) { return ceilingOf(in.at("in_value1")); }}},
        {"Floor",
         {{value1()}, [](const Arithmetic&, const Components& in) { return floorOf(in.at("in_value1")); }}},
        {"Frac",
         {{value1()},
          [](const Arithmetic& a, const Components& in) { return a.fraction(in.at("in_value1")); }}},
    };
    return rules;
}

const MathsRule& mathsRule(const GraphNode& node) {
    return mathsRules().at(node.setting("Function", "Multiply"));
}

/// The component of every input; scalars have but one.
Components componentOf(const NodeCall& call, std::size_t index) {
    Components components;
    for (const auto& [name, value] : call.inputs) {
        components[name] = value[std::min(index, value.size() - 1)];
    }
    return components;
}

Outputs evaluateMaths(const NodeCall& call) {
    const MathsRule& rule = mathsRule(call.node);
    if (rule.formula == nullptr) {
        const Bounded product = call.arithmetic.dot(call["in_value1"], call["in_value2"]);
        return {{"out_value", BoundedVector(static_cast<std::size_t>(call.width), product)}};
    }
    BoundedVector result;
    const int width = rule.outputWidth == nodeWidth ? call.width : rule.outputWidth;
    for (int i = 0; i < width; ++i) {
        result.push_back(rule.formula(call.arithmetic, componentOf(call, static_cast<std::size_t>(i))));
    }
    return {{"out_value", result}};
}

// ---- layer blend: base is the first input, layer the second

using BlendFormula = Bounded (*)(const Arithmetic& a, const Bounded& base, const Bounded& layer);

Bounded multiplied(const Arithmetic& a, const Bounded& base, const Bounded& layer) {
    return a.multiply(a.multiply(two(), base), layer);
}

Bounded screened(const Arithmetic& a, const Bounded& base, const Bounded& layer) {
    return a.subtract(one(),
                      a.multiply(a.multiply(two(), a.subtract(one(), base)), a.subtract(one(), layer)));
}

Bounded burned(const Arithmetic& a, const Bounded& base, const Bounded& layer) {
    return a.subtract(one(), a.divide(a.multiply(half(), a.subtract(one(), base)), layer));
}

Bounded dodged(const Arithmetic& a, const Bounded& base, const Bounded& layer) {
    return a.divide(a.multiply(half(), base), a.subtract(one(), layer));
}

const std::map<std::string, BlendFormula>& blendFormulas() {
    static const std::map<std::string, BlendFormula> formulas = {
        {"Darken",
         [](const Arithmetic&, const Bounded& x, const Bounded& y) { return selectLess(x, y, x, y); }},
        {"Lighten",
         [](const Arithmetic&, const Bounded& x, const Bounded& y) { return selectLess(y, x, x, y); }},
        {"Multiply",
         [](const Arithmetic& a, const Bounded& x, const Bounded& y) { return a.multiply(x, y); }},
        {"Screen",
         [](const Arithmetic& a, const Bounded& x, const Bounded& y) {
             const Bounded written =
                 a.subtract(one(), a.multiply(a.subtract(one(), x), a.subtract(one(), y)));
             // compilers may take it for the interpolation that it is
             return either(written, either(a.mix(x, one(), y), a.mix(y, one(), x)));
         }},
        {"Overlay",
         [](const Arithmetic& a, const Bounded& x, const Bounded& y) {
             return selectLess(x, half(), multiplied(a, x, y), screened(a, x, y));
         }},
        {"Colour Dodge", [](const Arithmetic& a, const Bounded& x,
                            const Bounded& y) { return a.divide(x, a.subtract(one(), y)); }},
        {"Colour Burn",
         [](const Arithmetic& a, const Bounded& x, const Bounded& y) {
             return a.subtract(one(), a.divide(a.subtract(one(), x), y));
         }},
        {"Hard Light",
         [](const Arithmetic& a, const Bounded& x, const Bounded& y) {
             return selectLess(y, half(), multiplied(a, x, y), screened(a, x, y));
         }},
        {"Vivid Light",
         [](const Arithmetic& a, const Bounded& x, const Bounded& y) {
             return selectLess(y, half(), burned(a, x, y), dodged(a, x, y));
         }},
        {"Difference",
         [](const Arithmetic& a, const Bounded& x, const Bounded& y) { return absolute(a.subtract(x, y)); }},
        {"Exclusion", [](const Arithmetic& a, const Bounded& x,
                         const Bounded& y) { return a.subtract(a.add(x, y), multiplied(a, x, y)); }},
    };
    return formulas;
}

Outputs evaluateBlend(const NodeCall& call) {
    const BlendFormula formula = blendFormulas().at(call.node.setting("Mode", "Darken"));
    BoundedVector result;
    for (std::size_t i = 0; i < static_cast<std::size_t>(call.width); ++i) {
        result.push_back(formula(call.arithmetic, call["in_value1"][i], call["in_value2"][i]));
    }
    return {{"out_value", result}};
}

// ---- textures

bool isNormalMap(const std::string& colourType) {
    return colourType == "Normal" || colourType == "DXT5 Normal";
}

/// Colour, alpha or the components of a vector, as the source nodes name them.
Outputs namedChannels(const std::string& colourType, const BoundedVector& value) {
    if (colourType == "Vector") {
        return {{"out_colour", value}};
    }
    Outputs outputs;
    if (colourType == "Component") {
        outputs = {{"out_red", {value[0]}}, {"out_green", {value[1]}}, {"out_blue", {value[2]}}};
    } else {
        outputs = {{"out_colour", {value[0], value[1], value[2]}}};
    }
    if (value.size() == 4) {
        outputs["out_alpha"] = {value[3]};
    }
    return outputs;
}

/// What one channel of the texels may be that a coordinate may stand for.
Bounded sample(const Arithmetic& arithmetic, const Image& image, const BoundedVector& uv,
               std::size_t channel) {
    // hardware may choose the texel in fixed point
    constexpr double slack = 1.0 / 256;
    const int sizes[] = {image.width, image.height};
    int first[] = {0, 0};
    int last[] = {0, 0};
    for (std::size_t i = 0; i < uv.size(); ++i) {
        const double low = std::floor(uv[i].low() * sizes[i] - slack);
        const double high = std::floor(uv[i].high() * sizes[i] + slack);
        constexpr double tooFar = 1 << 20;
        if (!(high - low < sizes[i]) || !(std::abs(low) < tooFar)) {
            return between(0, 1);
        }
        first[i] = static_cast<int>(low);
        last[i] = static_cast<int>(high);
    }
    const auto wrap = [](int index, int size) { return ((index % size) + size) % size; };
    const auto texel = [&](int x, int y) {
        return arithmetic.normalised(image.texel(wrap(x, image.width), wrap(y, image.height))[channel]);
    };
    Bounded value = texel(first[0], first[1]);
    for (int y = first[1]; y <= last[1]; ++y) {
        for (int x = first[0]; x <= last[0]; ++x) {
            value = either(value, texel(x, y));
        }
    }
    return value;
}

BoundedVector unpackedNormal(const Arithmetic& a, const std::string& colourType, const BoundedVector& value) {
    const auto expand = [&](const Bounded& channel) { return a.subtract(a.multiply(two(), channel), one()); };
    if (colourType == "Normal") {
        return {expand(value[0]), expand(value[1]), expand(value[2])};
    }
    const BoundedVector xy = {expand(value[3]), expand(value[1])};
    return {xy[0], xy[1], a.squareRoot(a.subtract(one(), a.dot(xy, xy)))};
}

Outputs evaluateTexture(const NodeCall& call) {
    const std::string type = call.node.setting("Colour Type", "Colour");
    const bool is1D = call.node.setting("Texture Type", "2D") == "1D";
    const Image& image = imageOf(call.node.name(), is1D ? 1 : 2);
    BoundedVector value;
    for (const std::size_t channel : {0U, 1U, 2U, 3U}) {
        value.push_back(sample(call.arithmetic, image, call["in_uv"], channel));
    }
    if (isNormalMap(type)) {
        Outputs outputs = {{"out_colour", unpackedNormal(call.arithmetic, type, value)}};
        if (type == "Normal" && call.node.isSet("Alpha")) {
            outputs["out_alpha"] = {value[3]};
        }
        return outputs;
    }
    if (call.node.setting("sRGB", "Yes") == "Yes") {
        for (const std::size_t channel : {0U, 1U, 2U}) {
            value[channel] = linearFromSrgb(call.arithmetic, value[channel]);
        }
    }
    if (type != "Vector" && !call.node.isSet("Alpha")) {
        value.pop_back();
    }
    return namedChannels(type, value);
}

// ---- sources

BoundedVector readInput(const NodeCall& call, std::size_t width) {
    const std::array<float, 4>& numbers = call.values.at(call.node.name());
    BoundedVector value;
    for (std::size_t i = 0; i < width; ++i) {
        value.push_back(call.arithmetic.number(static_cast<double>(numbers[i])));
    }
    return value;
}

Outputs evaluateVertexColour(const NodeCall& call) {
    const std::string type = call.node.setting("Colour Type", "Colour");
    return namedChannels(type, readInput(call, type == "Vector" || call.node.isSet("Alpha") ? 4 : 3));
}

BoundedVector lockedColour(const NodeCall& call) {
    const std::string text = call.node.setting("Default Colour", "0, 0, 0");
    BoundedVector colour;
    for (std::size_t begin = 0; colour.size() < 3; begin = text.find(' ', begin) + 1) {
        double channel = 0;
        std::from_chars(text.data() + begin, text.data() + text.size(), channel);
        colour.push_back(call.arithmetic.literal(channel));
    }
    return colour;
}

Outputs evaluateConstant(const NodeCall& call) {
    const std::string type = call.node.setting("Constant Type", "Colour");
    const bool isLocked = call.node.isSet("Lock");
    if (type == "Scalar" || type == "Vector") {
        const auto width =
            type == "Scalar" ? 1U : static_cast<std::size_t>(call.node.number("Component Count", 4));
        // a locked vector has the one number in all its components
        const Bounded locked = call.arithmetic.literal(call.node.number("Default Scalar", 1));
        return {{"read", isLocked ? BoundedVector(width, locked) : readInput(call, width)}};
    }
    const BoundedVector colour = isLocked ? lockedColour(call) : readInput(call, 4);
    Outputs outputs;
    if (type == "Component") {
        outputs = {{"red", {colour[0]}}, {"green", {colour[1]}}, {"blue", {colour[2]}}};
    } else {
        outputs = {{"read", {colour[0], colour[1], colour[2]}}};
    }
    if (call.node.isSet("Alpha")) {
        // the alpha of a locked colour is declared and never assigned
        outputs["alpha"] = {isLocked ? anything() : colour[3]};
    }
    return outputs;
}

// ---- swizzles

Names componentNames(const std::string& prefix, const GraphNode& node) {
    const std::string type = node.setting("Vector Type", "Colour");
    const std::size_t count = type == "Colour" ? 3
                              : type == "Uv"   ? 2
                                               : static_cast<std::size_t>(node.number("Component Count", 4));
    Names names;
    for (const char letter : std::string("xyzw").substr(0, count)) {
        names.push_back(prefix + letter);
    }
    return names;
}

Outputs evaluateSwizzle(const NodeCall& call) {
    if (call.node.isSet("Reverse")) {
        BoundedVector merged;
        for (const std::string& name : componentNames("in_", call.node)) {
            merged.push_back(call[name][0]);
        }
        return {{"out_vec", merged}};
    }
    Outputs outputs;
    const Names names = componentNames("out_", call.node);
    for (std::size_t i = 0; i < names.size(); ++i) {
        outputs[names[i]] = {call["in_vec"][i]};
    }
    return outputs;
}

// ---- animated uv: float in all it does

BoundedVector offsetOf(const Arithmetic& a, const Bounded& frame, const Bounded& columnsReciprocal) {
    return {floorOf(frame), floorOf(a.multiply(frame, columnsReciprocal))};
}

Outputs evaluateAnimatedUv(const NodeCall& call) {
    const Arithmetic a(floatFormat);
    // the reciprocals are printed with six digits, so a third of three is less than one
    const Bounded rows = a.literal(1 / call.node.number("Rows", 4));
    const Bounded columns = a.literal(1 / call.node.number("Columns", 4));
    const Bounded frame = call["in_frame"][0];
    const BoundedVector offsets[] = {offsetOf(a, frame, columns), offsetOf(a, a.add(frame, one()), columns)};
    Outputs outputs = {{"out_blend", {a.subtract(frame, offsets[0][0])}}};
    // the frame number that the floor was taken of is the same, so that what they differ by is below one
    if (!offsets[0][0].isExact()) {
        outputs["out_blend"] = {between(0, 1)};
    }
    if (call.node.setting("Mode", "Basic") == "Advanced") {
        outputs.insert(
            {{"out_offset1", offsets[0]}, {"out_offset2", offsets[1]}, {"out_scale", {columns, rows}}});
        return outputs;
    }
    const auto moved = [&](const BoundedVector& offset) -> BoundedVector {
        const BoundedVector& uv = call["in_uv"];
        return {a.multiply(a.add(uv[0], offset[0]), columns), a.multiply(a.add(uv[1], offset[1]), rows)};
    };
    outputs.insert({{"out_uv1", moved(offsets[0])}, {"out_uv2", moved(offsets[1])}});
    return outputs;
}

// ---- ports

NodePorts mathsPorts(const GraphNode& node) {
    const MathsRule& rule = mathsRule(node);
    return {rule.inputs, {{"out_value", rule.outputWidth}}};
}

NodePorts blendPorts(const GraphNode&) { return {{{"in_value1"}, {"in_value2"}}, {{"out_value"}}}; }

std::vector<OutputRule> channelPorts(const std::string& colourType, bool alpha) {
    if (colourType == "Vector") {
        return {{"out_colour", 4}};
    }
    std::vector<OutputRule> outputs = {{"out_colour", 3}};
    if (colourType == "Component") {
        outputs = {{"out_red", 1}, {"out_green", 1}, {"out_blue", 1}};
    }
    if (alpha && colourType != "DXT5 Normal") {
        outputs.push_back({"out_alpha", 1});
    }
    return outputs;
}

NodePorts texturePorts(const GraphNode& node) {
    const int width = node.setting("Texture Type", "2D") == "1D" ? 1 : 2;
    return {{{"in_uv", width, {}, 0, true}},
            channelPorts(node.setting("Colour Type", "Colour"), node.isSet("Alpha"))};
}

NodePorts vertexColourPorts(const GraphNode& node) {
    return {{}, channelPorts(node.setting("Colour Type", "Colour"), node.isSet("Alpha"))};
}

NodePorts constantPorts(const GraphNode& node) {
    const std::string type = node.setting("Constant Type", "Colour");
    if (type == "Scalar" || type == "Vector") {
        return {{}, {{"read", type == "Scalar" ? 1 : static_cast<int>(node.number("Component Count", 4))}}};
    }
    NodePorts ports = {{}, {{"read", 3}}};
    if (type == "Component") {
        ports.outputs = {{"red", 1}, {"green", 1}, {"blue", 1}};
    }
    if (node.isSet("Alpha")) {
        ports.outputs.push_back({"alpha", 1});
    }
    return ports;
}

NodePorts swizzlePorts(const GraphNode& node) {
    NodePorts ports;
    const bool isMerge = node.isSet("Reverse");
    const Names names = componentNames(isMerge ? "in_" : "out_", node);
    const int width = static_cast<int>(names.size());
    for (const std::string& name : names) {
        if (isMerge) {
            ports.inputs.push_back({name, 1});
        } else {
            ports.outputs.push_back({name, 1});
        }
    }
    if (isMerge) {
        ports.outputs.push_back({"out_vec", width});
    } else {
        ports.inputs.push_back({"in_vec", width});
    }
    return ports;
}

NodePorts animatedUvPorts(const GraphNode& node) {
    if (node.setting("Mode", "Basic") == "Advanced") {
        return {{{"in_frame", 1}},
                {{"out_offset1", 2}, {"out_offset2", 2}, {"out_scale", 2}, {"out_blend", 1}}};
    }
    return {{{"in_frame", 1}, {"in_uv", 2}}, {{"out_uv1", 2}, {"out_uv2", 2}, {"out_blend", 1}}};
}

// ---- a copy of a type of its own; fixed is computed as half

NodePorts typedCopyPorts(const GraphNode& node) {
    const int width = static_cast<int>(node.number("Component Count", 1));
    return {{{"in_value", width}},
            {{"out_value", width}},
            node.setting("Component Type", "float") == "float" ? &floatFormat : &halfFormat};
}

struct NodeType {
    NodePorts (*ports)(const GraphNode& node);
    Outputs (*evaluate)(const NodeCall& call);
};

const NodeType& typeOf(const GraphNode& node) {
    static const std::map<std::string, NodeType> types = {
        {"CoreConstant", {constantPorts, evaluateConstant}},
        {"CoreTexture", {texturePorts, evaluateTexture}},
        {"CoreMaths", {mathsPorts, evaluateMaths}},
        {"CoreLayerBlend", {blendPorts, evaluateBlend}},
        {"CoreSwizzle", {swizzlePorts, evaluateSwizzle}},
        {"CoreUv",
         {[](const GraphNode&) -> NodePorts {
              return {{}, {{"read", 2}}};
          },
          [](const NodeCall& call) -> Outputs {
              return {{"read", readInput(call, 2)}};
          }}},
        {"CoreVertexColour", {vertexColourPorts, evaluateVertexColour}},
        {"CoreAnimatedUv", {animatedUvPorts, evaluateAnimatedUv}},
        {"TypedCopy",
         {typedCopyPorts,
          [](const NodeCall& call) -> Outputs {
              return {{"out_value", call["in_value"]}};
          }}},
    };
    const auto found = types.find(node.type);
    if (found == types.end()) {
        throw unknown(node.type);
    }
    return found->second;
}

} // namespace

NodePorts portsOf(const GraphNode& node) { return typeOf(node).ports(node); }

Outputs evaluateNode(const NodeCall& call) { return typeOf(call.node).evaluate(call); }

Bounded linearFromSrgb(const Arithmetic& a, const Bounded& value) {
    const Bounded low = a.divide(value, a.number(12.92));
    const Bounded high = a.power(a.divide(a.add(value, a.number(0.055)), a.number(1.055)), a.number(2.4));
    // at the knee and below it is the straight part
    return selectLess(a.number(0.04045), value, high, low);
}

} // namespace patina::testing
