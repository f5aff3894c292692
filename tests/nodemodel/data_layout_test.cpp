// Hosts and plug-ins that were built apart agree on where the public fields stand: in declared order.

#include "nodemodel/nodemodel.h"
#include "tests/nodemodel/plain_node.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

namespace patina {
namespace {

using testing::PlainNode;

void expectAscending(const std::vector<const void*>& addresses) {
    for (std::size_t i = 1; i < addresses.size(); ++i) {
        EXPECT_TRUE(std::less<>()(addresses[i - 1], addresses[i])) << "field " << i << " stands too early";
    }
}

static_assert(std::is_same_v<std::remove_const_t<decltype(Property::name)>, std::string>);
static_assert(std::is_same_v<decltype(Property::label), std::string>);
static_assert(std::is_same_v<decltype(Property::help), std::string>);
static_assert(std::is_same_v<decltype(Property::editable), bool>);
static_assert(std::is_same_v<decltype(Property::visible), bool>);
static_assert(std::is_same_v<decltype(Property::stringStyle), std::uint32_t>);
static_assert(std::is_same_v<decltype(Property::kind), PropertyType>);
static_assert(std::is_same_v<decltype(Property::stringValue), std::string>);
static_assert(std::is_same_v<decltype(Property::intValue), std::int32_t>);
static_assert(std::is_same_v<decltype(Property::floatValues), std::array<float, 3>>);
static_assert(std::is_same_v<decltype(Property::nodeValue), std::shared_ptr<MaterialNode>>);
static_assert(std::is_same_v<decltype(Property::allowedValues), std::vector<std::string>>);

TEST(DataLayout, OfAProperty) {
    const auto p = makeProperty("Name");
    expectAscending({&p->name, &p->label, &p->help, &p->editable, &p->visible, &p->stringStyle, &p->kind,
                     &p->stringValue, &p->intValue, &p->floatValues, &p->nodeValue, &p->allowedValues});
    EXPECT_EQ(static_cast<const void*>(&p->name), static_cast<const void*>(p.get()));
}

static_assert(std::is_same_v<decltype(PropertySet::version), std::int32_t>);
static_assert(std::is_same_v<decltype(PropertySet::items), std::vector<std::shared_ptr<Property>>>);
static_assert(std::is_same_v<decltype(PropertySet::byName), PropertyIndex>);

TEST(DataLayout, OfAPropertySet) {
    const PropertySet set;
    expectAscending({&set.version, &set.items, &set.byName});
    EXPECT_EQ(static_cast<const void*>(&set.version), static_cast<const void*>(&set));
}

static_assert(std::is_same_v<decltype(Port::name), std::string>);
static_assert(std::is_same_v<decltype(Port::label), std::string>);
static_assert(std::is_same_v<decltype(Port::componentCount), std::uint32_t>);
static_assert(std::is_same_v<decltype(Port::componentCountKnown), bool>);
static_assert(std::is_same_v<decltype(Port::componentCountFixed), bool>);
static_assert(std::is_same_v<decltype(Port::componentCountConflict), bool>);
static_assert(std::is_same_v<decltype(Port::precision), std::uint32_t>);
static_assert(std::is_same_v<decltype(Port::precisionKnown), bool>);
static_assert(std::is_same_v<decltype(Port::precisionFixed), bool>);
static_assert(std::is_same_v<decltype(Port::connected), bool>);

TEST(DataLayout, OfAPort) {
    const Port port("in_uv", "uv");
    expectAscending({&port.name, &port.label, &port.componentCount, &port.componentCountKnown,
                     &port.componentCountFixed, &port.componentCountConflict, &port.precision,
                     &port.precisionKnown, &port.precisionFixed, &port.connected});
    EXPECT_EQ(static_cast<const void*>(&port.name), static_cast<const void*>(&port));
}

static_assert(std::is_same_v<decltype(NodeConnection::sourceNode), std::weak_ptr<MaterialNode>>);
static_assert(std::is_same_v<decltype(NodeConnection::destinationNode), std::weak_ptr<MaterialNode>>);
static_assert(std::is_same_v<decltype(NodeConnection::sourcePort), std::string>);
static_assert(std::is_same_v<decltype(NodeConnection::destinationPort), std::string>);

TEST(DataLayout, OfANodeConnectionEndsWithThePortNames) {
    const std::array<NodeConnection, 2> connections;
    const NodeConnection& connection = connections[0];
    expectAscending({&connection.sourceNode, &connection.sourcePort, &connection.destinationPort});
    expectAscending({&connection.destinationNode, &connection.sourcePort});
    EXPECT_EQ(static_cast<const void*>(&connection.sourcePort + 1),
              static_cast<const void*>(&connection.destinationPort));
    EXPECT_EQ(static_cast<const void*>(&connection.destinationPort + 1),
              static_cast<const void*>(&connections[1]));
}

static_assert(std::is_same_v<decltype(MaterialNode::inputLinks), std::list<std::weak_ptr<NodeConnection>>>);
static_assert(std::is_same_v<decltype(MaterialNode::outputLinks), std::list<std::weak_ptr<NodeConnection>>>);
static_assert(std::is_same_v<decltype(MaterialNode::textColour), std::array<float, 4>>);
static_assert(std::is_same_v<decltype(MaterialNode::bodyColour), std::array<float, 4>>);
static_assert(std::is_same_v<decltype(MaterialNode::inputs), std::vector<Port>>);
static_assert(std::is_same_v<decltype(MaterialNode::outputs), std::vector<Port>>);
static_assert(std::is_same_v<decltype(MaterialNode::resolvedComponentCount), std::uint32_t>);
static_assert(std::is_same_v<decltype(MaterialNode::resolvedPrecision), std::uint32_t>);
static_assert(std::is_same_v<decltype(MaterialNode::properties), std::shared_ptr<PropertySet>>);
static_assert(std::is_same_v<decltype(MaterialNode::typeProperty), std::shared_ptr<Property>>);
static_assert(std::is_same_v<decltype(MaterialNode::nameProperty), std::shared_ptr<Property>>);
static_assert(std::is_same_v<decltype(MaterialNode::bindingIndexProperty), std::shared_ptr<Property>>);
static_assert(std::is_same_v<decltype(MaterialNode::bindingGroupProperty), std::shared_ptr<Property>>);
static_assert(std::is_same_v<decltype(MaterialNode::positionXProperty), std::shared_ptr<Property>>);
static_assert(std::is_same_v<decltype(MaterialNode::positionYProperty), std::shared_ptr<Property>>);
static_assert(std::is_same_v<decltype(MaterialNode::descriptionProperty), std::shared_ptr<Property>>);
static_assert(std::is_same_v<decltype(MaterialNode::helpUrlProperty), std::shared_ptr<Property>>);
static_assert(std::has_virtual_destructor_v<MaterialNode>);
static_assert(std::is_abstract_v<MaterialNode>);

TEST(DataLayout, OfAMaterialNode) {
    const PlainNode node;
    expectAscending({&node.inputLinks, &node.outputLinks, &node.textColour, &node.bodyColour, &node.inputs,
                     &node.outputs, &node.resolvedComponentCount, &node.resolvedPrecision, &node.properties,
                     &node.typeProperty, &node.nameProperty, &node.bindingIndexProperty,
                     &node.bindingGroupProperty, &node.positionXProperty, &node.positionYProperty,
                     &node.descriptionProperty, &node.helpUrlProperty});
}

} // namespace
} // namespace patina
