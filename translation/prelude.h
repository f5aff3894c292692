#pragma once

namespace patina {

/// What stands before a Cg program, so that a front end for HLSL in its mode for Direct3D 9 can read it:
/// Cg's sampling functions, `half` as a type of lower precision, and matrices that lie in
/// memory row by row. See translation/prelude.hlsl. [thread-safe]
const char* translationPrelude();

} // namespace patina
