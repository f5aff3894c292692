#include "pattern_node.h"

#include "node_support.h"

namespace example {

using namespace patina;

PatternNode::PatternNode(const std::string& type, const Pattern& pattern)
    : MaterialNode(type), pattern_(pattern) {
    setBodyColour(0.7F, 0.9F, 0.8F);

    defaultScale_ = addProperty("Default Scale", "Default Scale: the number of cells for each unit of uv, "
                                                 "when no edge is connected to \"scale\".");
    defaultScale_->setFloat(8.0F);

    addFloatPort(inputs, "in_uv", "uv", 2);
    addFloatPort(inputs, "in_scale", "scale", 1);
    outputs.emplace_back(pattern_.outputName, pattern_.outputLabel).setComponentCount(1);
}

void PatternNode::generateCode(GraphGenerator& generator) {
    const Port& uv = inputPort("in_uv");
    if (!uv.connected) {
        throw ShaderError("a uv needs to be connected to the \"" + uv.label + "\" port");
    }
    FunctionBuilder builder;
    builder.addInputPort(uv);
    const Port& scale = inputPort("in_scale");
    if (scale.connected) {
        builder.addInputPort(scale);
    } else {
        builder.declarePortConstant(scale, defaultScale_->getFloat());
    }
    builder.addOutputPort(outputPort(pattern_.outputName));
    builder.appendCode("\tfloat2 uv = in_uv * in_scale;\n");
    builder.appendCode(pattern_.code);
    emitFunction(generator, *this, builder.makeNode(ExecutionLevel::Fragment, pattern_.functionName));
}

} // namespace example
