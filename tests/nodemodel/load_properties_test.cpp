#include "nodemodel/material_node.h"

#include "tests/nodemodel/plain_node.h"
#include "tests/support/comma_locale.h"
#include "tests/support/messages.h"
#include "tests/support/property_state.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <memory>
#include <string>

namespace patina {
namespace {

using testing::PlainNode;
using testing::shaderErrorOf;
using testing::stateOf;

constexpr std::int32_t newest = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t oldest = std::numeric_limits<std::int32_t>::min();

std::shared_ptr<PropertySet> savedName(std::int32_t version, const std::string& text) {
    auto saved = std::make_shared<PropertySet>();
    saved->version = version;
    const auto name = makeProperty("Name");
    name->setString(text);
    saved->add(name);
    return saved;
}

struct Versions {
    std::int32_t saved;
    std::int32_t own;
};

TEST(LoadProperties, AcceptsTheOwnVersionAndOlderOnes) {
    constexpr Versions accepted[] = {{0, 0},   {-1, 0},          {1, 1},           {1, 7},          {-7, -7},
                                     {-8, -7}, {newest, newest}, {oldest, newest}, {oldest, oldest}};
    for (const auto& [saved, own] : accepted) {
        PlainNode node;
        node.properties->version = own;
        node.loadProperties(savedName(saved, "Rim"));
        EXPECT_EQ(node.name(), "Rim") << saved << " into " << own;
        EXPECT_EQ(node.properties->version, own) << "the version stays the node's own";
    }
}

struct RefusedVersion {
    std::int32_t saved;
    std::int32_t own;
    const char* message;
};

constexpr RefusedVersion refusedVersions[] = {
    {1, 0,
     "Cannot convert \"TestPlain\" version 1 properties into version 0 properties. Are you running with an "
     "old "
     "DLL?"},
    {0, -1,
     "Cannot convert \"TestPlain\" version 0 properties into version -1 properties. Are you running with an "
     "old "
     "DLL?"},
    {-3, -5,
     "Cannot convert \"TestPlain\" version -3 properties into version -5 properties. Are you running with an "
     "old DLL?"},
    {newest, 1234567,
     "Cannot convert \"TestPlain\" version 2147483647 properties into version 1234567 properties. Are you "
     "running with an old DLL?"},
    {newest, oldest,
     "Cannot convert \"TestPlain\" version 2147483647 properties into version -2147483648 properties. Are "
     "you "
     "running with an old DLL?"},
};

void expectRefusals() {
    for (const RefusedVersion& row : refusedVersions) {
        PlainNode node;
        node.properties->version = row.own;
        const auto before = stateOf(*node.properties);
        EXPECT_EQ(shaderErrorOf([&] { node.loadProperties(savedName(row.saved, "Rim")); }), row.message);
        EXPECT_EQ(stateOf(*node.properties), before);
    }
}

TEST(LoadProperties, RefusesNewerVersions) { expectRefusals(); }

TEST(LoadProperties, PrintsVersionsWhateverTheLocale) {
    const testing::CommaLocale comma;
    expectRefusals();
}

TEST(LoadProperties, TheRefusalNamesTheTypeNotTheName) {
    PlainNode node;
    node.setName("Rim");
    node.typeProperty->setString("CoreFancy");
    EXPECT_EQ(shaderErrorOf([&] { node.loadProperties(savedName(1, "x")); }),
              "Cannot convert \"CoreFancy\" version 1 properties into version 0 properties. Are you running "
              "with an old DLL?");
}

TEST(LoadProperties, CopiesCommonPropertiesAndKeepsTheRest) {
    PlainNode node;
    node.bindingIndexProperty->setInteger(4);
    const auto own = makeProperty("Gloss");
    own->setFloat(0.25F);
    node.properties->add(own);

    const auto saved = savedName(0, "Rim");
    const auto type = makeProperty("Type");
    type->setString("CoreFancy");
    saved->add(type);
    const auto x = makeProperty("PositionX");
    x->setFloat(12.5F);
    saved->add(x);
    const auto unknown = makeProperty("Unknown");
    unknown->setFloat(1.0F);
    saved->add(unknown);
    const auto gloss = makeProperty("Gloss");
    gloss->setFloat(0.75F);
    gloss->help = "other";
    gloss->visible = false;
    gloss->editable = false;
    saved->add(gloss);

    const auto savedBefore = stateOf(*saved);
    node.loadProperties(saved);
    EXPECT_EQ(node.typeName(), "CoreFancy");
    EXPECT_EQ(node.name(), "Rim");
    EXPECT_EQ(node.positionXProperty->getFloat(), 12.5F);
    EXPECT_EQ(node.positionYProperty->getFloat(), 0.0F);
    EXPECT_EQ(node.bindingIndexProperty->getInteger(), 4);
    EXPECT_EQ(own->getFloat(), 0.75F);
    EXPECT_EQ(own->help, "");
    EXPECT_TRUE(own->visible);
    EXPECT_TRUE(own->editable);
    EXPECT_EQ(node.properties->items.size(), 9U);
    EXPECT_EQ(node.properties->byName.count("Unknown"), 0U);
    EXPECT_FALSE(node.typeProperty->editable) << "flags are not loaded";
    EXPECT_EQ(stateOf(*saved), savedBefore);
    EXPECT_EQ(saved.use_count(), 1) << "the saved set is not kept";
}

TEST(LoadProperties, AFailureLeavesWhatWasCopiedBefore) {
    PlainNode node;
    const auto saved = std::make_shared<PropertySet>();
    const auto x = makeProperty("PositionX");
    x->setString("not a number");
    const auto y = makeProperty("PositionY");
    y->setFloat(3.0F);
    const auto group = makeProperty("BindingGroup");
    group->setString("Skin");
    for (const auto& property : {y, x, group}) {
        saved->add(property);
    }
    EXPECT_EQ(shaderErrorOf([&] { node.loadProperties(saved); }),
              "cannot copy property \"PositionX\" from property with non-matching type");
    EXPECT_EQ(node.bindingGroupProperty->getString(), "Skin") << "stands before PositionX in the node";
    EXPECT_EQ(node.positionXProperty->getFloat(), 0.0F);
    EXPECT_EQ(node.positionYProperty->getFloat(), 0.0F);
}

TEST(LoadProperties, AppliesTheRulesForEnumsAndNodes) {
    PlainNode node;
    const auto mode = makeProperty("Mode");
    mode->addEnumValue("Basic");
    node.properties->add(mode);
    const auto reference = makeProperty("Reference");
    reference->addNodeTypename("CoreTexture");
    node.properties->add(reference);

    const auto saved = std::make_shared<PropertySet>();
    const auto savedMode = makeProperty("Mode");
    savedMode->addEnumValue("Advanced");
    saved->add(savedMode);
    EXPECT_EQ(shaderErrorOf([&] { node.loadProperties(saved); }),
              "cannot copy property \"Mode\" as enum \"Advanced\" is not a known enum value");
    savedMode->addEnumValue("Basic");
    savedMode->setEnum("Basic");
    const auto savedReference = makeProperty("Reference");
    savedReference->addNodeTypename("TestPlain");
    savedReference->getNode() = std::make_shared<PlainNode>();
    saved->add(savedReference);
    EXPECT_EQ(shaderErrorOf([&] { node.loadProperties(saved); }),
              "cannot copy property \"Reference\" as node typename \"TestPlain\" is not a valid typename");
    savedReference->getNode()->typeProperty->setString("CoreTexture");
    node.loadProperties(saved);
    EXPECT_EQ(reference->getNode(), savedReference->getNode());
}

} // namespace
} // namespace patina
