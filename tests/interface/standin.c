/* Stands in for driverinventory.dll on the build machine: one record, for hosts whose run-time is not to be had under
   Wine. */
#include <driverinventory.h>

#include <string.h>

static const char* const Names[] = {"kind", "name", "version"};
static const char* const Texts[] = {"service", "ger\xC3\xA4t.sys", ""};
static int Opened;
static int Copied;
static const char* Sentence = "";

driverinventory_status driverinventory_collect(const driverinventory_options* options, driverinventory** inventory) {
  (void)options;
  *inventory = (driverinventory*)&Opened;
  ++Opened;
  return DRIVERINVENTORY_OK;
}

driverinventory_status driverinventory_open(const char* path, driverinventory** inventory) {
  (void)path;
  *inventory = NULL;
  Sentence = "It is not there.";
  return DRIVERINVENTORY_E_INPUT;
}

driverinventory_status driverinventory_release(driverinventory* inventory) {
  (void)inventory;
  return --Opened == 0 ? DRIVERINVENTORY_OK : DRIVERINVENTORY_E_HANDLE;
}

driverinventory_status driverinventory_count(const driverinventory* inventory, size_t* count) {
  *count = 1;
  return inventory == (driverinventory*)&Opened ? DRIVERINVENTORY_OK : DRIVERINVENTORY_E_HANDLE;
}

int32_t driverinventory_find_member(const char* name) {
  int32_t i;
  for (i = 0; i < 3; ++i) {
    if (strcmp(name, Names[i]) == 0) return i;
  }
  return -1;
}

driverinventory_status driverinventory_text(const driverinventory* inventory, size_t record, int32_t member,
                                            const char** text, size_t* length) {
  if (inventory != (driverinventory*)&Opened || record != 0) return DRIVERINVENTORY_E_RANGE;
  *text = Texts[member];
  *length = strlen(*text);
  return *length > 0 ? DRIVERINVENTORY_OK : DRIVERINVENTORY_ABSENT;
}

driverinventory_status driverinventory_document(const driverinventory* inventory, int32_t document, char** text,
                                                size_t* length) {
  static char json[] = "{\"host\": \"\xE9\x9F\xB3\"}\n";
  if (inventory != (driverinventory*)&Opened || document != DRIVERINVENTORY_JSON) return DRIVERINVENTORY_E_ARGUMENT;
  *text = json;
  *length = strlen(json);
  ++Copied;
  return DRIVERINVENTORY_OK;
}

driverinventory_status driverinventory_free(char* text) {
  (void)text;
  return --Copied == 0 ? DRIVERINVENTORY_OK : DRIVERINVENTORY_E_HANDLE;
}

const char* driverinventory_error(void) { return Sentence; }

/* Python looks every function up. */
driverinventory_status driverinventory_read(const char* text, size_t length, driverinventory** inventory) {
  (void)length;
  return driverinventory_open(text, inventory);
}
driverinventory_status driverinventory_head(const driverinventory* inventory, const char* name, const char** text,
                                            size_t* length) {
  (void)name;
  return driverinventory_text(inventory, 0, 0, text, length);
}
int32_t driverinventory_member_count(void) { return 3; }
const char* driverinventory_member_name(int32_t member) { return Names[member]; }
int32_t driverinventory_member_type(int32_t member) { return member < 3 ? DRIVERINVENTORY_TEXT : 0; }
driverinventory_status driverinventory_number(const driverinventory* inventory, size_t record, int32_t member,
                                              uint64_t* number) {
  (void)inventory, (void)record, (void)member;
  *number = 0;
  return DRIVERINVENTORY_ABSENT;
}
driverinventory_status driverinventory_text_count(const driverinventory* inventory, size_t record, int32_t member,
                                                  size_t* count) {
  (void)inventory, (void)record, (void)member;
  *count = 0;
  return DRIVERINVENTORY_ABSENT;
}
driverinventory_status driverinventory_text_at(const driverinventory* inventory, size_t record, int32_t member,
                                               size_t position, const char** text, size_t* length) {
  (void)position;
  return driverinventory_text(inventory, record, member, text, length);
}
driverinventory_status driverinventory_health(const driverinventory* inventory, char** text, size_t* length) {
  return driverinventory_document(inventory, DRIVERINVENTORY_JSON, text, length);
}
driverinventory_status driverinventory_compare(const driverinventory* before, const driverinventory* after, char** text,
                                               size_t* length) {
  (void)after;
  return driverinventory_document(before, DRIVERINVENTORY_JSON, text, length);
}
uint32_t driverinventory_interface_version(void) { return DRIVERINVENTORY_INTERFACE_VERSION; }
const char* driverinventory_library_version(void) { return "0"; }
