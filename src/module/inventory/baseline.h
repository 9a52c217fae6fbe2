/// @file
/// Findings that were accepted, so that only what is new since is reported.
#pragma once

#include <cstddef>
#include <cstdint>
#include <set>
#include <streambuf>
#include <string>
#include <vector>

#include "inventory/healthrules.h"
#include "inventory/inventory.h"

namespace inventory {

/// How many findings a baseline may hold.
constexpr std::size_t MostAccepted = 1'000'000;

struct Baseline {
  /// Of the machine whose findings were accepted, and when.
  Head head;
  /// Whether its images were verified: findings of unverified ones say nothing of signatures and lists.
  bool isVerified = false;
  /// Identities of the accepted findings.
  std::set<std::string> ids = {};
};

/// "kind", the head, "verified", and "findings" as in the document of an examination. JSON in UTF-8, ended by a line
/// break.
std::string BaselineText(const std::vector<Finding>& findings, const Inventory& inventory);

/// Reads what BaselineText() wrote, in any order of members; passes over members that it does not know. Throws
/// InputProblem if it is not such a baseline: no finding is hidden by half of one.
Baseline ReadBaseline(std::streambuf& text);

/// Throws InputProblem if `baseline` must not hide findings about `inventory`: it is that of another machine, or it was
/// verified and `inventory` is not, so that what it would be silent about was never looked at.
void RequireComparable(const Baseline& baseline, const Inventory& inventory);

/// Findings held against a baseline.
struct NewFindings {
  /// Those that it does not have, in their order.
  std::vector<Finding> findings;
  /// How many it hides.
  std::size_t hidden = 0;
};

NewFindings NewSince(const Baseline& baseline, std::vector<Finding> findings);

}  // namespace inventory
