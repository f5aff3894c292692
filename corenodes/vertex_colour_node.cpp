#include "corenodes/vertex_colour_node.h"

#include "corenodes/core_node_support.h"
#include "shadergraph/graph_generator.h"

namespace patina {

namespace {

constexpr auto ownProperties = declareProperties({
    {"Colour Type", "Colour Type: the colour outputs to present from this node."},
    {"Alpha", "Alpha: check this box in order to use vertex alpha."},
});

} // namespace

VertexColourNode::VertexColourNode() : MaterialNode(staticTypeName(), ownProperties.layout()) {
    setName("VertexColour");
    setBodyColour(1.0F, 0.8F, 1.0F);

    takeOwnProperties(*this, {&colourType_, &alpha_});
    setEnumValues(*colourType_, {"Colour", "Component", "Vector"});
    alpha_->setBool(false);

    VertexColourNode::updateFromProperties(nullptr);
}

void VertexColourNode::updateFromProperties(void* /*hostContext*/) {
    clearPorts(*this);
    const std::string& type = colourType_->getEnum();
    if (type == "Vector") {
        // turning alpha on stays: going back to another type leaves it checked
        alpha_->editable = false;
        alpha_->setBool(true);
        addPort(outputs, {"out_colour", "rgba", 4});
        return;
    }
    alpha_->editable = true;
    if (type == "Colour") {
        addPort(outputs, {"out_colour", "colour", 3});
    } else {
        addPort(outputs, {"out_red", "red", 1});
        addPort(outputs, {"out_green", "green", 1});
        addPort(outputs, {"out_blue", "blue", 1});
    }
    if (alpha_->getBool()) {
        addPort(outputs, {"out_alpha", "alpha", 1});
    }
}

void VertexColourNode::generateCode(GraphGenerator& generator) {
    const std::string& varyingName = name();
    const std::string& type = colourType_->getEnum();
    const bool isVector = type == "Vector";
    const bool alphaUsed = isVector || (alpha_->getBool() && isOutputConnected(*this, "out_alpha"));
    const ShaderType inputType = resolvedType(*this, alphaUsed ? 4 : 3);

    FunctionBuilder builder;
    builder.addInput(inputType, "in_colour");
    if (isVector) {
        builder.addOutputPort(outputPort("out_colour"));
        builder.appendCode("\tout_colour = in_colour;\n");
    } else if (type == "Colour") {
        builder.addOutputPort(outputPort("out_colour"));
        builder.appendCode("\tout_colour = in_colour.xyz;\n");
    } else {
        builder.addOutputPort(outputPort("out_red"));
        builder.addOutputPort(outputPort("out_green"));
        builder.addOutputPort(outputPort("out_blue"));
        builder.appendCode("\tout_red = in_colour.x;\n"
                           "\tout_green = in_colour.y;\n"
                           "\tout_blue = in_colour.z;\n");
    }
    if (alphaUsed && !isVector) {
        builder.addOutputPort(outputPort("out_alpha"));
        builder.appendCode("\tout_alpha = in_colour.w;\n");
    }

    const auto function = builder.makeNode(ExecutionLevel::Automatic, "colourCode");
    const auto varying = makeVaryingParameter(varyingName, inputType);
    generator.addNode(function);
    generator.addNode(varying);
    generator.connect(varying, "read", function, "in_colour");
    attachLinks(generator, function);
}

bool VertexColourNode::generatesBinding() const { return true; }

void VertexColourNode::addBindings(BindingCollection& bindings) {
    const auto binding = createBinding(BindingKind::Colour, name(), 1);
    describeBinding(*binding, *this);
    addToBindingCollection(bindings, binding);
}

} // namespace patina
