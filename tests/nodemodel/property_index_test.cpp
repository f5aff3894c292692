#include "nodemodel/property.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace patina {
namespace {

using Strings = std::vector<std::string>;

PropertyIndex indexOf(const Strings& names) {
    PropertyIndex index;
    for (const std::string& name : names) {
        index.emplace(name, makeProperty(name));
    }
    return index;
}

Strings namesOf(const PropertyIndex& index) {
    Strings names;
    for (const auto& [name, property] : index) {
        names.push_back(name);
    }
    return names;
}

struct OrderRow {
    Strings added;
    Strings ordered;
};

const OrderRow orderRows[] = {
    {{}, {}},
    {{"a"}, {"a"}},
    {{""}, {""}},
    {{"a", "b", "c"}, {"a", "b", "c"}},
    {{"c", "b", "a"}, {"a", "b", "c"}},
    {{"b", "d", "a", "c"}, {"a", "b", "c", "d"}},
    {{"b", "", "a"}, {"", "a", "b"}},
    // by the values of the bytes, and the shorter first
    {{"b", "B", "_", "1"}, {"1", "B", "_", "b"}},
    {{"ab", "a", "abc"}, {"a", "ab", "abc"}},
    {{"\xC3\xA9", "z"}, {"z", "\xC3\xA9"}},
    {{"Default Value 2", "Default Value 1", "Default"}, {"Default", "Default Value 1", "Default Value 2"}},
};

TEST(PropertyIndex, IsInTheOrderOfTheNames) {
    for (const OrderRow& row : orderRows) {
        const PropertyIndex index = indexOf(row.added);
        EXPECT_EQ(namesOf(index), row.ordered);
        EXPECT_EQ(index.size(), row.added.size());
        EXPECT_EQ(index.empty(), row.added.empty());
    }
}

TEST(PropertyIndex, GoesBackTheWayItCame) {
    const PropertyIndex index = indexOf({"b", "c", "a"});
    Strings names;
    for (auto entry = index.end(); entry != index.begin();) {
        --entry;
        names.push_back(entry->first);
    }
    EXPECT_EQ(names, (Strings{"c", "b", "a"}));
    auto entry = index.begin();
    EXPECT_EQ((entry++)->first, "a");
    EXPECT_EQ((entry--)->first, "b");
    EXPECT_EQ((*entry).first, "a");
    EXPECT_EQ(std::next(entry, 2)->first, "c");
}

struct LookupRow {
    const char* name;
    bool found;
};

const LookupRow lookupRows[] = {
    {"Alpha", true},   {"Mid", true}, {"Zeta", true}, {"alpha", false}, {"Alph", false},
    {"Alphas", false}, {"Mi", false}, {"Zz", false},  {"", false},      {"A", false},
};

TEST(PropertyIndex, FindsExactNamesOnly) {
    PropertyIndex index = indexOf({"Zeta", "Alpha", "Mid"});
    const PropertyIndex& fixed = index;
    for (const LookupRow& row : lookupRows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(index.contains(row.name), row.found);
        EXPECT_EQ(index.count(row.name), row.found ? 1U : 0U);
        EXPECT_EQ(index.find(row.name) != index.end(), row.found);
        EXPECT_EQ(fixed.find(row.name) != fixed.end(), row.found);
        if (row.found) {
            EXPECT_EQ(index.find(row.name)->first, row.name);
            EXPECT_EQ(fixed.find(row.name)->second->name, row.name);
            EXPECT_EQ(fixed.at(row.name)->name, row.name);
        } else {
            EXPECT_THROW((void)index.at(row.name), std::out_of_range);
            EXPECT_THROW((void)fixed.at(row.name), std::out_of_range);
        }
    }
    EXPECT_FALSE(PropertyIndex().contains(""));
}

TEST(PropertyIndex, SaysWhichNameThereIsNot) {
    try {
        (void)indexOf({"Alpha"}).at("alpha");
        FAIL() << "found";
    } catch (const std::out_of_range& error) {
        EXPECT_STREQ(error.what(), "there is no property \"alpha\"");
    }
}

TEST(PropertyIndex, ANameIsTakenOnce) {
    PropertyIndex index;
    const auto first = makeProperty("Name");
    const auto [place, inserted] = index.emplace("Name", first);
    EXPECT_TRUE(inserted);
    EXPECT_EQ(place->second, first);
    const auto [taken, again] = index.emplace("Name", makeProperty("Name"));
    EXPECT_FALSE(again);
    EXPECT_EQ(taken->second, first);
    EXPECT_FALSE(index.insert({"Name", makeProperty("Name")}).second);
    EXPECT_TRUE(index.insert({"Other", makeProperty("Other")}).second);
    EXPECT_EQ(index.at("Name"), first);
    EXPECT_EQ(namesOf(index), (Strings{"Name", "Other"}));
}

TEST(PropertyIndex, AnEntryKeepsTheNameItWasAddedUnder) {
    PropertyIndex index;
    {
        const std::string name = "another name, longer than any that fits into a string object";
        index.emplace(name, makeProperty("Name"));
    }
    const char* const added = "another name, longer than any that fits into a string object";
    EXPECT_EQ(namesOf(index), Strings{added});
    EXPECT_EQ(index.at(added)->name, "Name");
    EXPECT_FALSE(index.contains("Name"));
    // the first property goes, its entry's name stays
    index.at(added) = makeProperty("Third");
    EXPECT_EQ(namesOf(index), Strings{added});
    index.find(added)->second = nullptr;
    EXPECT_EQ(index.at(added), nullptr);
}

TEST(PropertyIndex, SubscriptsMakeWhatIsNotThere) {
    PropertyIndex index = indexOf({"Name"});
    const auto property = makeProperty("Name");
    index["Name"] = property;
    EXPECT_EQ(index.at("Name"), property);
    EXPECT_EQ(index["Absent"], nullptr);
    EXPECT_EQ(namesOf(index), (Strings{"Absent", "Name"}));
}

TEST(PropertyIndex, SharesItsProperties) {
    const auto property = makeProperty("Name");
    PropertyIndex index;
    index.emplace("Name", property);
    EXPECT_EQ(property.use_count(), 2);
    {
        const PropertyIndex copy = index;
        EXPECT_EQ(property.use_count(), 3);
    }
    EXPECT_EQ(property.use_count(), 2);
    index.erase("Name");
    EXPECT_EQ(property.use_count(), 1);
}

struct ErasureRow {
    const char* name;
    std::size_t count;
    Strings left;
    const char* next; ///< null: the end
};

const ErasureRow erasureRows[] = {
    {"a", 1, {"b", "c", "d"}, "b"},          {"c", 1, {"a", "b", "d"}, "d"},
    {"d", 1, {"a", "b", "c"}, nullptr},      {"", 0, {"a", "b", "c", "d"}, nullptr},
    {"e", 0, {"a", "b", "c", "d"}, nullptr},
};

TEST(PropertyIndex, ErasesOneEntry) {
    for (const ErasureRow& row : erasureRows) {
        SCOPED_TRACE(row.name);
        const PropertyIndex before = indexOf({"b", "d", "a", "c"});
        PropertyIndex index = before;
        EXPECT_EQ(index.erase(row.name), row.count);
        EXPECT_EQ(namesOf(index), row.left);
        for (const auto& [name, property] : index) {
            EXPECT_EQ(property, before.at(name));
        }
        if (row.count == 1) {
            PropertyIndex other = before;
            const auto next = other.erase(other.find(row.name));
            EXPECT_EQ(other, index);
            EXPECT_EQ(next == other.end(), row.next == nullptr);
            if (row.next != nullptr) {
                EXPECT_EQ(next->first, row.next);
            }
            index.emplace(row.name, before.at(row.name));
            EXPECT_EQ(index, before) << "the name is free again";
        }
    }
    PropertyIndex index = indexOf({"a"});
    index.erase(index.begin());
    EXPECT_TRUE(index.empty());
    EXPECT_TRUE(index.begin() == index.end());
}

TEST(PropertyIndex, ClearsToNothing) {
    PropertyIndex index = indexOf({"b", "a"});
    index.clear();
    EXPECT_TRUE(index.empty());
    EXPECT_FALSE(index.contains("a"));
    index.emplace("c", makeProperty("c"));
    EXPECT_EQ(namesOf(index), Strings{"c"});
}

TEST(PropertyIndex, IsEqualByNamesAndProperties) {
    const auto a = makeProperty("a");
    const auto b = makeProperty("b");
    PropertyIndex index;
    index.emplace("a", a);
    index.emplace("b", b);
    PropertyIndex other;
    other.emplace("b", b);
    EXPECT_NE(index, other);
    other.emplace("a", a);
    EXPECT_EQ(index, other) << "in whatever order they were added";
    other["a"] = makeProperty("a");
    EXPECT_NE(index, other) << "an equal property is another one";
    PropertyIndex renamed;
    renamed.emplace("a", a);
    renamed.emplace("c", b);
    EXPECT_NE(index, renamed);
}

TEST(PropertyIndex, CopiesAndMovesAreIndependent) {
    PropertyIndex index = indexOf({"b", "a"});
    PropertyIndex copy = index;
    copy.emplace("c", makeProperty("c"));
    EXPECT_EQ(namesOf(index), (Strings{"a", "b"}));
    EXPECT_EQ(namesOf(copy), (Strings{"a", "b", "c"}));
    const PropertyIndex moved = std::move(copy);
    EXPECT_EQ(namesOf(moved), (Strings{"a", "b", "c"}));
    index = moved;
    EXPECT_EQ(index, moved);
    index.emplace("0", makeProperty("0"));
    EXPECT_EQ(namesOf(moved), (Strings{"a", "b", "c"}));
}

TEST(PropertyIndex, EntriesStayWhereTheyAre) {
    PropertyIndex index;
    const std::vector<std::shared_ptr<Property>> properties = {makeProperty("Name"), makeProperty("Type")};
    const std::vector<std::uint32_t> order = {0, 1};
    index.assign(properties, order);
    const auto type = index.find("Type");
    const std::shared_ptr<Property>& name = index.at("Name");
    // what they copy lies in the index that grows for the copy
    index.emplace("Alias", index.at("Name"));
    index["Second"] = index["Name"];
    index.insert(*index.find("Second"));
    for (const char* const added : {"a", "Z", "B", "Q", "P", "c"}) {
        index.emplace(added, index.at("Type"));
    }
    EXPECT_EQ(index.at("Alias"), properties[0]);
    EXPECT_EQ(index.at("Second"), properties[0]);
    EXPECT_EQ(&index.at("Name"), &name);
    EXPECT_EQ(index.find("Type"), type);
    EXPECT_EQ(type->second, properties[1]);
    EXPECT_EQ(std::next(type)->first, "Z");
    EXPECT_EQ(std::prev(type)->first, "Second");
    index.erase("Second");
    EXPECT_EQ(type->first, "Type");
    EXPECT_EQ(std::prev(type)->first, "Q");
    EXPECT_EQ(namesOf(index), (Strings{"Alias", "B", "Name", "P", "Q", "Type", "Z", "a", "c"}));
}

TEST(PropertyIndex, LetsGoOfWhatIsErased) {
    PropertyIndex index = indexOf({"a", "b"});
    const std::weak_ptr<Property> gone = index.at("a");
    index.erase("a");
    EXPECT_TRUE(gone.expired());
    const auto again = makeProperty("a");
    EXPECT_TRUE(index.emplace("a", again).second);
    EXPECT_EQ(index.at("a"), again);
    EXPECT_EQ(namesOf(PropertyIndex(index)), (Strings{"a", "b"}));
}

TEST(PropertyIndex, TakesMoreThanThereIsRoomFor) {
    PropertyIndex index;
    Strings names;
    for (char letter = 'z'; letter >= 'a'; --letter) {
        index.emplace(std::string(1, letter), makeProperty("Name"));
        names.insert(names.begin(), std::string(1, letter));
    }
    EXPECT_EQ(namesOf(index), names);
}

TEST(PropertyIndex, IsAssignedInTheOrderThatItIsTold) {
    PropertyIndex index = indexOf({"gone"});
    const std::vector<std::shared_ptr<Property>> properties = {makeProperty("c"), makeProperty("a"),
                                                               makeProperty("b")};
    const std::vector<std::uint32_t> order = {1, 2, 0};
    index.assign(properties, order);
    EXPECT_EQ(namesOf(index), (Strings{"a", "b", "c"}));
    EXPECT_EQ(index.at("c"), properties[0]);
    EXPECT_EQ(index.at("a"), properties[1]);
    EXPECT_FALSE(index.contains("gone"));
    index.assign({}, {});
    EXPECT_TRUE(index.empty());
}

} // namespace
} // namespace patina
