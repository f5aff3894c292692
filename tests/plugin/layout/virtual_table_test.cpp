// A module is built apart from its host: they agree on virtual operations by their slots alone.

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

namespace patina {
namespace {

using Slots = std::vector<std::string>;

/// The operations in a class's virtual table as the compiler dumped it, without the class's own name.
Slots slotsOf(const std::string& className) {
    std::ifstream dump(PATINA_TEST_CLASS_DUMP);
    EXPECT_TRUE(dump.is_open()) << PATINA_TEST_CLASS_DUMP;
    Slots slots;
    std::string line;
    while (std::getline(dump, line) && line != "Vtable for " + className) {
    }
    const std::string functionType = "(int (*)(...))";
    for (int entry = -1; std::getline(dump, line) && !line.empty(); ++entry) {
        // a heading, then the offset to the top and the type information
        if (entry < 2) {
            continue;
        }
        std::string operation = line.substr(line.find_first_not_of(" ", line.find(' ')));
        if (operation.rfind(functionType, 0) == 0) {
            operation.erase(0, functionType.size());
        }
        if (operation.rfind(className + "::", 0) == 0) {
            operation.erase(0, className.size() + 2);
        }
        slots.push_back(operation);
    }
    return slots;
}

// a destructor takes two slots: for the complete object, and for deleting it; the table of an abstract class
// has "0" in both, for it is never used to destroy anything

const Slots materialNode = {
    "0",
    "0",
    "updateFromProperties",
    "caption",
    "resolveComponentCounts",
    "resolvePrecision",
    "__cxa_pure_virtual",
    "generatesBinding",
    "addBindings",
    "loadProperties",
};

const Slots concreteNode = {
    "~DumpedNode",      "~DumpedNode",  "updateFromProperties", "caption",     "resolveComponentCounts",
    "resolvePrecision", "generateCode", "generatesBinding",     "addBindings", "loadProperties",
};

const Slots binding = {
    "~Binding",     "~Binding",         "componentCount",  "setComponentCount", "minValue",
    "maxValue",     "defaultValue",     "setMinText",      "setMinValue",       "setMaxText",
    "setMaxValue",  "setDefaultText",   "setDefaultValue", "minText",           "maxText",
    "defaultText",  "writeAnnotations", "readAnnotations", "parseMin",          "parseMax",
    "parseDefault", "formatMin",        "formatMax",       "formatDefault",
};

TEST(VirtualTable, OfMaterialNode) {
    EXPECT_EQ(slotsOf("patina::MaterialNode"), materialNode);
    EXPECT_EQ(slotsOf("patina::DumpedNode"), concreteNode);
}

TEST(VirtualTable, OfBinding) { EXPECT_EQ(slotsOf("patina::Binding"), binding); }

TEST(VirtualTable, SubclassesOfBindingAddNoSlots) {
    for (const char* name : {"patina::FloatBinding", "patina::StringBinding", "patina::TextureBinding"}) {
        EXPECT_EQ(slotsOf(name).size(), binding.size()) << name;
    }
}

TEST(VirtualTable, OfNodeFactory) {
    EXPECT_EQ(slotsOf("patina::NodeFactory"), (Slots{"0", "0", "__cxa_pure_virtual"}));
    EXPECT_EQ(slotsOf("patina::DumpedFactory"), (Slots{"~DumpedFactory", "~DumpedFactory", "createNode"}));
}

} // namespace
} // namespace patina
