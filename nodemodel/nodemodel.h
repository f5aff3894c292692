#pragma once

/// The node model: typed properties, ports, the material node base class, and attribute access for saved
/// values.
///
/// Everything a node, a host or a plug-in is written against first; it knows nothing of shaders or bindings.
/// Link with the CMake target patina::materialgraph.

#include "nodemodel/material_node.h"
#include "nodemodel/node_connection.h"
#include "nodemodel/port.h"
#include "nodemodel/property.h"
#include "nodemodel/shader_error.h"
#include "nodemodel/text.h"
#include "nodemodel/xml_attributes.h"
