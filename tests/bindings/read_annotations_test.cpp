#include "tests/bindings/binding_state.h"
#include "tests/bindings/xml_element.h"
#include "tests/support/comma_locale.h"
#include "tests/support/messages.h"

#include <gtest/gtest.h>

#include <libxml/parser.h>
#include <libxml/tree.h>

#include <memory>
#include <string>
#include <string_view>

namespace patina {
namespace {

using testing::shaderErrorOf;
using testing::stateOf;
using testing::XmlAttributes;
using testing::XmlElement;

void readInto(Binding& binding, const XmlAttributes& attributes) {
    binding.readAnnotations(XmlElement(attributes).node());
}

/// Moves every field away from its default, but for the stream type, which reading resets.
void changeEveryField(Binding& binding) {
    binding.name = "name before";
    binding.description = "description before";
    binding.helpUrl = "url before";
    binding.uiType = UiType::Direction;
    binding.uiLabel = "label before";
    binding.uiUnitType = UiUnitType::Linear;
    binding.uvSet = "set before";
    binding.cgName = "cg before";
    binding.group = "group before";
    binding.parseMin("11, 12");
    binding.parseMax("13, 14");
    binding.parseDefault("15, 16");
    binding.datasetModifiers = "modifiers before";
    binding.basicColour = true;
}

/// A reading that changes one thing: the same change by hand must give the same state.
struct ReadRow {
    const char* key;
    const char* text;
    void (*change)(Binding& binding);
};

const ReadRow readRows[] = {
    {"tag", "Read Name", [](Binding& b) { b.name = "Read Name"; }},
    {"tag", "", [](Binding& b) { b.name = ""; }},
    {"gui", "slider", [](Binding& b) { b.uiType = UiType::Slider; }},
    {"gui", "SLIDER", [](Binding& b) { b.uiType = UiType::Slider; }},
    {"gui", "Colour", [](Binding& b) { b.uiType = UiType::Colour; }},
    {"gui", "position", [](Binding& b) { b.uiType = UiType::Position; }},
    {"gui", "direction", [](Binding& b) { b.uiType = UiType::Direction; }},
    {"gui", "teXture", [](Binding& b) { b.uiType = UiType::Texture; }},
    {"gui", "FloatField", [](Binding& b) { b.uiType = UiType::FloatField; }},
    {"gui", "uvSet", [](Binding& b) { b.uiType = UiType::UvSet; }},
    {"gui", "VTXCOLOURSET", [](Binding& b) { b.uiType = UiType::VtxColourSet; }},
    {"gui", "CheckBoxes", [](Binding& b) { b.uiType = UiType::Checkboxes; }},
    {"gui", "none", [](Binding& b) { b.uiType = UiType::None; }},
    {"gui", "knob", [](Binding& b) { b.uiType = UiType::None; }},
    {"gui", " slider", [](Binding& b) { b.uiType = UiType::None; }},
    {"gui", "", [](Binding& b) { b.uiType = UiType::None; }},
    {"cgname", "iNormal", [](Binding& b) { b.cgName = "iNormal"; }},
    {"cgname", "", [](Binding& b) { b.cgName = ""; }},
    {"uv", " Map 1 ", [](Binding& b) { b.uvSet = " Map 1 "; }},
    {"uv", "", [](Binding& b) { b.uvSet = ""; }},
    {"desc", "How \"wet\" <1>", [](Binding& b) { b.description = "How \"wet\" <1>"; }},
    {"desc", "", [](Binding& b) { b.description = ""; }},
    {"helpUrl", "HTTP://a/?b=1&c", [](Binding& b) { b.helpUrl = "HTTP://a/?b=1&c"; }},
    {"helpUrl", "", [](Binding& b) { b.helpUrl = ""; }},
    {"uilabel", "Label", [](Binding& b) { b.uiLabel = "Label"; }},
    {"uilabel", "", [](Binding& b) { b.uiLabel = ""; }},
    {"uiunittype", "raw", [](Binding& b) { b.uiUnitType = UiUnitType::Raw; }},
    {"uiunittype", "LINEAR", [](Binding& b) { b.uiUnitType = UiUnitType::Linear; }},
    {"uiunittype", "angular", [](Binding& b) { b.uiUnitType = UiUnitType::Angular; }},
    {"uiunittype", "sRGBColour", [](Binding& b) { b.uiUnitType = UiUnitType::SrgbColour; }},
    {"uiunittype", "degrees", [](Binding& b) { b.uiUnitType = UiUnitType::Raw; }},
    {"uiunittype", "", [](Binding& b) { b.uiUnitType = UiUnitType::Raw; }},
    {"min", "1,2", [](Binding& b) { b.parseMin("1, 2"); }},
    {"min", "0.5", [](Binding& b) { b.parseMin("0.5, 0.5"); }},
    {"min", "1,x", [](Binding&) {}},
    {"max", "3,4", [](Binding& b) { b.parseMax("3, 4"); }},
    {"max", "high", [](Binding&) {}},
    {"default", "5,6", [](Binding& b) { b.parseDefault("5,6"); }},
    {"default", "", [](Binding& b) { b.parseDefault(""); }},
    {"dataset_modifiers", "Flip|U", [](Binding& b) { b.datasetModifiers = "Flip|U"; }},
    {"dataset_modifiers", "", [](Binding& b) { b.datasetModifiers = ""; }},
    {"basic_colour", "Yes", [](Binding& b) { b.basicColour = true; }},
    {"basic_colour", "No", [](Binding& b) { b.basicColour = false; }},
    // keys are exact, and others mean nothing
    {"TAG", "t", [](Binding&) {}},
    {"helpurl", "u", [](Binding&) {}},
    {"name", "n", [](Binding&) {}},
    {"group", "g", [](Binding&) {}},
    {"kind", "k", [](Binding&) {}},
};

TEST(ReadAnnotations, ChangesTheFieldOfEachKeyAndNoOther) {
    for (const ReadRow& row : readRows) {
        for (const BindingKind kind : testing::kindOfEveryClass) {
            const std::shared_ptr<Binding> read = createBinding(kind, "tint", 2);
            changeEveryField(*read);
            readInto(*read, {{row.key, row.text}});

            const std::shared_ptr<Binding> expected = createBinding(kind, "tint", 2);
            changeEveryField(*expected);
            row.change(*expected);
            EXPECT_EQ(stateOf(*read), stateOf(*expected)) << row.key << "=\"" << row.text << '"';
        }
    }
}

TEST(ReadAnnotations, SetsTheFieldsOfANewBinding) {
    for (const ReadRow& row : readRows) {
        for (const BindingKind kind : testing::everyKind) {
            const std::shared_ptr<Binding> read = createBinding(kind, "tint", 2);
            readInto(*read, {{row.key, row.text}});

            const std::shared_ptr<Binding> expected = createBinding(kind, "tint", 2);
            row.change(*expected);
            EXPECT_EQ(stateOf(*read), stateOf(*expected)) << row.key << "=\"" << row.text << '"';
        }
    }
}

TEST(ReadAnnotations, MarksOnlyTheValuesThatWereRead) {
    const auto binding = testing::makeBinding<FloatBinding>(BindingKind::Float, 2);
    readInto(*binding, {{"max", "1, 2"}});
    EXPECT_FALSE(binding->hasMin);
    EXPECT_TRUE(binding->hasMax);
    EXPECT_FALSE(binding->hasDefault);
    EXPECT_EQ(binding->formatMax(), "1, 2");
    readInto(*binding, {{"min", "bad"}, {"max", "bad"}, {"default", "bad"}});
    EXPECT_FALSE(binding->hasMin);
    EXPECT_EQ(binding->formatMax(), "1, 2");
    EXPECT_FALSE(binding->hasDefault);
}

TEST(ReadAnnotations, TakesEverythingInAnyOrderOnTheElement) {
    const XmlAttributes attributes = {
        {"tag", "t"},
        {"gui", "Slider"},
        {"cgname", "c"},
        {"uv", "u"},
        {"desc", "d"},
        {"helpUrl", "h"},
        {"uilabel", "l"},
        {"uiunittype", "Angular"},
        {"min", "1"},
        {"max", "2"},
        {"default", "3, 4"},
        {"stream_type", "Short"},
        {"stream_normalize", "Y"},
        {"dataset_modifiers", "m"},
        {"basic_colour", "Yes"},
    };
    for (const XmlAttributes& ordered : {attributes, XmlAttributes(attributes.rbegin(), attributes.rend())}) {
        const std::shared_ptr<Binding> binding = createBinding(BindingKind::Float, "tint", 2);
        readInto(*binding, ordered);
        EXPECT_EQ(binding->name, "t");
        EXPECT_EQ(binding->uiType, UiType::Slider);
        EXPECT_EQ(binding->cgName, "c");
        EXPECT_EQ(binding->uvSet, "u");
        EXPECT_EQ(binding->description, "d");
        EXPECT_EQ(binding->helpUrl, "h");
        EXPECT_EQ(binding->uiLabel, "l");
        EXPECT_EQ(binding->uiUnitType, UiUnitType::Angular);
        EXPECT_EQ(binding->formatMin(), "1, 1");
        EXPECT_EQ(binding->formatMax(), "2, 2");
        EXPECT_EQ(binding->formatDefault(), "3, 4");
        EXPECT_EQ(binding->streamType, "s16n");
        EXPECT_EQ(binding->datasetModifiers, "m");
        EXPECT_TRUE(binding->basicColour);
        EXPECT_EQ(binding->group, "");
        EXPECT_EQ(binding->kind, BindingKind::Float);
        EXPECT_EQ(binding->componentCount(), 2U);
    }
}

TEST(ReadAnnotations, ReadsNumbersAlikeInEveryLocale) {
    const testing::CommaLocale comma;
    const std::shared_ptr<Binding> binding = createBinding(BindingKind::Float, "tint", 2);
    readInto(*binding, {{"gui", "SLIDER"}, {"min", "-0.5"}, {"max", "1.5, 2.25"}, {"default", "1234.5,0.1"}});
    EXPECT_EQ(binding->uiType, UiType::Slider);
    EXPECT_EQ(binding->minValue(1), -0.5F);
    EXPECT_EQ(binding->maxValue(0), 1.5F);
    EXPECT_EQ(binding->maxValue(1), 2.25F);
    EXPECT_EQ(binding->defaultValue(0), 1234.5F);
    EXPECT_EQ(binding->defaultValue(1), 0.1F);
}

// --- the stream type ---

struct KindStream {
    BindingKind kind;
    const char* streamType;
    bool normalise;
};

constexpr KindStream kindStreams[] = {
    {BindingKind::Position, "f32", false},    {BindingKind::Normal, "f16", false},
    {BindingKind::Uv, "f32", false},          {BindingKind::Tangent, "f16", false},
    {BindingKind::Binormal, "f16", false},    {BindingKind::Colour, "u8n", true},
    {BindingKind::BlendIndices, "u8", false}, {BindingKind::BlendWeights, "s16n", true},
    {BindingKind::Texture, "", false},        {BindingKind::Float, "", false},
};

TEST(ReadAnnotations, ResetsTheStreamTypeToTheKindsDefault) {
    for (const KindStream& row : kindStreams) {
        for (const XmlAttributes& attributes :
             {XmlAttributes{}, XmlAttributes{{"tag", "t"}}, XmlAttributes{{"stream_normalize", "Yes"}},
              XmlAttributes{{"stream_normalize", "No"}}}) {
            const std::shared_ptr<Binding> binding = createBinding(row.kind, "tint", 1);
            binding->streamType = "X11Y11Z10n";
            readInto(*binding, attributes);
            EXPECT_EQ(binding->streamType, row.streamType) << bindingKindName(*binding);
        }
    }
}

TEST(ReadAnnotations, ChangesNameAndStreamTypeForALoneTag) {
    const std::shared_ptr<Binding> binding = createBinding(BindingKind::Colour, "tint", 4);
    changeEveryField(*binding);
    binding->streamType = "f16";
    readInto(*binding, {{"tag", "set2"}});
    const std::shared_ptr<Binding> expected = createBinding(BindingKind::Colour, "tint", 4);
    changeEveryField(*expected);
    expected->name = "set2";
    expected->streamType = "u8n";
    EXPECT_EQ(stateOf(*binding), stateOf(*expected));
}

struct StreamWordRow {
    const char* word;
    const char* code;
    const char* normalisedCode;
};

constexpr StreamWordRow streamWordRows[] = {
    {"int", "f32", "f32"},
    {"UInt", "f32", "f32"},
    {"Float", "f32", "f32"},
    {"HALF", "f16", "f16"},
    {"uShort", "s16", "s16n"},
    {"SHORT", "s16", "s16n"},
    {"Byte", "u8", "u8n"},
    {"UBYTE", "u8", "u8n"},
    {"Packed", "X11Y11Z10n", "X11Y11Z10n"},
    {"X11Y11Z10n", "x11y11z10n", "x11y11z10n"},
    {"F32", "f32", "f32"},
    {"s16", "s16", "s16"},
    {"U8N", "u8n", "u8n"},
    {"Double", "double", "double"},
    {" short", " short", " short"},
    {"", "", ""},
};

TEST(ReadAnnotations, MapsTheStreamTypeInAnyCaseByTheKindsNormalisation) {
    for (const KindStream& kindRow : kindStreams) {
        for (const StreamWordRow& row : streamWordRows) {
            const std::shared_ptr<Binding> binding = createBinding(kindRow.kind, "tint", 1);
            readInto(*binding, {{"stream_type", row.word}});
            EXPECT_EQ(binding->streamType, kindRow.normalise ? row.normalisedCode : row.code)
                << bindingKindName(*binding) << ' ' << row.word;
        }
    }
}

TEST(ReadAnnotations, LetsAnAttributeDecideOnNormalisation) {
    for (const KindStream& kindRow : kindStreams) {
        for (const StreamWordRow& row : streamWordRows) {
            const std::shared_ptr<Binding> binding = createBinding(kindRow.kind, "tint", 1);
            for (const char* yes : {"1", "y", "Y", "yes", "Yes", "YES", "true", "True", "TRUE"}) {
                readInto(*binding, {{"stream_type", row.word}, {"stream_normalize", yes}});
                EXPECT_EQ(binding->streamType, row.normalisedCode)
                    << bindingKindName(*binding) << ' ' << row.word;
            }
            for (const char* no : {"", "0", "n", "No", "false", "2", " yes", "on", "maybe"}) {
                readInto(*binding, {{"stream_normalize", no}, {"stream_type", row.word}});
                EXPECT_EQ(binding->streamType, row.code) << bindingKindName(*binding) << ' ' << row.word;
            }
        }
    }
}

TEST(ReadAnnotations, WritesAPackedStreamAgainInLowerCase) {
    const std::shared_ptr<Binding> binding = createBinding(BindingKind::Normal, "tint", 3);
    readInto(*binding, {{"stream_type", "packed"}});
    const XmlElement first;
    binding->writeAnnotations(first.node());
    EXPECT_EQ(first.attributes(), (XmlAttributes{{"tag", "tint"}, {"stream_type", "X11Y11Z10n"}}));

    binding->readAnnotations(first.node());
    const XmlElement second;
    binding->writeAnnotations(second.node());
    EXPECT_EQ(second.attributes(), (XmlAttributes{{"tag", "tint"}, {"stream_type", "x11y11z10n"}}));
}

// --- failures ---

TEST(ReadAnnotations, FailsForABasicColourThatIsNeitherYesNorNo) {
    struct MessageRow {
        const char* text;
        const char* message;
    };
    constexpr MessageRow rows[] = {
        {"yes", "attribute \"basic_colour\" contains invalid boolean data \"yes\""},
        {"NO", "attribute \"basic_colour\" contains invalid boolean data \"NO\""},
        {"true", "attribute \"basic_colour\" contains invalid boolean data \"true\""},
        {"1", "attribute \"basic_colour\" contains invalid boolean data \"1\""},
        {" Yes", "attribute \"basic_colour\" contains invalid boolean data \" Yes\""},
        {"", "attribute \"basic_colour\" contains invalid boolean data \"\""},
    };
    for (const MessageRow& row : rows) {
        for (const BindingKind kind : testing::everyKind) {
            for (const bool before : {false, true}) {
                const std::shared_ptr<Binding> binding = createBinding(kind, "tint", 1);
                binding->basicColour = before;
                EXPECT_EQ(shaderErrorOf([&] {
                              readInto(*binding, {{"basic_colour", row.text}});
                          }),
                          row.message);
                EXPECT_EQ(binding->basicColour, before);
            }
        }
    }
}

TEST(ReadAnnotations, KeepsWhatWasReadBeforeAFailure) {
    const std::shared_ptr<Binding> binding = createBinding(BindingKind::Float, "tint", 1);
    EXPECT_EQ(shaderErrorOf([&] {
                  readInto(*binding, {{"basic_colour", "?"},
                                      {"tag", "t"},
                                      {"gui", "slider"},
                                      {"cgname", "c"},
                                      {"uv", "u"},
                                      {"desc", "d"},
                                      {"helpUrl", "h"},
                                      {"uilabel", "l"},
                                      {"uiunittype", "angular"},
                                      {"min", "1"},
                                      {"max", "2"},
                                      {"default", "3"},
                                      {"stream_type", "half"},
                                      {"dataset_modifiers", "m"}});
              }),
              "attribute \"basic_colour\" contains invalid boolean data \"?\"");
    EXPECT_EQ(binding->name, "t");
    EXPECT_EQ(binding->uiType, UiType::Slider);
    EXPECT_EQ(binding->cgName, "c");
    EXPECT_EQ(binding->uvSet, "u");
    EXPECT_EQ(binding->description, "d");
    EXPECT_EQ(binding->helpUrl, "h");
    EXPECT_EQ(binding->uiLabel, "l");
    EXPECT_EQ(binding->uiUnitType, UiUnitType::Angular);
    EXPECT_EQ(binding->formatMin(), "1");
    EXPECT_EQ(binding->formatMax(), "2");
    EXPECT_EQ(binding->formatDefault(), "3");
    EXPECT_EQ(binding->streamType, "f16");
    EXPECT_EQ(binding->datasetModifiers, "m");
}

/// Notes the texts that it is given, in order.
class ListeningBinding : public Binding {
public:
    using Binding::Binding;
    void parseMin(const std::string& text) override { heard += "min " + text + ';'; }
    void parseMax(const std::string& text) override { heard += "max " + text + ';'; }
    void parseDefault(const std::string& text) override { heard += "default " + text + ';'; }

