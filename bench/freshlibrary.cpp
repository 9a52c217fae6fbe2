#include "freshlibrary.h"

#include "importhook.h"

namespace bench {

FreshLibrary::FreshLibrary()
    : m_listing("benchlisting.dll"),
      m_setRecords(m_listing.Lookup<SetRecordsFunction>("SetRecords")),
      m_listDrivers(m_listing.Lookup<ListDriversFunction>("ListDrivers")),
      m_takeRecords(m_listing.Lookup<TakeRecordsFunction>("TakeRecords")) {}

HMODULE FreshLibrary::Module() const { return test::Library(); }

std::vector<Record> FreshLibrary::TakeRecords() {
  std::vector<Record> records;
  m_takeRecords(records);
  return records;
}

}  // namespace bench
