#include "corenodes/layer_blend_node.h"

#include "corenodes/core_node_support.h"
#include "nodemodel/text.h"

#include <array>
#include <string_view>

namespace patina {

using namespace detail;

namespace {

/// The unit constants that a formula uses.
enum class Constants { None, One, OneAndHalf };

/// One blend mode: up to two typed locals, then the assignment.
struct BlendMode {
    std::string_view name;
    Constants constants;
    std::array<const char*, 2> locals; ///< each written behind the resolved type; null where there is none
    const char* code;
};

constexpr const char* multiplied = " multiplied = 2.0f*in_value1*in_value2;\n";
constexpr const char* screened = " screened = in_one - 2.0f*( in_one - in_value1 )*( in_one - in_value2 );\n";
constexpr const char* burned = " burned = in_one - 0.5f*( in_one - in_value1 )/in_value2;\n";
constexpr const char* dodged = " dodged = 0.5f*in_value1/( in_one - in_value2 );\n";

// the dodges and burns divide without a guard against zero on purpose
constexpr std::array<BlendMode, 11> blendModes = {{
    {"Darken", Constants::None, {}, "\tout_value = ( in_value1 < in_value2 ) ? in_value1 : in_value2;\n"},
    {"Lighten", Constants::None, {}, "\tout_value = ( in_value1 > in_value2 ) ? in_value1 : in_value2;\n"},
    {"Multiply", Constants::None, {}, "\tout_value = in_value1*in_value2;\n"},
    {"Screen", Constants::One, {}, "\tout_value = in_one - ( in_one - in_value1 )*( in_one - in_value2 );\n"},
    {"Overlay",
     Constants::OneAndHalf,
     {multiplied, screened},
     "\tout_value = ( in_value1 < in_half ) ? multiplied : screened;\n"},
    {"Colour Dodge", Constants::One, {}, "\tout_value = in_value1/( in_one - in_value2 );\n"},
    {"Colour Burn", Constants::One, {}, "\tout_value = in_one - ( in_one - in_value1 )/in_value2;\n"},
    {"Hard Light",
     Constants::OneAndHalf,
     {multiplied, screened},
     "\tout_value = ( in_value2 < in_half ) ? multiplied : screened;\n"},
    {"Vivid Light",
     Constants::OneAndHalf,
     {burned, dodged},
     "\tout_value = ( in_value2 < in_half ) ? burned : dodged;\n"},
    {"Difference", Constants::None, {}, "\tout_value = abs( in_value1 - in_value2 );\n"},
    {"Exclusion", Constants::None, {}, "\tout_value = in_value1 + in_value2 - 2.0f*in_value1*in_value2;\n"},
}};

void appendBlend(FunctionBuilder& builder, const BlendMode& mode, const ShaderType& type) {
    if (mode.constants != Constants::None) {
        builder.declareConstant(type, "in_one", 1.0F);
    }
    if (mode.constants == Constants::OneAndHalf) {
        builder.declareConstant(type, "in_half", 0.5F);
    }
    for (const char* local : mode.locals) {
        if (local != nullptr) {
            builder.appendCode(joinText({"\t", typeText(type), local}));
        }
    }
    builder.appendCode(mode.code);
}

constexpr auto ownProperties = declareProperties({
    {"Mode", "Mode: the layer blend to perform."},
});

} // namespace

LayerBlendNode::LayerBlendNode() : MaterialNode(staticTypeName(), ownProperties.layout()) {
    setName("LayerBlend");
    setBodyColour(0.44F, 0.71F, 0.19F);

    takeOwnProperties(*this, {&mode_});
    setEnumValues(*mode_, blendModes);

    addPort(inputs, {"in_value1", "in1", 0});
    addPort(inputs, {"in_value2", "in2", 0});
    addPort(outputs, {"out_value", "out", 0});
}

std::string LayerBlendNode::caption() const { return mode_->getEnum(); }

void LayerBlendNode::generateCode(GraphGenerator& generator) {
    FunctionBuilder builder;
    declareInputs(builder, *this);
    declareOutputs(builder, *this);
    for (const BlendMode& mode : blendModes) {
        if (mode_->getEnum() == mode.name) {
            appendBlend(builder, mode, resolvedType(*this));
        }
    }
    // named like the maths node's function, not after the blend
    emitFunction(generator, *this, builder, ExecutionLevel::Automatic, "mathsCode");
}

} // namespace patina