    std::string heard;
};

TEST(ReadAnnotations, HandsTheListsToTheClassInOrder) {
    ListeningBinding binding(BindingKind::Normal, "tint", 1);
    readInto(binding, {{"default", " C, "}, {"max", "B"}, {"min", ""}});
    EXPECT_EQ(binding.heard, "min ;max B;default  C, ;");
    binding.heard.clear();
    readInto(binding, {{"tag", "t"}});
    EXPECT_EQ(binding.heard, "");
}

TEST(ReadAnnotations, LeavesTheElementAsItIs) {
    const XmlAttributes attributes = {
        {"stream_normalize", "Yes"}, {"gui", "SLIDER"}, {"tag", "t"}, {"id", "7"}};
    const XmlElement element(attributes);
    createBinding(BindingKind::Texture, "tint", 1)->readAnnotations(element.node());
    EXPECT_EQ(element.attributes(), attributes);
}

TEST(ReadAnnotations, ReadsDefaultsOfTheDocumentTypeToo) {
    constexpr std::string_view text = "<!DOCTYPE binding [<!ELEMENT binding EMPTY>"
                                      "<!ATTLIST binding tag CDATA \"tint\" basic_colour CDATA \"Yes\">]>"
                                      "<binding/>";
    const std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)> document(
        xmlReadMemory(text.data(), static_cast<int>(text.size()), "test.xml", nullptr, 0), &xmlFreeDoc);
    const std::shared_ptr<Binding> binding = createBinding(BindingKind::Float, "before", 1);
    binding->readAnnotations(xmlDocGetRootElement(document.get()));
    EXPECT_EQ(binding->name, "tint");
    EXPECT_TRUE(binding->basicColour);
}

TEST(ReadAnnotations, WithoutAnElementOnlyResetsTheStreamTypeAndTheTextureFlags) {
    for (const BindingKind kind : testing::kindOfEveryClass) {
        const std::shared_ptr<Binding> read = createBinding(kind, "tint", 2);
        changeEveryField(*read);
        read->streamType = "X11Y11Z10n";
        read->readAnnotations(nullptr);
        const std::shared_ptr<Binding> expected = createBinding(kind, "tint", 2);
        changeEveryField(*expected);
        EXPECT_EQ(stateOf(*read), stateOf(*expected));
    }
    const std::shared_ptr<TextureBinding> texture =
        toTextureBinding(createBinding(BindingKind::Texture, "t", 1));
    texture->srgb = true;
    texture->signedExpanded = true;
    texture->normalised = false;
    texture->readAnnotations(nullptr);
    EXPECT_FALSE(texture->srgb);
    EXPECT_FALSE(texture->signedExpanded);
    EXPECT_TRUE(texture->normalised);
}

} // namespace
} // namespace patina
