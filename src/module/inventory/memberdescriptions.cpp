#include "inventory/memberdescriptions.h"

#include <array>

namespace inventory {
namespace {

constexpr unsigned S = KindBit(Kind::Service);
constexpr unsigned D = KindBit(Kind::Device);
constexpr unsigned P = KindBit(Kind::Package);
constexpr unsigned AllKinds = S | D | P | KindBit(Kind::Chipset);

constexpr std::array<MemberDescription, 36> Descriptions = {
    {{"kind", AllKinds, "service, device, package or chipset"},
     {"name", AllKinds, "the name under which the library lists it, such as the file name of the image"},
     {"description", AllKinds, "description in the image, the device or the package"},
     {"provider", AllKinds, "the maker"},
     {"version", AllKinds,
      "version of the image, of the package, or of the package that the device was installed from"},
     {"product_version", S, "product version of the image"},
     {"version_key", AllKinds, "the version as a text whose byte order is the order of versions"},
     {"service", S | D, "name of the service; for a device, the service that drives it"},
     {"path", S, "full path of the configured image"},
     {"state", S, "Running, Stopped, Paused, or one of Start, Stop, Continue and Pause Pending"},
     {"start_type", S, "Boot Start, System Start, Automatic, Manual or Disabled"},
     {"image_missing", S, "true if there is no file at the path"},
     {"image_time", S, "creation time of the image, UTC"},
     {"size", S, "size of the image in bytes"},
     {"inf", P | D, "published name of the package, such as oem3.inf"},
     {"original_inf", P, "name under which the package was delivered"},
     {"inf_date", P | D, "date of the package"},
     {"class", P | D, "setup class, such as Net"},
     {"files", P, "the files that the package lists"},
     {"devices_using", P, "number of devices, present or not, that were installed from it or are extended by it"},
     {"instance_id", D, "instance identifier"},
     {"hardware_id", D, "most specific hardware identifier"},
     {"identity", D, "vendor, device and subsystem"},
     {"names", D, "every name under which the library lists it"},
     {"problem_code", D, "number of the problem that Windows reports"},
     {"problem", D, "name of that problem"},
     {"sha256", S, "verified: SHA-256 of the file"},
     {"image_sha256", S, "verified: SHA-256 of the image, which stays the same when the file is signed again"},
     {"signature", S, "verified: valid, invalid, unsigned or unknown"},
     {"signature_problem", S, "verified: why it is not valid"},
     {"signature_kind", S, "verified: embedded or catalog"},
     {"catalog", S, "verified: file name of the catalog with the signature"},
     {"signer", S, "verified: common name of the signing certificate"},
     {"signer_thumbprint", S, "verified: SHA-1 of that certificate"},
     {"signed_at", S, "verified: time of the time stamp, UTC"},
     {"known", S, "verified: entries in lists of known drivers that match the image"}}};

}  // namespace

const std::vector<MemberDescription>& MemberDescriptions() {
  static const std::vector<MemberDescription> descriptions(Descriptions.begin(), Descriptions.end());
  return descriptions;
}

std::string KindsText(const MemberDescription& member) {
  if (member.kinds == AllKinds) return "all";
  std::string kinds;
  for (const Kind kind : {Kind::Service, Kind::Device, Kind::Package, Kind::Chipset}) {
    if ((member.kinds & KindBit(kind)) != 0) kinds.append(kinds.empty() ? "" : ", ").append(KindName(kind));
  }
  return kinds;
}

std::string_view TypeName(ValueType type) {
  constexpr std::array<std::string_view, 8> names = {"text", "version", "number", "time",
                                                     "date", "flag",    "texts",  "text"};
  return names[static_cast<std::size_t>(type)];
}

}  // namespace inventory
