#include "tests/execution/inputs.h"

#include "tests/execution/images.h"

#include <array>
#include <random>
#include <span>

namespace patina::testing {

namespace {

// Without those of the last row, the format half holds these exactly, too.
constexpr std::array wideNumbers = {
    0.0F, 1.0F,          -1.0F,          0.5F,     -0.5F,     0.25F, 0.75F, 2.0F, 3.0F, -3.0F,      0.125F,
    1.5F, 0.0009765625F, -0.0009765625F, 10000.0F, -10000.0F, 37.0F, -2.5F, 0.1F, 0.7F, 3.1415927F, 0.001F};
constexpr std::array floatNumbers = {1e10F, -1e10F, 1e-10F, 123456.79F, 16777215.0F};

std::mt19937 seeded(const std::string& seed) {
    std::seed_seq sequence(seed.begin(), seed.end());
    return std::mt19937(sequence);
}

/// One number after the other, by a fixed sequence.
class NumberSource {
public:
    NumberSource(Numbers numbers, const Format& format, const std::string& seed)
        : numbers_(numbers), isFloat_(&format == &floatFormat), random_(seeded(seed)) {}

    std::size_t below(std::size_t count) { return random_() % count; }

    float next() {
        if (numbers_ == Numbers::Unit || below(3) == 0) {
            constexpr std::size_t steps = 16;
            return static_cast<float>(below(steps + 1)) / steps;
        }
        if (isFloat_ && below(4) == 0) {
            return floatNumbers.at(below(floatNumbers.size()));
        }
        return wideNumbers.at(below(wideNumbers.size()));
    }

private:
    Numbers numbers_;
    bool isFloat_;
    std::mt19937 random_;
};

} // namespace

std::size_t pointsOfCase() { return PATINA_TEST_THINNED != 0 ? 16 : 64; }

std::vector<InputSet> inputSets(const Graph& graph, Numbers numbers, std::size_t count,
                                const std::string& seed) {
    NumberSource source(numbers, Reference(graph).shownFormat(), seed);
    std::vector<InputSet> sets(count);
    for (InputSet& set : sets) {
        std::array<float, 4> previous = {};
        for (const GraphNode& node : graph.nodes) {
            const std::string name = node.name();
            if (name.substr(0, 2) != "In") {
                continue;
            }
            std::array<float, 4> values = {};
            for (std::size_t i = 0; i < values.size(); ++i) {
                // now and then what the input before it has
                values.at(i) = source.below(5) == 0 ? previous.at(i) : source.next();
            }
            set[name] = previous = values;
        }
    }
    return sets;
}

std::vector<InputSet> texelCentres(int dimensions) {
    constexpr int points = 256;
    std::vector<InputSet> sets;
    for (int i = 0; i < points; i += PATINA_TEST_THINNED != 0 ? 7 : 1) {
        // a stride prime to the size visits every row and column
        const int x = i * 5 % imageWidth + (i % 3 - 1) * imageWidth;
        const int y = i * 3 % imageHeight + (i % 5 - 2) * imageHeight;
        const float u = (static_cast<float>(x) + 0.5F) / imageWidth;
        const float v = dimensions == 1 ? 0.0F : (static_cast<float>(y) + 0.5F) / imageHeight;
        sets.push_back({{"In0", {u, v, 0, 0}}});
    }
    return sets;
}

std::vector<InputSet> texelEdges(int dimensions) {
    constexpr std::array edges = {0.0F, 1.0F, -1.0F, 0.5F, -0.5F, 2.0F, -2.0F};
    std::vector<InputSet> sets;
    for (const float u : edges) {
        for (const float v : edges) {
            if (dimensions > 1 || v == 0) {
                sets.push_back({{"In0", {u, v, 0, 0}}});
            }
        }
    }
    return sets;
}

} // namespace patina::testing
