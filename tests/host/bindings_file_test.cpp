#include "tests/host/host_checks.h"
#include "tests/host/sample_flow.h"

#include "nodemodel/xml_attributes.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

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

/// The bindings file without the lines of the programs, whose digests are not these tests' concern.
std::string bindingsOf(const std::string& body) {
    std::istringstream file(exported(body).bindings.content);
    std::string kept;
    for (std::string line; std::getline(file, line);) {
        if (line.rfind("  <program ", 0) != 0) {
            kept += line + "\n";
        }
    }
    return kept;
}

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
        "basic_colour=\"Yes\" exported_default=\"0.62, 0.11, 0.08\"/>\n"
        "  <binding kind=\"float\" components=\"1\" tag=\"Frame\" gui=\"slider\" min=\"0\" "
        "max=\"1.23457e+06\" "
        "default=\"0.5\" exported_default=\"0.5\"/>\n"
        "  <binding kind=\"float\" components=\"3\" tag=\"Dir\" gui=\"slider\" min=\"0, 0, 0\" "
        "max=\"1, 1, 1\" default=\"1, 1, 1\" exported_default=\"1, 1, 1\"/>\n"
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

TEST(PrintBindings, SaysWhereParametersLanded) {
    // Strength is read in both programs, Unread in none
    EXPECT_EQ(
        bindingsOf(
            node("s", "CoreConstant",
                 property("Name", "string", "Strength") + property("Constant Type", "enum", "Scalar")) +
            node("u", "CoreConstant",
                 property("Name", "string", "Unread") + property("Constant Type", "enum", "Scalar")) +
            node("uv", "CoreUv", property("Name", "string", "map1")) +
            node("t", "CoreTexture", property("Name", "string", "Paint")) + maths("v", "Multiply", "Vertex") +
            maths("m", "Multiply") + connection("uv", "read", "v", "in_value1") +
            connection("s", "read", "v", "in_value2") + connection("v", "out_value", "t", "in_uv") +
            connection("t", "out_colour", "m", "in_value1") + connection("s", "read", "m", "in_value2") +
            output("colour", "m", "out_value")),
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<bindings version=\"1\" material=\"Sample\">\n"
        "  <binding kind=\"float\" components=\"1\" tag=\"Strength\" gui=\"slider\" min=\"0\" max=\"1\" "
        "default=\"1\" exported_default=\"1\">\n"
        "    <landing stage=\"vertex\" register=\"c4\" name=\"Strength\"/>\n"
        "    <landing stage=\"fragment\" register=\"c0\" name=\"Strength\"/>\n"
        "  </binding>\n"
        "  <binding kind=\"float\" components=\"1\" tag=\"Unread\" gui=\"slider\" min=\"0\" max=\"1\" "
        "default=\"1\" exported_default=\"1\"/>\n"
        "  <binding kind=\"uv\" components=\"1\" tag=\"map1\">\n"
        "    <landing stage=\"vertex\" register=\"ATTR1\" name=\"map1\"/>\n"
        "  </binding>\n"
        "  <binding kind=\"texture\" components=\"1\" tag=\"Paint\" srgb=\"Yes\">\n"
        "    <landing stage=\"fragment\" register=\"TEXUNIT0\" name=\"Paint\"/>\n"
        "  </binding>\n"
        "</bindings>\n");
}

TEST(DescribeBindings, GoesByTheNameInTheShader) {
    testing::Flow flow;
    const std::size_t tint = flow.uniform("g_tint", testing::typeOf(ComponentType::Half, 3));
    const StagedShader stages = flow.place(flow.function(ExecutionLevel::Fragment, {tint}));
    BindingCollection collection;
    const auto add = [&](const std::string& name, const std::string& cgName) {
        const auto binding = createBinding(BindingKind::Float, name, 3);
        binding->cgName = cgName;
        addToBindingCollection(collection, binding);
    };
    add("Tint", "g_tint");
    add("g_tint", "");
    add("g_tint ", "other");
    const auto described =
        describeBindings(collection, flow.flow, assignRegisters(flow.material, flow.flow, stages));
    ASSERT_EQ(described.size(), 3U);
    for (const std::size_t i : {0U, 1U}) {
        ASSERT_EQ(described[i].landings.size(), 1U) << i;
        EXPECT_EQ(described[i].landings[0].stage, "fragment");
        EXPECT_EQ(described[i].landings[0].registerName, "c0");
        EXPECT_EQ(described[i].landings[0].parameter, "g_tint");
    }
    EXPECT_TRUE(described[2].landings.empty());
}

