/// @file
/// The driver inventory of a 64-bit Windows machine, for any language and any compiler: the flat C interface of a
/// single DLL that needs no other file. Plain C99; driverinventory.hpp wraps it for C++.
///
///     driverinventory* inventory = NULL;
///     if (driverinventory_collect(NULL, &inventory) != DRIVERINVENTORY_OK) return Fail(driverinventory_error());
///     size_t count = 0;
///     driverinventory_count(inventory, &count);
///     ...
///     driverinventory_release(inventory);
///
/// **Texts** are UTF-8 and end with a zero, which their length does not include; texts from a snapshot may contain
/// further zeros. Texts returned through `const char**` belong to the inventory and live until it is released. Texts
/// returned through `char**` belong to the caller, who frees them with driverinventory_free().
///
/// **Errors.** Functions that can fail return a status; driverinventory_error() describes the last failure of the
/// calling thread in one sentence. A function that fails sets its output to null or 0. Nothing is thrown; if memory
/// runs out, the status is DRIVERINVENTORY_E_MEMORY. For a null handle, a released handle and a pointer that never was
/// a handle, it is DRIVERINVENTORY_E_HANDLE.
///
/// **Threads.** Any thread may use any handle, and several threads may use one at the same time; release it only when
/// no thread uses it any more. If two threads collect at the same time, the second waits, because the underlying
/// library runs one listing at a time. Opening, comparing and examining snapshots never waits.
///
/// **Caching.** The first collection in a process caches the devices and the images of services; later collections read
/// only packages, states and configurations afresh. A long-running host that wants everything afresh unloads the
/// library and loads it again; unloading leaves nothing behind.
///
/// **Versions.** Functions and constants are only ever added. Structures begin with their size, so a program and a
/// library of different versions work together.
#ifndef DRIVERINVENTORY_H
#define DRIVERINVENTORY_H

#include <stddef.h>
#include <stdint.h>

// The library itself exports its functions through driverinventory.def.
#if defined(_WIN32) && !defined(DRIVERINVENTORY_EXPORTS)
#define DRIVERINVENTORY_API __declspec(dllimport)
#else
/// Declares a function of the library.
#define DRIVERINVENTORY_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/// Version of this header. If driverinventory_interface_version() is lower than the version of the header with which a
/// program was compiled, the library may lack functions that the program needs.
#define DRIVERINVENTORY_INTERFACE_VERSION 1

/// A finished inventory. The type is opaque.
typedef struct driverinventory driverinventory;

/// DRIVERINVENTORY_OK, DRIVERINVENTORY_ABSENT or DRIVERINVENTORY_E_...
typedef int32_t driverinventory_status;

/// Statuses.
enum {
  /// Done.
  DRIVERINVENTORY_OK = 0,
  /// The record has no value of this member: it is unknown or does not apply. Not a failure.
  DRIVERINVENTORY_ABSENT = 1,
  /// An argument is null or invalid.
  DRIVERINVENTORY_E_ARGUMENT = 2,
  /// Not a handle, or a handle that was released; not a text of the library, or a text that was freed.
  DRIVERINVENTORY_E_HANDLE = 3,
  /// There is no such record, or no such text in the array.
  DRIVERINVENTORY_E_RANGE = 4,
  /// There is no such member, or it has another type.
  DRIVERINVENTORY_E_MEMBER = 5,
  /// Memory ran out, or more inventories are open than the library can hold.
  DRIVERINVENTORY_E_MEMORY = 6,
  /// A file cannot be read, or is not a snapshot or a list of known drivers.
  DRIVERINVENTORY_E_INPUT = 7,
  /// The progress callback stopped the collection.
  DRIVERINVENTORY_E_STOPPED = 8,
  /// The options ask for something that this version of the library does not know.
  DRIVERINVENTORY_E_UNSUPPORTED = 9,
  /// Something else went wrong.
  DRIVERINVENTORY_E_INTERNAL = 10
};

/// Kinds of records; combine them with |.
enum {
  /// Driver services.
  DRIVERINVENTORY_SERVICES = 1,
  /// Present devices.
  DRIVERINVENTORY_DEVICES = 2,
  /// INF packages.
  DRIVERINVENTORY_PACKAGES = 4,
  /// Chipset packages.
  DRIVERINVENTORY_CHIPSETS = 8
};

/// Types of members.
enum {
  /// For driverinventory_text().
  DRIVERINVENTORY_TEXT = 1,
  /// For driverinventory_number().
  DRIVERINVENTORY_NUMBER = 2,
  /// For driverinventory_number(), which returns 1 or DRIVERINVENTORY_ABSENT.
  DRIVERINVENTORY_FLAG = 3,
  /// For driverinventory_text_count() and driverinventory_text_at().
  DRIVERINVENTORY_TEXTS = 4
};

/// Documents, byte for byte the same as those of the program driverlist.
enum {
  /// The document of "list --format json".
  DRIVERINVENTORY_JSON = 1,
  /// The document of "list --format jsonl": one line per record.
  DRIVERINVENTORY_JSON_LINES = 2,
  /// The document of "snapshot", which driverinventory_open() and driverinventory_read() read.
  DRIVERINVENTORY_SNAPSHOT = 3
};

/// Called during a collection, on the collecting thread, before each step: `what` says what is about to be read; `done`
/// of `total` is the position of the step. Return 0 to continue; anything else stops the collection, which then returns
/// DRIVERINVENTORY_E_STOPPED. The callback may use inventories but cannot start a collection, and must not throw.
typedef int32_t (*driverinventory_progress)(void* context, const char* what, uint64_t done, uint64_t total);

