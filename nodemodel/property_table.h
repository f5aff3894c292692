#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <span>
#include <string_view>

namespace patina {

/// How a property is declared in a table of properties.
struct PropertyDeclaration {
    std::string_view name;
    std::string_view help;
};

namespace detail {

/// What every node has, first and in this order. The wording, "used a tooltip" and "accessable" included, is
/// what artists' documents and tools know.
inline constexpr std::array<PropertyDeclaration, 8> standardDeclarations = {{
    {"Type", "Type: the internal type of the node."},
    {"Name", "Name: the name entered here will correspond to the binding name presented in Maya."},
    {"BindingIndex", ""},
    {"BindingGroup", ""},
    {"PositionX", ""},
    {"PositionY", ""},
    {"Description", "Description: if this node generates a Maya binding, then this description will be used "
                    "a tooltip for the "
                    "binding. Otherwise this is a space for general notes about the node."},
    {"Help Url", "Help Url: if this node generates a Maya binding then this Url will be accessable from a "
                 "button on the binding Ui."},
}};

} // namespace detail

/// All properties of a node type, and the order of their names. A view of a PropertyTable.
class PropertyLayout {
public:
    std::span<const PropertyDeclaration> declarations() const { return declarations_; }
    /// The places of the declarations by ascending name.
    std::span<const std::uint32_t> order() const { return order_; }

private:
    template <std::size_t Count>
    friend struct PropertyTable;
    constexpr PropertyLayout(std::span<const PropertyDeclaration> declarations,
                             std::span<const std::uint32_t> order)
        : declarations_(declarations), order_(order) {}

    std::span<const PropertyDeclaration> declarations_;
    std::span<const std::uint32_t> order_;
};

/// The properties of a node type, which declareProperties puts together.
template <std::size_t Count>
struct PropertyTable {
    std::array<PropertyDeclaration, Count> declarations = {};
    std::array<std::uint32_t, Count> order = {};

    constexpr PropertyLayout layout() const { return {declarations, order}; }
};

/// The standard properties and those of a type's own, in one table, which refers to their texts. It is put
/// together when the program is compiled, so that a new node of the type neither compares names nor sorts
/// them. Two properties of one name do not compile.
/// @{
template <std::size_t Own>
consteval auto declareProperties(const std::array<PropertyDeclaration, Own>& own) {
    PropertyTable<detail::standardDeclarations.size() + Own> table;
    const auto first = std::copy(detail::standardDeclarations.begin(), detail::standardDeclarations.end(),
                                 table.declarations.begin());
    std::copy(own.begin(), own.end(), first);
    std::iota(table.order.begin(), table.order.end(), std::uint32_t{0});
    std::sort(table.order.begin(), table.order.end(), [&](std::uint32_t left, std::uint32_t right) {
        return table.declarations[left].name < table.declarations[right].name;
    });
    const auto taken = std::adjacent_find(
        table.order.begin(), table.order.end(), [&](std::uint32_t left, std::uint32_t right) {
            return table.declarations[left].name == table.declarations[right].name;
        });
    if (taken != table.order.end()) {
        throw "two properties have one name"; // ends the compilation
    }
    return table;
}

template <std::size_t Own>
consteval auto declareProperties(const PropertyDeclaration (&own)[Own]) {
    return declareProperties(std::to_array(own));
}
/// @}

} // namespace patina
