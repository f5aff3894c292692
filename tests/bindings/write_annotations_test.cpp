#include "tests/bindings/binding_state.h"
#include "tests/bindings/xml_element.h"
#include "tests/support/comma_locale.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace patina {
namespace {

using testing::XmlAttributes;
using testing::XmlElement;

XmlAttributes annotationsOf(Binding& binding) {
    const XmlElement element;
    binding.writeAnnotations(element.node());
    return element.attributes();
}

TEST(WriteAnnotations, WritesOnlyTheTagOfANewBinding) {
    for (const BindingKind kind : testing::everyKind) {
        const std::shared_ptr<Binding> binding = createBinding(kind, "tint", 2);
        EXPECT_EQ(annotationsOf(*binding), (XmlAttributes{{"tag", "tint"}})) << bindingKindName(*binding);
    }
}

TEST(WriteAnnotations, WritesTheTagEvenWhenItIsEmpty) {
    EXPECT_EQ(annotationsOf(*createBinding(BindingKind::Float, "", 1)), (XmlAttributes{{"tag", ""}}));
}

struct AttributeRow {
    const char* what;
    BindingKind kind;
    void (*change)(Binding& binding);
    XmlAttributes attributes; ///< behind the tag
};

const AttributeRow attributeRows[] = {
    // gui: unless it is the kind's default
    {"gui slider", BindingKind::Float, [](Binding& b) { b.uiType = UiType::Slider; }, {{"gui", "slider"}}},
    {"gui none", BindingKind::Float, [](Binding& b) { b.uiType = UiType::None; }, {{"gui", "none"}}},
    {"gui default", BindingKind::Float, [](Binding& b) { b.uiType = UiType::FloatField; }, {}},
    {"gui of a stream",
     BindingKind::Normal,
     [](Binding& b) { b.uiType = UiType::FloatField; },
     {{"gui", "floatfield"}}},
    {"gui of a texture",
     BindingKind::Texture,
     [](Binding& b) { b.uiType = UiType::Colour; },
     {{"gui", "colour"}}},
    {"gui of a uv set",
     BindingKind::Uv,
     [](Binding& b) { b.uiType = UiType::VtxColourSet; },
     {{"gui", "vtxcolourset"}}},
    {"gui of a colour set",
     BindingKind::Colour,
     [](Binding& b) { b.uiType = UiType::UvSet; },
     {{"gui", "uvset"}}},
    {"gui position",
     BindingKind::Float,
     [](Binding& b) { b.uiType = UiType::Position; },
     {{"gui", "position"}}},
    {"gui direction",
     BindingKind::Float,
     [](Binding& b) { b.uiType = UiType::Direction; },
     {{"gui", "direction"}}},
    {"gui texture", BindingKind::Float, [](Binding& b) { b.uiType = UiType::Texture; }, {{"gui", "texture"}}},
    {"gui checkboxes",
     BindingKind::Float,
     [](Binding& b) { b.uiType = UiType::Checkboxes; },
     {{"gui", "checkboxes"}}},
    {"gui unknown",
     BindingKind::Float,
     [](Binding& b) { b.uiType = static_cast<UiType>(10); },
     {{"gui", ""}}},
    // texts: unless empty
    {"cgname", BindingKind::Normal, [](Binding& b) { b.cgName = "iNormal"; }, {{"cgname", "iNormal"}}},
    {"uv", BindingKind::Tangent, [](Binding& b) { b.uvSet = "map1"; }, {{"uv", "map1"}}},
    {"desc",
     BindingKind::Float,
     [](Binding& b) { b.description = "How \"wet\" <1>"; },
     {{"desc", "How \"wet\" <1>"}}},
    {"helpUrl",
     BindingKind::Float,
     [](Binding& b) { b.helpUrl = "http://a/?b=1&c=2"; },
     {{"helpUrl", "http://a/?b=1&c=2"}}},
    {"uilabel", BindingKind::Float, [](Binding& b) { b.uiLabel = " "; }, {{"uilabel", " "}}},
    // uiunittype: unless raw, for every kind
    {"raw", BindingKind::Float, [](Binding& b) { b.uiUnitType = UiUnitType::Raw; }, {}},
    {"linear",
     BindingKind::Float,
     [](Binding& b) { b.uiUnitType = UiUnitType::Linear; },
     {{"uiunittype", "linear"}}},
    {"angular",
     BindingKind::Uv,
     [](Binding& b) { b.uiUnitType = UiUnitType::Angular; },
     {{"uiunittype", "angular"}}},
    {"srgbcolour",
     BindingKind::Colour,
     [](Binding& b) { b.uiUnitType = UiUnitType::SrgbColour; },
     {{"uiunittype", "srgbcolour"}}},
    {"unit unknown",
     BindingKind::Float,
     [](Binding& b) { b.uiUnitType = static_cast<UiUnitType>(4); },
     {{"uiunittype", ""}}},
    // min, max, default: unless their lists or texts are empty
    {"min", BindingKind::Float, [](Binding& b) { b.setMinValue(1, -1.0F); }, {{"min", "0, -1"}}},
    {"max", BindingKind::Float, [](Binding& b) { b.parseMax("0.5"); }, {{"max", "0.5, 0.5"}}},
    {"default", BindingKind::Float, [](Binding& b) { b.parseDefault("1,2"); }, {{"default", "1, 2"}}},
    {"min not present",
     BindingKind::Float,
     [](Binding& b) {
         b.parseMin("1");
         b.hasMin = false;
     },
     {}},
    {"max not present",
     BindingKind::Float,
     [](Binding& b) {
         b.parseMax("1");
         b.hasMax = false;
     },
     {}},
    {"default not present",
     BindingKind::Float,
     [](Binding& b) {
         b.parseDefault("1");
         b.hasDefault = false;
     },
     {}},
    {"no records",
     BindingKind::Float,
     [](Binding& b) {
         b.parseMin("1");
         b.parseMax("1");
         b.parseDefault("1");
         b.setComponentCount(0);
     },
     {}},
    {"a stream's flags",
     BindingKind::Position,
     [](Binding& b) { b.hasMin = b.hasMax = b.hasDefault = true; },
     {}},
    {"a default text", BindingKind::Uv, [](Binding& b) { b.parseDefault("map1"); }, {{"default", "map1"}}},
    {"a default file",
     BindingKind::Texture,
     [](Binding& b) { b.parseDefault("a, b.dds"); },
     {{"default", "a, b.dds"}}},
    {"an empty default text", BindingKind::Colour, [](Binding& b) { b.parseDefault(""); }, {}},
    {"a default set by index", BindingKind::Colour, [](Binding& b) { b.setDefaultText(0, "set"); }, {}},
    {"a default text not present",
     BindingKind::Uv,
     [](Binding& b) {
         b.parseDefault("map1");
         b.hasDefault = false;
     },
     {}},
    // stream_type: unless it is the kind's default
    {"stream default", BindingKind::Position, [](Binding& b) { b.streamType = "f32"; }, {}},
    {"stream f16", BindingKind::Position, [](Binding& b) { b.streamType = "f16"; }, {{"stream_type", "f16"}}},
    {"stream f32", BindingKind::Normal, [](Binding& b) { b.streamType = "f32"; }, {{"stream_type", "f32"}}},
    {"stream s16",
     BindingKind::BlendWeights,
     [](Binding& b) { b.streamType = "s16"; },
     {{"stream_type", "s16"}}},
    {"stream u8", BindingKind::Colour, [](Binding& b) { b.streamType = "u8"; }, {{"stream_type", "u8"}}},
    {"stream packed",
     BindingKind::Tangent,
     [](Binding& b) { b.streamType = "X11Y11Z10n"; },
     {{"stream_type", "X11Y11Z10n"}}},
    {"stream in capitals",
     BindingKind::Position,
     [](Binding& b) { b.streamType = "F32"; },
     {{"stream_type", "F32"}}},
    {"stream emptied", BindingKind::Uv, [](Binding& b) { b.streamType = ""; }, {{"stream_type", ""}}},
    {"stream of a float",
     BindingKind::Float,
     [](Binding& b) { b.streamType = "f32"; },
     {{"stream_type", "f32"}}},
    // dataset_modifiers: unless they are the kind's default
    {"modifiers emptied",
     BindingKind::Uv,
     [](Binding& b) { b.datasetModifiers = ""; },
     {{"dataset_modifiers", ""}}},
    {"modifiers emptied too",
     BindingKind::Binormal,
     [](Binding& b) { b.datasetModifiers = ""; },
     {{"dataset_modifiers", ""}}},
    {"modifiers default", BindingKind::Binormal, [](Binding& b) { b.datasetModifiers = "negate"; }, {}},
    {"modifiers changed",
     BindingKind::Normal,
     [](Binding& b) { b.datasetModifiers = "negate"; },
     {{"dataset_modifiers", "negate"}}},
    {"modifiers of a texture",
     BindingKind::Texture,
     [](Binding& b) { b.datasetModifiers = "x"; },
     {{"dataset_modifiers", "x"}}},
    // basic_colour: when true
    {"basic colour", BindingKind::Float, [](Binding& b) { b.basicColour = true; }, {{"basic_colour", "Yes"}}},
    {"basic colour of a texture",
     BindingKind::Texture,
     [](Binding& b) { b.basicColour = true; },
     {{"basic_colour", "Yes"}}},
    // no annotation at all
    {"group", BindingKind::Float, [](Binding& b) { b.group = "Wetness"; }, {}},
};

TEST(WriteAnnotations, WritesEachAttributeUnderItsCondition) {
    for (const AttributeRow& row : attributeRows) {
        const std::shared_ptr<Binding> binding = createBinding(row.kind, "tint", 2);
        row.change(*binding);
        XmlAttributes expected = {{"tag", "tint"}};
        expected.insert(expected.end(), row.attributes.begin(), row.attributes.end());
        EXPECT_EQ(annotationsOf(*binding), expected) << row.what;
    }
}

/// Moves every field away from its default.
void changeEveryField(Binding& binding) {
    binding.basicColour = true;
    binding.datasetModifiers = "flip";
    binding.streamType = "s16";
    binding.parseDefault("5, 6");
    binding.parseMax("3, 4");
    binding.parseMin("1, 2");
    binding.uiUnitType = UiUnitType::Angular;
    binding.uiLabel = "label";
    binding.helpUrl = "url";
    binding.description = "description";
    binding.uvSet = "set";
    binding.cgName = "cg";
    binding.uiType = UiType::Slider;
    binding.group = "group";
}

TEST(WriteAnnotations, WritesEverythingInOrder) {
    const std::shared_ptr<Binding> binding = createBinding(BindingKind::Float, "tint", 2);
    changeEveryField(*binding);
    EXPECT_EQ(annotationsOf(*binding), (XmlAttributes{{"tag", "tint"},
                                                      {"gui", "slider"},
                                                      {"cgname", "cg"},
                                                      {"uv", "set"},
                                                      {"desc", "description"},
                                                      {"helpUrl", "url"},
                                                      {"uilabel", "label"},
                                                      {"uiunittype", "angular"},
                                                      {"min", "1, 2"},
                                                      {"max", "3, 4"},
                                                      {"default", "5, 6"},
                                                      {"stream_type", "s16"},
                                                      {"dataset_modifiers", "flip"},
                                                      {"basic_colour", "Yes"}}));
}

TEST(WriteAnnotations, WritesNoLimitsOfTextsAndStreams) {
    XmlAttributes expected = {{"tag", "tint"},         {"gui", "slider"},
                              {"cgname", "cg"},        {"uv", "set"},
                              {"desc", "description"}, {"helpUrl", "url"},
                              {"uilabel", "label"},    {"uiunittype", "angular"},
                              {"stream_type", "s16"},  {"dataset_modifiers", "flip"},
                              {"basic_colour", "Yes"}};
    const std::shared_ptr<Binding> stream = createBinding(BindingKind::Position, "tint", 2);
    changeEveryField(*stream);
    EXPECT_EQ(annotationsOf(*stream), expected);

    expected.insert(expected.begin() + 8, {"default", "5, 6"});
    const std::shared_ptr<Binding> uvSet = createBinding(BindingKind::Uv, "tint", 2);
    changeEveryField(*uvSet);
    EXPECT_EQ(annotationsOf(*uvSet), expected);
}

TEST(WriteAnnotations, WritesTheTextureFlagsLast) {
    const auto texture = testing::makeBinding<TextureBinding>(BindingKind::Texture, 2);
    changeEveryField(*texture);
    texture->normalised = false;
    texture->signedExpanded = true;
    texture->srgb = true;
    EXPECT_EQ(annotationsOf(*texture), (XmlAttributes{{"tag", "tint"},
                                                      {"gui", "slider"},
                                                      {"cgname", "cg"},
                                                      {"uv", "set"},
                                                      {"desc", "description"},
                                                      {"helpUrl", "url"},
                                                      {"uilabel", "label"},
                                                      {"uiunittype", "angular"},
                                                      {"default", "5, 6"},
                                                      {"stream_type", "s16"},
                                                      {"dataset_modifiers", "flip"},
                                                      {"basic_colour", "Yes"},
                                                      {"srgb", "Yes"},
                                                      {"signed_expanded", "Yes"},
                                                      {"normalised", "No"}}));
}

TEST(WriteAnnotations, NeverWritesWhetherAStreamIsNormalised) {
    for (const BindingKind kind : testing::everyKind) {
        for (const char* streamType : {"", "f32", "f16", "s16", "s16n", "u8", "u8n", "X11Y11Z10n", "other"}) {
            const std::shared_ptr<Binding> binding = createBinding(kind, "tint", 1);
            binding->streamType = streamType;
            for (const auto& [key, text] : annotationsOf(*binding)) {
                EXPECT_NE(key, "stream_normalize") << text;
            }
        }
    }
}

TEST(WriteAnnotations, WritesTheDefaultsOfThreeComponentsAndNoLimits) {
    const std::shared_ptr<Binding> binding = createBinding(BindingKind::Float, "tint", 3);
    binding->setDefaultValue(0, 1.0F);
    binding->setDefaultValue(1, 0.5F);
    binding->setDefaultValue(2, 0.25F);
    EXPECT_EQ(annotationsOf(*binding), (XmlAttributes{{"tag", "tint"}, {"default", "1, 0.5, 0.25"}}));
}

TEST(WriteAnnotations, PrintsNumbersAlikeInEveryLocale) {
    const std::shared_ptr<Binding> binding = createBinding(BindingKind::Float, "tint", 2);
    binding->setMinValue(0, -1234.5F);
    binding->setMaxValue(1, 1234567.0F);
    binding->setDefaultValue(0, 0.1F);
    const testing::CommaLocale comma;
    EXPECT_EQ(annotationsOf(*binding),
              (XmlAttributes{
                  {"tag", "tint"}, {"min", "-1234.5, 0"}, {"max", "0, 1.23457e+06"}, {"default", "0.1, 0"}}));
}

/// Brings lists of its own.
class ListBinding : public Binding {
public:
    using Binding::Binding;
    std::string formatMin() const override { return "low"; }
    std::string formatMax() const override { return "high"; }
    std::string formatDefault() const override { return "mid"; }
};

TEST(WriteAnnotations, AsksTheClassForItsLists) {
    ListBinding binding(BindingKind::Normal, "tint", 1);
    EXPECT_EQ(annotationsOf(binding),
              (XmlAttributes{{"tag", "tint"}, {"min", "low"}, {"max", "high"}, {"default", "mid"}}));
}

TEST(WriteAnnotations, ReplacesOwnAttributesAndLeavesTheOthers) {
    const XmlElement element({{"id", "7"}, {"desc", "old"}, {"tag", "old"}, {"stream_normalize", "No"}});
    const std::shared_ptr<Binding> binding = createBinding(BindingKind::Float, "tint", 1);
    binding->uiLabel = "label";
    binding->writeAnnotations(element.node());
    // an attribute whose condition does not hold is not touched
    EXPECT_EQ(element.attributes(), (XmlAttributes{{"id", "7"},
                                                   {"desc", "old"},
                                                   {"tag", "tint"},
                                                   {"stream_normalize", "No"},
                                                   {"uilabel", "label"}}));
}

TEST(WriteAnnotations, WritesTheSameTwice) {
    const std::shared_ptr<Binding> binding = createBinding(BindingKind::Float, "tint", 2);
    changeEveryField(*binding);
    const std::string before = testing::stateOf(*binding);
    const XmlElement element;
    binding->writeAnnotations(element.node());
    const XmlAttributes first = element.attributes();
    binding->writeAnnotations(element.node());
    // cppcheck-suppress knownConditionTrueFalse ; the attributes are those of a tree that was written to
    EXPECT_EQ(element.attributes(), first);
    EXPECT_EQ(testing::stateOf(*binding), before);
}

TEST(WriteAnnotations, WritesNothingWithoutAnElement) {
    for (const BindingKind kind : testing::kindOfEveryClass) {
        const std::shared_ptr<Binding> binding = createBinding(kind, "tint", 2);
        changeEveryField(*binding);
        EXPECT_NO_THROW(binding->writeAnnotations(nullptr));
    }
}

} // namespace
} // namespace patina
