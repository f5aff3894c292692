#include "plugin/core_node_factory.h"

#include "tests/plugin/node_types.h"
#include "tests/support/comma_locale.h"
#include "tests/support/messages.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <vector>

namespace patina {
namespace {

using testing::nodeTypeNames;
using testing::shaderErrorOf;

static_assert(materialLibVersion == 5);
static_assert(std::is_base_of_v<NodeFactory, CoreNodeFactory>);
static_assert(std::is_abstract_v<NodeFactory>);
static_assert(std::has_virtual_destructor_v<NodeFactory>);
static_assert(std::is_same_v<decltype(NodeFactory::nodeLibrary), std::vector<NodeDescription>>);
static_assert(std::is_same_v<NodeLibrary, std::vector<NodeDescription>>);
static_assert(std::is_same_v<decltype(NodeDescription::typeName), std::string>);
static_assert(std::is_same_v<decltype(NodeDescription::category), std::string>);
static_assert(std::is_same_v<decltype(NodeDescription::displayName), std::string>);
static_assert(std::is_same_v<decltype(NodeDescription::creatable), bool>);
static_assert(std::is_same_v<decltype(NodeDescription::icon), const char* const*>);

TEST(NodeDescription, OfATypeNameAlone) {
    const NodeDescription description("CoreFancy");
    EXPECT_EQ(description.typeName, "CoreFancy");
    EXPECT_EQ(description.displayName, "CoreFancy");
    EXPECT_EQ(description.category, "");
    EXPECT_TRUE(description.creatable);
    EXPECT_EQ(description.icon, nullptr);
}

TEST(NodeDescription, FieldsStandInDeclaredOrder) {
    const NodeDescription description("CoreFancy");
    const std::vector<const void*> addresses = {&description,           &description.typeName,
                                                &description.category,  &description.displayName,
                                                &description.creatable, &description.icon};
    EXPECT_EQ(addresses[0], addresses[1]);
    for (std::size_t i = 2; i < addresses.size(); ++i) {
        EXPECT_LT(addresses[i - 1], addresses[i]) << i;
    }
}

TEST(NodeFactory, HasItsLibraryAsItsOnlyData) {
    const CoreNodeFactory factory;
    const NodeFactory& base = factory;
    const auto address = [](const auto& object) { return reinterpret_cast<std::uintptr_t>(&object); };
    EXPECT_EQ(address(base.nodeLibrary) - address(base), sizeof(void*)); // behind what the virtual ones need
    EXPECT_EQ(sizeof(NodeFactory), sizeof(void*) + sizeof(NodeLibrary));
}

struct LibraryRow {
    const char* typeName;
    const char* displayName;
    const char* category;
    bool creatable;
    bool hasIcon;
};

constexpr LibraryRow libraryRows[] = {
    {"CoreDefault", "Default", "Core", false, false},
    {"CoreVertexColour", "Vertex Colour Set", "Core", true, true},
    {"CoreUv", "Uv Set", "Core", true, true},
    {"CoreTexture", "Texture", "Core", true, true},
    {"CoreConstant", "Constant", "Core", true, true},
    {"CoreMaths", "Maths", "Core", true, true},
    {"CoreSwizzle", "Swizzle", "Core", true, true},
    {"CoreLayerBlend", "Layer Blend", "Core", true, true},
    {"CoreAnimatedUv", "Animated Uv", "Core", true, true},
};

void expectLibrary(const NodeLibrary& library) {
    ASSERT_EQ(library.size(), std::size(libraryRows));
    for (std::size_t i = 0; i < std::size(libraryRows); ++i) {
        EXPECT_EQ(library[i].typeName, libraryRows[i].typeName);
        EXPECT_EQ(library[i].displayName, libraryRows[i].displayName);
        EXPECT_EQ(library[i].category, libraryRows[i].category);
        EXPECT_EQ(library[i].creatable, libraryRows[i].creatable);
        EXPECT_EQ(library[i].icon != nullptr, libraryRows[i].hasIcon);
    }
}

TEST(CoreNodeFactory, ListsItsNodeTypes) { expectLibrary(CoreNodeFactory().nodeLibrary); }

TEST(CoreNodeFactory, EveryFactoryListsTheSameIcons) {
    const CoreNodeFactory first;
    const CoreNodeFactory second;
    for (std::size_t i = 0; i < first.nodeLibrary.size(); ++i) {
        EXPECT_EQ(first.nodeLibrary[i].icon, second.nodeLibrary[i].icon);
    }
}

TEST(CoreNodeFactory, CreatesEveryListedType) {
    CoreNodeFactory factory;
    for (const NodeDescription& description : factory.nodeLibrary) {
        const auto node = factory.createNode(description.typeName);
        ASSERT_NE(node, nullptr);
        EXPECT_EQ(node->typeName(), description.typeName);
    }
    expectLibrary(factory.nodeLibrary);
}

TEST(CoreNodeFactory, HandsNodesOverToTheCallerAlone) {
    CoreNodeFactory factory;
    for (const char* typeName : nodeTypeNames) {
        auto node = factory.createNode(typeName);
        EXPECT_EQ(node.use_count(), 1);
        const auto other = factory.createNode(typeName);
        EXPECT_NE(node, other);
        node->setName("Rim");
        EXPECT_NE(other->name(), "Rim") << "nodes share no properties";
        EXPECT_NE(factory.createNode(typeName)->name(), "Rim");
        const std::weak_ptr<MaterialNode> watched = node;
        node.reset();
        EXPECT_TRUE(watched.expired());
    }
}

TEST(CoreNodeFactory, NodesOutliveTheFactory) {
    auto factory = std::make_unique<CoreNodeFactory>();
    const auto node = factory->createNode("CoreMaths");
    factory.reset();
    EXPECT_EQ(node->typeName(), "CoreMaths");
    node->updateFromProperties(nullptr);
}

TEST(CoreNodeFactory, EveryTypeNameHasItsOwnClass) {
    CoreNodeFactory factory;
    std::vector<std::shared_ptr<MaterialNode>> nodes;
    for (const char* typeName : nodeTypeNames) {
        nodes.push_back(factory.createNode(typeName));
    }
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            const MaterialNode& first = *nodes[i];
            const MaterialNode& second = *nodes[j];
            EXPECT_NE(typeid(first), typeid(second));
        }
    }
}

