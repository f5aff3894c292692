#pragma once

#include <memory>
#include <string>

namespace patina {

class MaterialNode;

/// The host's record of a connection between two material nodes.
///
/// Ownership: the host owns it, enters it in the source's outputLinks and the destination's inputLinks, and
/// takes it out again. The SDK reads only the two port names, and uses the record's identity as a key.
struct NodeConnection {
    std::weak_ptr<MaterialNode> sourceNode;
    std::weak_ptr<MaterialNode> destinationNode; ///< empty when the value leaves the graph
    std::string sourcePort;                      ///< name of an output of the source node
    std::string destinationPort;                 ///< name of an input of the destination node
};

} // namespace patina
