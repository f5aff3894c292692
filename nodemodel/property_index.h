#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace patina {

struct Property;

/// An ordered map from name to shared property, used as std::map is, for the few dozen properties that a node
/// has: the entries lie in one piece of memory and are found by halving a list of their numbers.
///
/// Looking up costs what it costs in std::map. So does adding a name that comes after all others; for any
/// other name, the numbers of those behind it move up, and erasing copies the entries that stay.
///
/// Ownership: shares the properties and has its own copies of the names.
/// Threads: as Property.
/// Errors: at() throws std::out_of_range. What fails, for want of memory, changes nothing.
class PropertyIndex {
    /// Goes through the entries in the order of their names. Ends with the next change of the index.
    template <typename Entry>
    class Iterator {
    public:
        using iterator_category = std::bidirectional_iterator_tag;
        using value_type = std::remove_const_t<Entry>;
        using difference_type = std::ptrdiff_t;
        using pointer = Entry*;
        using reference = Entry&;

        Iterator() = default;
        Iterator(Entry* entries, const std::uint32_t* place) : entries_(entries), place_(place) {}

        /// An iterator serves where a const_iterator is asked for.
        template <typename Other>
        // cppcheck-suppress noExplicitConstructor
        requires(std::is_same_v<const Other, Entry>) Iterator(const Iterator<Other>& other)
            : entries_(other.entries_), place_(other.place_) {}

        reference operator*() const { return entries_[*place_]; }
        pointer operator->() const { return &entries_[*place_]; }

        Iterator& operator++() {
            ++place_;
            return *this;
        }
        Iterator operator++(int) { return {entries_, place_++}; }
        Iterator& operator--() {
            --place_;
            return *this;
        }
        Iterator operator--(int) { return {entries_, place_--}; }

        friend bool operator==(const Iterator& left, const Iterator& right) {
            return left.place_ == right.place_;
        }

    private:
        friend class PropertyIndex;
        template <typename Other>
        friend class Iterator;

        Entry* entries_ = nullptr;
        const std::uint32_t* place_ = nullptr;
    };

public:
    using key_type = std::string;
    using mapped_type = std::shared_ptr<Property>;
    using value_type = std::pair<const std::string, std::shared_ptr<Property>>;
    using size_type = std::size_t;
    using difference_type = std::ptrdiff_t;
    using reference = value_type&;
    using const_reference = const value_type&;
    using iterator = Iterator<value_type>;
    using const_iterator = Iterator<const value_type>;

    PropertyIndex() = default;
    PropertyIndex(const PropertyIndex&) = default;
    PropertyIndex(PropertyIndex&&) noexcept = default;
    PropertyIndex& operator=(PropertyIndex other) noexcept;
    ~PropertyIndex() = default;

    /// Makes room for that many entries in all.
    void reserve(std::size_t count);

    std::size_t size() const { return entries_.size(); }
    bool empty() const { return entries_.empty(); }

    iterator begin() { return entryAt(0); }
    iterator end() { return entryAt(order_.size()); }
    const_iterator begin() const { return entryAt(0); }
    const_iterator end() const { return entryAt(order_.size()); }

    /// @name Exact lookup
    /// @{
    iterator find(std::string_view name);
    const_iterator find(std::string_view name) const;
    bool contains(std::string_view name) const { return find(name) != end(); }
    std::size_t count(std::string_view name) const { return contains(name) ? 1 : 0; }
    std::shared_ptr<Property>& at(std::string_view name);
    const std::shared_ptr<Property>& at(std::string_view name) const;
    /// @}

    /// @name Changes
    /// Inserting under a name that is taken changes nothing and gives the entry that has it.
    /// @{
    std::pair<iterator, bool> emplace(std::string_view name, const std::shared_ptr<Property>& property);
    std::pair<iterator, bool> insert(const value_type& entry) { return emplace(entry.first, entry.second); }
    /// The property of that name, which is empty until it is assigned where there was none.
    std::shared_ptr<Property>& operator[](std::string_view name);
    /// How many entries went: none or one.
    std::size_t erase(std::string_view name);
    /// Gives the entry behind the one that went.
    iterator erase(const_iterator position);
    void clear();
    /// @}

    /// The same names for the same properties.
    friend bool operator==(const PropertyIndex& left, const PropertyIndex& right);

private:
    /// Which place in the order a name has, or would have.
    struct Rank {
        std::size_t value;
        bool isTaken;
    };
    Rank rankOf(std::string_view name) const;

    iterator entryAt(std::size_t rank) { return {entries_.data(), order_.data() + rank}; }
    const_iterator entryAt(std::size_t rank) const { return {entries_.data(), order_.data() + rank}; }

    std::vector<value_type> entries_;  ///< in the order in which they were added
    std::vector<std::uint32_t> order_; ///< the entries' numbers in the order of their names
};

} // namespace patina
