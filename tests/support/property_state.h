#pragma once

#include "nodemodel/port.h"
#include "nodemodel/property.h"

#include <string>
#include <tuple>
#include <vector>

namespace patina::testing {

/// Everything that a property holds, for comparing before and after.
inline auto stateOf(const Property& property) {
    return std::make_tuple(property.name, property.label, property.help, property.editable, property.visible,
                           property.stringStyle, property.kind, property.stringValue, property.intValue,
                           property.floatValues, property.nodeValue, property.allowedValues);
}

inline auto stateOf(const PropertySet& set) {
    std::vector<decltype(stateOf(*set.items.front()))> states;
    for (const auto& property : set.items) {
        states.push_back(stateOf(*property));
    }
    return std::make_tuple(set.version, states, set.items, set.byName);
}

/// Everything that a port holds.
inline auto stateOf(const Port& port) {
    return std::make_tuple(port.name, port.label, port.componentCount, port.componentCountKnown,
                           port.componentCountFixed, port.componentCountConflict, port.precision,
                           port.precisionKnown, port.precisionFixed, port.connected);
}

inline auto stateOf(const std::vector<Port>& ports) {
    std::vector<decltype(stateOf(ports.front()))> states;
    for (const Port& port : ports) {
        states.push_back(stateOf(port));
    }
    return states;
}

} // namespace patina::testing