TEST(CoreNodeFactory, DoesNotDependOnItsLibrary) {
    CoreNodeFactory factory;
    factory.nodeLibrary.clear();
    EXPECT_EQ(factory.createNode("CoreUv")->typeName(), "CoreUv");
}

struct UnknownType {
    std::string typeName;
    std::string message;
};

TEST(CoreNodeFactory, RefusesUnknownTypeNames) {
    const UnknownType unknownTypes[] = {
        {"coremaths", "cannot create \"coremaths\" node"},
        {"COREMATHS", "cannot create \"COREMATHS\" node"},
        {"", "cannot create \"\" node"},
        {"CoreMaths ", "cannot create \"CoreMaths \" node"},
        {" CoreMaths", "cannot create \" CoreMaths\" node"},
        {"CoreMath", "cannot create \"CoreMath\" node"},
        {"CoreMathsNode", "cannot create \"CoreMathsNode\" node"},
        {"Maths", "cannot create \"Maths\" node"},
        {"Core", "cannot create \"Core\" node"},
        {"Layer Blend", "cannot create \"Layer Blend\" node"},
        {"coredefault", "cannot create \"coredefault\" node"},
        {"CoreFancy", "cannot create \"CoreFancy\" node"},
        {"Größe \"x\"", "cannot create \"Größe \"x\"\" node"},
        {"1234.5", "cannot create \"1234.5\" node"},
        {std::string(3000, 'x'), "cannot create \"" + std::string(3000, 'x') + "\" node"},
    };
    CoreNodeFactory factory;
    for (const auto& [typeName, message] : unknownTypes) {
        EXPECT_EQ(shaderErrorOf([&, &name = typeName] { (void)factory.createNode(name); }), message);
    }
    expectLibrary(factory.nodeLibrary);
    const testing::CommaLocale comma;
    EXPECT_EQ(shaderErrorOf([&] { (void)factory.createNode("1234.5"); }), "cannot create \"1234.5\" node");
}

TEST(CoreNodeFactory, ComparesWholeTypeNames) {
    CoreNodeFactory factory;
    EXPECT_THROW((void)factory.createNode(std::string("CoreUv\0", 7)), ShaderError);
    EXPECT_THROW((void)factory.createNode(std::string("CoreUv\0x", 8)), ShaderError);
}

TEST(CoreNodeFactory, IsDeletedThroughItsBase) {
    const std::unique_ptr<NodeFactory> factory = std::make_unique<CoreNodeFactory>();
    EXPECT_EQ(factory->createNode("CoreDefault")->typeName(), "CoreDefault");
}

} // namespace
} // namespace patina
