#include "bindings/bindings.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace patina {
namespace {

TEST(AddToBindingCollection, AppendsInOrder) {
    BindingCollection collection;
    EXPECT_TRUE(collection.bindings.empty());
    EXPECT_FALSE(collection.sorted);
    const auto first = createBinding(BindingKind::Float, "z", 1);
    const auto second = createBinding(BindingKind::Texture, "a", 1);
    const auto third = createBinding(BindingKind::Float, "m", 4);
    addToBindingCollection(collection, first);
    addToBindingCollection(collection, second);
    addToBindingCollection(collection, third);
    EXPECT_EQ(collection.bindings, (std::vector<std::shared_ptr<Binding>>{first, second, third}));
}

TEST(AddToBindingCollection, KeepsABindingTwiceWhenItIsAddedTwice) {
    BindingCollection collection;
    const auto binding = createBinding(BindingKind::Uv, "uv", 2);
    addToBindingCollection(collection, binding);
    addToBindingCollection(collection, binding);
    EXPECT_EQ(collection.bindings, (std::vector<std::shared_ptr<Binding>>{binding, binding}));
}

TEST(AddToBindingCollection, ClearsTheSortedFlagEachTime) {
    BindingCollection collection;
    for (int i = 0; i < 2; ++i) {
        collection.sorted = true;
        addToBindingCollection(collection, createBinding(BindingKind::Float, "f", 1));
        EXPECT_FALSE(collection.sorted);
    }
    addToBindingCollection(collection, createBinding(BindingKind::Float, "f", 1));
    EXPECT_FALSE(collection.sorted);
}

TEST(AddToBindingCollection, SharesOwnership) {
    BindingCollection collection;
    std::weak_ptr<Binding> watched;
    {
        const auto binding = createBinding(BindingKind::Float, "f", 1);
        addToBindingCollection(collection, binding);
        EXPECT_EQ(binding.use_count(), 2);
        watched = binding;
    }
    EXPECT_FALSE(watched.expired());
    collection.bindings.clear();
    EXPECT_TRUE(watched.expired());
}

} // namespace
} // namespace patina
