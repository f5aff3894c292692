#include "nodemodel/property_index.h"

#include "nodemodel/property.h"
#include "nodemodel/text.h"

#include <algorithm>
#include <stdexcept>

namespace patina {

using namespace detail;

namespace {

/// Below zero where `left` comes first, by the values of the bytes. The first ones, which mostly differ, are
/// looked at without a call.
int compareNames(const std::string& left, std::string_view right) {
    if (!right.empty() && left[0] != right[0]) {
        return static_cast<unsigned char>(left[0]) - static_cast<unsigned char>(right[0]);
    }
    return left.compare(right);
}

} // namespace

PropertyIndex::PropertyIndex(const PropertyIndex& other) {
    order_.reserve(other.size());
    for (const value_type* const entry : other.order_) {
        order_.push_back(&append(entry->first, entry->second));
    }
}

PropertyIndex& PropertyIndex::operator=(PropertyIndex other) noexcept {
    pieces_.swap(other.pieces_);
    order_.swap(other.order_);
    return *this;
}

PropertyIndex::Rank PropertyIndex::rankOf(std::string_view name) const {
    std::size_t first = 0;
    std::size_t last = order_.size();
    while (first != last) {
        const std::size_t middle = first + (last - first) / 2;
        const int order = compareNames(order_[middle]->first, name);
        if (order == 0) {
            return {middle, true};
        }
        if (order < 0) {
            first = middle + 1;
        } else {
            last = middle;
        }
    }
    return {first, false};
}

PropertyIndex::value_type* PropertyIndex::entryOf(std::string_view name) const {
    const Rank rank = rankOf(name);
    return rank.isTaken ? order_[rank.value] : nullptr;
}

PropertyIndex::value_type* PropertyIndex::entryAt(std::size_t place) const {
    return place == order_.size() ? nullptr : order_[place];
}

std::size_t PropertyIndex::placeOf(const value_type* entry) const {
    return entry == nullptr ? order_.size() : rankOf(entry->first).value;
}

PropertyIndex::value_type& PropertyIndex::append(std::string_view name, std::shared_ptr<Property> property) {
    if (pieces_.empty() || pieces_.back().size() == pieces_.back().capacity()) {
        // there may be room for more than there are entries yet
        std::vector<value_type> piece;
        piece.reserve(std::max<std::size_t>(order_.capacity() - order_.size(), 1));
        pieces_.push_back(std::move(piece));
    }
    return pieces_.back().emplace_back(name, std::move(property));
}

std::shared_ptr<Property>& PropertyIndex::at(std::string_view name) {
    return const_cast<std::shared_ptr<Property>&>(static_cast<const PropertyIndex&>(*this).at(name));
}

const std::shared_ptr<Property>& PropertyIndex::at(std::string_view name) const {
    const const_iterator found = find(name);
    if (found == end()) {
        throw std::out_of_range(joinText({"there is no property \"", name, "\""}));
    }
    return found->second;
}

std::pair<PropertyIndex::iterator, bool> PropertyIndex::emplace(std::string_view name,
                                                                std::shared_ptr<Property> property) {
    const Rank rank = rankOf(name);
    if (rank.isTaken) {
        return {{this, order_[rank.value]}, false};
    }
    if (order_.size() == order_.capacity()) {
        order_.reserve(2 * order_.size() + 1);
    }
    value_type* const entry = &append(name, std::move(property));
    order_.insert(order_.begin() + static_cast<std::ptrdiff_t>(rank.value), entry);
    return {{this, entry}, true};
}

std::shared_ptr<Property>& PropertyIndex::operator[](std::string_view name) {
    return emplace(name, nullptr).first->second;
}

std::size_t PropertyIndex::erase(std::string_view name) {
    const const_iterator found = find(name);
    if (found == end()) {
        return 0;
    }
    erase(found);
    return 1;
}

PropertyIndex::iterator PropertyIndex::erase(const_iterator position) {
    const std::size_t place = placeOf(position.entry_);
    order_[place]->second = nullptr;
    order_.erase(order_.begin() + static_cast<std::ptrdiff_t>(place));
    return {this, entryAt(place)};
}

void PropertyIndex::clear() { *this = PropertyIndex(); }

void PropertyIndex::assign(std::span<const std::shared_ptr<Property>> properties,
                           std::span<const std::uint32_t> order) {
    PropertyIndex all;
    all.order_.reserve(properties.size());
    std::vector<value_type>& entries = all.pieces_.emplace_back();
    entries.reserve(properties.size());
    for (const std::shared_ptr<Property>& property : properties) {
        entries.emplace_back(property->name, property);
    }
    for (const std::uint32_t place : order) {
        all.order_.push_back(&entries[place]);
    }
    *this = std::move(all);
}

bool operator==(const PropertyIndex& left, const PropertyIndex& right) {
    return std::equal(left.order_.begin(), left.order_.end(), right.order_.begin(), right.order_.end(),
                      [](const auto* one, const auto* other) { return *one == *other; });
}

} // namespace patina
