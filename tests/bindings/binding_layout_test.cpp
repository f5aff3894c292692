// Hosts and plug-ins that were built apart share these objects, so their layout is part of the interface.

#include "tests/bindings/binding_state.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

namespace patina {
namespace {

static_assert(std::is_same_v<std::underlying_type_t<BindingKind>, std::int32_t>);
static_assert(std::is_same_v<std::underlying_type_t<UiType>, std::int32_t>);
static_assert(std::is_same_v<std::underlying_type_t<UiUnitType>, std::int32_t>);

static_assert(std::is_same_v<decltype(Binding::name), std::string>);
static_assert(std::is_same_v<decltype(Binding::kind), const BindingKind>);
static_assert(std::is_same_v<decltype(Binding::description), std::string>);
static_assert(std::is_same_v<decltype(Binding::helpUrl), std::string>);
static_assert(std::is_same_v<decltype(Binding::uiType), UiType>);
static_assert(std::is_same_v<decltype(Binding::uiLabel), std::string>);
static_assert(std::is_same_v<decltype(Binding::uiUnitType), UiUnitType>);
static_assert(std::is_same_v<decltype(Binding::uvSet), std::string>);
static_assert(std::is_same_v<decltype(Binding::cgName), std::string>);
static_assert(std::is_same_v<decltype(Binding::group), std::string>);
static_assert(std::is_same_v<decltype(Binding::hasMin), bool>);
static_assert(std::is_same_v<decltype(Binding::hasMax), bool>);
static_assert(std::is_same_v<decltype(Binding::hasDefault), bool>);
static_assert(std::is_same_v<decltype(Binding::streamType), std::string>);
static_assert(std::is_same_v<decltype(Binding::datasetModifiers), std::string>);
static_assert(std::is_same_v<decltype(Binding::basicColour), bool>);
static_assert(std::is_same_v<decltype(FloatBinding::components), std::vector<FloatBinding::Component>>);
static_assert(std::is_same_v<decltype(TextureBinding::srgb), bool>);
static_assert(std::is_same_v<decltype(TextureBinding::signedExpanded), bool>);
static_assert(std::is_same_v<decltype(TextureBinding::normalised), bool>);
static_assert(std::is_same_v<decltype(BindingCollection::bindings), std::vector<std::shared_ptr<Binding>>>);
static_assert(std::is_same_v<decltype(BindingCollection::sorted), bool>);

static_assert(std::is_same_v<decltype(FloatBinding::Component::minimum), float>);
static_assert(std::is_same_v<decltype(FloatBinding::Component::maximum), float>);
static_assert(std::is_same_v<decltype(FloatBinding::Component::initial), float>);
static_assert(sizeof(FloatBinding::Component) == 12);
static_assert(offsetof(FloatBinding::Component, minimum) == 0);
static_assert(offsetof(FloatBinding::Component, maximum) == 4);
static_assert(offsetof(FloatBinding::Component, initial) == 8);

static_assert(std::is_base_of_v<Binding, FloatBinding>);
static_assert(std::is_base_of_v<Binding, StringBinding>);
static_assert(std::is_base_of_v<StringBinding, TextureBinding>);
static_assert(!std::is_base_of_v<StringBinding, FloatBinding>);
static_assert(std::has_virtual_destructor_v<Binding>);

template <typename Field>
std::size_t offsetIn(const Binding& binding, const Field& field) {
    return static_cast<std::size_t>(reinterpret_cast<const std::byte*>(&field) -
                                    reinterpret_cast<const std::byte*>(&binding));
}

TEST(BindingLayout, HoldsTheFieldsInOrder) {
    const auto binding = testing::makeBinding<Binding>(BindingKind::Position);
    const std::size_t offsets[] = {
        offsetIn(*binding, binding->name),
        offsetIn(*binding, binding->kind),
        offsetIn(*binding, binding->description),
        offsetIn(*binding, binding->helpUrl),
        offsetIn(*binding, binding->uiType),
        offsetIn(*binding, binding->uiLabel),
        offsetIn(*binding, binding->uiUnitType),
        offsetIn(*binding, binding->uvSet),
        offsetIn(*binding, binding->cgName),
        offsetIn(*binding, binding->group),
        offsetIn(*binding, binding->hasMin),
        offsetIn(*binding, binding->hasMax),
        offsetIn(*binding, binding->hasDefault),
        offsetIn(*binding, binding->streamType),
        offsetIn(*binding, binding->datasetModifiers),
        offsetIn(*binding, binding->basicColour),
    };
    for (std::size_t i = 1; i < std::size(offsets); ++i) {
        EXPECT_LT(offsets[i - 1], offsets[i]) << "field " << i;
    }
    EXPECT_EQ(offsets[0], sizeof(void*)); // behind the table of virtual operations
}

TEST(BindingLayout, HoldsTheComponentCountBetweenTheFlagsAndTheStreamType) {
    constexpr std::uint32_t count = 0x01020304;
    const auto binding = testing::makeBinding<Binding>(BindingKind::Position, count);
    constexpr std::size_t alignment = alignof(std::uint32_t);
    const std::size_t behindFlags = offsetIn(*binding, binding->hasDefault) + 1;
    const std::size_t offset = (behindFlags + alignment - 1) / alignment * alignment;
    ASSERT_LE(offset + sizeof(count), offsetIn(*binding, binding->streamType));
    std::uint32_t stored = 0;
    std::memcpy(&stored, reinterpret_cast<const std::byte*>(binding.get()) + offset, sizeof(stored));
    EXPECT_EQ(stored, count);
}

TEST(BindingLayout, AddsTheFieldsOfSubclassesBehind) {
    const auto constant = testing::makeBinding<FloatBinding>(BindingKind::Float);
    EXPECT_LT(offsetIn(*constant, constant->basicColour), offsetIn(*constant, constant->components));
    EXPECT_EQ(sizeof(StringBinding), sizeof(Binding) + sizeof(std::string));

    const auto texture = testing::makeBinding<TextureBinding>(BindingKind::Texture);
    // the default text stands between
    EXPECT_GE(offsetIn(*texture, texture->srgb),
              offsetIn(*texture, texture->basicColour) + sizeof(std::string));
    EXPECT_LT(offsetIn(*texture, texture->srgb), offsetIn(*texture, texture->signedExpanded));
    EXPECT_LT(offsetIn(*texture, texture->signedExpanded), offsetIn(*texture, texture->normalised));
}

#if defined(__GNUC__) && defined(__x86_64__) && !defined(_WIN32)

/// The operation's place in the table of virtual operations: a pointer to it holds the place in bytes, plus
/// one.
template <typename Operation>
std::size_t slotOf(Operation operation) {
    std::size_t words[2];
    static_assert(sizeof(words) == sizeof(operation));
    std::memcpy(words, &operation, sizeof(words));
    return (words[0] - 1) / sizeof(void*);
}

TEST(BindingLayout, KeepsTheVirtualOperationsInOrder) {
    const std::size_t slots[] = {
        slotOf(&Binding::componentCount),   slotOf(&Binding::setComponentCount),
        slotOf(&Binding::minValue),         slotOf(&Binding::maxValue),
        slotOf(&Binding::defaultValue),     slotOf(&Binding::setMinText),
        slotOf(&Binding::setMinValue),      slotOf(&Binding::setMaxText),
        slotOf(&Binding::setMaxValue),      slotOf(&Binding::setDefaultText),
        slotOf(&Binding::setDefaultValue),  slotOf(&Binding::minText),
        slotOf(&Binding::maxText),          slotOf(&Binding::defaultText),
        slotOf(&Binding::writeAnnotations), slotOf(&Binding::readAnnotations),
        slotOf(&Binding::parseMin),         slotOf(&Binding::parseMax),
        slotOf(&Binding::parseDefault),     slotOf(&Binding::formatMin),
        slotOf(&Binding::formatMax),        slotOf(&Binding::formatDefault),
    };
    static_assert(std::size(slots) == 22);
    // the destructor comes first and takes two places
    for (std::size_t i = 0; i < std::size(slots); ++i) {
        EXPECT_EQ(slots[i], i + 2);
    }
}

#endif

/// Notes its own end.
class MortalBinding : public Binding {
public:
    explicit MortalBinding(bool& ended) : Binding(BindingKind::Normal, "n", 1), ended_(ended) {}
    ~MortalBinding() override { ended_ = true; }
    MortalBinding(const MortalBinding&) = delete;
    MortalBinding& operator=(const MortalBinding&) = delete;

private:
    bool& ended_;
};

TEST(BindingLifetime, EndsThroughTheBaseClassWithTheLastHandle) {
    bool ended = false;
    std::shared_ptr<Binding> first = std::make_shared<MortalBinding>(ended);
    std::shared_ptr<Binding> second = first;
    first.reset();
    EXPECT_FALSE(ended);
    second.reset();
    EXPECT_TRUE(ended);

    ended = false;
    std::unique_ptr<Binding>(new MortalBinding(ended)).reset();
    EXPECT_TRUE(ended);
}

TEST(BindingLifetime, FreesEveryClassThroughTheBaseClass) {
    std::unique_ptr<Binding> bindings[] = {
        std::make_unique<Binding>(BindingKind::Normal, "n", 1),
        std::make_unique<FloatBinding>(BindingKind::Float, "f", 3),
        std::make_unique<StringBinding>(BindingKind::Uv, "u", 1),
        std::make_unique<TextureBinding>(BindingKind::Texture, "t", 1),
    };
    for (std::unique_ptr<Binding>& binding : bindings) {
        binding->parseDefault("a default that is long enough to live outside the object");
        binding.reset(); // leaks are the sanitizer's to find
        EXPECT_EQ(binding, nullptr);
    }
}

} // namespace
} // namespace patina
