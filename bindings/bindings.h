#pragma once

/// Bindings: the material parameters that artists set, and the attributes with which a host saves them.
///
/// Link with the CMake target patina::materialgraph.

#include "bindings/binding.h"
#include "bindings/binding_kinds.h"
#include "bindings/float_list.h"
#include "nodemodel/shader_error.h"
