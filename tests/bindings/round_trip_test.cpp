// What is written reads back, through the text of a document.

#include "tests/bindings/binding_state.h"
#include "tests/bindings/xml_element.h"
#include "tests/support/comma_locale.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>

namespace patina {
namespace {

using testing::stateOf;
using testing::XmlElement;

constexpr std::uint32_t componentCount = 3;

/// A new binding, read from what the given one writes into a file.
std::shared_ptr<Binding> savedAndLoaded(Binding& binding) {
    const XmlElement element;
    binding.writeAnnotations(element.node());
    std::shared_ptr<Binding> loaded = createBinding(binding.kind, "loaded", componentCount);
    loaded->readAnnotations(XmlElement::parsed(element.documentText()).node());
    return loaded;
}

void fill(Binding& binding) {
    binding.name = "wetness <\"&'> \xC3\xA9";
    binding.description = "first line\nsecond\tline";
    binding.helpUrl = "http://help/?a=1&b=2";
    binding.uiType = UiType::Checkboxes;
    binding.uiLabel = " Wet  ";
    binding.uiUnitType = UiUnitType::SrgbColour;
    binding.uvSet = "map1";
    binding.cgName = "iWet";
    binding.parseMin("-0.25, 0.1, -1e+20");
    binding.parseMax("1, 2.5, 1e-05");
    binding.parseDefault("0.5, 0.333333, -0");
    binding.streamType = "s16";
    binding.datasetModifiers = "negate|u";
    binding.basicColour = true;
    if (auto* texture = dynamic_cast<TextureBinding*>(&binding)) {
        texture->srgb = true;
        texture->signedExpanded = true;
        texture->normalised = false;
    }
}

void expectEveryKindReadsBack() {
    for (const BindingKind kind : testing::everyKind) {
        const std::shared_ptr<Binding> binding = createBinding(kind, "tint", componentCount);
        SCOPED_TRACE(bindingKindName(*binding));
        EXPECT_EQ(stateOf(*savedAndLoaded(*binding)), stateOf(*binding));
        fill(*binding);
        EXPECT_EQ(stateOf(*savedAndLoaded(*binding)), stateOf(*binding));
    }
}

TEST(RoundTrip, KeepsEveryFieldOfEveryKind) { expectEveryKindReadsBack(); }

TEST(RoundTrip, KeepsThemInEveryLocale) {
    const testing::CommaLocale comma;
    expectEveryKindReadsBack();
}

TEST(RoundTrip, KeepsEveryUiTypeAndUnitOfEveryKind) {
    for (const BindingKind kind : testing::everyKind) {
        for (int value = 0; value < 10; ++value) {
            const std::shared_ptr<Binding> binding = createBinding(kind, "tint", 1);
            binding->uiType = static_cast<UiType>(value);
            EXPECT_EQ(savedAndLoaded(*binding)->uiType, binding->uiType);
        }
        for (int value = 0; value < 4; ++value) {
            const std::shared_ptr<Binding> binding = createBinding(kind, "tint", 1);
            binding->uiUnitType = static_cast<UiUnitType>(value);
            EXPECT_EQ(savedAndLoaded(*binding)->uiUnitType, binding->uiUnitType);
        }
    }
}

TEST(RoundTrip, KeepsEveryStreamTypeInLowerCase) {
    for (const BindingKind kind : testing::everyKind) {
        for (const char* code : {"f32", "f16", "s16", "s16n", "u8", "u8n", "x11y11z10n", ""}) {
            const std::shared_ptr<Binding> binding = createBinding(kind, "tint", 1);
            binding->streamType = code;
            EXPECT_EQ(savedAndLoaded(*binding)->streamType, code) << bindingKindName(*binding);
        }
        const std::shared_ptr<Binding> packed = createBinding(kind, "tint", 1);
        packed->streamType = "X11Y11Z10n";
        EXPECT_EQ(savedAndLoaded(*packed)->streamType, "x11y11z10n") << bindingKindName(*packed);
    }
}

TEST(RoundTrip, LosesTheGroup) {
    const std::shared_ptr<Binding> binding = createBinding(BindingKind::Float, "tint", 1);
    binding->group = "Wetness";
    EXPECT_EQ(savedAndLoaded(*binding)->group, "");
}

TEST(RoundTrip, KeepsSixDigitsOfANumberForGood) {
    const std::shared_ptr<Binding> binding = createBinding(BindingKind::Float, "tint", componentCount);
    binding->setDefaultValue(0, 1.0F / 3.0F);
    binding->setDefaultValue(1, 1234567.0F);
    binding->setDefaultValue(2, 0.1F);
    const std::shared_ptr<Binding> once = savedAndLoaded(*binding);
    EXPECT_EQ(once->defaultValue(0), 0.333333F);
    EXPECT_EQ(once->defaultValue(1), 1234570.0F);
    EXPECT_EQ(once->defaultValue(2), 0.1F);
    EXPECT_EQ(stateOf(*savedAndLoaded(*once)), stateOf(*once));
}

TEST(RoundTrip, KeepsInfinitiesAndNotANumber) {
    const std::shared_ptr<Binding> binding = createBinding(BindingKind::Float, "tint", componentCount);
    binding->parseDefault("inf, -inf, nan");
    EXPECT_EQ(savedAndLoaded(*binding)->formatDefault(), "inf, -inf, nan");
}

} // namespace
} // namespace patina
