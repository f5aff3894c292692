#include "corenodes/maths_node.h"

#include "corenodes/core_node_support.h"
#include "nodemodel/shader_error.h"
#include "nodemodel/text.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace patina {

using namespace detail;

/// One arithmetic function: its ports and its line of code.
struct MathsFunction {
    std::string_view name;
    std::array<PortDeclaration, 5> inputs; ///< ends at the first without a name
    PortDeclaration output;
    std::string_view code;
};

namespace {

constexpr PortDeclaration in1 = {"in_value1", "in1", 0};
constexpr PortDeclaration in2 = {"in_value2", "in2", 0};
constexpr PortDeclaration onlyIn = {"in_value1", "in", 0};
constexpr PortDeclaration blend = {"in_blend", "blend", 1};
constexpr PortDeclaration minimum = {"in_min", "min", 0};
constexpr PortDeclaration maximum = {"in_max", "max", 0};
constexpr PortDeclaration oldMinimum = {"in_oldmin", "old min", 0};
constexpr PortDeclaration oldMaximum = {"in_oldmax", "old max", 0};
constexpr PortDeclaration test1 = {"in_test1", "test1", 1};
constexpr PortDeclaration test2 = {"in_test2", "test2", 1};
constexpr PortDeclaration power = {"in_power", "power", 1};
constexpr PortDeclaration scale = {"in_scale", "scale", 0};
constexpr PortDeclaration facing = {"in_facing", "facing", 1};
constexpr PortDeclaration out = {"out_value", "out", 0};
constexpr PortDeclaration scalarOut = {"out_value", "out", 1};

// Dot Product's output deliberately takes the resolved width and is not fixed at one component.
constexpr std::array<MathsFunction, 15> mathsFunctions = {{
    {"Multiply", {in1, in2}, out, "\tout_value = in_value1 * in_value2;\n"},
    {"Addition", {in1, in2}, out, "\tout_value = in_value1 + in_value2;\n"},
    {"Subtraction", {in1, in2}, out, "\tout_value = in_value1 - in_value2;\n"},
    {"Invert", {onlyIn}, out, "\tout_value = in_ref - in_value1;\n"},
    {"Power", {onlyIn, power}, out, "\tout_value = pow( in_value1, in_power );\n"},
    {"Clamp", {onlyIn, minimum, maximum}, out, "\tout_value = clamp( in_value1, in_min, in_max );\n"},
    {"Range",
     {onlyIn, minimum, maximum, oldMinimum, oldMaximum},
     out,
     "\tout_value = lerp( in_min, in_max, saturate( ( in_value1 - in_oldmin )/( in_oldmax - in_oldmin ) "
     "));\n"},
    {"Lerp", {in1, in2, blend}, out, "\tout_value = lerp( in_value1, in_value2, in_blend );\n"},
    {"SmoothStep",
     {in1, in2, blend},
     out,
     "\tout_value = lerp( in_value1, in_value2, smoothstep( 0, 1, in_blend ) );\n"},
    {"Compare",
     {in1, in2, test1, test2},
     out,
     "\tout_value = ( in_test1 < in_test2 ) ? in_value1 : in_value2;\n"},
    {"Dot Product", {in1, in2}, out, "\tout_value = dot( in_value1, in_value2 );\n"},
    {"Fresnel",
     {facing, minimum, scale, power},
     scalarOut,
     "\tout_value = in_min + in_scale*pow( saturate( 1.0 - in_facing ), in_power );\n"},
    {"Ceil", {onlyIn}, out, "\tout_value = ceil( in_value1 );\n"},
    {"Floor", {onlyIn}, out, "\tout_value = floor( in_value1 );\n"},
    {"Frac", {onlyIn}, out, "\tout_value = frac( in_value1 );\n"},
}};

/// A property that feeds inputs of one name while they are not connected. "in_facing" has none.
struct InputDefault {
    std::string_view portName;
    std::string_view propertyName;
    std::string_view help;
    float value;
};

constexpr std::array<InputDefault, 11> inputDefaults = {{
    {"in_value1", "Default Value 1",
     "Default Value 1: the default value for the port \"in1\" (or \"in\") when no edge is connected.", 0.0F},
    {"in_value2", "Default Value 2",
     "Default Value 2: the default value for the port \"in2\" when no edge is connected.", 0.0F},
    {"in_blend", "Default Blend",
     "Default Blend: the default value for the port \"blend\" when no edge is connected.", 0.5F},
    {"in_min", "Default Min",
     "Default Min: the default value for the port \"min\" when no edge is connected.", 0.0F},
    {"in_max", "Default Max",
     "Default Max: the default value for the port \"max\" when no edge is connected.", 1.0F},
    {"in_oldmin", "Default Old Min",
     "Default Old Min: the default value for the port \"old min\" when no edge is connected.", 0.0F},
    {"in_oldmax", "Default Old Max",
     "Default Old Max: the default value for the port \"old max\" when no edge is connected.", 1.0F},
    {"in_test1", "Default Test 1",
     "Default Test 1: the default value for the port \"test1\" when no edge is connected.", 0.0F},
    {"in_test2", "Default Test 2",
     "Default Test 2: the default value for the port \"test2\" when no edge is connected.", 0.0F},
    // two blanks before "The"
    {"in_power", "Default Power",
     "Default Power: the default value for the port \"power\" when no edge is connected.  The default for "
     "fresnel should be 5.",
     5.0F},
    {"in_scale", "Default Scale",
     "Default Scale: the default value for the port \"scale\" when no edge is connected.", 1.0F},
}};

constexpr std::array<PropertyDeclaration, 2 + inputDefaults.size()> ownDeclarations() {
    std::array<PropertyDeclaration, 2 + inputDefaults.size()> declarations = {};
    declarations.front() = {"Function", "Function: the type of mathematical function to perform."};
    for (std::size_t i = 0; i < inputDefaults.size(); ++i) {
        declarations[1 + i] = {inputDefaults[i].propertyName, inputDefaults[i].help};
    }
    declarations.back() = {
        "Execution Level",
        "Execution Level: force the maths to be done either per-vertex or per-fragment, for "
        "example to force some uv arithmetic to be done per-vertex (possibly using more "
        "interpolants to do so). Usually this should be left at \"Automatic\"."};
    return declarations;
}

constexpr auto ownProperties = declareProperties(ownDeclarations());

/// The index of the property that feeds an input, or the number of them when there is none.
std::size_t defaultIndexOf(std::string_view portName) {
    const auto found = std::find_if(inputDefaults.begin(), inputDefaults.end(),
                                    [&](const InputDefault& entry) { return entry.portName == portName; });
    return static_cast<std::size_t>(found - inputDefaults.begin());
}

/// Rounding runs per fragment unless the artist says otherwise: interpolating rounded values would undo it.
bool isRounding(std::string_view function) {
    return function == "Ceil" || function == "Floor" || function == "Frac";
}

ExecutionLevel executionLevelFor(std::string_view level, std::string_view function) {
    if (level == "Vertex") {
        return ExecutionLevel::Vertex;
    }
    if (level == "Fragment" || isRounding(function)) {
        return ExecutionLevel::Fragment;
    }
    return ExecutionLevel::Automatic;
}

} // namespace

