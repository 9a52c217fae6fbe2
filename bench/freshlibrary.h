/// @file
/// The library as a process sees it that has just loaded it.
#pragma once

#include <windows.h>

#include <vector>

#include "listing.h"

namespace bench {

/// driverinfo.dll, loaded while this lives, with empty caches at the beginning. One at a time, in a program that does
/// not import the library itself. All throw std::runtime_error when a module cannot be loaded or does not leave.
class FreshLibrary {
 public:
  FreshLibrary();
  ~FreshLibrary() noexcept(false);
  FreshLibrary(const FreshLibrary&) = delete;
  FreshLibrary& operator=(const FreshLibrary&) = delete;

  /// driverinfo.dll itself.
  HMODULE Module() const;

  /// Lists behind the records that were set. `mode` is a DriverInfoSetType.
  void List(int mode) { m_listDrivers(mode); }
  void SetRecords(const std::vector<Record>& records) { m_setRecords(records); }
  std::vector<Record> TakeRecords();

 private:
  HMODULE m_listing;
  SetRecordsFunction* m_setRecords;
  ListDriversFunction* m_listDrivers;
  TakeRecordsFunction* m_takeRecords;
};

}  // namespace bench
