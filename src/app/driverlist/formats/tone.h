/// @file
/// How a text stands out.
#pragma once

#include "inventory/comparison.h"
#include "inventory/severity.h"

namespace driverlist {

/// Green, yellow and red on a terminal with colours; a page has its own style.
enum class Tone { Plain, Good, Doubtful, Bad };

/// That of something of this severity.
constexpr Tone ToneOf(inventory::Severity severity) {
  if (severity == inventory::Severity::Low) return Tone::Plain;
  return severity == inventory::Severity::Medium ? Tone::Doubtful : Tone::Bad;
}

/// That of a difference of this kind.
constexpr Tone ToneOf(inventory::DifferenceKind kind) {
  using inventory::DifferenceKind;
  if (kind == DifferenceKind::Added || kind == DifferenceKind::Upgraded) return Tone::Good;
  return kind == DifferenceKind::Changed ? Tone::Doubtful : Tone::Bad;
}

}  // namespace driverlist
