/// @file
/// Driver inventory of a 64-bit Windows machine.
///
/// Create a DriverInfo, give it an empty vector, and it appends one DriverData per driver:
///
///     Orvane::DriverInfo info;
///     std::vector<Orvane::DriverData> drivers;
///     info.list_drivers(drivers, Orvane::Registered);
///
/// **Lifetime.** The caller owns the DriverInfo and the vector. Records and strings cross the module border, so the
/// host and the library must use the same C++ run-time library, linked dynamically. The caches of the listings (see
/// DriverInfo::list_drivers) live as long as the library is loaded.
///
/// **Threads.** The library starts no thread and takes no lock. Run only one listing at a time in a process, even if
/// the process has several DriverInfo objects: they share the caches.
///
/// **Texts** are narrow strings in the system's ANSI code page, exactly as the system returned them: neither trimmed
/// nor changed in case. An unknown text is empty unless a field says otherwise.
///
/// **Failures.** A source, service, device or file that cannot be read is logged and left out; nothing else reports it.
/// The only exceptions that reach the caller are those that the standard library throws when memory runs out. Records
/// appended until then stay in the vector. A service listing cut short this way stays cached; later calls return the
/// same partial list.
///
/// **Log.** Lines go to the logging module (log.h). Level 1: registry keys of chipset packages that cannot be opened or
/// read. Level 2: services that cannot be opened or queried. Level 3: devices and dropped duplicates. Level 4:
/// progress, counts and individual files.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#if defined(_WIN32) && defined(DRIVERINFO_EXPORTS)
#define DRIVERINFO_API __declspec(dllexport)
#elif defined(_WIN32) && !defined(ORVANE_LINKED_IN)
#define DRIVERINFO_API __declspec(dllimport)
#else
#define DRIVERINFO_API
#endif

#if defined(_MSC_VER)
#pragma warning(push)
// Members of standard types are not exported themselves; host and library share one run-time library anyway.
#pragma warning(disable : 4251)
#endif

/// Everything that a host sees of the modules.
namespace Orvane {

/// One driver of the machine.
///
/// Below, "services" are drivers registered with the service control manager, "packages" are INF packages, and
/// "chipset" means the packages that chipset installers record in the registry.
struct DRIVERINFO_API DriverData {
  /// Identity of the driver; the key of operator== and the first key of operator<. Services: file name of the image,
  /// cut before its first "." and given ".sys". Packages: file name as the package lists it, or the name under which
  /// the INF was delivered; the device listing adds a second record, named by the base name, "_" and the identity of
  /// the device. Chipset: "intel_chipset", "amd_chipset" or "amd_ppd". Device without a driver: its identity and
  /// "_nodriver#". A few Intel and AMD platform components have fixed names.
  std::string name;

  /// Description for people. Services: FileDescription of the image. Packages: name of the disk on which the package
  /// lists the file, or its provider. Chipset: a fixed text. Device without a driver: description of the device.
  std::string description;

  /// The maker of the driver. Services: CompanyName of the image. Packages: Provider of the INF. Chipset: "Intel" or
  /// "Amd". Device without a driver: provider of the device.
  std::string provider;

  /// Full path of the image file. Services only.
  std::string path;

  /// Version of the driver, components separated by "."; the second key of operator<. Services: file version of the
  /// image's version resource. Packages: version part of DriverVer. Chipset: version that the installer registered.
  /// "N/A" for a device without a driver.
  std::string file_version;

  /// State of the service when it was listed: "Stopped", "Start Pending", "Stop Pending", "Running", "Continue
  /// Pending", "Pause Pending" or "Paused". Services only.
  std::string state;

  /// When the service starts: "Boot Start", "System Start", "Automatic", "Manual" or "Disabled". Services only.
  std::string start_type;

  /// Creation time of the image file in the machine's time zone, "MM/DD/YYYY HH:MM:SS"; at exactly midnight, only the
  /// date and one blank. Empty for a time that the run-time library cannot represent: before 1970, in the far future,
  /// and, far east of Greenwich, in the first hours of 2 January 1970. Services only.
  std::string date;

  /// Size of the image file in KiB, rounded down, in decimal. Services only.
  std::string size;

  /// Product version of the image's version resource. Services only.
  std::string product_version;

  /// Unused: always empty in a listing, but copied with the record.
  std::string reserved1;

  /// Unused: always empty in a listing, but copied with the record.
  std::string reserved2;

  /// Unused: always empty in a listing, but copied with the record.
  std::vector<std::string> reserved_list;

  /// 1 if the record comes from the device listing, otherwise 0.
  std::int32_t found_by_device = 0;

  /// Every text empty, found_by_device 0.
  DriverData();
  /// Copies every field.
  DriverData(const DriverData& other);
  /// Leaves the texts and the list of `other` empty.
  DriverData(DriverData&& other) noexcept;
  /// Copies every field.
  DriverData& operator=(const DriverData& other);
  /// Leaves the texts and the list of `other` empty; assigning a record to itself leaves it as it is.
  DriverData& operator=(DriverData&& other) noexcept;
  ~DriverData();

