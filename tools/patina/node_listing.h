#pragma once

#include "host/node_summary.h"

#include <string>
#include <vector>

namespace patina::tool {

// What `patina nodes` and `patina describe` print: for people, and as JSON. Bytes that are not UTF-8 are
// replaced in JSON. [thread-safe]

/// Aligned columns under a heading: type name, display name, category, whether offered, plug-in.
std::string nodeTable(const std::vector<NodeTypeSummary>& types);
std::string nodeTableJson(const std::vector<NodeTypeSummary>& types);

/// Everything about each type, in pages of 80 columns.
std::string descriptionText(const std::vector<NodeSummary>& summaries);
std::string descriptionJson(const std::vector<NodeSummary>& summaries);

} // namespace patina::tool
