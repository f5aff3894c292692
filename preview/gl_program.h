#pragma once

#include "preview/gl_object.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace patina::preview {

/// A uniform or vertex attribute that a linked program reads.
struct GlVariable {
    std::string name; ///< of an array without its "[0]"
    int location = 0;
    unsigned int type = 0; ///< of an element, as OpenGL numbers types
    int count = 1;         ///< elements of the array
};

/// A vertex and a fragment shader, linked. Threads: as the context.
class GlProgram {
public:
    /// Both texts are GLSL and begin with their #version. Throws HostError, with what the driver says, when
    /// they do not compile or do not fit one another.
    GlProgram(const std::string& vertexText, const std::string& fragmentText);

    /// Neither has those that the driver found to be without effect.
    const std::vector<GlVariable>& uniforms() const { return uniforms_; }
    const std::vector<GlVariable>& attributes() const { return attributes_; }

    /// Sets a uniform of floats or integers, signed or not, or an array of them, to be kept until it is set
    /// again. Matrices come as they lie in memory. Gives false, having done nothing, where the program has no
    /// such uniform. Throws HostError when it is of another type or number of components than there are
    /// values.
    bool setUniform(std::string_view name, std::span<const float> values);

    /// Lets a sampler read from a texture unit. Gives false where the program has no such sampler.
    bool setSampler(std::string_view name, int unit);

    /// What is drawn from now on is drawn with this program.
    void use() const;

private:
    const GlVariable* findUniform(std::string_view name) const;

    GlObject object_;
    std::vector<GlVariable> uniforms_;
    std::vector<GlVariable> attributes_;
};

} // namespace patina::preview
