#include "nodemodel/property.h"

#include "tests/support/messages.h"
#include "tests/support/property_state.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <iterator>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace patina {
namespace {

using testing::shaderErrorOf;
using testing::stateOf;
using Strings = std::vector<std::string>;

std::shared_ptr<Property> addInteger(PropertySet& set, const std::string& name, std::int32_t value) {
    const auto property = makeProperty(name);
    property->setInteger(value);
    set.add(property);
    return property;
}

TEST(PropertySet, StartsEmptyAtVersionZero) {
    const PropertySet set;
    EXPECT_EQ(set.version, 0);
    EXPECT_TRUE(set.items.empty());
    EXPECT_TRUE(set.byName.empty());
    EXPECT_TRUE(set.begin() == set.end());
}

TEST(PropertySet, KeepsTheOrderOfAddition) {
    PropertySet set;
    for (const char* name : {"Zeta", "Alpha", "Mid", ""}) {
        set.add(makeProperty(name));
    }
    Strings iterated;
    for (const auto& property : set) {
        iterated.push_back(property->name);
    }
    EXPECT_EQ(iterated, (Strings{"Zeta", "Alpha", "Mid", ""}));
    Strings indexed;
    for (const auto& [name, property] : set.byName) {
        EXPECT_EQ(name, property->name);
        indexed.push_back(name);
    }
    EXPECT_EQ(indexed, (Strings{"", "Alpha", "Mid", "Zeta"}));
}

TEST(PropertySet, SharesEachPropertyInBothFields) {
    std::weak_ptr<Property> watched;
    {
        PropertySet set;
        auto property = makeProperty("Name");
        watched = property;
        set.add(property);
        EXPECT_EQ(set.items.front(), property);
        EXPECT_EQ(set.byName.at("Name"), property);
        EXPECT_EQ(set.find("Name"), property);
        EXPECT_EQ(property.use_count(), 3);
        property.reset();
        EXPECT_FALSE(watched.expired());
    }
    EXPECT_TRUE(watched.expired()) << "the set was the last holder";
}

TEST(PropertySet, RefusesATakenName) {
    PropertySet set;
    set.add(makeProperty("Name"));
    addInteger(set, "Other", 2);
    const auto before = stateOf(set);
    EXPECT_EQ(shaderErrorOf([&] { set.add(makeProperty("Name")); }),
              "property with name \"Name\" already exists");
    EXPECT_EQ(shaderErrorOf([&] { set.add(set.find("Other")); }),
              "property with name \"Other\" already exists");
    EXPECT_EQ(stateOf(set), before);
}

// in no order, and one name that begins as another does
const auto table = declareProperties({
    {"Width", "Width: how wide."},
    {"Alpha", ""},
    {"Nam", "Nam: less than Name."},
});

TEST(PropertySet, MakesWhatATableDeclares) {
    PropertySet set;
    set.addNew(table.layout());
    const std::vector<std::pair<std::string, std::string>> own = {
        {"Width", "Width: how wide."}, {"Alpha", ""}, {"Nam", "Nam: less than Name."}};
    ASSERT_EQ(set.items.size(), 8 + own.size());
    EXPECT_EQ(set.items.front()->name, "Type");
    for (std::size_t i = 0; i < own.size(); ++i) {
        const Property& property = *set.items[8 + i];
        EXPECT_EQ(property.name, own[i].first);
        EXPECT_EQ(property.help, own[i].second);
        EXPECT_FALSE(property.getBool());
        EXPECT_TRUE(property.editable);
        EXPECT_TRUE(property.visible);
    }
    std::vector<std::string> names;
    for (const auto& [name, property] : set.byName) {
        names.push_back(name);
        EXPECT_EQ(property->name, name);
        EXPECT_EQ(set.find(name), property);
    }
    EXPECT_EQ(names,
              (std::vector<std::string>{"Alpha", "BindingGroup", "BindingIndex", "Description", "Help Url",
                                        "Nam", "Name", "PositionX", "PositionY", "Type", "Width"}));
}

TEST(PropertySet, TakesMoreThanATableDeclares) {
    PropertySet set;
    set.addNew(table.layout());
    const auto added = addInteger(set, "Blend", 3);
    EXPECT_EQ(set.items.back(), added);
    EXPECT_EQ(set.find("Blend"), added);
    EXPECT_EQ(std::next(set.byName.begin())->first, "BindingGroup");
    EXPECT_EQ(std::next(set.byName.begin(), 3)->second, added);
    EXPECT_EQ(shaderErrorOf([&] { set.add(makeProperty("Alpha")); }),
              "property with name \"Alpha\" already exists");
}

TEST(PropertySet, NamesAreCaseSensitiveAndExact) {
    PropertySet set;
    const auto upper = addInteger(set, "Name", 1);
    const auto lower = addInteger(set, "name", 2);
    const auto padded = addInteger(set, "Name ", 3);
    EXPECT_EQ(set.find("Name"), upper);
    EXPECT_EQ(set.find("name"), lower);
    EXPECT_EQ(set.find("Name "), padded);
    EXPECT_EQ(set.items.size(), 3U);
}

TEST(PropertySet, FindFailsForAnAbsentName) {
    PropertySet set;
    set.add(makeProperty("Name"));
    EXPECT_EQ(shaderErrorOf([&] { (void)set.find("NAME"); }), "failed to find property \"NAME\"");
    EXPECT_EQ(shaderErrorOf([&] { (void)set.find(""); }), "failed to find property \"\"");
    EXPECT_EQ(shaderErrorOf([] { (void)PropertySet().find("Name"); }), "failed to find property \"Name\"");
}

TEST(PropertySet, CopiesCommonValuesByName) {
    PropertySet own;
    const auto first = addInteger(own, "First", 1);
    const auto second = addInteger(own, "Second", 2);
    const auto third = addInteger(own, "Third", 3);
    own.version = 4;
    PropertySet saved;
    saved.version = 9;
    addInteger(saved, "Third", 30);
    addInteger(saved, "Unknown", 40);
    addInteger(saved, "First", 10);
    own.copyValuesFrom(saved);
    EXPECT_EQ(first->getInteger(), 10);
    EXPECT_EQ(second->getInteger(), 2) << "absent from the saved set";
    EXPECT_EQ(third->getInteger(), 30);
    EXPECT_EQ(own.items.size(), 3U) << "what the set lacks is ignored";
    EXPECT_EQ(own.byName.size(), 3U);
    EXPECT_EQ(own.version, 4);
    EXPECT_EQ(saved.items.size(), 3U);
}

TEST(PropertySet, CopiesValuesNotTextsOrFlags) {
    PropertySet own;
    const auto property = addInteger(own, "First", 1);
    property->help = "First: help.";
    PropertySet saved;
    const auto source = addInteger(saved, "First", 2);
    source->help = "other";
    source->label = "other";
    source->editable = false;
    source->visible = false;
    source->stringStyle = 2;
    own.copyValuesFrom(saved);
    EXPECT_EQ(property->getInteger(), 2);
    EXPECT_EQ(property->help, "First: help.");
    EXPECT_EQ(property->label, "");
    EXPECT_TRUE(property->editable);
    EXPECT_TRUE(property->visible);
    EXPECT_EQ(property->stringStyle, 0U);
    EXPECT_NE(own.find("First"), source) << "the property stays the set's own";
}

TEST(PropertySet, LooksSavedValuesUpByTheirIndex) {
    PropertySet own;
    const auto property = addInteger(own, "First", 1);
    const auto source = makeProperty("First");
    source->setInteger(2);
    PropertySet saved;
    saved.items.push_back(source);
    own.copyValuesFrom(saved);
    EXPECT_EQ(property->getInteger(), 1);
    saved.items.clear();
    saved.byName.emplace("First", source);
    own.copyValuesFrom(saved);
    EXPECT_EQ(property->getInteger(), 2);
}

TEST(PropertySet, TheFirstFailingCopyEndsTheOperation) {
    PropertySet own;
    const auto first = addInteger(own, "First", 1);
    const auto second = addInteger(own, "Second", 2);
    const auto third = addInteger(own, "Third", 3);
    PropertySet saved;
    addInteger(saved, "Third", 30);
    const auto wrong = makeProperty("Second");
    wrong->setFloat(0.5F);
    saved.add(wrong);
    addInteger(saved, "First", 10);
    EXPECT_EQ(shaderErrorOf([&] { own.copyValuesFrom(saved); }),
              "cannot copy property \"Second\" from property with non-matching type");
    EXPECT_EQ(first->getInteger(), 10) << "copied before the failure, in the order of the set itself";
    EXPECT_EQ(second->getInteger(), 2);
    EXPECT_EQ(third->getInteger(), 3);
}

TEST(PropertySet, CopyFromAnEmptySetOrItselfChangesNothing) {
    PropertySet own;
    addInteger(own, "First", 1);
    const auto before = stateOf(own);
    own.copyValuesFrom(PropertySet());
    EXPECT_EQ(stateOf(own), before);
    own.copyValuesFrom(own);
    EXPECT_EQ(stateOf(own), before);
}

} // namespace
} // namespace patina
