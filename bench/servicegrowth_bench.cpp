// How the service listing grows with the number of services, on the machine of benchmachine: the service control
// manager's answer is cut, or repeated, to so many entries; each is then asked for as ever.
#include <windows.h>

#include <memory>
#include <stdexcept>

#include "figures.h"
#include "freshlibrary.h"
#include "importhook.h"

namespace {

/// The driver services of the machine.
class Services {
 public:
  explicit Services(SC_HANDLE manager) {
    DWORD size = 0;
    DWORD resume = 0;
    EnumServicesStatusA(manager, SERVICE_DRIVER, SERVICE_STATE_ALL, nullptr, 0, &size, &m_count, &resume);
    m_buffer.reset(new char[size]);
    if (!EnumServicesStatusA(manager, SERVICE_DRIVER, SERVICE_STATE_ALL, Entries(), size, &size, &m_count, &resume) ||
        m_count != 200) {
      throw std::runtime_error("this is no machine of benchmachine");
    }
  }
  const ENUM_SERVICE_STATUSA& operator[](std::size_t index) const { return Entries()[index % m_count]; }

 private:
  ENUM_SERVICE_STATUSA* Entries() const { return reinterpret_cast<ENUM_SERVICE_STATUSA*>(m_buffer.get()); }

  std::unique_ptr<char[]> m_buffer;
  DWORD m_count = 0;
};

/// A fresh listing of `count` services.
double ListingSeconds(DWORD count) {
  bench::FreshLibrary library;
  std::unique_ptr<Services> services;
  HOOK(enumeration, library.Module(), EnumServicesStatusA,
       [&](SC_HANDLE manager, DWORD, DWORD, ENUM_SERVICE_STATUSA* entries, DWORD size, DWORD* needed, DWORD* returned,
           DWORD*) {
         if (services == nullptr) services = std::make_unique<Services>(manager);
         *needed = count * static_cast<DWORD>(sizeof(*entries));
         if (size < *needed) {
           SetLastError(ERROR_MORE_DATA);
           return FALSE;
         }
         for (DWORD i = 0; i < count; ++i) entries[i] = (*services)[i];
         *returned = count;
         return TRUE;
       });
  const double seconds = bench::Seconds([&] { library.List(1); });
  if (library.TakeRecords().size() < count * 9 / 10) throw std::runtime_error("services are missing");
  return seconds;
}

void AddFigures() {
  for (const DWORD count : {50u, 100u, 200u, 400u}) {
    const std::string from = std::to_string(count);
    const std::string to = std::to_string(2 * count);
    bench::AddComparison({"Service listing, " + from + " to " + to + " services", "ms", 2.2, from,
                          [=] { return ListingSeconds(count); }, to, [=] { return ListingSeconds(2 * count); }});
  }
}

}  // namespace

int main(int argc, char** argv) { return bench::Main(argc, argv, &AddFigures); }
