#include <windows.h>

#include <array>
#include <boost/algorithm/string/predicate.hpp>
#include <boost/filesystem/operations.hpp>
#include <new>

#include "loglines.h"
#include "packagefiles.h"
#include "platform/logline.h"
#include "platform/platformtext.h"

namespace Orvane {

using boost::algorithm::iends_with;
using boost::algorithm::istarts_with;

void PackageFiles::ScanOemInfCatalogue(std::vector<DriverData>& drivers) {
  static std::vector<DriverData> cache;
  ORVANE_LOG(4) << loglines::OemPackagesBegin;
  if (!cache.empty()) {
    ORVANE_LOG(4) << "Get data from cache.";
    drivers.insert(drivers.end(), cache.begin(), cache.end());
    return;
  }
  std::array<char, 256> windows{};
  std::string directory;
  if (GetSystemWindowsDirectoryA(windows.data(), static_cast<UINT>(windows.size())) > 0) {
    directory = BoundedText(windows.data(), windows.size()) + "\\inf";
  }
  try {
    for (const auto& entry : boost::filesystem::directory_iterator(boost::filesystem::path(directory))) {
      const std::string name = entry.path().filename().string();
      if (istarts_with(name, "oem") && iends_with(name, ".inf")) ReadInfPackage(entry.path().string(), drivers);
    }
  } catch (const boost::system::system_error& error) {
    // Boost reports some failed allocations this way; the caller must learn of them.
    if (error.code() == make_error_code(boost::system::errc::not_enough_memory)) throw std::bad_alloc();
    // A directory that cannot be walked, or a name outside the ANSI code page: the catalogue is what was found until
    // then.
  }
  // The cache never fills: only a cache that already holds something grows, and such a cache would have been returned
  // above. So the catalogue is read afresh on every call, because packages come and go while the process runs. The
  // other listings are cached.
  if (!cache.empty()) cache.insert(cache.end(), drivers.begin(), drivers.end());
}

}  // namespace Orvane
