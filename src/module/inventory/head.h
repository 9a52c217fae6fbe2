/// @file
/// Which machine an inventory is of, when it was made and by what: the head of every document.
#pragma once

#include <string>

namespace inventory {

/// Texts are UTF-8; what is unknown is empty.
struct Head {
  /// Version of the program that made the document.
  std::string tool_version;
  /// Name of the machine.
  std::string host;
  /// What tells machines of one name apart: the machine's own GUID, or what the user says instead, since cloned
  /// machines share it.
  std::string host_id;
  /// Version of its Windows, such as "10.0.22621": what it is, not what it reports to programs that do not know it.
  std::string windows;
  /// UTC, ISO 8601: "2024-05-06T07:08:09Z".
  std::string time;
};

/// Of this machine, now. `hostId` takes the place of the machine's GUID unless it is empty.
Head ThisMachine(const std::string& hostId);

/// Version of this program.
std::string ToolVersion();

}  // namespace inventory
