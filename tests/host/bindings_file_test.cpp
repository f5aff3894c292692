#include "tests/host/host_checks.h"

#include <gtest/gtest.h>

#include <string>

namespace patina {
namespace {

using testing::connection;
using testing::expectErrorAt;
using testing::exported;
using testing::exportError;
using testing::maths;
using testing::node;
using testing::output;
using testing::property;

const std::string anything = maths("m", "Invert") + output("colour", "m", "out_value");

std::string bindingsOf(const std::string& body) { return exported(body).bindings.content; }

TEST(PrintBindings, WritesEveryAnnotation) {
    EXPECT_EQ(
        bindingsOf(
            node("uv", "CoreUv", property("Name", "string", "map1")) +
            node("v", "CoreVertexColour",
                 property("Name", "string", "Wear") + property("BindingGroup", "string", "Mesh") +
                     property("Help Url", "string", "http://wear?a&amp;b")) +
            node("c", "CoreConstant",
                 property("Name", "string", "Tint") +
                     property("Default Colour", "colour", "0.62, 0.11, 0.08") +
                     property("Basic Colour", "bool", "Yes") +
                     property("Description", "string", "5 &lt; 6 &quot;\xC3\xA4\xE2\x82\xAC&quot;&#10;.")) +
            node("s", "CoreConstant",
                 property("Name", "string", "Frame") + property("Constant Type", "enum", "Scalar") +
                     property("Max Scalar", "float", "1234567") +
                     property("Default Scalar", "float", "0.5")) +
            node("x", "CoreConstant",
                 property("Name", "string", "Dir") + property("Constant Type", "enum", "Vector") +
                     property("Component Count", "integer", "3")) +
            anything),
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<bindings version=\"1\" material=\"Sample\">\n"
        "  <binding kind=\"uv\" components=\"1\" tag=\"map1\"/>\n"
        "  <binding kind=\"colour\" components=\"1\" group=\"Mesh\" tag=\"Wear\" "
        "helpUrl=\"http://wear?a&amp;b\"/>\n"
        "  <binding kind=\"float\" components=\"3\" tag=\"Tint\" gui=\"colour\" "
        "desc=\"5 &lt; 6 &quot;\xC3\xA4\xE2\x82\xAC&quot;&#10;.\" default=\"0.62, 0.11, 0.08\" "
        "basic_colour=\"Yes\"/>\n"
        "  <binding kind=\"float\" components=\"1\" tag=\"Frame\" gui=\"slider\" min=\"0\" "
        "max=\"1.23457e+06\" "
        "default=\"0.5\"/>\n"
        "  <binding kind=\"float\" components=\"3\" tag=\"Dir\" gui=\"slider\" min=\"0, 0, 0\" "
        "max=\"1, 1, 1\" default=\"1, 1, 1\"/>\n"
        "</bindings>\n");
}

TEST(PrintBindings, WritesTexturesOnce) {
    EXPECT_EQ(bindingsOf(node("uv", "CoreUv") + node("b", "CoreTexture", property("Reference", "node", "a")) +
                         node("a", "CoreTexture", property("Name", "string", "Paint")) +
                         connection("uv", "read", "a", "in_uv") + connection("uv", "read", "b", "in_uv") +
                         anything),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<bindings version=\"1\" material=\"Sample\">\n"
              "  <binding kind=\"uv\" components=\"1\" tag=\"Uv\"/>\n"
              "  <binding kind=\"texture\" components=\"1\" tag=\"Paint\" srgb=\"Yes\"/>\n"
              "</bindings>\n");
}

TEST(PrintBindings, WritesNoBindingsAtAll) {
    EXPECT_EQ(bindingsOf(node("c", "CoreConstant", property("Lock", "bool", "Yes")) + anything),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<bindings version=\"1\" material=\"Sample\"/>\n");
}

TEST(CollectBindings, OrdersByBindingIndexAndThenByDocument) {
    const auto uv = [](const std::string& id, const std::string& index) {
        return node(id, "CoreUv",
                    property("Name", "string", id) + property("BindingIndex", "integer", index));
    };
    const Material material = testing::built(uv("a", "2") + uv("b", "-1") + uv("c", "2") + uv("d", "0") +
                                             uv("e", "-2147483648") + uv("f", "0") + uv("g", "2147483647"));
    std::string order;
    const BindingCollection bindings = collectBindings(material);
    for (const auto& binding : bindings.bindings) {
        order += binding->name;
    }
    EXPECT_EQ(order, "ebdfacg");
    EXPECT_TRUE(bindings.sorted);
}

TEST(CollectBindings, RefusesTwoOfOneName) {
    const auto named = [](const std::string& id, const std::string& type) {
        return node(id, type, property("Name", "string", "Same"));
    };
    expectErrorAt(exportError(named("a", "CoreUv") + named("b", "CoreUv") + anything), 3,
                  {"node \"b\" (\"Same\")", "node \"a\" (\"Same\")"});
    expectErrorAt(exportError(named("a", "CoreUv") + "\n" + named("b", "CoreConstant") + anything), 4,
                  {"node \"b\" (\"Same\")", "node \"a\" (\"Same\")"});
}

} // namespace
} // namespace patina
