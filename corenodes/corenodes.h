#pragma once

/// The published node types of the Core family.
///
/// A host never includes these: it creates nodes through the plug-in's factory.

#include "corenodes/animated_uv_node.h"
#include "corenodes/constant_node.h"
#include "corenodes/layer_blend_node.h"
#include "corenodes/maths_node.h"
#include "corenodes/swizzle_node.h"
#include "corenodes/texture_node.h"
#include "corenodes/uv_node.h"
#include "corenodes/vertex_colour_node.h"
#include "nodemodel/shader_error.h"
