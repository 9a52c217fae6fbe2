/// @file
/// The facts about one real thing on a machine that has to do with its drivers.
#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "trust/knownmatch.h"

/// Everything known about a machine's drivers. Every text is UTF-8.
namespace inventory {

/// What a record is about.
enum class Kind {
  /// A driver service, even if its image is missing. Its key is `service`.
  Service,
  /// A present device that the device inventory knows. Its key is `instance_id`.
  Device,
  /// An INF package: every OEM package, and every other package that a device of the inventory was installed from. Its
  /// key is `inf`.
  Package,
  /// A chipset package of the registry. Its key is `name`.
  Chipset
};

/// "service", "device", "package" or "chipset".
std::string_view KindName(Kind kind);

/// The kind of that name.
std::optional<Kind> KindNamed(std::string_view name);

/// One service, device, package or chipset package. A member that is unknown or does not apply is empty (false for a
/// flag). The members are those of the documents; members.h has their table.
struct Record {
  /// What the record is about; it determines which members apply.
  Kind kind = Kind::Service;

  /// The name under which the listing library lists it, if it does. Service: file name of the image up to its first
  /// ".", followed by ".sys". Device: the first of `names`, otherwise `identity`. Package: its first ".sys" file,
  /// otherwise the name under which it was delivered, otherwise `inf`. Chipset: "intel_chipset", "amd_chipset" or
  /// "amd_ppd".
  std::string name;
  /// Service: FileDescription of the image. Device: its friendly name, otherwise its description. Package: name of the
  /// disk with its first driver file, otherwise `provider`. Chipset: a fixed text.
  std::string description;
  /// Service: CompanyName of the image. Device: provider of the installed package, or the manufacturer of a device
  /// without a driver. Package: Provider. Chipset: "Intel" or "Amd".
  std::string provider;
  /// Service: file version of the image. Device: version of the installed package. Package: version part of DriverVer.
  /// Chipset: version that the installer registered.
  std::string version;
  /// Service: product version of the image.
  std::string product_version;

  /// Service: its name. Device: name of the service that drives it.
  std::string service;
  /// Service: full path of the configured image, whether the file exists or not.
  std::string path;
  /// Service: "Stopped", "Start Pending", "Stop Pending", "Running", "Continue Pending", "Pause Pending" or "Paused".
  std::string state;
  /// Service: "Boot Start", "System Start", "Automatic", "Manual" or "Disabled".
  std::string start_type;
  /// Service: whether there is no file at `path`.
  bool image_missing = false;
  /// Service: creation time of the image, UTC, "2024-05-06T07:08:09Z".
  std::string image_time;
  /// Service: size of the image in bytes.
  std::optional<std::uint64_t> size;

  /// Package: its published name, such as "oem3.inf". Device: that of the package it was installed from.
  std::string inf;
  /// Package: name under which it was delivered, such as "netadapter.inf".
  std::string original_inf;
  /// Package: date part of DriverVer. Device: date of the installed package. "2024-05-06".
  std::string inf_date;
  /// Package, device: setup class, such as "Net".
  std::string class_name;
  /// Package: the files that it lists for any processor, each once, in the order of the library's sections.
  std::vector<std::string> files;
  /// Package: devices of any bus, present or not, that were installed from it or are extended by it.
  std::optional<std::uint64_t> devices_using;

  /// Device: its instance identifier.
  std::string instance_id;
  /// Device: its most specific hardware identifier.
  std::string hardware_id;
  /// Device: its identity in the library's listings, such as "8086-15F3-1028-0A5C".
  std::string identity;
  /// Device: every name under which the library lists it.
  std::vector<std::string> names;
  /// Device: problem that Windows reports for it; never 0.
  std::optional<std::uint64_t> problem_code;

  // Service: results of Verify() for its image; all are empty if the inventory was not verified. Hashes are
  // hexadecimal, in lower case.

  /// Of the file.
  std::string sha256;
  /// Of the image (Authenticode): it stays the same when the image is signed again.
  std::string image_sha256;
  /// "valid", "invalid", "unsigned" or "unknown"; empty if there is no image.
  std::string signature;
  /// Why it is not valid: the platform's sentence and code.
  std::string signature_problem;
  /// "embedded" or "catalog".
  std::string signature_kind;
  /// File name of the catalog that contains the signature.
  std::string catalog;
  /// Common name of the signing certificate.
  std::string signer;
  /// SHA-1 of that certificate.
  std::string signer_thumbprint;
  /// Time of the time stamp, UTC, "2024-05-06T07:08:09Z".
  std::string signed_at;
  /// The entries in lists of known drivers that match it.
  std::vector<trust::KnownMatch> known;
};

/// A deque, because it grows without copying: reading a large snapshot never needs its memory twice.
using Records = std::deque<Record>;

/// The member by which a record is found in another inventory of the machine, in its original spelling.
const std::string& KeyTextOf(const Record& record);

/// The key of the record: that member in lower case, because Windows ignores the case of all of them.
std::string KeyOf(const Record& record);

}  // namespace inventory
