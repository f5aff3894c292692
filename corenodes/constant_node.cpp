#include "corenodes/constant_node.h"

#include "corenodes/core_node_support.h"
#include "nodemodel/text.h"
#include "shadergraph/graph_generator.h"

#include <algorithm>

namespace patina {

using namespace detail;

namespace {

constexpr const char* colourType = "Colour";
constexpr const char* scalarType = "Scalar";
constexpr const char* componentType = "Component";
constexpr const char* vectorType = "Vector";

/// The single output of a vector, by its component count.
const char* vectorLabel(std::uint32_t count) {
    if (count == 2) {
        return "xy";
    }
    return count == 3 ? "xyz" : "xyzw";
}

// the wording, "to use add alpha" and the double blanks included, is what artists know
constexpr auto ownProperties = declareProperties({
    {"Constant Type", "Constant Type: the type of constant to present in Maya. Scalars generate a slider, "
                      "colours generate a colour picker (with optional alpha) and vectors generate an array "
                      "of sliders."},
    {"Component Count", "Component Count: the number of values for vector constants.  "
                        "This must be between 2 and 4."},
    {"Default Colour", "Default Colour: the default value for colour constants."},
    {"Min Scalar", "Min Scalar: the minimum value for scalar constants. This is the value at "
                   "the left-hand side of the slider."},
    {"Max Scalar", "Max Scalar: the maximum value for scalar constants. This is the value at "
                   "the right-hand side of the slider."},
    {"Default Scalar", "Default Scalar: the default value for scalar constants."},
    {"Alpha", "Alpha: check this box in order to use add alpha to a constant colour."},
    {"Default Alpha", "Default Alpha: the default alpha value."},
    {"Lock", "Lock: when this box is checked, no binding is presented in Maya and the default "
             "value is used in all cases. This can improve performance and should be used if the "
             "value does not need to vary between meshes."},
    {"Basic Colour", "Basic Colour: check this box to use this binding as the basic colour of the material."
                     "  At most one constant and one texture can form the basic colour, which is used for "
                     "QeliLocator preview and the vela diffuse term.  Only unlocked colour constants can be "
                     "used as the basic colour.  If a material has no basic colours then the names of the "
                     "bindings are used to guess which ones to use."},
});

} // namespace

ConstantNode::ConstantNode() : MaterialNode(staticTypeName(), ownProperties.layout()) {
    setName("Constant");
    setBodyColour(0.8F, 1.0F, 0.8F);

    const std::initializer_list<std::shared_ptr<Property>*> handles = {
        &constantType_,  &componentCount_, &defaultColour_, &minScalar_, &maxScalar_,
        &defaultScalar_, &alpha_,          &defaultAlpha_,  &lock_,      &basicColour_};
    takeOwnProperties(*this, handles);
    setEnumValues(*constantType_, {colourType, scalarType, componentType, vectorType});
    componentCount_->setInteger(4);
    defaultColour_->setColour(0.0F, 0.0F, 0.0F);
    minScalar_->setFloat(0.0F);
    maxScalar_->setFloat(1.0F);
    defaultScalar_->setFloat(1.0F);
    alpha_->setBool(false);
    defaultAlpha_->setFloat(1.0F);
    lock_->setBool(false);
    basicColour_->setBool(false);

    ConstantNode::updateFromProperties(nullptr);
}

bool ConstantNode::isColourish() const {
    const std::string& type = constantType_->getEnum();
    return type == colourType || type == componentType;
}

bool ConstantNode::alphaInUse() const {
    return isColourish() && alpha_->getBool() && isOutputConnected(*this, "alpha");
}

std::array<float, 3> ConstantNode::defaultColour() const {
    std::array<float, 3> colour = {};
    defaultColour_->getColour(colour[0], colour[1], colour[2]);
    return colour;
}

void ConstantNode::updateFromProperties(void* /*hostContext*/) {
    clearPorts(*this);
    const std::string& type = constantType_->getEnum();
    const bool isScalar = type == scalarType;
    const bool colourish = isColourish();
    const bool isVector = !isScalar && !colourish;
    if (type == colourType) {
        addPort(outputs, {"read", "colour", 3});
    } else if (isScalar) {
        addPort(outputs, {"read", "scalar", 1});
    } else if (type == componentType) {
        addPort(outputs, {"red", "red", 1});
        addPort(outputs, {"green", "green", 1});
        addPort(outputs, {"blue", "blue", 1});
    } else {
        const std::uint32_t count = vectorComponentCount(*componentCount_);
        addPort(outputs, {"read", vectorLabel(count), count});
    }
    if (colourish && alpha_->getBool()) {
        addPort(outputs, {"alpha", "alpha", 1});
    }

    componentCount_->visible = isVector;
    defaultColour_->visible = colourish;
    minScalar_->visible = !colourish;
    maxScalar_->visible = !colourish;
    defaultScalar_->visible = !colourish;
    alpha_->visible = colourish;
    defaultAlpha_->visible = colourish && alpha_->getBool();
    basicColour_->visible = colourish && !lock_->getBool();

    const float grey = lock_->getBool() ? 0.6F : 0.0F;
    setTextColour(grey, grey, grey);
}

bool ConstantNode::generatesBinding() const { return !lock_->getBool(); }

void ConstantNode::addBindings(BindingCollection& bindings) {
    if (lock_->getBool()) {
        return;
    }
    std::shared_ptr<Binding> binding;
    const std::string& bindingName = name();
    const std::string& type = constantType_->getEnum();
    if (type == scalarType || type == vectorType) {
        const std::int32_t components = type == vectorType ? componentCount_->getInteger() : 1;
        const auto count = static_cast<std::uint32_t>(std::max(components, 0));
        binding = createBinding(BindingKind::Float, bindingName, count);
        if (!binding) {
            return;
        }
        binding->uiType = UiType::Slider;
        for (std::uint32_t i = 0; i < count; ++i) {
            binding->setMinValue(i, minScalar_->getFloat());
            binding->setMaxValue(i, maxScalar_->getFloat());
            binding->setDefaultValue(i, defaultScalar_->getFloat());
        }
    } else { // any other type too, though its ports are a vector's
        binding = createBinding(BindingKind::Float, bindingName, alphaInUse() ? 4 : 3);
        binding->uiType = UiType::Colour;
        const std::array<float, 3> colour = defaultColour();
        for (std::uint32_t i = 0; i < colour.size(); ++i) {
            binding->setDefaultValue(i, colour[i]);
        }
        if (alphaInUse()) {
            binding->setDefaultValue(3, defaultAlpha_->getFloat());
        }
        binding->basicColour = basicColour_->getBool();
    }
    describeBinding(*binding, *this);
    addToBindingCollection(bindings, binding);
}

void ConstantNode::generateCode(GraphGenerator& generator) {
    const std::string& type = constantType_->getEnum();
    if (lock_->getBool()) {
        generateLocked(generator);
    } else if (type == componentType || (type == colourType && alpha_->getBool())) {
        generateSplitUniform(generator);
    } else { // an unknown type too, as its port is a vector's
        generateUniform(generator);
    }
}

void ConstantNode::addComponentOutputs(FunctionBuilder& builder) const {
    builder.addOutputPort(outputPort("red"));
    builder.addOutputPort(outputPort("green"));
    builder.addOutputPort(outputPort("blue"));
}

void ConstantNode::generateLocked(GraphGenerator& generator) {
    const std::string& type = constantType_->getEnum();
    FunctionBuilder builder;
    if (type == componentType) {
        const auto [red, green, blue] = defaultColour();
        addComponentOutputs(builder);
        builder.appendCode(joinText({"\tred = ", formatFloat(red), ";\n", "\tgreen = ", formatFloat(green),
                                     ";\n", "\tblue = ", formatFloat(blue), ";\n"}));
    } else {
        const ShaderType outputType = portType(outputPort("read"));
        builder.addOutput(outputType, "out_value");
        if (type == colourType) {
            const auto [red, green, blue] = defaultColour();
            // a blank behind the opening parenthesis and none before the closing one
            builder.appendCode(joinText({"\tout_value = ", typeText(outputType), "( ", formatFloat(red), ", ",
                                         formatFloat(green), ", ", formatFloat(blue), ");\n"}));
        } else {
            // every component of a vector is the one scalar
            builder.appendCode(joinText({"\tout_value = ", formatFloat(defaultScalar_->getFloat()), ";\n"}));
        }
    }
    if (alphaInUse()) {
        // the function declares its alpha and never assigns it: a line that does must not be added
        builder.addOutputPort(outputPort("alpha"));
    }
    const auto function = builder.makeNode(ExecutionLevel::Automatic, "lockCode");
    generator.addNode(function);
    linkOutputs(generator, function, "out_value");
}

void ConstantNode::generateUniform(GraphGenerator& generator) {
    const std::string& uniformName = name();
    const auto uniform = makeUniformParameter(uniformName, portType(outputPort("read")));
    generator.addNode(uniform);
    attachLinks(generator, uniform);
}

void ConstantNode::generateSplitUniform(GraphGenerator& generator) {
    const ShaderType uniformType = resolvedType(*this, alphaInUse() ? 4 : 3);
    FunctionBuilder builder;
    builder.addInput(uniformType, "in_uniform");
    if (constantType_->getEnum() == colourType) {
        builder.addOutput(portType(outputPort("read")), "out_colour");
        builder.appendCode("\tout_colour.xyz = in_uniform.xyz;\n");
    } else {
        addComponentOutputs(builder);
        builder.appendCode("\tred = in_uniform.x;\n"
                           "\tgreen = in_uniform.y;\n"
                           "\tblue = in_uniform.z;\n");
    }
    if (alphaInUse()) {
        builder.addOutputPort(outputPort("alpha"));
        builder.appendCode("\talpha = in_uniform.w;\n");
    }
    const auto function = builder.makeNode(ExecutionLevel::Automatic, "swizzleColour");
    generator.addNode(function);
    const auto uniform = makeUniformParameter(name(), uniformType);
    generator.addNode(uniform);
    generator.connect(uniform, "read", function, "in_uniform");
    linkOutputs(generator, function, "out_colour");
}

void ConstantNode::linkOutputs(GraphGenerator& generator, const std::shared_ptr<GeneratorNode>& function,
                               const char* readPort) const {
    for (const std::weak_ptr<NodeConnection>& link : outputLinks) {
        const std::shared_ptr<NodeConnection> connection(link);
        const std::string& port = connection->sourcePort;
        generator.linkOutputPort(connection, function, port == "read" ? readPort : port);
    }
}

} // namespace patina
