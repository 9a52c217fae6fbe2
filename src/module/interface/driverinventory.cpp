#include "driverinventory.h"

#include <cstring>
#include <streambuf>
#include <utility>

#include "interface/collection.h"
#include "interface/contents.h"
#include "interface/failure.h"
#include "interface/handles.h"
#include "interface/texts.h"
#include "inventory/comparison.h"
#include "inventory/documents.h"
#include "inventory/healthrules.h"
#include "inventory/input.h"
#include "inventory/snapshot.h"

namespace flat {
namespace {

using inventory::Inventory;
using inventory::Member;

/// `pointer`, which must not be null; `what` names it in the sentence.
template <typename T>
T* Needed(T* pointer, const char* what) {
  if (pointer == nullptr) throw Failure(DRIVERINVENTORY_E_ARGUMENT, std::string(what) + " is null.");
  return pointer;
}

/// A place for the result, empty until there is one.
template <typename T>
T* Cleared(T* place, const char* what) {
  *Needed(place, what) = T();
  return place;
}

void Give(std::size_t* place, std::size_t value) {
  if (place != nullptr) *place = value;
}

driverinventory_status Open(Inventory&& inventory, driverinventory** place) {
  *place = NewHandle(std::make_unique<Contents>(std::move(inventory)));
  return DRIVERINVENTORY_OK;
}

/// Bytes of the caller.
class Bytes : public std::streambuf {
 public:
  Bytes(const char* text, std::size_t length) : m_begin(const_cast<char*>(text)), m_length(length) { Restart(); }

 protected:
  pos_type seekpos(pos_type, std::ios_base::openmode) override {
    Restart();
    return 0;
  }

 private:
  /// Nothing is written to them.
  void Restart() { setg(m_begin, m_begin, m_begin + m_length); }

  char* m_begin;
  std::size_t m_length;
};

/// Reads a snapshot; `subject` begins the sentence about what is wrong with it.
Inventory ReadSnapshot(std::streambuf& text, const std::string& subject) {
  try {
    return inventory::ReadSnapshot(text);
  } catch (const inventory::InputProblem& problem) {
    throw Failure(DRIVERINVENTORY_E_INPUT, subject + " " + problem.what() + ".");
  }
}

Inventory OpenSnapshot(const std::string& path) {
  try {
    inventory::InputFile file(path);
    return ReadSnapshot(file, path);
  } catch (const inventory::InputProblem& problem) {
    throw Failure(DRIVERINVENTORY_E_INPUT, path + " " + problem.what() + ".");
  }
}

const std::string* HeadText(const inventory::Head& head, std::string_view name) {
  for (const auto& [known, text] :
       {std::pair("tool_version", &head.tool_version), std::pair("host", &head.host),
        std::pair("host_id", &head.host_id), std::pair("windows", &head.windows), std::pair("time", &head.time)}) {
    if (name == known) return text;
  }
  throw Failure(DRIVERINVENTORY_E_MEMBER, "The head has no \"" + std::string(name) + "\".");
}

const Member* FindMember(std::int32_t member) {
  const auto& members = inventory::Members();
  const bool isMember = member >= 0 && static_cast<std::size_t>(member) < members.size();
  return isMember ? &members[static_cast<std::size_t>(member)] : nullptr;
}

const Member& MemberOf(std::int32_t member) {
  if (const Member* const found = FindMember(member)) return *found;
  throw Failure(DRIVERINVENTORY_E_MEMBER, "There is no member " + std::to_string(member) + ".");
}

[[noreturn]] void RefuseType(const Member& member, const char* type) {
  throw Failure(DRIVERINVENTORY_E_MEMBER, std::string(member.name) + " is not " + type + ".");
}

const Contents& ContentsWith(const driverinventory* handle, std::size_t record) {
  const Contents& contents = ContentsOf(handle);
  if (record < contents.Count()) return contents;
  throw Failure(DRIVERINVENTORY_E_RANGE, "There is no record " + std::to_string(record) + ": there are " +
                                             std::to_string(contents.Count()) + ".");
}

const std::vector<std::string>& TextsOf(const driverinventory* handle, std::size_t record, std::int32_t number) {
  const Contents& contents = ContentsWith(handle, record);
  const Member& member = MemberOf(number);
  if (TypeOf(member) != MemberType::Texts) RefuseType(member, "an array of texts");
  return contents.Texts(record, member);
}

driverinventory_status GiveText(const std::string* text, const char** place, std::size_t* length) {
  if (text == nullptr || text->empty()) return DRIVERINVENTORY_ABSENT;
  *place = text->c_str();
  Give(length, text->size());
  return DRIVERINVENTORY_OK;
}

driverinventory_status GiveCopy(const std::string& text, char** place, std::size_t* length) {
  *place = HandOut(text);
  Give(length, text.size());
  return DRIVERINVENTORY_OK;
}

std::string DocumentOf(const Inventory& inventory, std::int32_t document) {
  switch (document) {
    case DRIVERINVENTORY_JSON:
      return inventory::InventoryJson(inventory);
    case DRIVERINVENTORY_JSON_LINES:
      return inventory::InventoryJsonLines(inventory);
    case DRIVERINVENTORY_SNAPSHOT:
      return inventory::SnapshotText(inventory);
    default:
      throw Failure(DRIVERINVENTORY_E_ARGUMENT, "There is no document " + std::to_string(document) + ".");
  }
}

Inventory CopyOf(const Contents& contents) { return contents.Get(); }

}  // namespace
}  // namespace flat

