#include "effects.h"

#include <windows.h>

#include <algorithm>
#include <map>
#include <stdexcept>

namespace sweeps {
namespace {

using test::Fields;
using Calls = std::vector<Call>;

enum class Source { Devices, Services, Packages };

/// The calls [begin, end) of one service or of one package.
struct Span {
  std::size_t begin;
  std::size_t end;
};

std::string Lower(std::string text) {
  CharLowerA(text.data());
  return text;
}

bool EndsWith(const std::string& text, const std::string& end) {
  return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

std::string FileName(const std::string& path) { return path.substr(path.rfind('\\') + 1); }

std::string Base(const std::string& name) { return name.substr(0, Lower(name).rfind('.')); }

std::string Value(const Fields& record, const std::string& field) {
  const auto value = record.find(field);
  return value != record.end() ? value->second : std::string();
}

bool IsOneOf(const std::string& function, const std::set<std::string>& functions) {
  return functions.count(function) > 0;
}

// --- Which part of the listing a call belongs to.

Source SourceOf(const Calls& calls, std::size_t call) {
  Source source = Source::Devices;
  for (std::size_t i = 0; i <= call; ++i) {
    if (calls[i].function == "OpenSCManagerA") source = Source::Services;
    if (calls[i].function == "GetSystemWindowsDirectoryA") source = Source::Packages;
  }
  return source;
}

/// From the call of `opens` at or before `call` to the next one.
Span SpanOf(const Calls& calls, std::size_t call, const std::string& opens) {
  std::size_t begin = call;
  while (begin > 0 && calls[begin].function != opens) --begin;
  std::size_t end = call + 1;
  while (end < calls.size() && calls[end].function != opens) ++end;
  return {begin, end};
}

bool IsChipsetKey(const std::string& key) { return key.rfind("SOFTWARE\\", 0) == 0; }

std::string ChipsetName(const std::string& key) {
  if (key.find("Intel") != std::string::npos) return "intel_chipset";
  return key.find("PSHED") != std::string::npos ? "amd_ppd" : "amd_chipset";
}

std::string LastKey(const Calls& calls, std::size_t call) {
  while (calls.at(call).function != "RegOpenKeyExA") --call;
  return calls[call].subject;
}

// --- Services.

/// The texts of an image's version resource, by what is asked of it.
std::set<std::string> VersionFields(const std::string& question) {
  if (EndsWith(question, "Translation")) return {"description", "provider"};
  if (EndsWith(question, "FileDescription")) return {"description"};
  if (EndsWith(question, "CompanyName")) return {"provider"};
  return {"file_version", "product_version"};
}

Effect EffectOnService(const Calls& calls, std::size_t failing, const Sources& sources) {
  const std::string& function = calls[failing].function;
  const Span span = SpanOf(calls, failing, "OpenServiceA");
  std::string path;
  int searches = 0;
  for (std::size_t i = span.begin; i < span.end; ++i) {
    if (i <= failing && calls[i].function == "GetSystemDirectoryA") ++searches;
    if (calls[i].function == "FindFirstFileA" && !calls[i].answer.empty()) path = calls[i].answer;
  }
  Effect effect;
  for (const Fields& record : sources.services) {
    if (!path.empty() && Value(record, "path") == path) effect.names.insert(Value(record, "name"));
  }
  if (IsOneOf(function, {"OpenServiceA", "QueryServiceConfigA"})) {
    effect.maySkip = true;
  } else if (IsOneOf(function, {"FileTimeToSystemTime", "SystemTimeToTzSpecificLocalTime", "_mktime64"})) {
    effect.fields = {"date"};
  } else if (IsOneOf(function, {"GetFileVersionInfoSizeA", "GetFileVersionInfoA"})) {
    effect.fields = {"description", "provider", "file_version", "product_version"};
  } else if (function == "VerQueryValueA") {
    effect.fields = VersionFields(calls[failing].subject);
  } else if (function == "GetSystemDirectoryA" || !calls[failing].answer.empty()) {
    // An image that is not found where its service says is looked for in the drivers folder, by its name in lower case.
    const bool isInDriversFolder =
        Lower(path).find("\\system32\\drivers\\" + Lower(FileName(path))) != std::string::npos;
    effect.maySkip = !isInDriversFolder || searches > 1;
    effect.fields = {"name", "path"};
  } else {
    // Where nothing was found anyway.
    effect.names.clear();
  }
  return effect;
}

// --- Packages.

/// One reading of a package.
struct Package {
  std::string path;
  std::string version;
  std::string provider;
  /// The driver files that it lists, and the name under which it was delivered.
  std::multiset<std::string> files;
  std::string original;
  std::set<std::string> texts;
};

Package PackageOf(const Calls& calls, const Span& span) {
  Package package;
  package.path = calls[span.begin].subject;
  std::string section;
  for (std::size_t i = span.begin; i < span.end; ++i) {
    const Call& call = calls[i];
    if (call.function == "SetupFindFirstLineA") section = call.subject;
    if (call.function == "SetupQueryInfOriginalFileInformationA") package.original = call.answer;
    if (!IsOneOf(call.function, {"SetupGetStringFieldA", "SetupGetLineTextA"})) continue;
    package.texts.insert(call.answer);
    if (section == "version/DriverVer") package.version = call.answer;
    if (section == "version/Provider") package.provider = call.answer;
    const std::string lower = Lower(call.answer);
    if (call.subject == "0" && (EndsWith(lower, ".sys") || EndsWith(lower, ".inf"))) package.files.insert(call.answer);
  }
  return package;
}

/// The device whose package the device listing reads in `span`.
const Orvane::PciDeviceRecord& DeviceOf(const Calls& calls, const Span& span, const Sources& sources) {
  std::vector<const Orvane::PciDeviceRecord*> withPackage;
  for (const Orvane::PciDeviceRecord& device : sources.inventory) {
    if (!device.inf_name.empty()) withPackage.push_back(&device);
  }
  const auto ordinal = std::count_if(calls.begin(), calls.begin() + static_cast<std::ptrdiff_t>(span.begin),
                                     [](const Call& call) { return call.function == "SetupOpenInfFileA"; });
  return *withPackage.at(static_cast<std::size_t>(ordinal));
}

/// Whether several devices have the package that is read in `span`.
bool IsShared(const Calls& calls, const Span& span, const Sources& sources) {
  if (SourceOf(calls, span.begin) == Source::Packages) return false;
  const Orvane::PciDeviceRecord& device = DeviceOf(calls, span, sources);
  return std::count_if(sources.inventory.begin(), sources.inventory.end(),
                       [&](const auto& user) { return user.inf_name == device.inf_name; }) > 1;
}

/// The names of the records that `files` of the package give: their own, and in the device listing those that bind them
/// to the device.
std::set<std::string> RecordNames(const Calls& calls, const Span& span, const std::set<std::string>& files,
                                  const Sources& sources) {
  std::set<std::string> names = files;
  if (SourceOf(calls, span.begin) == Source::Packages) return names;
  const Orvane::PciDeviceRecord& device = DeviceOf(calls, span, sources);
  const std::string version = PackageOf(calls, span).version;
  for (const std::string& file : files) {
    names.insert(Base(file) + "_" + device.vendor_id + "-" + device.device_id + "-" + device.identity_part3 + "-" +
                 device.identity_part4);
    // Components with a name of their own, whatever the file is called.
    for (const Fields& record : sources.devices) {
      const bool isComponent = device.vendor_id == "INTC" && Value(record, "name").rfind("INTC-VOKTA_", 0) == 0;
      if (isComponent && Value(record, "file_version") == version) names.insert(Value(record, "name"));
    }
  }
  return names;
}

/// The driver files that the section of `call` lists behind it.
std::set<std::string> FilesBehind(const Calls& calls, std::size_t call, const Package& package) {
  std::set<std::string> files;
  for (std::size_t i = call + 1; i < calls.size() && calls[i].function != "SetupFindFirstLineA"; ++i) {
    if (calls[i].subject == "0" && package.files.count(calls[i].answer) > 0) files.insert(calls[i].answer);
  }
  return files;
}

/// The file of the line to which `call` belongs.
std::set<std::string> FileOfLine(const Calls& calls, std::size_t call) {
  while (calls.at(call).function != "SetupGetStringFieldA" || calls[call].subject != "0") --call;
  return {calls[call].answer};
}

/// A package that lists no driver file is listed itself.
Records PackageItself(const Calls& calls, const Span& span, const Package& package, const Sources& sources) {
  Records records;
  const bool isDevice = SourceOf(calls, span.begin) == Source::Devices;
  for (const std::string& name : RecordNames(calls, span, {FileName(package.path)}, sources)) {
    records.push_back({{"name", name},
                       {"description", package.provider},
                       {"provider", package.provider},
                       {"file_version", package.version},
                       {"found_by_device", isDevice ? "1" : "0"}});
  }
  return records;
}

Effect EffectOnPackage(const Calls& calls, std::size_t failing, const Sources& sources) {
  const Call& call = calls[failing];
  const Span span = SpanOf(calls, failing, "SetupOpenInfFileA");
  const Package package = PackageOf(calls, span);
  std::set<std::string> all(package.files.begin(), package.files.end());
  if (!package.original.empty()) all.insert(package.original);

  std::string section;
  for (std::size_t i = span.begin; i <= failing; ++i) {
    if (calls[i].function == "SetupFindFirstLineA") section = calls[i].subject;
  }
  const bool isHead = call.function == "SetupOpenInfFileA" || section.rfind("version/", 0) == 0;
  std::set<std::string> files;
  Effect effect;
  effect.maySkip = true;
  if (isHead) {
    files = all;
  } else if (IsOneOf(call.function, {"SetupFindFirstLineA", "SetupFindNextLine"})) {
    files = FilesBehind(calls, failing, package);
  } else if (call.function == "SetupGetStringFieldA" && call.subject == "0") {
    files = {call.answer};
  } else if (IsOneOf(call.function, {"SetupGetStringFieldA", "SetupGetLineTextA"})) {
    files = FileOfLine(calls, failing);
    effect.maySkip = false;
  } else {
    files = {package.original};
  }
  effect.names = RecordNames(calls, span, files, sources);
  if (IsShared(calls, span, sources)) effect.staying = files;
  if (!isHead) {
    // A file that another section lists too comes with the disk of that one.
    effect.fields = {"description"};
    effect.texts = package.texts;
    if (effect.maySkip) effect.instead = PackageItself(calls, span, package, sources);
  }
  return effect;
}

std::map<std::string, std::set<std::string>> Twins(const Calls& calls) {
  std::map<std::string, std::set<std::string>> twins;
  for (std::size_t i = 0; i < calls.size(); ++i) {
    if (calls[i].function != "SetupOpenInfFileA") continue;
    const Package package = PackageOf(calls, SpanOf(calls, i, "SetupOpenInfFileA"));
    for (const std::string& file : package.files) {
      if (package.files.count(file) > 1) twins[file] = package.texts;
    }
  }
  return twins;
}

/// All packages from `call` on: it belongs to the walk over the inf directory, which ends where it fails.
Effect EffectOnWalk(const Calls& calls, std::size_t call, const Sources& sources) {
  Effect effect;
  effect.maySkip = true;
  for (std::size_t i = call; i < calls.size(); ++i) {
    if (calls[i].function == "SetupOpenInfFileA") effect.names.merge(EffectOnPackage(calls, i, sources).names);
  }
  return effect;
}

Effect EffectOnSource(const Calls& calls, std::size_t failing, const Sources& sources) {
  const Call& call = calls[failing];
  // What is asked to close is gone either way. Redirection is no matter of a 64-bit process, and the Windows directory
  // is only asked for an image that is nowhere else; times are checked, not made, by what is missing then.
  if (IsOneOf(call.function, {"CloseServiceHandle", "FindClose", "CloseHandle", "SetupCloseInfFile", "FreeLibrary",
                              "LocalFree", "LoadLibraryExA", "GetProcAddress", "GetWindowsDirectoryA", "_localtime64",
                              "_ftime64_s", "FormatMessageA", "FormatMessageW"})) {
    return {};
  }
  if (IsOneOf(call.function, {"RegOpenKeyExA", "RegQueryValueExA"}) && IsChipsetKey(LastKey(calls, failing))) {
    Effect effect;
    effect.maySkip = true;
    if (!call.answer.empty()) effect.names = {ChipsetName(LastKey(calls, failing))};
    return effect;
  }
  if (IsOneOf(call.function, {"OpenSCManagerA", "EnumServicesStatusA"})) {
    Effect effect;
    effect.maySkip = true;
    for (const Fields& record : sources.services) {
      if (record.count("path") > 0) effect.names.insert(Value(record, "name"));
    }
    return effect;
  }
  if (IsOneOf(call.function, {"GetSystemWindowsDirectoryA", "CreateFileW", "MultiByteToWideChar", "WideCharToMultiByte",
                              "NtQueryDirectoryFile"})) {
    return EffectOnWalk(calls, failing, sources);
  }
  if (call.function.rfind("Setup", 0) == 0 || call.function == "GetVersionExA") {
    return EffectOnPackage(calls, failing, sources);
  }
  if (IsOneOf(call.function,
              {"OpenServiceA", "QueryServiceConfigA", "RegOpenKeyExA", "RegQueryValueExA", "ExpandEnvironmentStringsA",
               "GetSystemDirectoryA", "FindFirstFileA", "FileTimeToSystemTime", "SystemTimeToTzSpecificLocalTime",
               "_mktime64", "GetFileVersionInfoSizeA", "GetFileVersionInfoA", "VerQueryValueA"})) {
    return EffectOnService(calls, failing, sources);
  }
  throw std::logic_error("nobody said what depends on " + call.function);
}

// --- The judgement.

bool MayBecome(const std::string& field, const std::string& before, const std::string& after, const Effect& effect) {
  if (before == after) return true;
  if (effect.fields.count(field) == 0) return false;
  if (field == "name" || field == "path") return Lower(before) == Lower(after);
  return after.empty() || effect.texts.count(after) > 0;
}

/// Whether `record` may be what became of `known`.
bool MayComeFrom(const Fields& record, const Fields& known, const Effect& effect) {
  if (effect.names.count(Value(known, "name")) == 0) return false;
  Fields both = record;
  both.insert(known.begin(), known.end());
  return std::all_of(both.begin(), both.end(), [&](const auto& field) {
    return MayBecome(field.first, Value(known, field.first), Value(record, field.first), effect);
  });
}

bool IsSame(Fields a, Fields b, const Effect& effect) {
  const auto twins = effect.twins.find(Value(a, "name"));
  if (twins != effect.twins.end() &&
      twins->second.count(a["description"]) + twins->second.count(b["description"]) == 2) {
    a["description"] = b["description"];
  }
  return a == b;
}

bool Holds(const Records& records, const Fields& record, const Effect& effect) {
  return std::any_of(records.begin(), records.end(),
                     [&](const Fields& other) { return IsSame(other, record, effect); });
}

bool HoldsName(const Records& records, const std::string& name) {
  return std::any_of(records.begin(), records.end(),
                     [&](const Fields& record) { return Lower(Value(record, "name")) == Lower(name); });
}

std::string InWords(const Fields& record) {
  std::string words;
  for (const auto& [field, value] : record) words += " " + field + "=" + value;
  return words;
}

}  // namespace

Effect EffectOf(const Calls& calls, std::size_t failing, const Sources& sources) {
  Effect effect = EffectOnSource(calls, failing, sources);
  effect.twins = Twins(calls);
  const Source source = SourceOf(calls, failing);
  for (const auto& [other, records] : {std::pair<Source, const Records&>(Source::Devices, sources.devices),
                                       {Source::Services, sources.services},
                                       {Source::Packages, sources.packages}}) {
    if (other != source) effect.elsewhere.insert(effect.elsewhere.end(), records.begin(), records.end());
  }
  return effect;
}

std::string Complaint(const Records& whole, const Records& faulty, const Effect& effect, const Sources& sources,
                      bool merged) {
  std::string complaint;
  Records known = whole;
  if (merged) {
    for (const Records* const records : {&sources.devices, &sources.services, &sources.packages}) {
      known.insert(known.end(), records->begin(), records->end());
    }
  }
  std::set<std::string> names;
  for (const Fields& record : faulty) {
    const bool isKnown = Holds(whole, record, effect) || Holds(effect.instead, record, effect) ||
                         std::any_of(known.begin(), known.end(),
                                     [&](const Fields& before) { return MayComeFrom(record, before, effect); });
    if (!isKnown) complaint += "\n  comes from nowhere:" + InWords(record);
    if (!names.insert(Value(record, "name")).second) complaint += "\n  comes twice:" + InWords(record);
  }
  for (const Fields& record : whole) {
    const std::string name = Value(record, "name");
    if (effect.names.count(name) == 0) {
      if (!Holds(faulty, record, effect)) complaint += "\n  is missing:" + InWords(record);
    } else if (!effect.maySkip || effect.staying.count(name) > 0 || (merged && HoldsName(effect.elsewhere, name))) {
      if (!HoldsName(faulty, name)) complaint += "\n  nothing is left of:" + InWords(record);
    }
  }
  return complaint;
}

}  // namespace sweeps
