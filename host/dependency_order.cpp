#include "host/dependency_order.h"

#include <algorithm>

namespace patina {

namespace {

enum class Mark : unsigned char { Unvisited, Open, Done };

/// An item whose dependencies are being visited, and the next of them.
struct Visit {
    std::size_t item;
    std::size_t next = 0;
};

std::vector<std::size_t> cycleFrom(const std::vector<Visit>& stack, std::size_t item) {
    const auto first =
        std::find_if(stack.begin(), stack.end(), [&](const Visit& visit) { return visit.item == item; });
    std::vector<std::size_t> cycle;
    for (auto visit = first; visit != stack.end(); ++visit) {
        cycle.push_back(visit->item);
    }
    return cycle;
}

} // namespace

DependencyOrder orderByDependencies(const Dependencies& dependencies) {
    DependencyOrder result;
    result.order.reserve(dependencies.size());
    std::vector<Mark> marks(dependencies.size(), Mark::Unvisited);
    std::vector<Visit> stack; // depth-first on the heap: chains may be longer than the call stack is deep
    for (std::size_t root = 0; root < dependencies.size(); ++root) {
        if (marks[root] != Mark::Unvisited) {
            continue;
        }
        marks[root] = Mark::Open;
        stack.push_back({root});
        while (!stack.empty()) {
            Visit& visit = stack.back();
            if (visit.next == dependencies[visit.item].size()) {
                marks[visit.item] = Mark::Done;
                result.order.push_back(visit.item);
                stack.pop_back();
                continue;
            }
            const std::size_t dependency = dependencies[visit.item][visit.next++];
            if (marks[dependency] == Mark::Open) {
                return {{}, cycleFrom(stack, dependency)};
            }
            if (marks[dependency] == Mark::Unvisited) {
                marks[dependency] = Mark::Open;
                stack.push_back({dependency});
            }
        }
    }
    return result;
}

} // namespace patina