using namespace flat;

driverinventory_status driverinventory_collect(const driverinventory_options* options, driverinventory** inventory) {
  return Guarded([&] {
    Cleared(inventory, "The output pointer for the inventory");
    return Open(Collect(ReadOptions(options)), inventory);
  });
}

driverinventory_status driverinventory_open(const char* path, driverinventory** inventory) {
  return Guarded([&] {
    Cleared(inventory, "The output pointer for the inventory");
    return Open(OpenSnapshot(Needed(path, "The path")), inventory);
  });
}

driverinventory_status driverinventory_read(const char* text, size_t length, driverinventory** inventory) {
  return Guarded([&] {
    Cleared(inventory, "The output pointer for the inventory");
    Bytes bytes(Needed(text, "The text"), length);
    return Open(ReadSnapshot(bytes, "The text"), inventory);
  });
}

driverinventory_status driverinventory_release(driverinventory* inventory) {
  return Guarded([&] {
    if (inventory != nullptr) Release(inventory);
    return DRIVERINVENTORY_OK;
  });
}

driverinventory_status driverinventory_count(const driverinventory* inventory, size_t* count) {
  return Guarded([&] {
    Cleared(count, "The output pointer for the number");
    *count = ContentsOf(inventory).Count();
    return DRIVERINVENTORY_OK;
  });
}

driverinventory_status driverinventory_head(const driverinventory* inventory, const char* name, const char** text,
                                            size_t* length) {
  return Guarded([&] {
    Give(length, 0);
    Cleared(text, "The output pointer for the text");
    return GiveText(HeadText(ContentsOf(inventory).Get().head, Needed(name, "The name")), text, length);
  });
}

int32_t driverinventory_member_count(void) { return static_cast<int32_t>(inventory::Members().size()); }

const char* driverinventory_member_name(int32_t member) {
  const Member* const found = FindMember(member);
  // Names are whole literals, which end with a zero.
  return found == nullptr ? nullptr : found->name.data();
}

int32_t driverinventory_member_type(int32_t member) {
  const Member* const found = FindMember(member);
  return found == nullptr ? 0 : static_cast<int32_t>(TypeOf(*found));
}

int32_t driverinventory_find_member(const char* name) {
  const Member* const found = name == nullptr ? nullptr : inventory::FindMember(name);
  return found == nullptr ? -1 : static_cast<int32_t>(found - inventory::Members().data());
}

