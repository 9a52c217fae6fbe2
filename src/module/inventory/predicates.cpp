#include "inventory/predicates.h"

#include <algorithm>

#include "inventory/filenames.h"
#include "platform/encoding.h"
#include "trust/signature.h"

namespace inventory {
namespace {

bool BeginsWith(std::string_view text, std::string_view prefix) { return text.substr(0, prefix.size()) == prefix; }

bool IsListedAs(const Record& record, trust::Category category) {
  return std::any_of(record.known.begin(), record.known.end(), [category](const trust::KnownMatch& match) {
    return IsListed(match) && match.category == category;
  });
}

}  // namespace

bool IsService(const Record& record) { return record.kind == Kind::Service; }
bool IsDevice(const Record& record) { return record.kind == Kind::Device; }
bool IsPackage(const Record& record) { return record.kind == Kind::Package; }

bool IsRunning(const Record& record) { return IsService(record) && record.state == "Running"; }

bool StartsByItself(const Record& record) {
  const std::string& start = record.start_type;
  return IsService(record) && (start == "Boot Start" || start == "System Start" || start == "Automatic");
}

bool IsImageMissing(const Record& record) { return IsService(record) && record.image_missing; }

bool IsVerified(const Record& record) { return !record.signature.empty(); }
bool IsUnsigned(const Record& record) { return record.signature == trust::NameOf(trust::SignatureState::Unsigned); }
bool HasInvalidSignature(const Record& record) {
  return record.signature == trust::NameOf(trust::SignatureState::Invalid);
}

bool IsListed(const trust::KnownMatch& match) { return match.kind != trust::MatchKind::NameAndVersion; }

bool IsKnownMalicious(const Record& record) { return IsListedAs(record, trust::Category::Malicious); }
bool IsKnownVulnerable(const Record& record) {
  return IsListedAs(record, trust::Category::Vulnerable) && !IsKnownMalicious(record);
}
bool HasListedName(const Record& record) {
  return !record.known.empty() && std::none_of(record.known.begin(), record.known.end(), &IsListed);
}

bool HasNoDriver(const Record& record) { return IsDevice(record) && record.inf.empty(); }

bool HasProblem(const Record& record) { return IsDevice(record) && record.problem_code.has_value(); }

bool IsOemInf(std::string_view inf) {
  return BeginsWith(Orvane::LowerCase(inf), "oem") && EndsIgnoringCase(inf, ".inf");
}

bool IsOemPackage(const Record& record) { return IsPackage(record) && IsOemInf(record.inf); }

bool IsThirdParty(const Record& record) { return !BeginsWith(Orvane::LowerCase(record.provider), "microsoft"); }

bool IsKnownVersion(std::string_view version) { return !version.empty() && version != "N/A"; }

bool IsVerified(const Inventory& inventory) {
  const Records& records = inventory.records;
  return inventory.isVerified ||
         std::any_of(records.begin(), records.end(), [](const Record& record) { return IsVerified(record); });
}

}  // namespace inventory
