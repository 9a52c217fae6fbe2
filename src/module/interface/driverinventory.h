/// @file
/// The driver inventory of a 64-bit Windows machine, for any language and any compiler: a flat C interface of one DLL
/// that needs nothing beside it. Plain C99; C++ has a wrapper in driverinventory.hpp.
///
///     driverinventory* inventory = NULL;
///     if (driverinventory_collect(NULL, &inventory) != DRIVERINVENTORY_OK) return Fail(driverinventory_error());
///     size_t count = 0;
///     driverinventory_count(inventory, &count);
///     ...
///     driverinventory_release(inventory);
///
/// **Texts** are UTF-8 and end with a zero, which their length does not count; those of a snapshot may hold zeros of
/// their own. Texts that the library fills into `const char**` belong to the inventory and live until it is released;
/// those in `char**` are the caller's, who gives them to driverinventory_free().
///
/// **Errors.** Functions that can fail return a status; driverinventory_error() says in a sentence what the last
/// failure of the calling thread was. A function that fails sets what it would have filled to null or 0. Nothing is
/// thrown; memory that runs out is DRIVERINVENTORY_E_MEMORY. A null handle, a released one and a pointer that never
/// was a handle are DRIVERINVENTORY_E_HANDLE.
///
/// **Threads.** Any thread may use any handle, several at once; release it when nobody uses it any more. Two threads
/// may collect at once: the second waits, because the library behind lists one machine at a time. Snapshots are opened,
/// compared and examined without waiting.
///
/// **What is kept.** The first collection in a process keeps what it found of devices and of the images of services;
/// later ones read packages, states and configurations afresh. A host that runs for long and wants everything afresh
/// unloads the library and loads it again, which leaves nothing behind.
///
/// **Versions.** Functions and constants are only ever added. Structures begin with their size, so a program and a
/// library of different ages understand each other.
#ifndef DRIVERINVENTORY_H
#define DRIVERINVENTORY_H

#include <stddef.h>
#include <stdint.h>

// The library itself exports by driverinventory.def.
#if defined(_WIN32) && !defined(DRIVERINVENTORY_EXPORTS)
#define DRIVERINVENTORY_API __declspec(dllimport)
#else
/// Declares a function of the library.
#define DRIVERINVENTORY_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/// Version of this header. driverinventory_interface_version() is at least that of the header that a program was
/// compiled with, or the program may lack functions.
#define DRIVERINVENTORY_INTERFACE_VERSION 1

/// A finished inventory. Never looked into.
typedef struct driverinventory driverinventory;

/// DRIVERINVENTORY_OK, DRIVERINVENTORY_ABSENT or DRIVERINVENTORY_E_...
typedef int32_t driverinventory_status;

/// Statuses.
enum {
  /// Done.
  DRIVERINVENTORY_OK = 0,
  /// The record has no value of this member: it is unknown or does not apply. Not a failure.
  DRIVERINVENTORY_ABSENT = 1,
  /// An argument is null or makes no sense.
  DRIVERINVENTORY_E_ARGUMENT = 2,
  /// Not a handle, or one that was released; not a text of the library, or one that was freed.
  DRIVERINVENTORY_E_HANDLE = 3,
  /// There is no such record, or no such text in the array.
  DRIVERINVENTORY_E_RANGE = 4,
  /// There is no such member, or it is of another type.
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

/// Kinds of records, to be combined.
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
  /// For driverinventory_number(), which gives 1, or nothing.
  DRIVERINVENTORY_FLAG = 3,
  /// For driverinventory_text_count() and driverinventory_text_at().
  DRIVERINVENTORY_TEXTS = 4
};

/// Documents, the same byte for byte as those of the program driverlist.
enum {
  /// That of "list --format json".
  DRIVERINVENTORY_JSON = 1,
  /// That of "list --format jsonl": a line per record.
  DRIVERINVENTORY_JSON_LINES = 2,
  /// That of "snapshot", which driverinventory_open() and driverinventory_read() take.
  DRIVERINVENTORY_SNAPSHOT = 3
};

/// Called during a collection, on the thread that collects, before each step: `what` is being read, the step `done` of
/// `total`. 0 goes on; anything else stops, and the collection ends with DRIVERINVENTORY_E_STOPPED. It may use
/// inventories but cannot collect, and must not throw.
typedef int32_t (*driverinventory_progress)(void* context, const char* what, uint64_t done, uint64_t total);