driverinventory_status driverinventory_text(const driverinventory* inventory, size_t record, int32_t member,
                                            const char** text, size_t* length) {
  return Guarded([&] {
    Give(length, 0);
    Cleared(text, "The output pointer for the text");
    const Contents& contents = ContentsWith(inventory, record);
    const Member& found = MemberOf(member);
    if (TypeOf(found) != MemberType::Text) RefuseType(found, "a text");
    return GiveText(contents.Text(record, found), text, length);
  });
}

driverinventory_status driverinventory_number(const driverinventory* inventory, size_t record, int32_t member,
                                              uint64_t* number) {
  return Guarded([&]() -> driverinventory_status {
    Cleared(number, "The output pointer for the number");
    const Contents& contents = ContentsWith(inventory, record);
    const Member& found = MemberOf(member);
    const MemberType type = TypeOf(found);
    if (type != MemberType::Number && type != MemberType::Flag) RefuseType(found, "a number");
    const std::optional<std::uint64_t> value = contents.Number(record, found);
    if (!value) return DRIVERINVENTORY_ABSENT;
    *number = *value;
    return DRIVERINVENTORY_OK;
  });
}

driverinventory_status driverinventory_text_count(const driverinventory* inventory, size_t record, int32_t member,
                                                  size_t* count) {
  return Guarded([&]() -> driverinventory_status {
    Cleared(count, "The output pointer for the number");
    *count = TextsOf(inventory, record, member).size();
    return *count == 0 ? DRIVERINVENTORY_ABSENT : DRIVERINVENTORY_OK;
  });
}

driverinventory_status driverinventory_text_at(const driverinventory* inventory, size_t record, int32_t member,
                                               size_t position, const char** text, size_t* length) {
  return Guarded([&]() -> driverinventory_status {
    Give(length, 0);
    Cleared(text, "The output pointer for the text");
    const std::vector<std::string>& texts = TextsOf(inventory, record, member);
    if (position >= texts.size()) {
      throw Failure(DRIVERINVENTORY_E_RANGE, "There is no text " + std::to_string(position) + ": there are " +
                                                 std::to_string(texts.size()) + ".");
    }
    *text = texts[position].c_str();
    Give(length, texts[position].size());
    return DRIVERINVENTORY_OK;
  });
}

driverinventory_status driverinventory_document(const driverinventory* inventory, int32_t document, char** text,
                                                size_t* length) {
  return Guarded([&] {
    Give(length, 0);
    Cleared(text, "The output pointer for the text");
    return GiveCopy(DocumentOf(ContentsOf(inventory).Get(), document), text, length);
  });
}

driverinventory_status driverinventory_health(const driverinventory* inventory, char** text, size_t* length) {
  return Guarded([&] {
    Give(length, 0);
    Cleared(text, "The output pointer for the text");
    const Inventory& examined = ContentsOf(inventory).Get();
    return GiveCopy(inventory::FindingsJson(inventory::Examine(examined.records), examined), text, length);
  });
}

driverinventory_status driverinventory_compare(const driverinventory* before, const driverinventory* after, char** text,
                                               size_t* length) {
  return Guarded([&] {
    Give(length, 0);
    Cleared(text, "The output pointer for the text");
    const inventory::Comparison comparison = inventory::Compare(CopyOf(ContentsOf(before)), CopyOf(ContentsOf(after)));
    return GiveCopy(inventory::ComparisonJson(comparison, inventory::ThisMachine({})), text, length);
  });
}

driverinventory_status driverinventory_free(char* text) {
  return Guarded([&] {
    if (text != nullptr) TakeBack(text);
    return DRIVERINVENTORY_OK;
  });
}

const char* driverinventory_error(void) { return KeptSentence(); }

uint32_t driverinventory_interface_version(void) { return DRIVERINVENTORY_INTERFACE_VERSION; }

const char* driverinventory_library_version(void) { return DRIVERINVENTORY_VERSION; }
