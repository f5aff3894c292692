#pragma once

#include "nodemodel/shader_error.h"

#include <string>

namespace patina::testing {

/// The message of the ShaderError that the action throws, or a text that no message equals.
template <typename Action>
std::string shaderErrorOf(Action&& action) {
    try {
        action();
    } catch (const ShaderError& error) {
        return error.what();
    }
    return "(no ShaderError)";
}

} // namespace patina::testing
