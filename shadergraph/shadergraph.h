#pragma once

/// The shader graph: value types, Cg functions and parameters as generator nodes, the graph that holds them,
/// and the generator into which material nodes emit their code.
///
/// Link with the CMake target patina::materialgraph.

#include "nodemodel/shader_error.h"
#include "shadergraph/function_builder.h"
#include "shadergraph/generator_node.h"
#include "shadergraph/graph.h"
#include "shadergraph/graph_generator.h"
#include "shadergraph/register_table.h"
#include "shadergraph/shader_type.h"
