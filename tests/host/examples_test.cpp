// The materials that come with the system: none has anything wrong with it, and one uses everything.

#include "tests/host/host_checks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace patina {
namespace {

using testing::corePlugins;

std::vector<std::filesystem::path> examples() {
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(PATINA_EXAMPLES)) {
        if (entry.path().extension() == ".xml") {
            files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

Material exampleNamed(const std::string& name) {
    Warnings warnings;
    return buildMaterial(readMaterial(std::filesystem::path(PATINA_EXAMPLES) / name), corePlugins(),
                         warnings);
}

TEST(Examples, AreThese) {
    std::vector<std::string> names;
    for (const auto& file : examples()) {
        names.push_back(file.filename().string());
    }
    EXPECT_EQ(names, (std::vector<std::string>{"brick.xml", "carbon.xml", "fire.xml", "kitchen_sink.xml",
                                               "painted_metal.xml", "toon.xml"}));
}

TEST(Examples, HaveNothingWrongWithThem) {
    for (const auto& file : examples()) {
        const CheckReport report = checkFile(file, corePlugins());
        EXPECT_TRUE(report.errors.empty()) << file;
        EXPECT_TRUE(report.warnings.empty()) << file;
    }
}

// a texture is found by the name of its binding
TEST(Examples, HaveTheirTextures) {
    std::set<std::string> wanted;
    for (const auto& file : examples()) {
        const Material material = exampleNamed(file.filename().string());
        const BindingCollection presented = collectBindings(material);
        for (const auto& binding : presented.bindings) {
            if (binding->kind == BindingKind::Texture) {
                wanted.insert(binding->name + ".png");
            }
        }
    }
    std::set<std::string> there;
    for (const auto& entry : std::filesystem::directory_iterator(PATINA_EXAMPLES "/textures")) {
        there.insert(entry.path().filename().string());
    }
    EXPECT_EQ(there, wanted);
}

TEST(Examples, AreLaidOutForAnEditor) {
    for (const auto& file : examples()) {
        const Material material = exampleNamed(file.filename().string());
        std::map<std::pair<float, float>, std::string> places;
        for (const MaterialItem& item : material.items) {
            const PropertySet& properties = *item.node->properties;
            const std::pair<float, float> place{properties.find("PositionX")->getFloat(),
                                                properties.find("PositionY")->getFloat()};
            const auto [other, alone] = places.emplace(place, item.id);
            EXPECT_TRUE(alone) << file << ": " << item.id << " covers " << other->second;
        }
        for (const MaterialConnection& connection : material.connections) {
            const auto x = [&](std::size_t item) {
                return material.items[item].node->properties->find("PositionX")->getFloat();
            };
            EXPECT_LT(x(connection.source), x(connection.destination))
                << file << ": " << material.items[connection.source].id << " feeds to the left";
        }
    }
}

/// `Type.Property=value` for each choice that the node offers, or for those made.
void collectChoices(const MaterialNode& node, bool all, std::set<std::string>& choices) {
    for (const auto& property : *node.properties) {
        const std::string start = node.typeName() + "." + property->name + "=";
        if (property->kind == PropertyType::Enum) {
            const auto& values = all ? property->allowedValues : std::vector{property->getEnum()};
            for (const std::string& value : values) {
                choices.insert(start + value);
            }
        } else if (property->kind == PropertyType::Bool) {
            const std::vector<bool> values =
                all ? std::vector{false, true} : std::vector{property->getBool()};
            for (const bool value : values) {
                choices.insert(start + (value ? "Yes" : "No"));
            }
        }
    }
}

TEST(Examples, TheKitchenSinkMakesEveryChoiceOfEveryNodeType) {
    std::set<std::string> offered;
    for (const NodeTypeSummary& type : listNodeTypes(corePlugins())) {
        if (type.creatable) {
            collectChoices(*corePlugins().createNode(type.typeName), true, offered);
        }
    }
    const Material material = exampleNamed("kitchen_sink.xml");
    std::set<std::string> made;
    for (const MaterialItem& item : material.items) {
        collectChoices(*item.node, false, made);
    }

    for (const std::string& choice : offered) {
        EXPECT_TRUE(made.contains(choice)) << choice;
    }
}

/// The sizes of the vectors that constants hold and that swizzles take apart or put together.
TEST(Examples, TheKitchenSinkHasVectorsOfEverySize) {
    const Material material = exampleNamed("kitchen_sink.xml");
    std::set<std::string> sizes;
    for (const MaterialItem& item : material.items) {
        const PropertySet& properties = *item.node->properties;
        const std::string type = item.node->typeName();
        const auto size = [&] { return std::to_string(properties.find("Component Count")->getInteger()); };
        if (type == "CoreConstant" && properties.find("Constant Type")->getEnum() == "Vector") {
            sizes.insert((properties.find("Lock")->getBool() ? "locked " : "constant ") + size());
        } else if (type == "CoreSwizzle" && properties.find("Vector Type")->getEnum() == "Vector") {
            sizes.insert((properties.find("Reverse")->getBool() ? "merged " : "split ") + size());
        }
    }

    EXPECT_EQ(sizes, (std::set<std::string>{"constant 2", "constant 3", "constant 4", "locked 2", "locked 3",
                                            "locked 4", "merged 2", "merged 3", "merged 4", "split 2",
                                            "split 3", "split 4"}));
}

} // namespace
} // namespace patina
