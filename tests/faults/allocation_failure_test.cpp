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
    } catch (const std::exception&) { // of what libxml2 could not read
        return Outcome::Refused;
    }
}

/// Runs the action until no allocation of it fails, each time failing the next one. Each failure must arrive,
/// and leave as many allocations as there were.
void failEachAllocation(const std::function<void()>& action, const Check& check = {},
                        testing::Heap heap = testing::Heap::OperatorNew) {
    action(); // makes what is made once for a process
    for (std::size_t passing = 0;; ++passing) {
        const std::size_t before = testing::liveAllocations();
        testing::failAllocationAfter(heap, passing);
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
        // libxml2 can do without some of what it asks for, and says of some other that something is missing
        ASSERT_TRUE(outcome == Outcome::NoMemory || heap == testing::Heap::Xml)
            << "allocation " << passing << " failed";
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
                         [](const auto& type) { return std::string(type.param); });

/// Every node type but the placeholder, connected.
std::string everyNode() {
    return testing::node("uv", "CoreUv") + testing::node("sheet", "CoreAnimatedUv") +
           testing::node("paint", "CoreTexture") +
           testing::node("tint", "CoreConstant", testing::property("Name", "string", "Tint")) +
           testing::node("wear", "CoreVertexColour") + testing::node("sum", "CoreMaths") +
           testing::node("red", "CoreSwizzle") + testing::node("mix", "CoreLayerBlend") +
           testing::output("colour", "mix", "out_value") +
           testing::connection("uv", "read", "sheet", "in_uv") +
           testing::connection("sheet", "out_uv1", "paint", "in_uv") +
           testing::connection("paint", "out_colour", "sum", "in_value1") +
           testing::connection("tint", "read", "sum", "in_value2") +
           testing::connection("wear", "out_colour", "red", "in_vec") +
           testing::connection("sum", "out_value", "mix", "in_value1") +
           testing::connection("red", "out_x", "mix", "in_value2");
}

TEST(AllocationFailureOfGenerating, ReachesTheCaller) {
    Material material = testing::built(everyNode());
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

/// A material that was exported before, with other programs.
class AllocationFailureOfAnExport : public ::testing::TestWithParam<testing::Heap> {
protected:
    AllocationFailureOfAnExport() {
        testing::watchXmlAllocations();
        exportAgain();
        complete_ = filesIn(target_);
        for (const auto& [name, text] : complete_) {
            const bool isRead = name == "Sample.bindings.xml";
            earlier_.emplace(name, isRead ? text : "// of an earlier export\n");
        }
        restore();
    }

    void exportAgain() const {
        Warnings warnings;
        exportDocument(document_, target_, testing::corePlugins(), warnings);
    }

    /// Each file is as it was or as it shall be, and there is none beside them.
    void requireWholeFiles(std::size_t failing) const {
        const std::map<std::string, std::string> files = filesIn(target_);
        ASSERT_EQ(files.size(), complete_.size()) << "allocation " << failing;
        for (const auto& [name, text] : files) {
            ASSERT_TRUE(text == complete_.at(name) || text == earlier_.at(name))
                << name << " of allocation " << failing << ":\n"
                << text;
        }
        if (files != earlier_) {
            restore();
        }
    }

private:
    void restore() const {
        for (const auto& [name, text] : earlier_) {
            replaceFile(target_ / name, text);
        }
    }

    testing::TemporaryDirectory directory_;
    fs::path document_ = directory_.write("material.xml", testing::documentText(everyNode()));
    fs::path target_ = directory_ / "out";
    std::map<std::string, std::string> complete_;
    std::map<std::string, std::string> earlier_;
};

TEST_P(AllocationFailureOfAnExport, LeavesWholeFiles) {
    failEachAllocation([&] { exportAgain(); }, [&](std::size_t failing) { requireWholeFiles(failing); },
                       GetParam());
}

INSTANTIATE_TEST_SUITE_P(EitherHeap, AllocationFailureOfAnExport,
                         ::testing::Values(testing::Heap::OperatorNew, testing::Heap::Xml),
                         [](const auto& heap) {
                             return heap.param == testing::Heap::Xml ? "Xml" : "OperatorNew";
                         });

} // namespace
} // namespace patina
