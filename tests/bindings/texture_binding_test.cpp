#include "tests/bindings/binding_state.h"
#include "tests/bindings/xml_element.h"
#include "tests/support/messages.h"

#include <gtest/gtest.h>

#include <memory>

namespace patina {
namespace {

using testing::shaderErrorOf;
using testing::XmlAttributes;
using testing::XmlElement;

std::shared_ptr<TextureBinding> makeTexture() {
    return testing::makeBinding<TextureBinding>(BindingKind::Texture);
}

TEST(ToTextureBinding, GivesTheSameObject) {
    const std::shared_ptr<Binding> binding = createBinding(BindingKind::Texture, "map", 4);
    const std::shared_ptr<TextureBinding> texture = toTextureBinding(binding);
    EXPECT_EQ(texture.get(), binding.get());
    EXPECT_EQ(binding.use_count(), 2);
    texture->srgb = true;
    EXPECT_TRUE(std::dynamic_pointer_cast<TextureBinding>(binding)->srgb);
}

TEST(ToTextureBinding, ThrowsForEveryOtherKind) {
    struct MessageRow {
        BindingKind kind;
        const char* message;
    };
    constexpr MessageRow rows[] = {
        {BindingKind::Position, "Cannot cast \"position\" into a TextureBinding"},
        {BindingKind::Normal, "Cannot cast \"normal\" into a TextureBinding"},
        {BindingKind::Uv, "Cannot cast \"uv\" into a TextureBinding"},
        {BindingKind::Tangent, "Cannot cast \"tangent\" into a TextureBinding"},
        {BindingKind::Binormal, "Cannot cast \"binormal\" into a TextureBinding"},
        {BindingKind::Colour, "Cannot cast \"colour\" into a TextureBinding"},
        {BindingKind::BlendIndices, "Cannot cast \"blendindices\" into a TextureBinding"},
        {BindingKind::BlendWeights, "Cannot cast \"blendweights\" into a TextureBinding"},
        {BindingKind::Float, "Cannot cast \"float\" into a TextureBinding"},
    };
    for (const MessageRow& row : rows) {
        const std::shared_ptr<Binding> binding = createBinding(row.kind, "b", 1);
        EXPECT_EQ(shaderErrorOf([&] { toTextureBinding(binding); }), row.message);
        EXPECT_EQ(binding.use_count(), 1) << row.message;
    }
    const auto invalid = std::make_shared<Binding>(BindingKind::Invalid, "b", 1);
    EXPECT_EQ(shaderErrorOf([&] { toTextureBinding(invalid); }),
              "Cannot cast \"invalid\" into a TextureBinding");
    EXPECT_EQ(shaderErrorOf([] { toTextureBinding(nullptr); }), "Cannot cast \"\" into a TextureBinding");
}

TEST(TextureBinding, StartsLinearUnsignedAndNormalised) {
    const auto texture = makeTexture();
    EXPECT_FALSE(texture->srgb);
    EXPECT_FALSE(texture->signedExpanded);
    EXPECT_TRUE(texture->normalised);
}

struct FlagsRow {
    bool srgb;
    bool signedExpanded;
    bool normalised;
    XmlAttributes attributes; ///< behind the tag
};

const FlagsRow flagsRows[] = {
    {false, false, true, {}},
    {true, false, true, {{"srgb", "Yes"}}},
    {false, true, true, {{"signed_expanded", "Yes"}}},
    {false, false, false, {{"normalised", "No"}}},
    {true, true, true, {{"srgb", "Yes"}, {"signed_expanded", "Yes"}}},
    {true, false, false, {{"srgb", "Yes"}, {"normalised", "No"}}},
    {false, true, false, {{"signed_expanded", "Yes"}, {"normalised", "No"}}},
    {true, true, false, {{"srgb", "Yes"}, {"signed_expanded", "Yes"}, {"normalised", "No"}}},
};

TEST(TextureBinding, WritesTheFlagsThatDifferFromTheirDefaults) {
    for (const FlagsRow& row : flagsRows) {
        const auto texture = makeTexture();
        texture->srgb = row.srgb;
        texture->signedExpanded = row.signedExpanded;
        texture->normalised = row.normalised;
        const XmlElement element;
        texture->writeAnnotations(element.node());
        XmlAttributes expected = {{"tag", "tint"}};
        expected.insert(expected.end(), row.attributes.begin(), row.attributes.end());
        EXPECT_EQ(element.attributes(), expected);
    }
}

TEST(TextureBinding, ReadsTheFlagsAndResetsThoseThatAreMissing) {
    for (const FlagsRow& row : flagsRows) {
        const XmlElement element(row.attributes);
        for (const bool before : {false, true}) {
            const auto texture = makeTexture();
            texture->srgb = before;
            texture->signedExpanded = before;
            texture->normalised = before;
            texture->readAnnotations(element.node());
            EXPECT_EQ(texture->srgb, row.srgb);
            EXPECT_EQ(texture->signedExpanded, row.signedExpanded);
            EXPECT_EQ(texture->normalised, row.normalised);
        }
    }
}

TEST(TextureBinding, ReadsFlagsThatAreWrittenOutAtTheirDefaults) {
    const auto texture = makeTexture();
    texture->srgb = true;
    texture->signedExpanded = true;
    texture->normalised = false;
    texture->readAnnotations(
        XmlElement({{"normalised", "Yes"}, {"signed_expanded", "No"}, {"srgb", "No"}}).node());
    EXPECT_FALSE(texture->srgb);
    EXPECT_FALSE(texture->signedExpanded);
    EXPECT_TRUE(texture->normalised);
}

TEST(TextureBinding, FailsForABadFlagAndKeepsWhatWasReadBefore) {
    struct BadFlagRow {
        XmlAttributes attributes;
        const char* message;
        bool srgb;
        bool signedExpanded;
        bool normalised;
    };
    const BadFlagRow rows[] = {
        {{{"srgb", "yes"}, {"signed_expanded", "Yes"}, {"normalised", "No"}},
         "attribute \"srgb\" contains invalid boolean data \"yes\"",
         false,
         false,
         true},
        {{{"srgb", "Yes"}, {"signed_expanded", "true"}, {"normalised", "No"}},
         "attribute \"signed_expanded\" contains invalid boolean data \"true\"",
         true,
         false,
         true},
        {{{"srgb", "Yes"}, {"signed_expanded", "Yes"}, {"normalised", ""}},
         "attribute \"normalised\" contains invalid boolean data \"\"",
         true,
         true,
         true},
        // the first bad one in reading order, wherever it stands on the element
        {{{"normalised", "n"}, {"signed_expanded", "s"}, {"srgb", "Yes"}},
         "attribute \"signed_expanded\" contains invalid boolean data \"s\"",
         true,
         false,
         true},
        {{{"srgb", "Yes"}, {"basic_colour", "1"}},
         "attribute \"basic_colour\" contains invalid boolean data \"1\"",
         false,
         false,
         true},
        {{{"srgb", "bad"}, {"basic_colour", "NO"}},
         "attribute \"basic_colour\" contains invalid boolean data \"NO\"",
         false,
         false,
         true},
    };
    for (const BadFlagRow& row : rows) {
        SCOPED_TRACE(row.message);
        XmlAttributes attributes = row.attributes;
        attributes.emplace_back("tag", "read");
        attributes.emplace_back("default", "brick.dds");
        attributes.emplace_back("dataset_modifiers", "flip");
        const auto texture = makeTexture();
        texture->srgb = true;
        texture->signedExpanded = true;
        texture->normalised = false;
        EXPECT_EQ(shaderErrorOf([&] { texture->readAnnotations(XmlElement(attributes).node()); }),
                  row.message);
        EXPECT_EQ(texture->name, "read");
        EXPECT_EQ(texture->formatDefault(), "brick.dds");
        EXPECT_EQ(texture->datasetModifiers, "flip");
        EXPECT_EQ(texture->srgb, row.srgb);
        EXPECT_EQ(texture->signedExpanded, row.signedExpanded);
        EXPECT_EQ(texture->normalised, row.normalised);
    }
}

TEST(TextureBinding, KeepsABasicColourThatWasReadBeforeABadFlag) {
    const auto texture = makeTexture();
    EXPECT_EQ(shaderErrorOf([&] {
                  texture->readAnnotations(XmlElement({{"srgb", "-"}, {"basic_colour", "Yes"}}).node());
              }),
              "attribute \"srgb\" contains invalid boolean data \"-\"");
    EXPECT_TRUE(texture->basicColour);
}

TEST(TextureBinding, IsTheOnlyClassWithTextureFlags) {
    const XmlElement element({{"srgb", "bad"}, {"signed_expanded", "bad"}, {"normalised", "bad"}});
    for (const BindingKind kind : {testing::plainKind, testing::floatKind, testing::stringKind}) {
        const std::shared_ptr<Binding> binding = createBinding(kind, "tint", 1);
        EXPECT_NO_THROW(binding->readAnnotations(element.node()));
        const XmlElement written;
        binding->writeAnnotations(written.node());
        EXPECT_EQ(written.attributes(), (XmlAttributes{{"tag", "tint"}}));
    }
}

} // namespace
} // namespace patina
