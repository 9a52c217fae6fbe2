/// @file
/// The library as a process sees it that has just loaded it.
#pragma once

#include <windows.h>

#include <vector>

#include "libraryguest.h"
#include "listing.h"

namespace bench {

/// A fresh driverinfo.dll with the functions of benchlisting.dll.
class FreshLibrary {
 public:
  FreshLibrary();

  /// driverinfo.dll itself.
  HMODULE Module() const;

  /// Lists behind the records that were set. `mode` is a DriverInfoSetType.
  void List(int mode) { m_listDrivers(mode); }
  void SetRecords(const std::vector<Record>& records) { m_setRecords(records); }
  std::vector<Record> TakeRecords();

 private:
  test::LibraryGuest m_listing;
  SetRecordsFunction* m_setRecords;
  ListDriversFunction* m_listDrivers;
  TakeRecordsFunction* m_takeRecords;
};

}  // namespace bench
