#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace patina {

struct Property;

/// An ordered map from name to shared property, used as std::map is, for the few dozen properties that a node
/// has: the entries lie in few pieces of memory and are found by halving a list of them.
///
/// Looking up costs what it costs in std::map, and so does a step from an entry to the next. For a new name,
/// the list moves up from there. Iterators and references hold until their entry goes, as those of std::map.
///
/// Ownership: shares the properties and has its own copies of the names; that of an erased entry goes with
/// the index. Threads: as Property. Errors: at() throws std::out_of_range. What fails, for want of memory,
/// changes nothing.
class PropertyIndex {
    /// Goes through the entries in the order of their names.
    template <typename Entry>
    class Iterator {
    public:
        using iterator_category = std::bidirectional_iterator_tag;
        using value_type = std::remove_const_t<Entry>;
        using difference_type = std::ptrdiff_t;
        using pointer = Entry*;
        using reference = Entry&;

        Iterator() = default;

        /// An iterator serves where a const_iterator is asked for.
        template <typename Other>
        // cppcheck-suppress noExplicitConstructor
        requires(std::is_same_v<const Other, Entry>) Iterator(const Iterator<Other>& other)
            : index_(other.index_), entry_(other.entry_) {}

        reference operator*() const { return *entry_; }
        pointer operator->() const { return entry_; }

        Iterator& operator++() {
            entry_ = index_->entryAt(index_->placeOf(entry_) + 1);
            return *this;
        }
        Iterator operator++(int) {
            const Iterator before = *this;
            ++*this;
            return before;
        }
        Iterator& operator--() {
            entry_ = index_->entryAt(index_->placeOf(entry_) - 1);
            return *this;
        }
        Iterator operator--(int) {
            const Iterator before = *this;
            --*this;
            return before;
        }

        friend bool operator==(const Iterator& left, const Iterator& right) {
            return left.entry_ == right.entry_;
        }

    private:
        friend class PropertyIndex;
        template <typename Other>
        friend class Iterator;

        Iterator(const PropertyIndex* index, Entry* entry) : index_(index), entry_(entry) {}

        const PropertyIndex* index_ = nullptr;
        Entry* entry_ = nullptr; ///< null behind the last
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
    PropertyIndex(const PropertyIndex& other);
    PropertyIndex(PropertyIndex&&) noexcept = default;
    PropertyIndex& operator=(PropertyIndex other) noexcept;
    ~PropertyIndex() = default;

    std::size_t size() const { return order_.size(); }
    bool empty() const { return order_.empty(); }

    iterator begin() { return {this, entryAt(0)}; }
    iterator end() { return {this, nullptr}; }
    const_iterator begin() const { return {this, entryAt(0)}; }
    const_iterator end() const { return {this, nullptr}; }

    /// @name Exact lookup
    /// @{
    iterator find(std::string_view name) { return {this, entryOf(name)}; }
    const_iterator find(std::string_view name) const { return {this, entryOf(name)}; }
    bool contains(std::string_view name) const { return entryOf(name) != nullptr; }
    std::size_t count(std::string_view name) const { return contains(name) ? 1 : 0; }
    std::shared_ptr<Property>& at(std::string_view name);
    const std::shared_ptr<Property>& at(std::string_view name) const;
    /// @}

    /// @name Changes
    /// Inserting under a name that is taken changes nothing and gives the entry that has it.
    /// @{
    std::pair<iterator, bool> emplace(std::string_view name, std::shared_ptr<Property> property);
    std::pair<iterator, bool> insert(const value_type& entry) { return emplace(entry.first, entry.second); }
    /// The property of that name, which is empty until it is assigned where there was none.
    std::shared_ptr<Property>& operator[](std::string_view name);
    /// How many entries went: none or one.
    std::size_t erase(std::string_view name);
    /// Gives the entry behind the one that went.
    iterator erase(const_iterator position);
    void clear();
    /// Replaces all entries: one for each property, under its name. `order` has the properties' places by
    /// ascending name, and no name is there twice.
    void assign(std::span<const std::shared_ptr<Property>> properties, std::span<const std::uint32_t> order);
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

    /// The entry of that name, or null.
    value_type* entryOf(std::string_view name) const;
    /// The entry at a place in the order, or null behind the last; and the other way round.
    value_type* entryAt(std::size_t place) const;
    std::size_t placeOf(const value_type* entry) const;

    /// Makes an entry that is in no order yet.
    value_type& append(std::string_view name, std::shared_ptr<Property> property);

    std::vector<std::vector<value_type>> pieces_; ///< none ever has more entries than it had room for first
    std::vector<value_type*> order_;              ///< the entries by their names
};

} // namespace patina
