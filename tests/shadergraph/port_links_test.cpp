#include "nodemodel/nodemodel.h"
#include "shadergraph/shadergraph.h"

#include "tests/shadergraph/samples.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>

namespace patina {
namespace {

using testing::expectGraphSize;
using testing::floatType;
using testing::makeSink;
using testing::makeSource;

using Connection = std::shared_ptr<NodeConnection>;

/// A material node without ports or code; its links are all that matters here.
class LinkedNode : public MaterialNode {
public:
    LinkedNode() : MaterialNode("TestLinked") {}
    void generateCode(GraphGenerator&) override {}
};

Connection makeConnection(const std::string& sourcePort, const std::string& destinationPort) {
    auto connection = std::make_shared<NodeConnection>();
    connection->sourcePort = sourcePort;
    connection->destinationPort = destinationPort;
    return connection;
}

/// A weak reference whose target has gone.
std::weak_ptr<NodeConnection> expiredLink() { return makeConnection("out_gone", "in_gone"); }

void expectEnd(const PortLinkEnd& end, const std::shared_ptr<GeneratorNode>& node, const char* port) {
    EXPECT_EQ(end.node, node);
    EXPECT_EQ(end.port, port);
}

struct Links : ::testing::Test {
    GraphGenerator generator;
    Connection connection = makeConnection("out_a", "in_a");
    std::shared_ptr<GeneratorNode> source = makeSource(floatType);
    std::shared_ptr<GeneratorNode> sink = makeSink(floatType);
    LinkedNode node;
};

TEST_F(Links, ARecordStartsWithoutEnds) {
    const PortLink link;
    EXPECT_EQ(link.producer.node, nullptr);
    EXPECT_EQ(link.producer.port, "");
    EXPECT_TRUE(link.consumers.empty());
}

TEST_F(Links, MayBeMadeOfWhatTheirRecordHolds) {
    constexpr const char* longName = "a_name_that_no_short_string_holds";
    generator.linkInputPort(connection, sink, longName);
    PortLink& link = generator.portLinks[connection];
    for (int i = 0; i < 5; ++i) {
        generator.linkInputPort(connection, link.consumers.front().node, link.consumers.front().port);
    }
    for (const PortLinkEnd& consumer : link.consumers) {
        expectEnd(consumer, sink, longName);
    }
    auto lastOfAll = makeSource(floatType);
    lastOfAll->outputs.front().name = longName;
    generator.linkOutputPort(connection, lastOfAll, "out_a");
    const std::string& name = lastOfAll->outputs.front().name;
    lastOfAll.reset(); // the record alone keeps it now
    generator.linkOutputPort(connection, source, name);
    expectEnd(link.producer, source, longName);
}

TEST_F(Links, AnOutputIsTheProducer) {
    generator.linkOutputPort(connection, source, "out_a");
    ASSERT_EQ(generator.portLinks.size(), 1U);
    const PortLink& link = generator.portLinks.at(connection);
    expectEnd(link.producer, source, "out_a");
    EXPECT_TRUE(link.consumers.empty());
}

TEST_F(Links, ALaterOutputReplacesTheProducer) {
    generator.linkOutputPort(connection, source, "out_a");
    generator.linkInputPort(connection, sink, "in_a");
    generator.linkOutputPort(connection, sink, "out_b");
    const PortLink& link = generator.portLinks.at(connection);
    expectEnd(link.producer, sink, "out_b");
    ASSERT_EQ(link.consumers.size(), 1U);
    expectEnd(link.consumers[0], sink, "in_a");
}

TEST_F(Links, InputsAreConsumersInOrder) {
    generator.linkInputPort(connection, sink, "in_b");
    generator.linkInputPort(connection, source, "in_a");
    generator.linkInputPort(connection, sink, "in_b");
    ASSERT_EQ(generator.portLinks.size(), 1U);
    const PortLink& link = generator.portLinks.at(connection);
    EXPECT_EQ(link.producer.node, nullptr);
    EXPECT_EQ(link.producer.port, "");
    ASSERT_EQ(link.consumers.size(), 3U);
    expectEnd(link.consumers[0], sink, "in_b");
    expectEnd(link.consumers[1], source, "in_a");
    expectEnd(link.consumers[2], sink, "in_b");
}

TEST_F(Links, ConnectionsAreToldApartByIdentity) {
    const auto equal = makeConnection("out_a", "in_a");
    generator.linkOutputPort(connection, source, "out_a");
    generator.linkInputPort(equal, sink, "in_a");
    ASSERT_EQ(generator.portLinks.size(), 2U);
    expectEnd(generator.portLinks.at(connection).producer, source, "out_a");
    EXPECT_TRUE(generator.portLinks.at(connection).consumers.empty());
    EXPECT_EQ(generator.portLinks.at(equal).producer.node, nullptr);
    EXPECT_EQ(generator.portLinks.at(equal).consumers.size(), 1U);
}

TEST_F(Links, NeedNeitherAnAddedNodeNorAPortOfThatName) {
    generator.linkOutputPort(connection, source, "no such port");
    generator.linkInputPort(connection, sink, "");
    expectEnd(generator.portLinks.at(connection).producer, source, "no such port");
    expectEnd(generator.portLinks.at(connection).consumers.at(0), sink, "");
    EXPECT_TRUE(generator.nodeMap.empty());
    expectGraphSize(*generator.graph, 0, 0);
}

TEST_F(Links, RecordTheSubmittedNodeAndNotWhatStandsForIt) {
    const auto first = testing::makeInterface("uv", floatType);
    const auto second = testing::makeInterface("uv", floatType);
    generator.addNode(first);
    generator.addNode(second);
    generator.linkOutputPort(connection, second, "read");
    expectEnd(generator.portLinks.at(connection).producer, second, "read");
}

TEST_F(Links, AttachRecordsEveryConnectionOfTheNode) {
    const auto in1 = makeConnection("out_x", "in_value1");
    const auto in2 = makeConnection("out_y", "in_value2");
    const auto out1 = makeConnection("out_value", "in_x");
    const auto out2 = makeConnection("out_alpha", "in_y");
    node.inputLinks = {in1, in2};
    node.outputLinks = {out1, out2};
    node.attachLinks(generator, source);

    ASSERT_EQ(generator.portLinks.size(), 4U);
    for (const auto& [link, port] : {std::pair(in1, "in_value1"), std::pair(in2, "in_value2")}) {
        const PortLink& record = generator.portLinks.at(link);
        EXPECT_EQ(record.producer.node, nullptr);
        ASSERT_EQ(record.consumers.size(), 1U);
        expectEnd(record.consumers[0], source, port);
    }
    for (const auto& [link, port] : {std::pair(out1, "out_value"), std::pair(out2, "out_alpha")}) {
        const PortLink& record = generator.portLinks.at(link);
        expectEnd(record.producer, source, port);
        EXPECT_TRUE(record.consumers.empty());
    }
    // nothing but the records is touched
    EXPECT_EQ(node.inputLinks.size(), 2U);
    EXPECT_EQ(node.outputLinks.size(), 2U);
    EXPECT_TRUE(generator.nodeMap.empty());
    expectGraphSize(*generator.graph, 0, 0);
}

TEST_F(Links, AttachWithoutConnectionsRecordsNothing) {
    node.attachLinks(generator, source);
    EXPECT_TRUE(generator.portLinks.empty());
}

TEST_F(Links, AttachJoinsTheTwoEndsOfAConnection) {
    LinkedNode upstream;
    LinkedNode downstream;
    upstream.outputLinks = {connection};
    downstream.inputLinks = {connection};
    // either end may come first
    downstream.attachLinks(generator, sink);
    upstream.attachLinks(generator, source);
    ASSERT_EQ(generator.portLinks.size(), 1U);
    const PortLink& link = generator.portLinks.at(connection);
    expectEnd(link.producer, source, "out_a");
    ASSERT_EQ(link.consumers.size(), 1U);
    expectEnd(link.consumers[0], sink, "in_a");
}

TEST_F(Links, AttachingASecondNodeReplacesProducersAndAppendsConsumers) {
    const auto out = makeConnection("out_value", "in_x");
    node.inputLinks = {connection, connection};
    node.outputLinks = {out};
    node.attachLinks(generator, source);
    node.attachLinks(generator, sink);
    const PortLink& in = generator.portLinks.at(connection);
    ASSERT_EQ(in.consumers.size(), 4U);
    expectEnd(in.consumers[0], source, "in_a");
    expectEnd(in.consumers[1], source, "in_a");
    expectEnd(in.consumers[2], sink, "in_a");
    expectEnd(in.consumers[3], sink, "in_a");
    expectEnd(generator.portLinks.at(out).producer, sink, "out_value");
}

TEST_F(Links, AttachHandlesAConnectionOfANodeToItself) {
    node.inputLinks = {connection};
    node.outputLinks = {connection};
    node.attachLinks(generator, source);
    const PortLink& link = generator.portLinks.at(connection);
    expectEnd(link.producer, source, "out_a");
    ASSERT_EQ(link.consumers.size(), 1U);
    expectEnd(link.consumers[0], source, "in_a");
}

TEST_F(Links, AttachStopsAtAnExpiredInput) {
    const auto later = makeConnection("out_b", "in_b");
    const auto out = makeConnection("out_value", "in_x");
    node.inputLinks = {connection, expiredLink(), later};
    node.outputLinks = {out};
    EXPECT_THROW(node.attachLinks(generator, sink), std::bad_weak_ptr);
    ASSERT_EQ(generator.portLinks.size(), 1U);
    ASSERT_EQ(generator.portLinks.at(connection).consumers.size(), 1U);
    expectEnd(generator.portLinks.at(connection).consumers[0], sink, "in_a");
    EXPECT_EQ(node.inputLinks.size(), 3U);
}

TEST_F(Links, AttachStopsAtAnExpiredOutput) {
    const auto out = makeConnection("out_value", "in_x");
    const auto later = makeConnection("out_alpha", "in_y");
    node.inputLinks = {connection};
    node.outputLinks = {out, expiredLink(), later};
    EXPECT_THROW(node.attachLinks(generator, source), std::bad_weak_ptr);
    ASSERT_EQ(generator.portLinks.size(), 2U);
    EXPECT_EQ(generator.portLinks.at(connection).consumers.size(), 1U);
    expectEnd(generator.portLinks.at(out).producer, source, "out_value");
}

TEST_F(Links, AttachTreatsALinkThatNeverReferredLikeAnExpiredOne) {
    node.inputLinks = {std::weak_ptr<NodeConnection>()};
    EXPECT_THROW(node.attachLinks(generator, source), std::bad_weak_ptr);
    EXPECT_TRUE(generator.portLinks.empty());
}

TEST_F(Links, RecordsKeepTheConnectionAndTheNodesAlive) {
    std::weak_ptr<NodeConnection> link = connection;
    std::weak_ptr<GeneratorNode> generated = source;
    node.outputLinks = {connection};
    node.attachLinks(generator, source);
    connection.reset();
    source.reset();
    EXPECT_FALSE(link.expired());
    EXPECT_FALSE(generated.expired());
    generator.portLinks.clear();
    EXPECT_TRUE(link.expired());
    EXPECT_TRUE(generated.expired());
}

} // namespace
} // namespace patina
