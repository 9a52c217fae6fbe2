/// @file
/// How wide the columns of a table are on a page.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

namespace driverlist {

/// Blanks between two columns.
constexpr std::size_t ColumnGap = 2;

/// The widths that matter to a column of a table, in columns of a terminal.
struct ColumnNeeds {
  /// Its widest text.
  std::size_t natural = 0;
  /// Its widest text that must not be cut; 0 if all of them may be.
  std::size_t whole = 0;
  /// The width that it keeps while another column can still shrink; 0 if it need not keep any.
  std::size_t floor = 0;
  /// Its place, from 1, in the order in which columns are left out of a table that is too wide; 0 if it is not.
  unsigned leavesAs = 0;
  /// Whether it has no text but its title. If it may be left out, it goes before any text is cut.
  bool isEmpty = false;
};

struct Layout {
  /// Indexes of the columns that are shown, in their order.
  std::vector<std::size_t> shown;
  /// The width of each of these.
  std::vector<std::size_t> widths;
};

/// How far texts may be cut.
enum class Cutting { DownToTheFloor, AsFarAsReadable };

/// A layout with lines of up to `width` columns; 0 for no limit. There are four steps, each taken only if the one
/// before was not enough: empty columns are left out; texts are cut, those of the widest column first, down to the
/// floors of their columns; other columns are left out; texts are cut further, as far as `cutting` allows. Nothing if
/// the lines are still too long.
std::optional<Layout> LayOut(const std::vector<ColumnNeeds>& columns, std::size_t width, Cutting cutting);

}  // namespace driverlist