/// What to collect, and how. Set everything to zero and `size` to the size of the structure; what is zero is not asked
/// for. A library that is older than the program refuses what it does not know (DRIVERINVENTORY_E_UNSUPPORTED), unless
/// that is zero.
typedef struct driverinventory_options {
  /// sizeof(driverinventory_options).
  uint32_t size;
  /// Kinds of records, such as DRIVERINVENTORY_SERVICES | DRIVERINVENTORY_DEVICES; 0 for all.
  uint32_t kinds;
  /// Not 0 to read the image of each service, for its hashes and its signature.
  uint32_t verify;
  /// How many `known_lists` there are.
  uint32_t known_list_count;
  /// Paths of lists of known drivers, in which images are looked up while they are verified. Without any, that of
  /// known-drivers.json beside the program, where there is one.
  const char* const* known_lists;
  /// Identifies the machine, in place of its GUID, which cloned machines share; null for the GUID.
  const char* host_id;
  /// Null for no progress.
  driverinventory_progress progress;
  /// Passed to `progress`.
  void* context;
} driverinventory_options;

/// Collects the inventory of this machine into `*inventory`. `options` may be null. What cannot be read is left out.
DRIVERINVENTORY_API driverinventory_status driverinventory_collect(const driverinventory_options* options,
                                                                   driverinventory** inventory);

/// Opens the snapshot in the file at `path`. The inventory of a snapshot of schema 1 has the members that schema 1 has.
DRIVERINVENTORY_API driverinventory_status driverinventory_open(const char* path, driverinventory** inventory);

/// Reads the snapshot in the `length` bytes at `text`, as driverinventory_open() does.
DRIVERINVENTORY_API driverinventory_status driverinventory_read(const char* text, size_t length,
                                                                driverinventory** inventory);

/// Lets go of an inventory and of all texts in it. Null is nothing to release.
DRIVERINVENTORY_API driverinventory_status driverinventory_release(driverinventory* inventory);

/// How many records there are: services, devices, packages, chipset packages.
DRIVERINVENTORY_API driverinventory_status driverinventory_count(const driverinventory* inventory, size_t* count);

/// What is known of the machine and the run: `name` is "tool_version", "host", "host_id", "windows" or "time".
/// `length` may be null.
DRIVERINVENTORY_API driverinventory_status driverinventory_head(const driverinventory* inventory, const char* name,
                                                                const char** text, size_t* length);

/// How many members records have; each is a number from 0, the same as long as the library is loaded.
DRIVERINVENTORY_API int32_t driverinventory_member_count(void);

/// Name of a member, as in documents; null for a number that is no member.
DRIVERINVENTORY_API const char* driverinventory_member_name(int32_t member);

/// Type of a member, such as DRIVERINVENTORY_TEXT; 0 for a number that is no member.
DRIVERINVENTORY_API int32_t driverinventory_member_type(int32_t member);

/// Number of the member called `name`, such as "version"; -1 when there is none.
DRIVERINVENTORY_API int32_t driverinventory_find_member(const char* name);

/// The text of a record. `length` may be null.
DRIVERINVENTORY_API driverinventory_status driverinventory_text(const driverinventory* inventory, size_t record,
                                                                int32_t member, const char** text, size_t* length);

/// The number or flag of a record.
DRIVERINVENTORY_API driverinventory_status driverinventory_number(const driverinventory* inventory, size_t record,
                                                                  int32_t member, uint64_t* number);

/// How many texts the array of a record holds.
DRIVERINVENTORY_API driverinventory_status driverinventory_text_count(const driverinventory* inventory, size_t record,
                                                                      int32_t member, size_t* count);

/// One text, from 0, of the array of a record. `length` may be null.
DRIVERINVENTORY_API driverinventory_status driverinventory_text_at(const driverinventory* inventory, size_t record,
                                                                   int32_t member, size_t position, const char** text,
                                                                   size_t* length);

/// The whole inventory as one of DRIVERINVENTORY_JSON, ... `length` may be null.
DRIVERINVENTORY_API driverinventory_status driverinventory_document(const driverinventory* inventory, int32_t document,
                                                                    char** text, size_t* length);

/// What deserves a look, as JSON: the document of "health --format json". `length` may be null.
DRIVERINVENTORY_API driverinventory_status driverinventory_health(const driverinventory* inventory, char** text,
                                                                  size_t* length);

/// What differs between two inventories of a machine, as JSON: the document of "diff --format json". `length` may be
/// null.
DRIVERINVENTORY_API driverinventory_status driverinventory_compare(const driverinventory* before,
                                                                   const driverinventory* after, char** text,
                                                                   size_t* length);

/// Frees a text that the library filled into a `char**`. Null is nothing to free.
DRIVERINVENTORY_API driverinventory_status driverinventory_free(char* text);

/// What the last failure of this thread was, in a sentence; empty before the first one. Valid until the next failure of
/// the thread.
DRIVERINVENTORY_API const char* driverinventory_error(void);

/// DRIVERINVENTORY_INTERFACE_VERSION of the library.
DRIVERINVENTORY_API uint32_t driverinventory_interface_version(void);

/// Version of the library, such as "1.2.3": the "tool_version" of what it collects.
DRIVERINVENTORY_API const char* driverinventory_library_version(void);

#ifdef __cplusplus
}
#endif

#endif
