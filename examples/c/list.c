/* Lists the drivers of this machine: a line for each, or with "json" the whole inventory as one JSON document. */
#include <driverinventory.h>
#include <stdio.h>
#include <string.h>

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#endif

static int Fail(void) {
  fprintf(stderr, "list: %s\n", driverinventory_error());
  return 1;
}

static void PrintText(const driverinventory* inventory, size_t record, const char* member, const char* end) {
  const char* text = NULL;
  driverinventory_text(inventory, record, driverinventory_find_member(member), &text, NULL);
  printf("%s%s", text != NULL ? text : "", end);
}

static int PrintRecords(const driverinventory* inventory) {
  size_t count = 0;
  size_t i;
  if (driverinventory_count(inventory, &count) != DRIVERINVENTORY_OK) return Fail();
  for (i = 0; i < count; ++i) {
    PrintText(inventory, i, "kind", "\t");
    PrintText(inventory, i, "name", "\t");
    PrintText(inventory, i, "version", "\n");
  }
  return 0;
}

static int PrintJson(const driverinventory* inventory) {
  char* json = NULL;
  size_t length = 0;
  if (driverinventory_document(inventory, DRIVERINVENTORY_JSON, &json, &length) != DRIVERINVENTORY_OK) return Fail();
  fwrite(json, 1, length, stdout);
  driverinventory_free(json);
  return 0;
}

int main(int argc, char** argv) {
  driverinventory* inventory = NULL;
  int result;
#ifdef _WIN32
  _setmode(_fileno(stdout), _O_BINARY);
#endif
  if (driverinventory_collect(NULL, &inventory) != DRIVERINVENTORY_OK) return Fail();
  result = argc > 1 && strcmp(argv[1], "json") == 0 ? PrintJson(inventory) : PrintRecords(inventory);
  driverinventory_release(inventory);
  return result;
}
