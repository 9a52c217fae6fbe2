// Snapshots of any origin: read, or refused in a sentence, and then each member of each record.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

#include "inventory/documents.h"
#include "inventory/input.h"
#include "inventory/members.h"
#include "inventory/snapshot.h"
#include "inventory/versionkey.h"

namespace inventory {

// Writing needs more of the program than there is here, and is not asked for.
std::string ListJson(Json, Json) { std::abort(); }
Json RecordsJson(const Records&) { std::abort(); }
Json HeadJson(const Head&) { std::abort(); }
bool IsOlder(const std::string& a, const std::string& b) { return VersionKey(a) < VersionKey(b); }

}  // namespace inventory

namespace {

void Require(bool isTrue) {
  if (!isTrue) std::abort();
}

/// Whether `value` is of the type that its member says.
bool IsOfItsType(const inventory::Value& value, inventory::ValueType type) {
  using inventory::ValueType;
  if (std::holds_alternative<std::monostate>(value)) return true;
  switch (type) {
    case ValueType::Number:
      return std::holds_alternative<std::uint64_t>(value);
    case ValueType::Flag:
      return std::holds_alternative<bool>(value);
    case ValueType::Texts:
      return std::holds_alternative<std::vector<std::string>>(value);
    default:
      return std::holds_alternative<std::string>(value);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::stringbuf text(std::string(reinterpret_cast<const char*>(data), size), std::ios_base::in);
  try {
    const inventory::Inventory inventory = inventory::ReadSnapshot(text);
    Require(inventory.schema == 1 || inventory.schema == 2);
    // No record is shorter than an empty object.
    Require(inventory.records.size() <= size / 2);
    for (const inventory::Record& record : inventory.records) {
      for (const inventory::Member& member : inventory::Members()) {
        Require(IsOfItsType(ValueOf(record, member), member.type));
      }
    }
  } catch (const inventory::InputProblem& problem) {
    Require(problem.what()[0] != '\0');
  }
  return 0;
}
