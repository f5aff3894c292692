#pragma once

#include "host/document.h"
#include "nodemodel/nodemodel.h"

#include <functional>
#include <memory>
#include <string>

namespace patina::detail {

// Values of properties as documents write them. Nothing here looks at the locale of the process.
// Threads: as the property's node, one thread at a time.

/// Gives the node of an id, for a property in that line; throws HostError when there is none.
using NodeOfId = std::function<std::shared_ptr<MaterialNode>(const std::string& id, int line)>;

/// A property that carries a saved value; its other fields do not matter.
/// Throws HostError at the property's line, naming it and its node, when the text is no value of the kind.
std::shared_ptr<Property> savedProperty(const std::string& file, const std::string& nodeId,
                                        const DocumentProperty& saved, const NodeOfId& nodeOfId);

/// The text that stands for a property's value: savedProperty reads the same value from it, and no shorter
/// number would do. Throws ShaderError for a number that is not finite.
std::string propertyText(const Property& property,
                         const std::function<std::string(const MaterialNode&)>& idOfNode);

} // namespace patina::detail
