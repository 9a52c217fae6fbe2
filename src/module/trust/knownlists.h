/// @file
/// Lists of known drivers as they are published, and the compact one that is made of them.
///
/// What a list is shows in its content, whatever its file is called. A list is read whole or not at all.
#pragma once

#include <cstddef>
#include <streambuf>
#include <string>
#include <vector>

#include "platform/inputproblem.h"
#include "trust/knowndrivers.h"

namespace trust {

using Orvane::InputProblem;

/// What a list may hold.
constexpr std::size_t MostEntries = 200'000;
constexpr std::size_t MostHashes = 2'000'000;
constexpr std::size_t LongestPolicy = 64 << 20;

/// Some lists and their entries.
struct KnownContent {
  std::vector<KnownList> lists;
  std::vector<KnownEntry> entries;
};

/// Reads one of
/// - the LOLDrivers list: a JSON array of entries with samples, which is never held as a whole;
/// - a code integrity policy in XML (SiPolicy), such as Microsoft's list of drivers: what it denies to the kernel.
///   Hashes of pages, and what the policy allows, are passed over;
/// - what CompactList() wrote.
///
/// `text` is UTF-8. Throws InputProblem if it is none of these, is damaged, exceeds a limit, or holds a rule that
/// cannot be checked here.
KnownContent ReadKnownList(std::streambuf& text);

/// All lists and entries of `known` as JSON in UTF-8, an entry a line.
std::string CompactList(const KnownDrivers& known);

/// `text` as a hash, in lower case; empty if it is none by its length and digits.
std::string HashIn(std::string_view text);

}  // namespace trust
