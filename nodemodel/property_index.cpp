#include "nodemodel/property_index.h"

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

PropertyIndex& PropertyIndex::operator=(PropertyIndex other) noexcept {
    entries_.swap(other.entries_);
    order_.swap(other.order_);
    return *this;
}

void PropertyIndex::reserve(std::size_t count) {
    // first: there is always room for the number of an entry that there is room for
    order_.reserve(count);
    entries_.reserve(count);
}

PropertyIndex::Rank PropertyIndex::rankOf(std::string_view name) const {
    std::size_t first = 0;
    std::size_t last = order_.size();
    while (first != last) {
        const std::size_t middle = first + (last - first) / 2;
        const int order = compareNames(entries_[order_[middle]].first, name);
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

PropertyIndex::iterator PropertyIndex::find(std::string_view name) {
    const Rank rank = rankOf(name);
    return rank.isTaken ? entryAt(rank.value) : end();
}

PropertyIndex::const_iterator PropertyIndex::find(std::string_view name) const {
    const Rank rank = rankOf(name);
    return rank.isTaken ? entryAt(rank.value) : end();
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
                                                                const std::shared_ptr<Property>& property) {
    const Rank rank = rankOf(name);
    if (rank.isTaken) {
        return {entryAt(rank.value), false};
    }
    if (entries_.size() == entries_.capacity()) {
        reserve(2 * entries_.size() + 1);
    }
    const auto number = static_cast<std::uint32_t>(entries_.size());
    entries_.emplace_back(name, property);
    order_.insert(order_.begin() + static_cast<std::ptrdiff_t>(rank.value), number);
    return {entryAt(rank.value), true};
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
    const auto rank = static_cast<std::size_t>(position.place_ - order_.data());
    PropertyIndex rest;
    rest.reserve(size() - 1);
    for (const value_type& entry : *this) {
        if (&entry != &*position) {
            rest.emplace(entry.first, entry.second);
        }
    }
    *this = std::move(rest);
    return entryAt(rank);
}

void PropertyIndex::clear() { *this = PropertyIndex(); }

bool operator==(const PropertyIndex& left, const PropertyIndex& right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end());
}

} // namespace patina