TEST(PrintBindings, NamesThePrograms) {
    BindingsFile file;
    file.material = "Grey";
    file.programs = {describeProgram("vertex", {"Grey.vert.cg", "abc"}),
                     describeProgram("fragment", {"Grey.frag.cg", ""})};
    EXPECT_EQ(printBindings(file),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<bindings version=\"1\" material=\"Grey\">\n"
              "  <program stage=\"vertex\" file=\"Grey.vert.cg\" "
              "sha256=\"ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad\"/>\n"
              "  <program stage=\"fragment\" file=\"Grey.frag.cg\" "
              "sha256=\"e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855\"/>\n"
              "</bindings>\n");
}

TEST(Sha256Text, DigestsMoreThanABlock) {
    EXPECT_EQ(sha256Text(std::string(1000000, 'a')),
              "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

TEST(PrintBindings, WritesNoBindingsAtAll) {
    EXPECT_EQ(bindingsOf(node("c", "CoreConstant", property("Lock", "bool", "Yes")) + anything),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<bindings version=\"1\" material=\"Sample\">\n"
              "</bindings>\n");
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

/// A node that presents the bindings that it is made with.
class PresentingNode : public MaterialNode {
public:
    explicit PresentingNode(std::vector<std::shared_ptr<Binding>> bindings)
        : MaterialNode("Presenter"), bindings_(std::move(bindings)) {}
    void generateCode(GraphGenerator& /*generator*/) override {}
    bool generatesBinding() const override { return true; }
    void addBindings(BindingCollection& collection) override {
        for (const auto& binding : bindings_) {
            collection.bindings.push_back(binding);
        }
    }

private:
    std::vector<std::shared_ptr<Binding>> bindings_;
};

std::shared_ptr<Binding> bindingOf(const std::string& name, const std::string& parameter,
                                   const std::string& description = {}) {
    const auto binding = createBinding(BindingKind::Float, name, 1);
    binding->cgName = parameter;
    binding->description = description;
    return binding;
}

/// Nodes "a", "b" and so on, in lines from 10, that present these bindings.
std::string collectError(const std::vector<std::vector<std::shared_ptr<Binding>>>& nodes) {
    Material material;
    material.file = testing::sampleFile;
    for (const auto& bindings : nodes) {
        MaterialItem item;
        item.id = std::string(1, static_cast<char>('a' + material.items.size()));
        item.line = static_cast<int>(10 + material.items.size());
        item.node = std::make_shared<PresentingNode>(bindings);
        material.items.push_back(item);
    }
    return testing::hostErrorOf([&] { collectBindings(material); });
}

std::string unwritable(const std::string& reason) {
    return "sample.xml:10: error: node \"a\" (\"Presenter\"): its binding cannot stand in a bindings file: " +
           reason + "; report this to the author of its plug-in";
}

TEST(CollectBindings, RefusesTwoOfOneParameter) {
    EXPECT_EQ(collectError({{bindingOf("A", "")}, {bindingOf("B", "")}, {bindingOf("C", "c")}}),
              testing::noError);
    expectErrorAt(collectError({{bindingOf("A", "shared")}, {bindingOf("B", "shared")}}), 11,
                  {"node \"b\"", "sets the parameter of that of node \"a\"", "rename"});
    expectErrorAt(collectError({{bindingOf("A", "")}, {bindingOf("B", "A")}}), 11,
                  {"node \"b\"", "sets the parameter of that of node \"a\""});
}

TEST(CollectBindings, BlamesThePluginForTwoOfOneNode) {
    expectErrorAt(collectError({{bindingOf("A", "a"), bindingOf("A", "b")}}), 10,
                  {"node \"a\"", "two of its bindings", "\"A\"", "author of its plug-in"});
    expectErrorAt(collectError({{bindingOf("A", "c"), bindingOf("B", "c")}}), 10,
                  {"node \"a\"", "two of its bindings", "\"c\"", "author of its plug-in"});
}

TEST(CollectBindings, RefusesTextsThatNoFileCanHold) {
    EXPECT_EQ(collectError({{bindingOf("A", "", "caf\xC3\xA9\n")}}), testing::noError);
    for (const char* text : {"caf\xE9", "a\x01z", "\xED\xA0\x80"}) {
        expectErrorAt(collectError({{bindingOf("A", "", text)}}), 10,
                      {"node \"a\"", "its \"desc\" is no text in UTF-8", "author of its plug-in"});
    }
    const auto grouped = bindingOf("A", "");
    grouped->group = "\xFF";
    expectErrorAt(collectError({{grouped}}), 10, {"node \"a\"", "its \"group\" is no text"});
}

TEST(CollectBindings, RefusesTextsThatAFileWouldCutShort) {
    using namespace std::string_literals;
    const std::pair<const char*, std::string Binding::*> texts[] = {
        {"tag", &Binding::name},
        {"cgname", &Binding::cgName},
        {"uv", &Binding::uvSet},
        {"desc", &Binding::description},
        {"helpUrl", &Binding::helpUrl},
        {"uilabel", &Binding::uiLabel},
        {"stream_type", &Binding::streamType},
        {"dataset_modifiers", &Binding::datasetModifiers},
        {"group", &Binding::group},
    };
    for (const auto& [key, text] : texts) {
        const auto cut = bindingOf("A", "");
        (*cut).*text = "a\0z"s;
        EXPECT_EQ(collectError({{cut}}),
                  unwritable("its \""s + key + "\" is no text in UTF-8, or has control characters"));
    }
    const auto uv = createBinding(BindingKind::Uv, "A", 1);
    uv->parseDefault("\0"s);
    expectErrorAt(collectError({{uv}}), 10, {"node \"a\"", "its \"default\" is no text"});
}

/// A binding that describes itself as it was told to.
class SelfDescribedBinding : public Binding {
public:
    explicit SelfDescribedBinding(Annotations annotations)
        : Binding(BindingKind::Float, "A", 1), annotations_(std::move(annotations)) {}
    void writeAnnotations(xmlNode* element) const override {
        for (const auto& [key, text] : annotations_) {
            writeAttribute(element, key, text);
        }
    }

private:
    Annotations annotations_;
};

std::string selfDescribedError(const Annotations& annotations) {
    return collectError({{std::make_shared<SelfDescribedBinding>(annotations)}});
}

TEST(CollectBindings, RefusesOnesThatAreNotKnownByTheirNames) {
    const std::string expected = unwritable("its \"tag\" is not its name \"A\"");
    EXPECT_EQ(selfDescribedError({}), expected);
    EXPECT_EQ(selfDescribedError({{"tag", "B"}}), expected);
    EXPECT_EQ(selfDescribedError({{"tag", "A"}}), testing::noError);
}

TEST(CollectBindings, RefusesAnnotationsThatTheFileWritesItself) {
    EXPECT_EQ(selfDescribedError({{"tag", "A"}, {"finish", "matt"}, {"kinds", "2"}, {"exported", "yes"}}),
              testing::noError);
    for (const char* key : {"kind", "components", "group", "exported_default", "exported_"}) {
        EXPECT_EQ(
            selfDescribedError({{"tag", "A"}, {key, "1"}}),
            unwritable("it writes the annotation \"" + std::string(key) + "\", which is the file's own"));
    }
}

TEST(CollectBindings, RefusesEmptyHandles) {
    expectErrorAt(collectError({{bindingOf("A", "")}, {bindingOf("B", ""), nullptr}}), 11,
                  {"node \"b\"", "empty handle", "author of its plug-in"});
}

TEST(CollectBindings, RefusesWhatCannotBeReadBack) {
    const auto infinite = bindingOf("A", "");
    infinite->setDefaultValue(0, std::numeric_limits<float>::infinity());
    expectErrorAt(
        collectError({{infinite}}), 10,
        {"node \"a\"", "the default \"inf\" is no list of finite numbers", "author of its plug-in"});
    const auto nameless = bindingOf("A", "");
    nameless->uiUnitType = static_cast<UiUnitType>(9);
    expectErrorAt(collectError({{nameless}}), 10, {"node \"a\"", "\"\" is no unit type"});
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
