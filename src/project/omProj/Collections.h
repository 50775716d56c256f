#pragma once
// The collections of the object model. Indexes count from 1. `Add`, `Item` and `Remove` answer null
// when they fail: `Item` and `Remove` because there is no such item, `Add` because the collection
// has given out all of its 9,999 numbers (`Describe(ProjectResult::CollectionFull)` tells the
// user). Items keep their address until they are removed. Iteration runs from the first to the
// last.
#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace pw {

constexpr int kMaximumItems = 9999;  ///< four digits of a block of a node key
constexpr int kBlockWidth = 5;       ///< a capital letter and four digits
constexpr int kMaximumDepth = 64;    ///< levels of folders below each other

/** A block of a node key, such as P0007. */
std::string KeyBlock(char letter, int number);
/** The number in the last block of a key when that block has the letter; otherwise 0. */
int NumberOfKey(std::string_view key, char letter);

/** Iterates over a vector of owners as over the items themselves. */
template <class Owner, class T>
class ItemIterator {
  public:
    explicit ItemIterator(Owner at) : at_(at) {}
    T& operator*() const { return **at_; }
    T* operator->() const { return at_->get(); }
    ItemIterator& operator++() {
        ++at_;
        return *this;
    }
    bool operator!=(const ItemIterator& other) const { return at_ != other.at_; }

  private:
    Owner at_;
};

/** Items in a row without keys. Removing hands the item to the caller. */
template <class T>
class ItemList {
  public:
    using Owners = std::vector<std::unique_ptr<T>>;
    using iterator = ItemIterator<typename Owners::const_iterator, T>;

    T* Add() {
        if (Count() >= kMaximumItems) return nullptr;
        return items_.emplace_back(std::make_unique<T>()).get();
    }
    int Count() const { return static_cast<int>(items_.size()); }
    T* Item(int index) const {
        return index >= 1 && index <= Count() ? items_[index - 1].get() : nullptr;
    }
    std::unique_ptr<T> Remove(int index) {
        if (!Item(index)) return nullptr;
        std::unique_ptr<T> removed = std::move(items_[index - 1]);
        items_.erase(items_.begin() + (index - 1));
        return removed;
    }
    void Clear() { items_.clear(); }

    iterator begin() const { return iterator(items_.begin()); }
    iterator end() const { return iterator(items_.end()); }

  private:
    Owners items_;
};

/**
 * Items numbered by a counter of the collection that never gives a number twice, also not after the
 * project was saved and loaded. Items stand in the order of their numbers, so that looking one up
 * takes one step while nothing was removed before it, and a few steps otherwise.
 */
template <class T, char Letter>
class NumberedItems {
  public:
    using Owners = std::vector<std::unique_ptr<T>>;
    using iterator = ItemIterator<typename Owners::const_iterator, T>;

    int Count() const { return static_cast<int>(items_.size()); }
    T* Item(int index) const {
        return index >= 1 && index <= Count() ? items_[index - 1].get() : nullptr;
    }
    /** By the item's block ("P0007") or by its whole key. */
    T* Item(std::string_view key) const { return Item(IndexOf(key)); }
    /** 1-based; 0 when there is no such item. */
    int IndexOf(std::string_view key) const;
    /** The number that the next item will get. */
    int NextNumber() const { return next_; }

    iterator begin() const { return iterator(items_.begin()); }
    iterator end() const { return iterator(items_.end()); }

  protected:
    bool IsFull() const { return next_ > kMaximumItems; }
    T* Append(std::unique_ptr<T> item, int number) {
        next_ = number + 1;
        return items_.emplace_back(std::move(item)).get();
    }
    std::unique_ptr<T> TakeOut(int index) {
        if (!Item(index)) return nullptr;
        std::unique_ptr<T> removed = std::move(items_[index - 1]);
        items_.erase(items_.begin() + (index - 1));
        return removed;
    }
    /** While loading: the counter as it was saved. False when it would give a number twice. */
    bool RestoreCounter(int next) {
        if (next < next_ || next > kMaximumItems + 1) return false;
        next_ = next;
        return true;
    }
    /** The counter goes on where it is. */
    void RemoveAll() { items_.clear(); }

  private:
    Owners items_;
    int next_ = 1;
};

template <class T, char Letter>
int NumberedItems<T, Letter>::IndexOf(std::string_view key) const {
    const int number = NumberOfKey(key, Letter);
    if (number == 0 || items_.empty()) return 0;
    // An item can only have moved towards the front, so its number bounds its place.
    auto at = items_.begin() + (std::min(number, Count()) - 1);
    if ((*at)->Id() != number)
        at = std::lower_bound(items_.begin(), at, number,
                              [](const auto& item, int wanted) { return item->Id() < wanted; });
    if ((*at)->Id() != number) return 0;
    if (key.size() > kBlockWidth && (*at)->Key() != key) return 0;
    return static_cast<int>(at - items_.begin()) + 1;
}

}  // namespace pw
