#include "bindings/bindings.h"
#include "tests/bindings/xml_element.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <string>
#include <typeinfo>

namespace patina {
namespace {

struct KindRow {
    int value;
    BindingKind kind;
    const char* name;
    const std::type_info* bindingClass; ///< null: none is created
    UiType uiType;
    const char* streamType;
    bool streamNormalise;
    const char* datasetModifiers;
};

const KindRow kindRows[] = {
    {0, BindingKind::Invalid, "invalid", nullptr, UiType::None, "", false, ""},
    {1, BindingKind::Position, "position", &typeid(Binding), UiType::None, "f32", false, ""},
    {2, BindingKind::Normal, "normal", &typeid(Binding), UiType::None, "f16", false, ""},
    {3, BindingKind::Uv, "uv", &typeid(StringBinding), UiType::UvSet, "f32", false, "oneminus|v"},
    {4, BindingKind::Tangent, "tangent", &typeid(Binding), UiType::None, "f16", false, ""},
    {5, BindingKind::Binormal, "binormal", &typeid(Binding), UiType::None, "f16", false, "negate"},
    {6, BindingKind::Colour, "colour", &typeid(StringBinding), UiType::VtxColourSet, "u8n", true, ""},
    {7, BindingKind::BlendIndices, "blendindices", &typeid(Binding), UiType::None, "u8", false, ""},
    {8, BindingKind::BlendWeights, "blendweights", &typeid(Binding), UiType::None, "s16n", true, ""},
    {9, BindingKind::Texture, "texture", &typeid(TextureBinding), UiType::Texture, "", false, ""},
    {10, BindingKind::Float, "float", &typeid(FloatBinding), UiType::FloatField, "", false, ""},
};

/// Values that no kind has.
constexpr int strayValues[] = {
    11, 12, 1000, -1, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()};

TEST(BindingKinds, HaveTheirNumbers) {
    for (const KindRow& row : kindRows) {
        EXPECT_EQ(static_cast<int>(row.kind), row.value);
    }
}

TEST(BindingKinds, HaveTheirNames) {
    for (const KindRow& row : kindRows) {
        EXPECT_EQ(bindingKindName(Binding(row.kind, "b", 1)), row.name);
    }
    for (const int value : strayValues) {
        EXPECT_EQ(bindingKindName(Binding(static_cast<BindingKind>(value), "b", 1)), "") << value;
    }
}

TEST(BindingKinds, HaveTheirDatasetModifiers) {
    for (const KindRow& row : kindRows) {
        EXPECT_EQ(defaultDatasetModifiers(row.kind), row.datasetModifiers) << row.name;
    }
    for (const int value : strayValues) {
        EXPECT_EQ(defaultDatasetModifiers(static_cast<BindingKind>(value)), "") << value;
    }
}

TEST(BindingKinds, StartWithTheirDefaultsInThePlainClassToo) {
    for (const KindRow& row : kindRows) {
        SCOPED_TRACE(row.name);
        const Binding binding(row.kind, "b", 1);
        EXPECT_EQ(binding.uiType, row.uiType);
        EXPECT_EQ(binding.streamType, row.streamType);
        EXPECT_EQ(binding.datasetModifiers, row.datasetModifiers);
        EXPECT_EQ(detail::bindingKindDefaults(row.kind).streamNormalise, row.streamNormalise);
    }
}

TEST(CreateBinding, MakesTheClassOfTheKindWithTheKindsDefaults) {
    for (const KindRow& row : kindRows) {
        SCOPED_TRACE(row.name);
        const std::shared_ptr<Binding> binding = createBinding(row.kind, "tint", 3);
        if (row.bindingClass == nullptr) {
            EXPECT_EQ(binding, nullptr);
            continue;
        }
        ASSERT_NE(binding, nullptr);
        const Binding& made = *binding;
        EXPECT_EQ(typeid(made), *row.bindingClass);
        EXPECT_EQ(binding->kind, row.kind);
        EXPECT_EQ(binding->uiType, row.uiType);
        EXPECT_EQ(binding->streamType, row.streamType);
        EXPECT_EQ(binding->datasetModifiers, row.datasetModifiers);
        EXPECT_EQ(binding.use_count(), 1);
    }
}

TEST(CreateBinding, StartsAllOtherFieldsAlikeForEveryKind) {
    for (const KindRow& row : kindRows) {
        SCOPED_TRACE(row.name);
        const std::shared_ptr<Binding> binding = createBinding(row.kind, "tint \"1\"", 3);
        if (binding == nullptr) {
            continue;
        }
        EXPECT_EQ(binding->name, "tint \"1\"");
        EXPECT_EQ(binding->description, "");
        EXPECT_EQ(binding->helpUrl, "");
        EXPECT_EQ(binding->uiLabel, "");
        EXPECT_EQ(binding->uiUnitType, UiUnitType::Raw);
        EXPECT_EQ(binding->uvSet, "");
        EXPECT_EQ(binding->cgName, "");
        EXPECT_EQ(binding->group, "");
        EXPECT_FALSE(binding->hasMin);
        EXPECT_FALSE(binding->hasMax);
        EXPECT_FALSE(binding->hasDefault);
        EXPECT_EQ(binding->Binding::componentCount(), 3U);
        EXPECT_EQ(binding->componentCount(), 3U);
        EXPECT_FALSE(binding->basicColour);
    }
}

TEST(CreateBinding, TakesAnEmptyName) { EXPECT_EQ(createBinding(BindingKind::Float, "", 1)->name, ""); }

TEST(CreateBinding, GivesAnEmptyHandleForKindsThatNoClassCarries) {
    EXPECT_EQ(createBinding(BindingKind::Invalid, "b", 1), nullptr);
    for (const int value : strayValues) {
        EXPECT_EQ(createBinding(static_cast<BindingKind>(value), "b", 1), nullptr) << value;
    }
}

TEST(CreateBinding, GivesAnEmptyHandleForNoComponents) {
    for (const KindRow& row : kindRows) {
        EXPECT_EQ(createBinding(row.kind, "b", 0), nullptr) << row.name;
    }
    EXPECT_EQ(createBinding(static_cast<BindingKind>(11), "b", 0), nullptr);
}

TEST(BindingKinds, SayWhetherAStreamIsNormalisedWhenNothingElseDoes) {
    const testing::XmlElement byteStream({{"stream_type", "byte"}});
    const testing::XmlElement shortStream({{"stream_type", "short"}});
    for (const KindRow& row : kindRows) {
        if (const std::shared_ptr<Binding> binding = createBinding(row.kind, "b", 1)) {
            binding->readAnnotations(byteStream.node());
            EXPECT_EQ(binding->streamType, row.streamNormalise ? "u8n" : "u8") << row.name;
            binding->readAnnotations(shortStream.node());
            EXPECT_EQ(binding->streamType, row.streamNormalise ? "s16n" : "s16") << row.name;
        }
    }
}

constexpr const char* uiTypes[] = {
    "none",    "slider",     "colour", "position",     "direction",
    "texture", "floatfield", "uvset",  "vtxcolourset", "checkboxes",
};

TEST(UiTypes, HaveTheirNumbers) {
    EXPECT_EQ(static_cast<int>(UiType::None), 0);
    EXPECT_EQ(static_cast<int>(UiType::Slider), 1);
    EXPECT_EQ(static_cast<int>(UiType::Colour), 2);
    EXPECT_EQ(static_cast<int>(UiType::Position), 3);
    EXPECT_EQ(static_cast<int>(UiType::Direction), 4);
    EXPECT_EQ(static_cast<int>(UiType::Texture), 5);
    EXPECT_EQ(static_cast<int>(UiType::FloatField), 6);
    EXPECT_EQ(static_cast<int>(UiType::UvSet), 7);
    EXPECT_EQ(static_cast<int>(UiType::VtxColourSet), 8);
    EXPECT_EQ(static_cast<int>(UiType::Checkboxes), 9);
}

TEST(UiTypes, HaveNamesBothWays) {
    for (int value = 0; value < 10; ++value) {
        EXPECT_EQ(uiTypeName(static_cast<UiType>(value)), uiTypes[value]);
        EXPECT_EQ(parseUiType(uiTypes[value]), static_cast<UiType>(value)) << uiTypes[value];
    }
}

TEST(UiTypes, HaveNoNameOutsideTheTable) {
    for (const int value : {10, 11, 1000, -1, std::numeric_limits<int>::max()}) {
        EXPECT_EQ(uiTypeName(static_cast<UiType>(value)), "") << value;
    }
}

TEST(UiTypes, ReadAsNoneUnlessTheNameIsExact) {
    for (const char* text :
         {"", "Slider", "SLIDER", " slider", "slider ", "slide", "sliders", "1", "raw", "uv set"}) {
        EXPECT_EQ(parseUiType(text), UiType::None) << text;
    }
}

constexpr const char* uiUnitTypes[] = {"raw", "linear", "angular", "srgbcolour"};

TEST(UiUnitTypes, HaveTheirNumbers) {
    EXPECT_EQ(static_cast<int>(UiUnitType::Raw), 0);
    EXPECT_EQ(static_cast<int>(UiUnitType::Linear), 1);
    EXPECT_EQ(static_cast<int>(UiUnitType::Angular), 2);
    EXPECT_EQ(static_cast<int>(UiUnitType::SrgbColour), 3);
}

TEST(UiUnitTypes, HaveNamesBothWays) {
    for (int value = 0; value < 4; ++value) {
        EXPECT_EQ(uiUnitTypeName(static_cast<UiUnitType>(value)), uiUnitTypes[value]);
        EXPECT_EQ(parseUiUnitType(uiUnitTypes[value]), static_cast<UiUnitType>(value)) << uiUnitTypes[value];
    }
}

TEST(UiUnitTypes, HaveNoNameOutsideTheTable) {
    for (const int value : {4, 5, 1000, -1, std::numeric_limits<int>::max()}) {
        EXPECT_EQ(uiUnitTypeName(static_cast<UiUnitType>(value)), "") << value;
    }
}

TEST(UiUnitTypes, ReadAsRawUnlessTheNameIsExact) {
    for (const char* text :
         {"", "Linear", "LINEAR", " linear", "linear ", "lin", "linears", "1", "none", "sRGBcolour"}) {
        EXPECT_EQ(parseUiUnitType(text), UiUnitType::Raw) << text;
    }
}

TEST(ParseBindingBool, KnowsFourWordsInAnyCase) {
    for (const char* text : {"1", "y", "Y", "yes", "Yes", "YES", "yEs", "true", "True", "TRUE", "tRuE"}) {
        EXPECT_TRUE(parseBindingBool(text)) << text;
    }
    for (const char* text : {"", "0", "n", "no", "No", "false", "False", "t", "ye", "yes ", " yes", "yess",
                             "2", "11", "-1", "on", "1.0", "truer"}) {
        EXPECT_FALSE(parseBindingBool(text)) << text;
    }
}

struct StreamTypeRow {
    const char* word;
    const char* code;
    const char* normalisedCode;
};

constexpr StreamTypeRow streamTypeRows[] = {
    {"int", "f32", "f32"},
    {"uint", "f32", "f32"},
    {"float", "f32", "f32"},
    {"half", "f16", "f16"},
    {"ushort", "s16", "s16n"},
    {"short", "s16", "s16n"},
    {"byte", "u8", "u8n"},
    {"ubyte", "u8", "u8n"},
    {"packed", "X11Y11Z10n", "X11Y11Z10n"},
    // anything else
    {"", "", ""},
    {"f32", "f32", "f32"},
    {"f16", "f16", "f16"},
    {"s16", "s16", "s16"},
    {"s16n", "s16n", "s16n"},
    {"u8", "u8", "u8"},
    {"u8n", "u8n", "u8n"},
    {"X11Y11Z10n", "X11Y11Z10n", "X11Y11Z10n"},
    {"x11y11z10n", "x11y11z10n", "x11y11z10n"},
    {"double", "double", "double"},
    {"Short", "Short", "Short"},
    {"BYTE", "BYTE", "BYTE"},
    {" short", " short", " short"},
    {"shorts", "shorts", "shorts"},
};

TEST(LowerCase, ChangesTheTwentySixLettersAlone) {
    EXPECT_EQ(detail::lowerCase("@AMZ[ `amz{ 09 \xC3\x84"), "@amz[ `amz{ 09 \xC3\x84");
}

TEST(StreamTypeFor, GivesTheCodeOfAWord) {
    for (const StreamTypeRow& row : streamTypeRows) {
        EXPECT_EQ(streamTypeFor(row.word, false), row.code) << row.word;
        EXPECT_EQ(streamTypeFor(row.word, true), row.normalisedCode) << row.word;
    }
}

} // namespace
} // namespace patina
