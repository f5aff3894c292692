// The real module, loaded as a host loads it. This program links the SDK on its own.

#include "plugin/plugin.h"

#include "bindings/binding.h"
#include "nodemodel/shader_error.h"
#include "shadergraph/graph_generator.h"
#include "tests/plugin/loaded_module.h"
#include "tests/plugin/node_types.h"
#include "tests/support/messages.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <exception>
#include <filesystem>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

namespace patina {
namespace {

using testing::isLoaded;
using testing::LoadedModule;
using testing::modulePath;
using testing::nodeTypeNames;
using testing::shaderErrorOf;

TEST(Module, SpeaksVersionFiveOnEveryCall) {
    const LoadedModule module;
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(module.version(), 5U);
    }
    const auto factory = module.makeFactory();
    EXPECT_EQ(module.version(), 5U);
}

TEST(Module, EntryPointsHavePlainNames) {
    const LoadedModule module;
    EXPECT_NE(module.symbol("GetMaterialLibVersion"), nullptr);
    EXPECT_NE(module.symbol("CreateNodeFactory"), nullptr);
    EXPECT_EQ(module.symbol("_GetMaterialLibVersion"), nullptr);
    EXPECT_EQ(module.symbol("_Z21GetMaterialLibVersionv"), nullptr);
    EXPECT_EQ(module.symbol("_Z17CreateNodeFactoryv"), nullptr);
}

TEST(Module, MakesAFactoryOnEveryCall) {
    const LoadedModule module;
    const auto first = module.makeFactory();
    const auto second = module.makeFactory();
    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr);
    EXPECT_NE(first, second);
    ASSERT_EQ(first->nodeLibrary.size(), std::size(nodeTypeNames));
    first->nodeLibrary.clear();
    EXPECT_EQ(second->nodeLibrary.size(), std::size(nodeTypeNames));
}

TEST(Module, ListsAndCreatesEveryType) {
    const LoadedModule module;
    const auto factory = module.makeFactory();
    ASSERT_EQ(factory->nodeLibrary.size(), std::size(nodeTypeNames));
    for (std::size_t i = 0; i < std::size(nodeTypeNames); ++i) {
        EXPECT_EQ(factory->nodeLibrary[i].typeName, nodeTypeNames[i]);
        const auto node = factory->createNode(nodeTypeNames[i]);
        ASSERT_NE(node, nullptr);
        EXPECT_EQ(node.use_count(), 1);
        EXPECT_EQ(node->typeName(), nodeTypeNames[i]);
    }
}

/// Loads, edits, resolves and generates with a node of the module, through this program's copy of the SDK.
void drive(MaterialNode& node) {
    const auto saved = std::make_shared<PropertySet>();
    const auto name = makeProperty("Name");
    name->setString("driven");
    saved->add(name);
    node.loadProperties(saved);
    EXPECT_EQ(node.name(), "driven");
    node.updateFromProperties(nullptr);
    for (Port& input : node.inputs) {
        input.connected = true;
    }
    node.resolveComponentCounts();
    node.resolvePrecision();
    GraphGenerator generator;
    const std::string message = shaderErrorOf([&] { node.generateCode(generator); });
    if (node.typeName() == "CoreDefault") {
        EXPECT_EQ(message,
                  "cannot export as the node \"driven\" cannot be properly created. Please either get "
                  "the DLL that can load this node or replace with alternatives.");
    } else {
        EXPECT_EQ(message, "(no ShaderError)") << node.typeName();
        EXPECT_FALSE(generator.graph->nodes.empty()) << node.typeName();
    }
    BindingCollection collection;
    node.addBindings(collection);
    EXPECT_EQ(!collection.bindings.empty(), node.generatesBinding()) << node.typeName();
    for (const auto& binding : collection.bindings) {
        EXPECT_EQ(binding->name, "driven");
        EXPECT_GT(binding->componentCount(), 0U);
    }
    EXPECT_NE(node.caption(), "");
}

TEST(Module, NodesAreDrivenThroughTheirVirtualOperations) {
    const LoadedModule module;
    const auto factory = module.makeFactory();
    for (const char* typeName : nodeTypeNames) {
        drive(*factory->createNode(typeName));
    }
}

TEST(Module, ItsErrorsAreCaughtAsThisProgramsOwn) {
    const LoadedModule module;
    const auto factory = module.makeFactory();
    EXPECT_EQ(shaderErrorOf([&] { (void)factory->createNode("CoreFancy"); }),
              "cannot create \"CoreFancy\" node");
    const auto placeholder = factory->createNode("CoreDefault");
    GraphGenerator generator;
    EXPECT_EQ(
        shaderErrorOf([&] { placeholder->generateCode(generator); }),
        "cannot export as the node \"Default\" cannot be properly created. Please either get the DLL that "
        "can load this node or replace with alternatives.");
    const auto saved = std::make_shared<PropertySet>();
    saved->version = 1;
    const auto maths = factory->createNode("CoreMaths");
    EXPECT_EQ(
        shaderErrorOf([&] { maths->loadProperties(saved); }),
        "Cannot convert \"CoreMaths\" version 1 properties into version 0 properties. Are you running with "
        "an old DLL?");
}

