#include "host/dependency_order.h"

#include <algorithm>

namespace patina {

namespace {

enum class Mark : unsigned char { Unvisited, Open, Done };

/// An item whose dependencies are being visited, and the link to the next of them.
struct Visit {
    std::size_t item;
    std::size_t next;
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

Dependencies::Dependencies(std::initializer_list<std::initializer_list<std::size_t>> dependenciesOfItems)
    : ends_(dependenciesOfItems.size()) {
    std::size_t item = 0;
    for (const std::initializer_list<std::size_t>& dependencies : dependenciesOfItems) {
        for (const std::size_t dependency : dependencies) {
            add(item, dependency);
        }
        ++item;
    }
}

void Dependencies::add(std::size_t item, std::size_t dependency) {
    Ends& ends = ends_[item];
    (ends.last == none ? ends.first : links_[ends.last].next) = links_.size();
    ends.last = links_.size();
    links_.push_back({dependency, none});
}

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
        stack.push_back({root, dependencies.first(root)});
        while (!stack.empty()) {
            Visit& visit = stack.back();
            if (visit.next == Dependencies::none) {
                marks[visit.item] = Mark::Done;
                result.order.push_back(visit.item);
                stack.pop_back();
                continue;
            }
            const std::size_t dependency = dependencies.dependency(visit.next);
            visit.next = dependencies.next(visit.next);
            if (marks[dependency] == Mark::Open) {
                return {{}, cycleFrom(stack, dependency)};
            }
            if (marks[dependency] == Mark::Unvisited) {
                marks[dependency] = Mark::Open;
                stack.push_back({dependency, dependencies.first(dependency)});
            }
        }
    }
    return result;
}

} // namespace patina
