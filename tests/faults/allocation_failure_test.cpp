#include "tests/faults/failing_allocation.h"
#include "tests/host/host_checks.h"

#include "host/dynamic_library.h"
#include "plugin/plugin.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <new>
#include <string>
#include <vector>

namespace patina {
namespace {

namespace fs = std::filesystem;

/// What has to hold after each failure, beside that nothing is lost.
using Check = std::function<void(std::size_t failing)>;

enum class Outcome { Done, NoMemory, Refused };

Outcome outcomeOf(const std::function<void()>& action) {
    try {
        action();
        return Outcome::Done;
    } catch (const std::bad_alloc&) {
        return Outcome::NoMemory;
    } catch (const HostError& error) {
        EXPECT_NE(std::string(error.what()).find("memory"), std::string::npos) << error.what();
        return Outcome::Refused;
    }
}

/// Runs the action until no allocation of it fails, each time failing the next one. Each failure must arrive,
/// and leave as many allocations as there were.
void failEachAllocation(const std::function<void()>& action, const Check& check = {}) {
    action(); // makes what is made once for a process
    for (std::size_t passing = 0;; ++passing) {
        const std::size_t before = testing::liveAllocations();
        testing::failAllocationAfter(passing);
        const Outcome outcome = outcomeOf(action);
        const bool hasFailed = testing::stopFailing();
        const std::size_t after = testing::liveAllocations();
        ASSERT_EQ(after, before) << "allocation " << passing << " failed";
        if (check) {
            check(passing);
        }
        if (!hasFailed) {
            ASSERT_EQ(outcome, Outcome::Done);
            ASSERT_GT(passing, 0U) << "it allocates nothing";
            return;
        }
        ASSERT_NE(outcome, Outcome::Done) << "allocation " << passing << " failed";
    }
}

/// The plug-in's own factory.
class Factory {
public:
    Factory() : library_(PATINA_CORENODES), factory_(library_.find<NodeFactory*()>("CreateNodeFactory")()) {}

    NodeFactory& operator*() const { return *factory_; }

private:
    DynamicLibrary library_;
    std::unique_ptr<NodeFactory> factory_;
};

class AllocationFailure : public ::testing::TestWithParam<const char*> {
protected:
    std::shared_ptr<MaterialNode> makeNode() { return (*factory_).createNode(GetParam()); }

    Factory factory_;
};

TEST_P(AllocationFailure, OfCreatingANode) {
    failEachAllocation([&] { makeNode(); });
}

TEST_P(AllocationFailure, OfUpdatingANode) {
    failEachAllocation([&] {
        const auto node = makeNode();
        for (const std::shared_ptr<Property>& property : *node->properties) {
            if (property->kind == PropertyType::Enum) {
                property->setEnum(property->allowedValues.back());
            }
        }
        node->updateFromProperties(nullptr);
    });
}

TEST_P(AllocationFailure, OfLoadingProperties) {
    const auto source = makeNode();
    source->setName("a name that is longer than any that needs no allocation");
    failEachAllocation([&] { makeNode()->loadProperties(source->properties); });
}

TEST_P(AllocationFailure, OfAddingBindings) {
    const auto node = makeNode();
    failEachAllocation([&] {
        const auto copy = makeNode();
        BindingCollection bindings;
        if (copy->generatesBinding()) {
            copy->addBindings(bindings);
        }
    });
}

INSTANTIATE_TEST_SUITE_P(EveryType, AllocationFailure,
                         ::testing::Values("CoreDefault", "CoreVertexColour", "CoreUv", "CoreTexture",
                                           "CoreConstant", "CoreMaths", "CoreSwizzle", "CoreLayerBlend",
                                           "CoreAnimatedUv"),
                         [](const auto& info) { return std::string(info.param); });

/// Every generating node type, connected.
constexpr const char* everyNode = R"(
<node id="uv" type="CoreUv"/>
<node id="sheet" type="CoreAnimatedUv"/>
<node id="paint" type="CoreTexture"/>
<node id="tint" type="CoreConstant"><property name="Name" kind="String" value="Tint"/></node>
<node id="wear" type="CoreVertexColour"/>
<node id="sum" type="CoreMaths"/>
<node id="red" type="CoreSwizzle"/>
<node id="mix" type="CoreLayerBlend"/>
)";

TEST(AllocationFailureOfGenerating, ReachesTheCaller) {
    Material material = testing::built(everyNode + testing::output("colour", "sum", "out_value") +
                                       testing::connection("paint", "out_colour", "sum", "in_value1") +
                                       testing::connection("tint", "read", "sum", "in_value2") +
                                       testing::connection("sheet", "out_uv", "paint", "in_uv") +
                                       testing::connection("uv", "read", "sheet", "in_uv"));
    resolveMaterial(material);
    failEachAllocation([&] { generateGraph(material); });
}

/// What lies in a directory, by name.
std::map<std::string, std::string> filesIn(const fs::path& directory) {
    std::map<std::string, std::string> files;
    for (const auto& entry : fs::directory_iterator(directory)) {
        files.emplace(entry.path().filename().string(), testing::readText(entry.path()));
    }
    return files;
}

TEST(AllocationFailureOfAnExport, LeavesTheFilesOfTheOneBefore) {
    testing::watchXmlAllocations();
    const testing::TemporaryDirectory directory;
    const fs::path document = directory.write(
        "material.xml", testing::documentText(everyNode + testing::output("colour", "sum", "out_value") +
                                              testing::connection("paint", "out_colour", "sum", "in_value1") +
                                              testing::connection("tint", "read", "sum", "in_value2") +
                                              testing::connection("sheet", "out_uv", "paint", "in_uv") +
                                              testing::connection("uv", "read", "sheet", "in_uv")));
    const PluginSet& plugins = testing::corePlugins();
    const fs::path target = directory / "out";
    Warnings warnings;
    exportDocument(document, target, plugins, warnings);
    const std::map<std::string, std::string> complete = filesIn(target);
    std::map<std::string, std::string> earlier;
    for (const auto& [name, text] : complete) {
        earlier.emplace(name, name == "Sample.bindings.xml" ? text : "// of an earlier export\n");
    }
    const auto restore = [&] {
        for (const auto& [name, text] : earlier) {
            replaceFile(target / name, text);
        }
    };
    restore();
    failEachAllocation(
        [&] {
            Warnings unread;
            exportDocument(document, target, plugins, unread);
        },
        [&](std::size_t failing) {
            // each file as it was or as it shall be, and none beside them
            const std::map<std::string, std::string> files = filesIn(target);
            ASSERT_EQ(files.size(), complete.size()) << "allocation " << failing;
            for (const auto& [name, text] : files) {
                EXPECT_TRUE(text == complete.at(name) || text == earlier.at(name))
                    << name << " of allocation " << failing;
            }
            if (files != earlier) {
                restore();
            }
        });
}

} // namespace
} // namespace patina
