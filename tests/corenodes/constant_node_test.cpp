#include "corenodes/constant_node.h"

#include "tests/corenodes/node_checks.h"
#include "tests/support/messages.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <string>

namespace patina {
namespace {

using namespace testing;

constexpr std::array<float, 4> blackText = {0.0F, 0.0F, 0.0F, 1.0F};
constexpr std::array<float, 4> greyText = {0.6F, 0.6F, 0.6F, 1.0F};

const Texts allProperties = {"Constant Type", "Component Count", "Default Colour", "Min Scalar",
                             "Max Scalar",    "Default Scalar",  "Alpha",          "Default Alpha",
                             "Lock",          "Basic Colour"};

TEST(ConstantNode, HasItsProperties) {
    const ConstantNode node;
    expectProperties(
        node, "CoreConstant", "Constant",
        {{"Constant Type",
          PropertyType::Enum,
          "Colour",
          "Constant Type: the type of constant to present in Maya. Scalars generate a slider, colours "
          "generate a colour picker (with optional alpha) and vectors generate an array of sliders.",
          {"Colour", "Scalar", "Component", "Vector"}},
         {"Component Count", PropertyType::Integer, "4",
          "Component Count: the number of values for vector constants.  This must be between 2 and 4."},
         {"Default Colour", PropertyType::Colour, "0, 0, 0",
          "Default Colour: the default value for colour constants."},
         {"Min Scalar", PropertyType::Float, "0",
          "Min Scalar: the minimum value for scalar constants. This is the value at the left-hand side of "
          "the slider."},
         {"Max Scalar", PropertyType::Float, "1",
          "Max Scalar: the maximum value for scalar constants. This is the value at the right-hand side of "
          "the slider."},
         {"Default Scalar", PropertyType::Float, "1",
          "Default Scalar: the default value for scalar constants."},
         {"Alpha", PropertyType::Bool, "false",
          "Alpha: check this box in order to use add alpha to a constant colour."},
         {"Default Alpha", PropertyType::Float, "1", "Default Alpha: the default alpha value."},
         {"Lock", PropertyType::Bool, "false",
          "Lock: when this box is checked, no binding is presented in Maya and the default value is used in "
          "all cases. This can improve performance and should be used if the value does not need to vary "
          "between meshes."},
         {"Basic Colour", PropertyType::Bool, "false",
          "Basic Colour: check this box to use this binding as the basic colour of the material.  At most "
          "one constant and one texture can form the basic colour, which is used for QeliLocator preview "
          "and the vela diffuse term.  Only unlocked colour constants can be used as the basic colour.  If "
          "a material has no basic colours then the names of the bindings are used to guess which ones to "
          "use."}});
    expectColours(node, 0.8F, 1.0F, 0.8F);
}

TEST(ConstantNode, StartsAsAColour) {
    const ConstantNode node;
    EXPECT_TRUE(node.inputs.empty());
    expectPorts(node.outputs, {{"read", "colour", 3}});
    EXPECT_EQ(visibleProperties(node),
              (Texts{"Constant Type", "Default Colour", "Alpha", "Lock", "Basic Colour"}));
    EXPECT_EQ(editableProperties(node), allProperties);
}

TEST(ConstantNode, IsCaptionedWithItsName) {
    ConstantNode node;
    EXPECT_EQ(node.caption(), "Constant");
    node.setName("tint");
    EXPECT_EQ(node.caption(), "tint");
}

struct Configuration {
    const char* type;
    std::int32_t count;
    bool alpha;
    bool lock;
    std::vector<PortRow> outputs;
    Texts visible;
};

const std::vector<Configuration> configurations = {
    {"Colour",
     4,
     false,
     false,
     {{"read", "colour", 3}},
     {"Constant Type", "Default Colour", "Alpha", "Lock", "Basic Colour"}},
    {"Colour", 4, false, true, {{"read", "colour", 3}}, {"Constant Type", "Default Colour", "Alpha", "Lock"}},
    {"Colour",
     4,
     true,
     false,
     {{"read", "colour", 3}, {"alpha", "alpha", 1}},
     {"Constant Type", "Default Colour", "Alpha", "Default Alpha", "Lock", "Basic Colour"}},
    {"Colour",
     4,
     true,
     true,
     {{"read", "colour", 3}, {"alpha", "alpha", 1}},
     {"Constant Type", "Default Colour", "Alpha", "Default Alpha", "Lock"}},
    {"Scalar",
     4,
     false,
     false,
     {{"read", "scalar", 1}},
     {"Constant Type", "Min Scalar", "Max Scalar", "Default Scalar", "Lock"}},
    {"Scalar",
     4,
     true,
     true,
     {{"read", "scalar", 1}},
     {"Constant Type", "Min Scalar", "Max Scalar", "Default Scalar", "Lock"}},
    // the count is checked for vectors only
    {"Scalar",
     9,
     false,
     false,
     {{"read", "scalar", 1}},
     {"Constant Type", "Min Scalar", "Max Scalar", "Default Scalar", "Lock"}},
    {"Component",
     4,
     false,
     false,
     {{"red", "red", 1}, {"green", "green", 1}, {"blue", "blue", 1}},
     {"Constant Type", "Default Colour", "Alpha", "Lock", "Basic Colour"}},
    {"Component",
     4,
     false,
     true,
     {{"red", "red", 1}, {"green", "green", 1}, {"blue", "blue", 1}},
     {"Constant Type", "Default Colour", "Alpha", "Lock"}},
    {"Component",
     4,
     true,
     false,
     {{"red", "red", 1}, {"green", "green", 1}, {"blue", "blue", 1}, {"alpha", "alpha", 1}},
     {"Constant Type", "Default Colour", "Alpha", "Default Alpha", "Lock", "Basic Colour"}},
    {"Component",
     4,
     true,
     true,
     {{"red", "red", 1}, {"green", "green", 1}, {"blue", "blue", 1}, {"alpha", "alpha", 1}},
     {"Constant Type", "Default Colour", "Alpha", "Default Alpha", "Lock"}},
    {"Vector",
     2,
     false,
     false,
     {{"read", "xy", 2}},
     {"Constant Type", "Component Count", "Min Scalar", "Max Scalar", "Default Scalar", "Lock"}},
    {"Vector",
     3,
     false,
     true,
     {{"read", "xyz", 3}},
     {"Constant Type", "Component Count", "Min Scalar", "Max Scalar", "Default Scalar", "Lock"}},
    {"Vector",
     4,
     true,
     false,
     {{"read", "xyzw", 4}},
     {"Constant Type", "Component Count", "Min Scalar", "Max Scalar", "Default Scalar", "Lock"}},
};

void configure(ConstantNode& node, const Configuration& row) {
    property(node, "Constant Type").setEnum(row.type);
    property(node, "Component Count").setInteger(row.count);
    property(node, "Alpha").setBool(row.alpha);
    property(node, "Lock").setBool(row.lock);
    node.updateFromProperties(nullptr);
}

void expectConfiguration(const ConstantNode& node, const Configuration& row) {
    EXPECT_TRUE(node.inputs.empty());
    expectPorts(node.outputs, row.outputs);
    EXPECT_EQ(visibleProperties(node), row.visible);
    EXPECT_EQ(editableProperties(node), allProperties);
    EXPECT_EQ(node.textColour, row.lock ? greyText : blackText);
    EXPECT_EQ(node.generatesBinding(), !row.lock);
}

TEST(ConstantNode, RebuildsPortsAndFlags) {
    for (std::size_t i = 0; i < configurations.size(); ++i) {
        SCOPED_TRACE(i);
        ConstantNode node;
        configure(node, configurations[i]);
        expectConfiguration(node, configurations[i]);
    }
}

TEST(ConstantNode, ForgetsTheConfigurationBefore) {
    ConstantNode node;
    for (std::size_t i = 0; i < configurations.size(); ++i) {
        for (std::size_t j = 0; j < configurations.size(); ++j) {
            SCOPED_TRACE(i);
            SCOPED_TRACE(j);
            configure(node, configurations[i]);
            configure(node, configurations[j]);
            expectConfiguration(node, configurations[j]);
        }
    }
}

TEST(ConstantNode, LeavesItsTypeAndLockAsVisibleAsTheyWere) {
    ConstantNode node;
    property(node, "Constant Type").visible = false;
    property(node, "Lock").visible = false;
    node.updateFromProperties(nullptr);
    EXPECT_EQ(visibleProperties(node), (Texts{"Default Colour", "Alpha", "Basic Colour"}));
}

TEST(ConstantNode, StartsItsPortsAfresh) {
    ConstantNode node;
    resolve(node, floatPrecision);
    node.outputPort("read").connected = true;
    node.updateFromProperties(&node);
    expectPorts(node.outputs, {{"read", "colour", 3}});
}

TEST(ConstantNode, KeepsItsValuesWhenTheTypeChanges) {
    ConstantNode node;
    configure(node, configurations.back());
    EXPECT_EQ(property(node, "Component Count").getInteger(), 4);
    EXPECT_TRUE(property(node, "Alpha").getBool());
    configure(node, {"Scalar", 9, true, true, {}, {}});
    EXPECT_EQ(property(node, "Component Count").getInteger(), 9);
    EXPECT_TRUE(property(node, "Alpha").getBool());
}

TEST(ConstantNode, TakesAnUnknownTypeForAVector) {
    ConstantNode node;
    setUnknownEnum(node, "Constant Type");
    property(node, "Component Count").setInteger(2);
    property(node, "Alpha").setBool(true);
    node.updateFromProperties(nullptr);
    expectPorts(node.outputs, {{"read", "xy", 2}});
    EXPECT_EQ(visibleProperties(node), (Texts{"Constant Type", "Component Count", "Min Scalar", "Max Scalar",
                                              "Default Scalar", "Lock"}));
}

TEST(ConstantNode, RefusesVectorsOfOtherWidths) {
    constexpr std::int32_t counts[] = {std::numeric_limits<std::int32_t>::min(), -1, 0, 1, 5,
                                       std::numeric_limits<std::int32_t>::max()};
    for (const std::int32_t count : counts) {
        SCOPED_TRACE(count);
        ConstantNode node;
        property(node, "Constant Type").setEnum("Vector");
        property(node, "Component Count").setInteger(count);
        EXPECT_EQ(shaderErrorOf([&] { node.updateFromProperties(nullptr); }),
                  "component count must be between 2 and 4");
    }
}

TEST(ConstantNode, KeepsItsFlagsWhenAVectorIsRefused) {
    ConstantNode node;
    property(node, "Constant Type").setEnum("Vector");
    property(node, "Component Count").setInteger(5);
    property(node, "Lock").setBool(true);
    EXPECT_EQ(shaderErrorOf([&] { node.updateFromProperties(nullptr); }),
              "component count must be between 2 and 4");
    EXPECT_TRUE(node.inputs.empty());
    EXPECT_TRUE(node.outputs.empty());
    EXPECT_EQ(visibleProperties(node),
              (Texts{"Constant Type", "Default Colour", "Alpha", "Lock", "Basic Colour"}));
    EXPECT_EQ(editableProperties(node), allProperties);
    EXPECT_EQ(node.textColour, blackText);
    EXPECT_EQ(property(node, "Component Count").getInteger(), 5);

    property(node, "Component Count").setInteger(3);
    node.updateFromProperties(nullptr);
    expectPorts(node.outputs, {{"read", "xyz", 3}});
    EXPECT_EQ(node.textColour, greyText);
}

/// What is done with a node one of whose properties is of another kind.
using Operation = void (*)(ConstantNode& node);

void update(ConstantNode& node) { node.updateFromProperties(nullptr); }
void bind(ConstantNode& node) { bindingsOf(node); }
void generate(ConstantNode& node) { generated(node); }

struct KindRow {
    Operation operation;
    const char* constantType;
    bool lock;
    const char* property; ///< of another kind
    const char* kind;     ///< that it should be of
};

TEST(ConstantNode, ReadsPropertiesOfTheirKindsAlone) {
    const KindRow rows[] = {
        {update, "Colour", false, "Constant Type", "enum"},
        {update, "Vector", false, "Component Count", "integer"},
        {update, "Colour", false, "Alpha", "bool"},
        {update, "Colour", false, "Lock", "bool"},
        {[](ConstantNode& node) { node.generatesBinding(); }, "Colour", false, "Lock", "bool"},
        {bind, "Colour", false, "Lock", "bool"},
        {bind, "Scalar", false, "Name", "string"},
        {bind, "Colour", false, "Name", "string"},
        {bind, "Colour", false, "Constant Type", "enum"},
        {bind, "Vector", false, "Component Count", "integer"},
        {bind, "Scalar", false, "Min Scalar", "float"},
        {bind, "Scalar", false, "Max Scalar", "float"},
        {bind, "Scalar", false, "Default Scalar", "float"},
        {bind, "Colour", false, "Default Colour", "colour"},
        {bind, "Component", false, "Alpha", "bool"},
        {bind, "Component", false, "Default Alpha", "float"},
        {bind, "Colour", false, "Basic Colour", "bool"},
        {bind, "Colour", false, "Description", "string"},
        {bind, "Colour", false, "BindingGroup", "string"},
        {bind, "Colour", false, "Help Url", "string"},
        {generate, "Colour", false, "Lock", "bool"},
        {generate, "Colour", false, "Constant Type", "enum"},
        {generate, "Colour", false, "Alpha", "bool"},
        {generate, "Scalar", false, "Name", "string"},
        {generate, "Colour", false, "Name", "string"},
        {generate, "Colour", true, "Default Colour", "colour"},
        {generate, "Component", true, "Default Colour", "colour"},
        {generate, "Component", true, "Alpha", "bool"},
        {generate, "Vector", true, "Default Scalar", "float"},
    };
    for (const KindRow& row : rows) {
        SCOPED_TRACE(row.constantType);
        ConstantNode node;
        property(node, "Constant Type").setEnum(row.constantType);
        property(node, "Lock").setBool(row.lock);
        property(node, "Alpha").setBool(true);
        node.updateFromProperties(nullptr);
        for (Port& output : node.outputs) {
            output.connected = true;
        }
        resolve(node, floatPrecision);
        property(node, row.property).kind = PropertyType::Node;
        EXPECT_EQ(shaderErrorOf([&] { row.operation(node); }), std::string("cannot read ") + row.kind +
                                                                   " value from non-" + row.kind +
                                                                   " property \"" + row.property + "\"");
    }
}

TEST(ConstantNode, TakesItsNameBeforeTheTypeOfItsPort) {
    ConstantNode node;
    node.nameProperty->kind = PropertyType::Node;
    EXPECT_EQ(shaderErrorOf([&] { generated(node); }),
              "cannot read string value from non-string property \"Name\"");
}

} // namespace
} // namespace patina
