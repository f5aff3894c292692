#pragma once

#include "tests/execution/bounded.h"
#include "tests/execution/graph.h"

#include <array>
#include <map>
#include <string>
#include <vector>

namespace patina::testing {

/// What the sources of a graph give at one point, by their names.
using InputSet = std::map<std::string, std::array<float, 4>>;

/// What a graph means: the values of the shown output, worked out from the documented formulas in double
/// precision and without a look at any generated code.
class Reference {
public:
    explicit Reference(const Graph& graph);

    int shownWidth() const;
    const Format& shownFormat() const;
    BoundedVector evaluate(const InputSet& inputs) const;

    /// The width and format of any output.
    int widthOf(const PortOf& port) const;
    const Format& formatOf(const PortOf& port) const;

private:
    /// What is resolved of a node.
    struct Resolved {
        int width = 1;
        const Format* format = &halfFormat;
        std::map<std::string, int> outputWidths;
        std::map<std::string, const Format*> outputFormats;
    };

    void resolveWidths();
    void resolveFormats();

    std::vector<GraphNode> nodes_; ///< with the settings that count
    PortOf shown_;
    std::vector<Resolved> resolved_;
};

} // namespace patina::testing
