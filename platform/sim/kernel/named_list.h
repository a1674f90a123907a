// Items in the order in which they were added, each found by its name without a search.
#ifndef PLATFORM_SIM_KERNEL_NAMED_LIST_H_
#define PLATFORM_SIM_KERNEL_NAMED_LIST_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/sim/text.h"

namespace sim {

// Names are of char16_t, or of UTF-8 in char, and compared without regard to case.
template <class Character, class Item>
class NamedList {
 public:
  using Name = std::basic_string_view<Character>;

  [[nodiscard]] const std::vector<Item>& items() const { return items_; }
  [[nodiscard]] const Item* Find(Name name) const {
    const auto found = numbers_.find(name);
    return found == numbers_.end() ? nullptr : &items_[PlaceOf(found->second)];
  }
  [[nodiscard]] Item* Find(Name name) { return const_cast<Item*>(std::as_const(*this).Find(name)); }

  // No item may have the name.
  void Add(Name name, Item item) {
    numbers_.emplace(name, next_);
    order_.push_back(next_++);
    items_.push_back(std::move(item));
  }
  // False where there is none. Those behind it move up.
  bool Remove(Name name) {
    const auto found = numbers_.find(name);
    if (found == numbers_.end()) return false;
    const auto place = static_cast<std::ptrdiff_t>(PlaceOf(found->second));
    items_.erase(items_.begin() + place);
    order_.erase(order_.begin() + place);
    numbers_.erase(found);
    return true;
  }
  void Clear() { *this = NamedList(); }

 private:
  struct Hash {
    using is_transparent = void;
    std::size_t operator()(Name name) const { return HashNoCase(name); }
  };
  struct Equal {
    using is_transparent = void;
    bool operator()(Name left, Name right) const { return EqualNoCase(left, right); }
  };

  // Numbers are given in order and stay, so that a removal changes no other item's number.
  [[nodiscard]] std::size_t PlaceOf(std::uint64_t number) const {
    return static_cast<std::size_t>(std::ranges::lower_bound(order_, number) - order_.begin());
  }

  std::vector<Item> items_;
  std::vector<std::uint64_t> order_;  // the number of each item
  std::unordered_map<std::basic_string<Character>, std::uint64_t, Hash, Equal> numbers_;
  std::uint64_t next_ = 0;
};

}  // namespace sim

#endif  // PLATFORM_SIM_KERNEL_NAMED_LIST_H_
