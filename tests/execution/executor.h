#pragma once

#include "host/host.h"
#include "preview/gl_context.h"
#include "preview/gl_target.h"
#include "preview/gl_texture.h"
#include "tests/execution/graph.h"
#include "tests/execution/reference.h"
#include "tests/execution/tally.h"

#include <array>
#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace patina::testing {

/// One output of one material, and the points that it is looked at.
struct Case {
    std::string kind;  ///< the row of the tally, but for the format
    std::string title; ///< what failures call it
    Graph graph;
    std::vector<InputSet> inputs;
};

/// The Cg programs that show a graph's output.
struct ShownPrograms {
    std::string vertex;
    std::string fragment;
};

ShownPrograms exportShown(const Graph& graph);

/// What a comparison found.
struct Outcome {
    Executed executed;
    std::vector<std::string> mismatches; ///< inputs, expected value, bound and what came
};

using Pixels = std::vector<std::array<float, 4>>;

/// Runs programs on the GPU that OpenGL offers. Each point is a pixel of its own, and what differs between
/// points is the same all over one, so that nothing is interpolated. One at a time in a process.
class Executor {
public:
    /// With a driver of Mesa's for processors, where it is Mesa that provides OpenGL; the first one of a
    /// process decides. Throws HostError without OpenGL or a translator.
    explicit Executor(const char* driver);
    ~Executor();

    Pixels draw(const ShownPrograms& programs, const Graph& graph, const std::vector<InputSet>& inputs);

    /// A program in the language that OpenGL takes.
    std::string translated(ProgramStage stage, const std::string& program) const;

    const std::string& renderer() const { return context_->renderer(); }

private:
    const preview::GlTexture& texture(const std::string& name, int dimensions);

    std::unique_ptr<preview::GlContext> context_;
    preview::GlTarget target_;
    std::unique_ptr<ShaderTranslator> translator_;
    std::map<std::pair<std::string, int>, preview::GlTexture> textures_;
};

/// Holds pixels against the reference.
Outcome compare(const Case& shown, const Pixels& pixels);

/// Interprets programs; starts at once, and computes as the C library does.
inline constexpr const char* interpretingDriver = "softpipe";
/// Compiles programs, which takes a while; computes on its own.
inline constexpr const char* compilingDriver = "llvmpipe";

/// There are no more points in a case than this has pixels.
inline constexpr std::size_t targetWidth = 16;
inline constexpr std::size_t targetHeight = 20;

} // namespace patina::testing
