/// @file
/// Sorting by an order that may contradict itself, as that of driver versions does.
#pragma once

#include <cstddef>
#include <utility>
#include <vector>

namespace driverlist {

/// Sorts `items` so that, where `isBefore` is consistent, they stand in its order, equals in the order in which they came.
/// Ends, and keeps every item, whatever `isBefore` answers.
template <typename Item, typename IsBefore>
void InsertionSort(std::vector<Item>& items, IsBefore isBefore) {
  std::vector<Item> sorted;
  sorted.reserve(items.size());
  for (Item& item : items) {
    std::size_t low = 0;
    std::size_t high = sorted.size();
    while (low < high) {
      const std::size_t middle = (low + high) / 2;
      if (isBefore(item, sorted[middle])) {
        high = middle;
      } else {
        low = middle + 1;
      }
    }
    sorted.insert(sorted.begin() + static_cast<std::ptrdiff_t>(low), std::move(item));
  }
  items = std::move(sorted);
}

}  // namespace driverlist