/// What to collect, and how. Set everything to zero and `size` to the size of the structure; a field that is zero has
/// no effect. A library older than the program refuses a field that it does not know (DRIVERINVENTORY_E_UNSUPPORTED),
/// unless the field is zero.
typedef struct driverinventory_options {
  /// sizeof(driverinventory_options).
  uint32_t size;
  /// Kinds of records, such as DRIVERINVENTORY_SERVICES | DRIVERINVENTORY_DEVICES; 0 for all.
  uint32_t kinds;
  /// If not 0, the image of each service is read, for its hashes and its signature.
  uint32_t verify;
  /// The number of `known_lists`.
  uint32_t known_list_count;
  /// Paths of lists of known drivers, in which images are looked up when they are verified. Without any,
  /// known-drivers.json next to the program is used, if it exists.
  const char* const* known_lists;
  /// Identifies the machine instead of its GUID, which cloned machines share; null for the GUID.
  const char* host_id;
  /// Null for no progress.
  driverinventory_progress progress;
  /// Passed to `progress`.
  void* context;
} driverinventory_options;

/// Collects the inventory of this machine into `*inventory`. `options` may be null. Anything that cannot be read is
/// left out.
DRIVERINVENTORY_API driverinventory_status driverinventory_collect(const driverinventory_options* options,
                                                                   driverinventory** inventory);

/// Opens the snapshot in the file at `path`. The inventory of a snapshot of schema 1 has only the members of schema 1.
DRIVERINVENTORY_API driverinventory_status driverinventory_open(const char* path, driverinventory** inventory);

/// Reads the snapshot in the `length` bytes at `text`, as driverinventory_open() does.
DRIVERINVENTORY_API driverinventory_status driverinventory_read(const char* text, size_t length,
                                                                driverinventory** inventory);

/// Releases an inventory and all texts in it. Does nothing for null.
DRIVERINVENTORY_API driverinventory_status driverinventory_release(driverinventory* inventory);

/// The number of records: services, devices, packages, chipset packages.
DRIVERINVENTORY_API driverinventory_status driverinventory_count(const driverinventory* inventory, size_t* count);

/// A fact about the machine and the run: `name` is "tool_version", "host", "host_id", "windows" or "time". `length` may
/// be null.
DRIVERINVENTORY_API driverinventory_status driverinventory_head(const driverinventory* inventory, const char* name,
                                                                const char** text, size_t* length);

/// The number of members. Members are numbered from 0; the numbers stay the same while the library is loaded.
DRIVERINVENTORY_API int32_t driverinventory_member_count(void);

/// Name of a member, as in documents; null if the number is not that of a member.
DRIVERINVENTORY_API const char* driverinventory_member_name(int32_t member);

/// Type of a member, such as DRIVERINVENTORY_TEXT; 0 if the number is not that of a member.
DRIVERINVENTORY_API int32_t driverinventory_member_type(int32_t member);

/// Number of the member called `name`, such as "version"; -1 if there is no such member.
DRIVERINVENTORY_API int32_t driverinventory_find_member(const char* name);

/// A text member of a record. `length` may be null.
DRIVERINVENTORY_API driverinventory_status driverinventory_text(const driverinventory* inventory, size_t record,
                                                                int32_t member, const char** text, size_t* length);

/// A number or flag member of a record.
DRIVERINVENTORY_API driverinventory_status driverinventory_number(const driverinventory* inventory, size_t record,
                                                                  int32_t member, uint64_t* number);

/// The number of texts in an array member of a record.
DRIVERINVENTORY_API driverinventory_status driverinventory_text_count(const driverinventory* inventory, size_t record,
                                                                      int32_t member, size_t* count);

/// One text in an array member of a record; `position` counts from 0. `length` may be null.
DRIVERINVENTORY_API driverinventory_status driverinventory_text_at(const driverinventory* inventory, size_t record,
                                                                   int32_t member, size_t position, const char** text,
                                                                   size_t* length);

/// The whole inventory as a document, such as DRIVERINVENTORY_JSON. `length` may be null.
DRIVERINVENTORY_API driverinventory_status driverinventory_document(const driverinventory* inventory, int32_t document,
                                                                    char** text, size_t* length);

/// What deserves a look, as JSON: the document of "health --format json". `length` may be null.
DRIVERINVENTORY_API driverinventory_status driverinventory_health(const driverinventory* inventory, char** text,
                                                                  size_t* length);

/// The differences between two inventories of a machine, as JSON: the document of "diff --format json". `length` may be
/// null.
DRIVERINVENTORY_API driverinventory_status driverinventory_compare(const driverinventory* before,
                                                                   const driverinventory* after, char** text,
                                                                   size_t* length);

/// Frees a text that the library returned through a `char**`. Does nothing for null.
DRIVERINVENTORY_API driverinventory_status driverinventory_free(char* text);

/// The last failure of this thread, in one sentence; empty before the first failure. Valid until the next failure of
/// the thread.
DRIVERINVENTORY_API const char* driverinventory_error(void);

/// The DRIVERINVENTORY_INTERFACE_VERSION with which the library was built.
DRIVERINVENTORY_API uint32_t driverinventory_interface_version(void);

/// Version of the library, such as "1.2.3"; inventories that it collects have it as "tool_version".
DRIVERINVENTORY_API const char* driverinventory_library_version(void);

#ifdef __cplusplus
}
#endif

#endif
