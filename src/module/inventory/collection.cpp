#include "inventory/collection.h"

#include "inventory/ignoringcase.h"
#include "inventory/json.h"
#include "trust/digest.h"

namespace inventory {
namespace {

/// One line per record, without the members of the head.
std::string RecordLines(const Records& records) {
  std::string lines;
  for (const Record& record : records) {
    Json line = Json::object();
    AddMembers(line, record);
    lines += JsonText(line, false) + "\n";
  }
  return lines;
}

/// Puts the members of `head` at the beginning of each of `lines`: `{"a":1}` and `{"b":2}` become `{"a":1,"b":2}`.
std::string WithHead(const Json& head, const std::string& lines) {
  std::string beginning = JsonText(head, false);
  beginning.back() = ',';
  std::string text;
  for (std::size_t begin = 0; begin < lines.size();) {
    const std::size_t end = lines.find('\n', begin) + 1;
    text += beginning;
    text.append(lines, begin + 1, end - begin - 1);
    begin = end;
  }
  return text;
}

}  // namespace

std::string CollectionLines(const Inventory& inventory, const std::string& knownDigest) {
  const Json head = HeadJson(inventory.head);
  const std::string lines = RecordLines(inventory.records);
  const std::string digest = trust::Hex(trust::DigestOf(trust::DigestAlgorithm::Sha256, lines));
  const bool isUnchanged = !digest.empty() && CompareIgnoringCase(knownDigest, digest) == 0;
  Json first = head;
  first["kind"] = "collection";
  first["drivers"] = inventory.records.size();
  if (!digest.empty()) first["digest"] = digest;
  if (isUnchanged) first["unchanged"] = true;
  return JsonText(first, false) + "\n" + (isUnchanged ? std::string() : WithHead(head, lines));
}

}  // namespace inventory
