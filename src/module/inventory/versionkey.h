/// @file
/// A driver version as a text whose byte order is the order of versions. Uses no platform API.
#pragma once

#include <string>
#include <string_view>

namespace inventory {

/// The sort key of `version`: "10.0.22621.1137" gives "c10af22621e1137". Keys compare as bytes, so a database or a
/// spreadsheet can sort and compare versions without knowing their rules. Each component of the lower-cased version,
/// split at "." and " ", becomes
/// - "!" if it is empty;
/// - for a hexadecimal number of up to 63 bits, a letter for its length without leading zeros ("a" for 0 ... "q" for
///   16) and the digits;
/// - for any other text, "~", or a quotation mark if its first byte is below "0", then the text and a blank.
///
/// This is the order of the listing library (operator< of its records), except when a number is compared with a text:
/// there the library's order is circular, and no key can reproduce it.
std::string VersionKey(std::string_view version);

}  // namespace inventory