  /// Same driver: equal `name`, byte by byte. No other field counts, so two versions of one driver are equal.
  bool operator==(const DriverData& other) const;
};

/// Listing order: by `name` as bytes (upper case before lower case), then by ascending `file_version`, the oldest
/// first.
///
/// Versions are split at "." and " " and compared component by component: as hexadecimal numbers if both components
/// are, otherwise as texts. Letter case does not count (the process's global locale lower-cases both). Numbers mixed
/// with texts make the order of versions intransitive (1g is before 9, 9 before 10, 10 before 1g), so never sort
/// records with equal names by an algorithm whose safety depends on a strict weak order. Throws only std::bad_alloc.
DRIVERINFO_API bool operator<(const DriverData& a, const DriverData& b);

/// A record for hosts that build and sort their own lists. No listing uses it; the host decides what its texts mean.
struct DRIVERINFO_API DriverDataPre {
  /// For the host's use.
  std::string text1;
  /// For the host's use.
  std::string text2;
  /// The key by which DriverDataPreComp orders.
  std::string sort_key;
  /// For the host's use.
  std::string text4;
  /// For the host's use.
  std::string text5;
  /// For the host's use.
  std::string text6;
  /// For the host's use.
  std::vector<std::string> items;

  /// Every text and the list empty.
  DriverDataPre();
  /// Copies every field.
  DriverDataPre(const DriverDataPre& other);
  /// Leaves the texts and the list of `other` empty.
  DriverDataPre(DriverDataPre&& other) noexcept;
  /// Copies every field.
  DriverDataPre& operator=(const DriverDataPre& other);
  /// Leaves the texts and the list of `other` empty; assigning a record to itself leaves it as it is.
  DriverDataPre& operator=(DriverDataPre&& other) noexcept;
  ~DriverDataPre();
};

/// Orders DriverDataPre records by `sort_key` as bytes; no other field counts.
class DRIVERINFO_API DriverDataPreComp {
 public:
  DriverDataPreComp() = default;
  /// Does nothing: the comparator has no state.
  DriverDataPreComp(const DriverDataPreComp&) = default;
  /// Does nothing: the comparator has no state.
  DriverDataPreComp& operator=(const DriverDataPreComp& other);

  /// Whether `a` comes before `b`.
  bool operator()(const DriverDataPre& a, const DriverDataPre& b) const;
};

/// Which drivers DriverInfo::list_drivers lists.
enum DriverInfoSetType : std::int32_t {
  /// Drivers of the present PCI and platform devices, devices without a driver, chipset packages.
  ByDevice = 0,
  /// Kernel, file-system and recogniser drivers that are registered as services; chipset packages.
  Registered = 1,
  /// Both, and the OEM packages of the inf directory: sorted, one record per name.
  All = 2
};

class DriverInfoImp;

/// Lists the device drivers of the machine.
class DRIVERINFO_API DriverInfo {
 public:
  /// Throws std::bad_alloc when memory runs out.
  DriverInfo();
  ~DriverInfo();
  DriverInfo(const DriverInfo&) = delete;
  /// Shares the implementation of `other`. The former implementation of this object is never freed, so assign rarely.
  /// Destroying both objects afterwards is safe.
  DriverInfo& operator=(const DriverInfo& other);

  /// Appends the drivers of the machine to `drivers`. Always returns 0. A `type` that is not one of the enumerators
  /// lists nothing.
  ///
  /// - ByDevice asks the device inventory module for the devices that are present, the Setup API for the driver package
  ///   of each, and the registry for the chipset packages. The result is sorted, with one record per name. Every record
  ///   in `drivers`, the caller's own included, is marked `found_by_device`. Once a listing has found anything, later
  ///   calls in the process replace the content of `drivers` with that result.
  /// - Registered asks the service control manager for all driver services, and for each service reads the registry,
  ///   the image file and its version resource. A service whose image file is not found is left out. The order is that
  ///   of the service control manager; duplicates stay. Records of the chipset packages in the registry follow. Once a
  ///   listing has found a service, later calls in the process append the same services from a cache, without the
  ///   chipset packages: drivers installed or removed since then are not noticed.
  /// - All lists the devices, the services, and the OEM packages of the inf directory, which are read afresh on every
  ///   call. The result is sorted, with one record per name: the device's record if a device has that name, otherwise
  ///   the record with the oldest version. Records that `drivers` held before the call are treated like services.
  int list_drivers(std::vector<DriverData>& drivers, const DriverInfoSetType& type);

  /// The same as list_drivers(drivers, ByDevice).
  int list_drivers_by_device(std::vector<DriverData>& drivers);

 private:
  DriverInfoImp* m_imp;
};

}  // namespace Orvane

#if defined(_MSC_VER)
#pragma warning(pop)
#endif