TEST(Module, ItsErrorsAreStandardExceptions) {
    const LoadedModule module;
    const auto factory = module.makeFactory();
    try {
        (void)factory->createNode("CoreFancy");
        FAIL();
    } catch (const std::exception& error) {
        EXPECT_STREQ(error.what(), "cannot create \"CoreFancy\" node");
        EXPECT_NE(dynamic_cast<const ShaderError*>(&error), nullptr);
    }
}

TEST(Module, ItsTextExceptionIsCaughtAsAString) {
    const LoadedModule module;
    const auto factory = module.makeFactory();
    const auto node = factory->createNode("CoreSwizzle");
    ASSERT_FALSE(node->outputs.empty());
    node->outputs.push_back(node->outputs.front());
    node->resolveComponentCounts();
    node->resolvePrecision();
    GraphGenerator generator;
    try {
        node->generateCode(generator);
        FAIL();
    } catch (const std::exception&) {
        FAIL() << "the text is no standard exception";
    } catch (const std::string& text) {
        EXPECT_EQ(text, "parameter name \"out_x\" is duplicated in function \"unknown\"");
    }
}

TEST(Module, GoesAwayWhenItIsClosed) {
    ASSERT_FALSE(isLoaded(modulePath()));
    for (int i = 0; i < 20; ++i) {
        {
            const LoadedModule module;
            EXPECT_TRUE(isLoaded(modulePath()));
            EXPECT_EQ(module.version(), 5U);
            const auto factory = module.makeFactory();
            for (const char* typeName : nodeTypeNames) {
                drive(*factory->createNode(typeName));
            }
            EXPECT_THROW((void)factory->createNode("CoreFancy"), ShaderError);
        }
        EXPECT_FALSE(isLoaded(modulePath())) << "after closing it the " << i + 1 << ". time";
    }
}

TEST(Module, StaysWhileAnyLoadIsOpen) {
    const LoadedModule first;
    {
        const LoadedModule second;
        EXPECT_EQ(first.symbol("CreateNodeFactory"), second.symbol("CreateNodeFactory"));
    }
    EXPECT_TRUE(isLoaded(modulePath()));
    EXPECT_EQ(first.version(), 5U);
}

/// A copy of the module's file in a folder of its own.
class ModuleCopy {
public:
    ModuleCopy() {
        std::string pattern = (std::filesystem::temp_directory_path() / "patina-module-XXXXXX").string();
        EXPECT_NE(mkdtemp(pattern.data()), nullptr);
        folder_ = pattern;
        std::filesystem::copy_file(modulePath(), path());
    }
    ~ModuleCopy() { std::filesystem::remove_all(folder_); }
    ModuleCopy(const ModuleCopy&) = delete;
    ModuleCopy& operator=(const ModuleCopy&) = delete;

    std::string path() const { return folder_ / std::filesystem::path(modulePath()).filename(); }

private:
    std::filesystem::path folder_;
};

TEST(Module, TwoCopiesWorkSideBySide) {
    const ModuleCopy copy;
    const LoadedModule original;
    std::vector<std::shared_ptr<MaterialNode>> nodes;
    {
        const LoadedModule second(copy.path());
        EXPECT_TRUE(isLoaded(copy.path()));
        EXPECT_NE(original.symbol("CreateNodeFactory"), second.symbol("CreateNodeFactory"));
        EXPECT_EQ(original.version(), 5U);
        EXPECT_EQ(second.version(), 5U);
        const auto firstFactory = original.makeFactory();
        const auto secondFactory = second.makeFactory();
        EXPECT_NE(firstFactory->nodeLibrary[2].icon, secondFactory->nodeLibrary[2].icon)
            << "each copy has its own icons";
        for (const char* typeName : nodeTypeNames) {
            nodes.push_back(firstFactory->createNode(typeName));
            drive(*secondFactory->createNode(typeName));
        }
        EXPECT_EQ(shaderErrorOf([&] { (void)firstFactory->createNode("first"); }),
                  "cannot create \"first\" node");
        EXPECT_EQ(shaderErrorOf([&] { (void)secondFactory->createNode("second"); }),
                  "cannot create \"second\" node");
        // values pass from one copy's nodes to the other's
        const auto maths = secondFactory->createNode("CoreMaths");
        maths->setName("shared");
        firstFactory->createNode("CoreMaths")->loadProperties(maths->properties);
    }
    EXPECT_FALSE(isLoaded(copy.path()));
    EXPECT_TRUE(isLoaded(modulePath()));
    for (const auto& node : nodes) {
        drive(*node);
    }
}

} // namespace
} // namespace patina
