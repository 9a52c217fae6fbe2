/// @file
/// Lists of known drivers as they are published, and the compact list that is made from them.
///
/// The content of a file, not its name, decides what list it is. A list is read completely or not at all.
#pragma once

#include <cstddef>
#include <streambuf>
#include <string>
#include <vector>

#include "platform/inputproblem.h"
#include "trust/knowndrivers.h"

namespace trust {

using Orvane::InputProblem;

/// The limits of a list.
constexpr std::size_t MostEntries = 200'000;
constexpr std::size_t MostHashes = 2'000'000;
constexpr std::size_t LongestPolicy = 64 << 20;

/// Some lists and their entries.
struct KnownContent {
  std::vector<KnownList> lists;
  std::vector<KnownEntry> entries;
};

/// Reads one of
/// - the LOLDrivers list: a JSON array of entries with samples, which is never in memory as a whole;
/// - a code integrity policy in XML (SiPolicy), such as Microsoft's list of drivers: its rules that deny kernel
///   drivers. Page hashes and rules that allow are ignored;
/// - the output of CompactList().
///
/// `text` is UTF-8. Throws InputProblem if it is not one of these, is damaged, exceeds a limit, or contains a rule that
/// cannot be checked here.
KnownContent ReadKnownList(std::streambuf& text);

/// All lists and entries of `known` as JSON in UTF-8, one entry per line.
std::string CompactList(const KnownDrivers& known);

/// `text` as a hash, in lower case; empty if its length or its digits are not those of a hash.
std::string HashIn(std::string_view text);

}  // namespace trust
