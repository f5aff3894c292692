#pragma once

#include <nodemodel/nodemodel.h>

#include <memory>
#include <string>

namespace example {

/// What tells one procedural pattern from another.
struct Pattern {
    const char* outputName;
    const char* outputLabel;
    const char* functionName;
    const char* code; ///< computes the output from "float2 uv", which is scaled already
};

/// The base of the procedural patterns: one value between 0 and 1 for every place of a scaled uv.
///
/// It runs per fragment: interpolated between vertices, a pattern would be gone.
class PatternNode : public patina::MaterialNode {
public:
    /// Throws ShaderError when no uv is connected.
    void generateCode(patina::GraphGenerator& generator) override;

protected:
    PatternNode(const std::string& type, const Pattern& pattern);

private:
    Pattern pattern_;
    std::shared_ptr<patina::Property> defaultScale_;
};

} // namespace example
