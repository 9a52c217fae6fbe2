#include "inventory/members.h"

#include <algorithm>

#include "inventory/problems.h"
#include "inventory/versionkey.h"

namespace inventory {
namespace {

std::string KindText(const Record& record) { return std::string(KindName(record.kind)); }
std::string VersionKeyText(const Record& record) { return record.version.empty() ? "" : VersionKey(record.version); }
std::string ProblemText(const Record& record) {
  return record.problem_code ? std::string(ProblemName(*record.problem_code)) : std::string();
}

/// "LOLDrivers: some.sys (1234), malicious, file-hash, CVE-2024-1"
std::string TextOf(const trust::KnownMatch& match) {
  std::string text = match.list + ": " + (match.name.empty() ? match.entry : match.name + " (" + match.entry + ")");
  text.append(", ").append(trust::NameOf(match.category)).append(", ").append(trust::NameOf(match.kind));
  for (const std::string& cve : match.cves) text += ", " + cve;
  return text;
}

std::string TextOf(const std::vector<trust::KnownMatch>& matches) {
  std::string text;
  for (const trust::KnownMatch& match : matches) text += (text.empty() ? "" : ";") + TextOf(match);
  return text;
}

std::string KnownText(const Record& record) { return TextOf(record.known); }

/// A member under construction: a line of the table states only what differs from the defaults.
class Making : public Member {
  template <typename T>
  constexpr Making& Set(T& property, T value) {
    property = value;
    return *this;
  }

 public:
  constexpr Making(std::string_view itsName, std::string_view itsLabel, ValueType itsType, Source itsSource,
                   unsigned itsWidth) {
    name = itsName;
    label = itsLabel;
    type = itsType;
    source = itsSource;
    width = itsWidth;
    floor = 12;
    isWhole = IsWhole(itsType);
  }

  constexpr Making& Table(unsigned place, unsigned itsFloor, unsigned leaves = 0) {
    tablePlace = place;
    floor = itsFloor;
    leavesAs = leaves;
    return *this;
  }
  constexpr Making& Whole() { return Set(isWhole, true); }
  constexpr Making& Page(unsigned place) { return Set(pagePlace, place); }
  constexpr Making& Title() { return Set(isTitle, true); }
  constexpr Making& KeepsEnd() { return Set(keepsEnd, true); }
  constexpr Making& Compared() { return Set(isCompared, true); }
  /// Compared without regard to case, as Windows does.
  constexpr Making& ComparedInAnyCase() { return Compared().Set(ignoresCase, true); }
  constexpr Making& Verified() { return Set(isOfVerification, true); }
  constexpr Making& ComparedIfKnown() { return Set(isComparedIfKnown, true); }
  constexpr Making& ComparedInSameVersion() { return ComparedIfKnown().Set(isComparedInSameVersion, true); }
  constexpr Making& Introduces() { return Set(introduces, true); }
};

using M = Making;
using R = Record;
using T = ValueType;

constexpr std::array<Member, 36> All = {
    M("kind", "Kind", T::Text, &KindText, 10).Table(1, 7).Whole().Page(1),
    M("name", "Name", T::Text, &R::name, 18).Table(2, 18).Page(2).Title(),
    M("description", "Description", T::Text, &R::description, 20).Page(3),
    M("provider", "Provider", T::Text, &R::provider, 15).Table(6, 8, 5).Page(4).Compared().Introduces(),
    M("version", "Version", T::Version, &R::version, 16).Table(3, 15).Page(5).Compared().Introduces(),
    M("product_version", "Product version", T::Version, &R::product_version, 16).Compared(),
    M("version_key", "Version key", T::Text, &VersionKeyText, 20),
    M("service", "Service", T::Text, &R::service, 12).Table(7, 8, 3).Page(6).ComparedInAnyCase(),
    M("path", "Path", T::Text, &R::path, 22).Table(9, 18, 1).Page(11).KeepsEnd().ComparedInAnyCase().Introduces(),
    M("state", "State", T::Text, &R::state, 9).Table(4, 7, 7).Whole().Page(7).Compared(),
    M("start_type", "Start", T::Text, &R::start_type, 10).Table(5, 12, 6).Whole().Page(8).Compared(),
    M("image_missing", "Image missing", T::Flag, &R::image_missing, 8).Compared(),
    M("image_time", "Image time", T::Time, &R::image_time, 14).Page(9),
    M("size", "Size, bytes", T::Number, &R::size, 11).Compared(),
    M("inf", "INF", T::Text, &R::inf, 10).Table(8, 9, 2).Page(10).ComparedInAnyCase(),
    M("original_inf", "Delivered as", T::Text, &R::original_inf, 12).ComparedInAnyCase(),
    M("inf_date", "INF date", T::Date, &R::inf_date, 10).Compared(),
    M("class", "Class", T::Text, &R::class_name, 10).Compared(),
    M("files", "Files", T::Texts, &R::files, 20).ComparedInAnyCase(),
    M("devices_using", "Devices using it", T::Number, &R::devices_using, 8),
    M("instance_id", "Instance identifier", T::Text, &R::instance_id, 24).KeepsEnd(),
    M("hardware_id", "Hardware identifier", T::Text, &R::hardware_id, 24),
    M("identity", "Identity", T::Text, &R::identity, 19),
    M("names", "Names", T::Texts, &R::names, 24),
    M("problem_code", "Problem code", T::Number, &R::problem_code, 9).Compared(),
    M("problem", "Problem", T::Text, &ProblemText, 16),
    M("sha256", "SHA-256", T::Text, &R::sha256, 20).Verified(),
    M("image_sha256", "SHA-256 of the image", T::Text, &R::image_sha256, 20).Verified().ComparedInSameVersion(),
    M("signature", "Signature", T::Text, &R::signature, 9).Verified().Table(10, 9).Whole().Page(12).ComparedIfKnown(),
    M("signature_problem", "Problem of the signature", T::Text, &R::signature_problem, 24).Verified(),
    M("signature_kind", "Kind of signature", T::Text, &R::signature_kind, 9).Verified().Whole(),
    M("catalog", "Catalog", T::Text, &R::catalog, 14).Verified(),
    M("signer", "Signer", T::Text, &R::signer, 18).Verified().Table(11, 12, 4).Page(13).ComparedIfKnown(),
    M("signer_thumbprint", "Thumbprint of the signer", T::Text, &R::signer_thumbprint, 20).Verified(),
    M("signed_at", "Signed", T::Time, &R::signed_at, 14).Verified(),
    M("known", "Known as", T::Known, &KnownText, 30).Verified().Table(12, 16).Page(14)};

struct ToText {
  std::string operator()(std::monostate) const { return std::string(); }
  std::string operator()(const std::string& text) const { return text; }
  std::string operator()(std::uint64_t number) const { return std::to_string(number); }
  std::string operator()(bool flag) const { return flag ? "true" : std::string(); }
  std::string operator()(const std::vector<std::string>& texts) const {
    std::string joined;
    for (const std::string& text : texts) joined += (&text == &texts.front() ? "" : ";") + text;
    return joined;
  }
  std::string operator()(const std::vector<trust::KnownMatch>& matches) const { return TextOf(matches); }
};

}  // namespace

std::string TextOf(const Value& value) { return std::visit(ToText(), value); }

const std::array<Member, 36>& Members() { return All; }

const Member* FindMember(std::string_view name) {
  const auto found = std::find_if(All.begin(), All.end(), [name](const Member& member) { return member.name == name; });
  return found == All.end() ? nullptr : &*found;
}

}  // namespace inventory
