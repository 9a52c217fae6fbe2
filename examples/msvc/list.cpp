// Lists the drivers of this machine: a line for each, or with "json" the whole inventory as one JSON document. Needs no
// C run-time library: only kernel32.dll and driverinventory.dll, whatever the compiler.
#include <driverinventory.h>

extern "C" {
__declspec(dllimport) void* __stdcall GetStdHandle(unsigned long which);
__declspec(dllimport) int __stdcall WriteFile(void* file, const void* bytes, unsigned long size, unsigned long* written,
                                              void* overlapped);
__declspec(dllimport) const wchar_t* __stdcall GetCommandLineW();
__declspec(dllimport) __declspec(noreturn) void __stdcall ExitProcess(unsigned code);
}

namespace {

constexpr unsigned long StandardOutput = static_cast<unsigned long>(-11);
constexpr unsigned long StandardError = static_cast<unsigned long>(-12);

/// Writes a large text too, a part at a time.
void Write(unsigned long where, const char* text, size_t length) {
  while (length > 0) {
    unsigned long written = 0;
    const size_t part = length < 65536 ? length : 65536;
    if (!WriteFile(GetStdHandle(where), text, static_cast<unsigned long>(part), &written, nullptr)) return;
    text += written;
    length -= written;
  }
}

void Write(unsigned long where, const char* text) {
  size_t length = 0;
  while (text[length] != '\0') ++length;
  Write(where, text, length);
}

unsigned Fail() {
  Write(StandardError, "list: ");
  Write(StandardError, driverinventory_error());
  Write(StandardError, "\n");
  return 1;
}

/// Whether the last word of the command line is "json".
bool WantsJson() {
  const wchar_t* end = GetCommandLineW();
  const wchar_t* word = end;
  for (; *end != L'\0'; ++end) {
    if (*end == L' ' && end[1] != L'\0' && end[1] != L' ') word = end + 1;
  }
  const wchar_t* const json = L"json";
  for (int i = 0; i < 4; ++i) {
    if (word[i] != json[i]) return false;
  }
  return word[4] == L'\0' || word[4] == L' ';
}

void WriteMember(const driverinventory* inventory, size_t record, const char* member, const char* end) {
  const char* text = nullptr;
  size_t length = 0;
  driverinventory_text(inventory, record, driverinventory_find_member(member), &text, &length);
  Write(StandardOutput, text, length);
  Write(StandardOutput, end);
}

unsigned WriteRecords(const driverinventory* inventory) {
  size_t count = 0;
  if (driverinventory_count(inventory, &count) != DRIVERINVENTORY_OK) return Fail();
  for (size_t i = 0; i < count; ++i) {
    WriteMember(inventory, i, "kind", "\t");
    WriteMember(inventory, i, "name", "\t");
    WriteMember(inventory, i, "version", "\n");
  }
  return 0;
}

unsigned WriteJson(const driverinventory* inventory) {
  char* json = nullptr;
  size_t length = 0;
  if (driverinventory_document(inventory, DRIVERINVENTORY_JSON, &json, &length) != DRIVERINVENTORY_OK) return Fail();
  Write(StandardOutput, json, length);
  driverinventory_free(json);
  return 0;
}

}  // namespace

extern "C" void mainCRTStartup() {
  driverinventory* inventory = nullptr;
  if (driverinventory_collect(nullptr, &inventory) != DRIVERINVENTORY_OK) ExitProcess(Fail());
  const unsigned result = WantsJson() ? WriteJson(inventory) : WriteRecords(inventory);
  driverinventory_release(inventory);
  ExitProcess(result);
}
