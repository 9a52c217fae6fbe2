#include "snapshotfile.h"

#include <stdexcept>
#include <utility>

#include "columns.h"
#include "jsonvalues.h"

namespace driverlist {
namespace {

constexpr unsigned SchemaVersion = 1;
constexpr char Kind[] = "driverlist snapshot";

/// A field of a record whose texts are UTF-8 already.
void SetMember(Json& object, const Column& column, const Orvane::DriverData& driver) {
  std::visit([&](auto member) { object[std::string(column.name)] = driver.*member; }, column.member);
}

Json RecordJson(const InventoryRecord& record) {
  Json object = {{"found_by", FoundByName(record.foundBy)}};
  for (const Column& column : AllColumns()) SetMember(object, column, record.driver);
  return object;
}

/// A snapshot that has the marks of one, but not the content: what() says what is missing.
struct Damaged : std::runtime_error {
  using std::runtime_error::runtime_error;
};

template <typename Value>
void Read(const Json& object, std::string_view name, const std::string& owner, Value& value) {
  const auto found = object.find(std::string(name));
  try {
    if (found != object.end()) {
      found->get_to(value);
      return;
    }
  } catch (const Json::exception&) {
    // Of another type.
  }
  throw Damaged(owner + " has no " + std::string(name));
}

FoundBy ReadFoundBy(const Json& object, const std::string& owner) {
  std::string name;
  Read(object, "found_by", owner, name);
  for (const FoundBy foundBy : {FoundBy::Device, FoundBy::Service, FoundBy::Package}) {
    if (FoundByName(foundBy) == name) return foundBy;
  }
  throw Damaged(owner + " has no found_by");
}

InventoryRecord ReadRecord(const Json& object, const std::string& owner) {
  if (!object.is_object()) throw Damaged(owner + " is no record");
  InventoryRecord record;
  record.foundBy = ReadFoundBy(object, owner);
  for (const Column& column : AllColumns()) {
    std::visit([&](auto member) { Read(object, column.name, owner, record.driver.*member); }, column.member);
  }
  return record;
}

Inventory ReadInventory(const Json& document) {
  Inventory inventory;
  Read(document, "host", "it", inventory.host);
  Read(document, "windows", "it", inventory.windows);
  Read(document, "tool_version", "it", inventory.tool);
  Read(document, "time", "it", inventory.time);
  const auto drivers = document.find("drivers");
  if (drivers == document.end() || !drivers->is_array()) throw Damaged("it has no drivers");
  for (const Json& object : *drivers) {
    inventory.records.push_back(ReadRecord(object, "driver " + std::to_string(inventory.records.size() + 1)));
  }
  return inventory;
}

/// Whether `document` calls itself a snapshot.
bool IsSnapshot(const Json& document) {
  if (!document.is_object()) return false;
  const auto kind = document.find("kind");
  return kind != document.end() && *kind == Kind && document.contains("schema_version");
}

ParsedSnapshot Problem(const std::string& text) { return {std::nullopt, text}; }

}  // namespace

std::string SnapshotText(const Inventory& inventory) {
  Json drivers = Json::array();
  for (const InventoryRecord& record : inventory.records) drivers.push_back(RecordJson(record));
  const Json document = {{"kind", Kind},
                         {"schema_version", SchemaVersion},
                         {"host", inventory.host},
                         {"windows", inventory.windows},
                         {"tool_version", inventory.tool},
                         {"time", inventory.time},
                         {"drivers", std::move(drivers)}};
  return JsonText(document, true) + "\n";
}

ParsedSnapshot ParseSnapshot(const std::string& text) {
  const Json document = Json::parse(text, nullptr, false);
  if (document.is_discarded()) {
    // The first member of every snapshot; what follows may be missing.
    const bool beganWell = text.find(Kind) < 64;
    return Problem(beganWell ? "is damaged: it is no whole JSON document" : "is no snapshot of driverlist");
  }
  if (!IsSnapshot(document)) return Problem("is no snapshot of driverlist");
  const Json& version = document["schema_version"];
  if (!version.is_number_unsigned() || version == 0u) return Problem("is damaged: it has no schema_version");
  if (version > SchemaVersion) {
    return Problem("was written by a newer driverlist: its schema version is " + version.dump() +
                   ", and this one reads " + std::to_string(SchemaVersion));
  }
  try {
    return {ReadInventory(document), std::string()};
  } catch (const Damaged& damage) {
    return Problem(std::string("is damaged: ") + damage.what());
  }
}

}  // namespace driverlist
