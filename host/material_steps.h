#pragma once

#include "host/dependency_order.h"
#include "host/material.h"

#include <cstddef>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace patina::detail {

// The steps of which both building and editing a material consist. Threads: as the material, one thread at a
// time.

inline constexpr const char* placeholderType = "CoreDefault";
inline constexpr const char* typePropertyName = "Type";

PropertyContent valueOf(const Property& property);
bool hasValue(const Property& property, const PropertyContent& value);
void setValue(Property& property, const PropertyContent& value);

/// A set with the type and nothing else, as a saved set begins.
std::shared_ptr<PropertySet> makeSavedSet(const std::string& type, std::int32_t version);

/// Runs updateFromProperties, and notes the values that it overrode. Throws HostError that names the node.
void updateItem(const Material& material, MaterialItem& item);

using NodeIndex = std::unordered_map<const MaterialNode*, std::size_t>;
NodeIndex indexNodes(const Material& material);

/// For each item, the items that its properties refer to.
Dependencies referencesOf(const Material& material, const NodeIndex& indexByNode);

/// Every item after those it refers to. Throws HostError that shows a cycle.
std::vector<std::size_t> updateOrder(const Material& material, const Dependencies& references);

/// For each item, the items that its inputs come from.
Dependencies sourcesOf(const Material& material);

/// What Material::downstream must be. Throws HostError that shows a cycle.
std::vector<std::size_t> downstreamOrder(const Material& material);

/// Throw HostError that shows a cycle, whose items each depend on the next.
/// @{
[[noreturn]] void failAtReferenceCycle(const Material& material, const std::vector<std::size_t>& cycle);
[[noreturn]] void failAtConnectionCycle(const Material& material, const std::vector<std::size_t>& cycle);
/// @}

/// The named port of an item; null on a placeholder, which has none. Throws HostError when there is no such
/// port.
/// @{
Port* requireOutput(const Material& material, const MaterialItem& item, const std::string& name, int line);
Port* requireInput(const Material& material, const MaterialItem& item, const std::string& name, int line);
/// @}

/// The records of a connection and of an output, which nobody lists yet.
/// @{
std::shared_ptr<NodeConnection> makeRecord(const std::shared_ptr<MaterialNode>& source,
                                           const std::string& output,
                                           const std::shared_ptr<MaterialNode>& destination,
                                           const std::string& input);
std::shared_ptr<NodeConnection> makeRecord(const std::shared_ptr<MaterialNode>& source,
                                           const std::string& output);
/// @}

/// Enters a record in a node's list, and marks the port as connected; does nothing where there is no such
/// port.
/// @{
void linkSource(MaterialNode& node, const std::shared_ptr<NodeConnection>& record);
void linkDestination(MaterialNode& node, const std::shared_ptr<NodeConnection>& record);
/// @}

} // namespace patina::detail