MathsNode::MathsNode() : MaterialNode(staticTypeName(), ownProperties.layout()) {
    setName("Maths");
    setBodyColour(1.0F, 0.5F, 0.5F);

    auto own = ownPropertiesOf(*this);
    function_ = *own++;
    setEnumValues(*function_, mathsFunctions);
    for (std::size_t i = 0; i < defaultCount; ++i) {
        defaults_[i] = *own++;
        defaults_[i]->setFloat(inputDefaults[i].value);
    }
    executionLevel_ = *own;
    setEnumValues(*executionLevel_, {"Automatic", "Vertex", "Fragment"});

    MathsNode::updateFromProperties(nullptr);
}

const MathsFunction& MathsNode::function() const {
    return findRow(mathsFunctions, function_->getEnum(), mathsFunctions.front());
}

void MathsNode::updateFromProperties(void* /*hostContext*/) {
    clearPorts(*this);
    const MathsFunction& selected = function();
    for (const std::shared_ptr<Property>& property : defaults_) {
        property->visible = false;
    }
    for (const PortDeclaration& input : selected.inputs) {
        if (!input.name.empty()) {
            addPort(inputs, input);
            if (const std::size_t index = defaultIndexOf(input.name); index < defaultCount) {
                defaults_[index]->visible = true;
            }
        }
    }
    addPort(outputs, selected.output);
}

std::string MathsNode::caption() const { return function_->getEnum(); }

float MathsNode::defaultFor(const Port& input) const {
    const std::size_t index = defaultIndexOf(input.name);
    if (index == defaultCount) {
        throw ShaderError(joinText({"a value needs to be supplied to the \"", input.label, "\" port on the ",
                                    function_->getEnum(), " maths node"}));
    }
    return defaults_[index]->getFloat();
}

void MathsNode::generateCode(GraphGenerator& generator) {
    FunctionBuilder builder;
    declareInputs(builder, *this, [this](const Port& input) { return defaultFor(input); });
    declareOutputs(builder, *this);
    const MathsFunction& selected = function();
    if (selected.name == "Invert") {
        builder.declareConstant(resolvedType(*this), "in_ref", 1.0F);
    }
    builder.appendCode(selected.code);
    emitFunction(generator, *this, builder, executionLevelFor(executionLevel_->getEnum(), selected.name),
                 "mathsCode");
}

} // namespace patina
