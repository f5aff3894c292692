#include "corenodes/animated_uv_node.h"

#include "corenodes/core_node_support.h"

#include <string_view>

namespace patina {

namespace {

constexpr std::string_view basicMode = "Basic";

constexpr ShaderType scalarFloat = {ComponentType::Float, 1, 1, 1};

// these lines have no leading tab; the columns are not taken off the frame, as textures repeat
constexpr const char* frameCode = "float2 scale = float2( numColsRcp, numRowsRcp );\n"
                                  "float frame1 = in_frame;\n"
                                  "float frame2 = in_frame + 1.0f;\n"
                                  "float2 st1 = float2( frame1, frame1*numColsRcp );\n"
                                  "float2 st2 = float2( frame2, frame2*numColsRcp );\n"
                                  "float2 offset1 = floor( st1 );\n"
                                  "float2 offset2 = floor( st2 );\n"
                                  "out_blend = st1.x - offset1.x;\n";
constexpr const char* basicCode = "out_uv1 = ( in_uv + offset1 )*scale;\n"
                                  "out_uv2 = ( in_uv + offset2 )*scale;\n";
constexpr const char* advancedCode = "out_offset1 = offset1;\n"
                                     "out_offset2 = offset2;\n"
                                     "out_scale = scale;\n";

/// Divided in double precision, then stored as a float; the reciprocal of zero is infinite.
float reciprocal(std::int32_t count) { return static_cast<float>(1.0 / static_cast<double>(count)); }

// the wording, "per-fragment.Usually", "to exposed" and the double blanks included, is what artists know
constexpr auto ownProperties = declareProperties({
    {"Rows", "Rows: the number of rows of frames in the texture"},
    {"Columns", "Columns: the number of columns of frames in the texture"},
    {"Mode", "Mode: how the offsets are exposed.  Use \"Basic\" to apply the offsets and scale to "
             "a single uv set automatically, or use \"Advanced\" to exposed these parameters for "
             "custom use."},
    {"Execution Level", "Execution Level: force the animation to be done either per-vertex or "
                        "per-fragment.Usually this should be left at \"Vertex\"."},
});

} // namespace

AnimatedUvNode::AnimatedUvNode() : MaterialNode(staticTypeName(), ownProperties.layout()) {
    // the name stays the type name
    setBodyColour(1.0F, 0.0F, 0.5F);

    takeOwnProperties(*this, {&rows_, &columns_, &mode_, &executionLevel_});
    rows_->setInteger(4);
    columns_->setInteger(4);
    setEnumValues(*mode_, {basicMode, "Advanced"});
    setEnumValues(*executionLevel_, {"Vertex", "Fragment"});

    AnimatedUvNode::updateFromProperties(nullptr);
}

bool AnimatedUvNode::isBasic() const { return mode_->getEnum() == basicMode; }

void AnimatedUvNode::updateFromProperties(void* /*hostContext*/) {
    clearPorts(*this);
    addPort(inputs, {"in_frame", "frame", 1});
    if (isBasic()) {
        addPort(inputs, {"in_uv", "uv", 2});
        addPort(outputs, {"out_uv1", "uv1", 2});
        addPort(outputs, {"out_uv2", "uv2", 2});
    } else {
        addPort(outputs, {"out_offset1", "offset1", 2});
        addPort(outputs, {"out_offset2", "offset2", 2});
        addPort(outputs, {"out_scale", "scale", 2});
    }
    addPort(outputs, {"out_blend", "blend", 1});
}

std::string AnimatedUvNode::caption() const { return "Animated Uv"; }

void AnimatedUvNode::generateCode(GraphGenerator& generator) {
    FunctionBuilder builder;
    declareInputs(builder, *this);
    declareOutputs(builder, *this);
    builder.declareConstant(scalarFloat, "numRowsRcp", reciprocal(rows_->getInteger()));
    builder.declareConstant(scalarFloat, "numColsRcp", reciprocal(columns_->getInteger()));
    builder.appendCode(frameCode);
    builder.appendCode(isBasic() ? basicCode : advancedCode);
    // never left to the host: whatever is not "Vertex" is per fragment
    const bool perVertex = executionLevel_->getEnum() == "Vertex";
    emitFunction(generator, *this, builder, perVertex ? ExecutionLevel::Vertex : ExecutionLevel::Fragment,
                 "animatedUv");
}

} // namespace patina
