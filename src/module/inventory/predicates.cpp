#include "inventory/predicates.h"

#include "inventory/filenames.h"
#include "platform/encoding.h"

namespace inventory {
namespace {

bool BeginsWith(std::string_view text, std::string_view prefix) { return text.substr(0, prefix.size()) == prefix; }

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

bool HasNoDriver(const Record& record) { return IsDevice(record) && record.inf.empty(); }

bool HasProblem(const Record& record) { return IsDevice(record) && record.problem_code.has_value(); }

bool IsOemInf(std::string_view inf) {
  return BeginsWith(Orvane::LowerCase(inf), "oem") && EndsIgnoringCase(inf, ".inf");
}

bool IsOemPackage(const Record& record) { return IsPackage(record) && IsOemInf(record.inf); }

bool IsThirdParty(const Record& record) { return !BeginsWith(Orvane::LowerCase(record.provider), "microsoft"); }

bool IsKnownVersion(std::string_view version) { return !version.empty() && version != "N/A"; }

}  // namespace inventory
