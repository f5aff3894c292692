#include "tests/faults/failing_allocation.h"

#include "nodemodel/nodemodel.h"
#include "shadergraph/function_builder.h"

#include <gtest/gtest.h>

#include <libxml/tree.h>

#include <functional>
#include <memory>
#include <new>
#include <string>
#include <vector>

// What the parts of the library do where memory is out, and where they made room before.

namespace patina {
namespace {

using Names = std::vector<std::string>;

const std::string longName = "a name, longer than any that fits into a string object";
const std::string validName = "a_name_longer_than_any_that_fits_into_a_string_object";

/// Whether the action ran to its end although that many allocations and no more succeeded.
bool isDoneWith(std::size_t allocations, const std::function<void()>& action) {
    testing::failAllocationAfter(testing::Heap::OperatorNew, allocations);
    bool isDone = true;
    try {
        action();
    } catch (const std::bad_alloc&) {
        isDone = false;
    }
    return !testing::stopFailing() && isDone;
}

Names namesOf(const PropertyIndex& index) {
    Names names;
    for (const auto& [name, property] : index) {
        names.push_back(name);
    }
    return names;
}

TEST(PropertyIndexWithoutMemory, KeepsWhatItHadWhenANameIsAdded) {
    const auto property = makeProperty("it");
    const Names added = {"d", "c", longName, "b"};
    for (std::size_t passing = 0;; ++passing) {
        PropertyIndex index;
        std::size_t count = 0;
        const bool isDone = isDoneWith(passing, [&] {
            for (const std::string& name : added) {
                index.emplace(name, property);
                ++count;
            }
        });
        EXPECT_EQ(index.size(), count) << passing;
        EXPECT_EQ(namesOf(index).size(), count) << passing;
        for (std::size_t i = 0; i < added.size(); ++i) {
            EXPECT_EQ(index.contains(added[i]), i < count) << passing;
        }
        if (isDone) {
            EXPECT_EQ(namesOf(index), (Names{longName, "b", "c", "d"}));
            break;
        }
    }
}

TEST(PropertyIndexWithoutMemory, KeepsWhatItHadWhenANameIsErased) {
    for (std::size_t passing = 0;; ++passing) {
        PropertyIndex index;
        for (const std::string& name : {std::string("c"), longName, std::string("b")}) {
            index.emplace(name, makeProperty(name));
        }
        if (isDoneWith(passing, [&] { index.erase("b"); })) {
            EXPECT_EQ(namesOf(index), (Names{longName, "c"}));
            break;
        }
        EXPECT_EQ(namesOf(index), (Names{longName, "b", "c"})) << passing;
    }
}

TEST(PropertySetWithoutMemory, ListsAndIndexesTheSame) {
    const std::shared_ptr<Property> properties[] = {makeProperty("b"), makeProperty(longName),
                                                    makeProperty("a")};
    bool isDone = false;
    for (std::size_t passing = 0; !isDone; ++passing) {
        PropertySet set;
        std::size_t count = 0;
        isDone = isDoneWith(passing, [&] {
            for (const std::shared_ptr<Property>& property : properties) {
                set.add(property);
                ++count;
            }
        });
        ASSERT_EQ(set.items.size(), count) << passing;
        EXPECT_EQ(set.byName.size(), count) << passing;
        for (const std::shared_ptr<Property>& property : set) {
            EXPECT_EQ(set.find(property->name), property) << passing;
        }
    }
}

TEST(PropertyWithoutMemory, KeepsItsEnumValues) {
    bool isDone = false;
    for (std::size_t passing = 0; !isDone; ++passing) {
        Property property("Mode");
        std::size_t count = 0;
        isDone = isDoneWith(passing, [&] {
            property.addEnumValue(longName);
            ++count;
            property.addEnumValue("short");
            ++count;
        });
        EXPECT_EQ(property.allowedValues.size(), count) << passing;
        EXPECT_EQ(property.stringValue, count == 0 ? "" : longName) << passing;
        EXPECT_EQ(property.kind, count == 0 ? PropertyType::Bool : PropertyType::Enum) << passing;
    }
}

TEST(FunctionBuilderWithRoom, TakesParametersAndShortCodeWithoutAllocating) {
    FunctionBuilder builder;
    builder.reservePorts(1, 1);
    const ShaderType type = {ComponentType::Float, 3, 1, 1};
    EXPECT_TRUE(isDoneWith(0, [&] {
        builder.addInput(type, "in_value1");
        builder.addOutput(type, "out_value");
        builder.declareConstant(type, "in_value2", 0.125F);
        builder.appendCode("\tout_value = in_value1 * in_value2;\n");
    }));
    EXPECT_EQ(builder.function().parameters.size(), 2U);
    EXPECT_EQ(builder.finish(ExecutionLevel::Automatic, "f")->code,
              "\tfloat3 in_value2 = float( 0.125 ).xxx;\n\tout_value = in_value1 * in_value2;\n");
}

TEST(FunctionBuilderWithoutMemory, HasTheParameterOrNot) {
    const ShaderType type = {ComponentType::Float, 3, 1, 1};
    for (const bool isShown : {false, true}) {
        FunctionBuilder builder;
        if (isShown) {
            builder.function();
        }
        constexpr std::size_t count = 40;
        for (std::size_t i = 0; i < count; ++i) {
            const std::string name = validName + std::to_string(i);
            bool isDone = false;
            for (std::size_t passing = 0; !isDone; ++passing) {
                isDone = isDoneWith(passing, [&] {
                    if (i % 3 == 1) {
                        builder.addOutput(type, name);
                    } else {
                        builder.addInput(type, name);
                    }
                });
                const auto node = FunctionBuilder(builder).makeNode(ExecutionLevel::Automatic, "f");
                ASSERT_EQ(node->inputs.size() + node->outputs.size(), i + (isDone ? 1 : 0)) << passing;
                if (isShown) {
                    ASSERT_EQ(builder.function().parameters.size(), i + (isDone ? 1 : 0)) << passing;
                }
            }
        }
        const std::vector<FunctionParameter>& parameters = builder.function().parameters;
        ASSERT_EQ(parameters.size(), count);
        for (std::size_t i = 0; i < count; ++i) {
            EXPECT_EQ(parameters[i].name, validName + std::to_string(i));
            EXPECT_EQ(parameters[i].direction, i % 3 == 1 ? 1 : 0);
        }
    }
}

TEST(JoinTextInOneGo, AllocatesOnce) {
    std::string text;
    EXPECT_TRUE(isDoneWith(1, [&] { text = detail::joinText({longName, longName, longName, longName}); }));
    EXPECT_EQ(text, longName + longName + longName + longName);
}

TEST(XmlAttributesWithoutMemory, AreWholeOrReportedMissing) {
    testing::watchXmlAllocations();
    struct Free {
        void operator()(xmlNode* element) const { xmlFreeNode(element); }
    };
    for (std::size_t passing = 0;; ++passing) {
        const std::unique_ptr<xmlNode, Free> element(
            xmlNewNode(nullptr, reinterpret_cast<const xmlChar*>("binding")));
        testing::failAllocationAfter(testing::Heap::Xml, passing);
        bool isReported = false;
        try {
            writeAttribute(element.get(), "tag", "Diffuse");
        } catch (const std::bad_alloc&) {
            isReported = true;
        }
        const bool hasFailed = testing::stopFailing();
        EXPECT_EQ(isReported, hasFailed) << passing;
        if (!hasFailed) {
            EXPECT_EQ(readAttribute(element.get(), "tag"), "Diffuse");
            break;
        }
    }
}

} // namespace
} // namespace patina
