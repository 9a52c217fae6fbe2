/// @file
/// The head of every document: the machine of an inventory, when the inventory was made and by which program.
#pragma once

#include <string>

namespace inventory {

/// Texts are UTF-8; what is unknown is empty.
struct Head {
  /// Version of the program that made the document.
  std::string tool_version;
  /// Name of the machine.
  std::string host;
  /// Distinguishes machines of the same name: the machine's own GUID, or a text that the user chose, because cloned
  /// machines share the GUID.
  std::string host_id;
  /// Version of its Windows, such as "10.0.22621": the true version, not the one that Windows reports to programs that
  /// do not know it.
  std::string windows;
  /// UTC, ISO 8601: "2024-05-06T07:08:09Z".
  std::string time;
};

/// The head of this machine, now. `hostId` replaces the machine's GUID unless it is empty.
Head ThisMachine(const std::string& hostId);

/// Version of this program.
std::string ToolVersion();

}  // namespace inventory
