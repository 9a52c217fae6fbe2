#include "inventory/nextsteps.h"

#include <algorithm>
#include <array>

#include "inventory/filenames.h"
#include "inventory/predicates.h"
#include "platform/encoding.h"

namespace inventory {
namespace {

constexpr std::string_view DeleteService = "sc.exe delete";
constexpr std::string_view DeletePackage = "pnputil /delete-driver";
constexpr std::string_view StartService = "sc.exe start";
constexpr std::string_view ConfigureService = "sc.exe config";
constexpr std::string_view EnableDevice = "pnputil /enable-device";
constexpr std::string_view RestartDevice = "pnputil /restart-device";

/// Where Windows installs the files of packages.
constexpr std::string_view SystemFolder = "\\system32\\";

/// Windows PowerShell treats typographic quotes like its own, and directional marks can make a command look like
/// another one: both are in these two blocks of Unicode.
constexpr std::array<std::string_view, 2> UnsafeBlocks = {"\xE2\x80", "\xE2\x81"};

bool IsSafeBetweenQuotes(std::string_view name) {
  const auto isUnsafe = [](char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte < ' ' || byte == 0x7F || std::string_view("\"%$`!").find(c) != std::string_view::npos;
  };
  return !name.empty() && name.front() != '-' && name.front() != '/' && name.back() != '\\' &&
         std::none_of(name.begin(), name.end(), isUnsafe) &&
         std::none_of(UnsafeBlocks.begin(), UnsafeBlocks.end(),
                      [name](std::string_view block) { return name.find(block) != std::string_view::npos; });
}

bool IsSafeWithoutQuotes(std::string_view name) {
  return std::all_of(name.begin(), name.end(), [](char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '.' || c == '_' ||
           c == '-';
  });
}

/// " with COMMAND"; empty if there is no command to show.
std::string With(const std::string& command) { return command.empty() ? std::string() : " with " + command; }

/// The maker, as far as it is known, for use in a sentence.
std::string MakerOf(const Record& record) { return record.provider.empty() ? "its maker" : record.provider; }

/// The problem of a device for which no driver is installed.
constexpr std::uint64_t NotInstalled = 28;

/// What helps with a device problem besides restarting the device.
struct Remedy {
  std::uint64_t problem;
  std::string_view text;
  /// Followed by the identifier of the device.
  std::string_view command;
};

constexpr std::array<Remedy, 6> Remedies = {
    {{14, "restart the machine", ""},
     {21, "restart the machine, so that Windows finishes removing the device", ""},
     {22, "the device is disabled: enable it", EnableDevice},
     {39, "its driver is missing or damaged: install the driver again", ""},
     {48, "Windows blocked its driver: install a newer one", ""},
     {52, "Windows cannot verify the signature of its driver: install a signed one", ""}}};

std::string DriverSearch(const Record& device) {
  const std::string& id = device.hardware_id.empty() ? device.identity : device.hardware_id;
  return id.empty() ? std::string() : " for " + id;
}

}  // namespace

std::string CommandFor(std::string_view command, std::string_view name) {
  if (!IsSafeBetweenQuotes(name)) return std::string();
  const std::string_view quote = IsSafeWithoutQuotes(name) ? "" : "\"";
  return std::string(command).append(" ").append(quote).append(name).append(quote);
}

NextSteps::NextSteps(const Records& records) {
  for (const Record& record : records) {
    if (IsDevice(record) && IsOemInf(record.inf)) {
      m_infsByService.emplace(Orvane::LowerCase(record.service), Orvane::LowerCase(record.inf));
    }
    if (!IsOemPackage(record)) continue;
    m_packages.emplace(Orvane::LowerCase(record.inf), &record);
    for (const std::string& file : record.files) {
      if (IsDriverFile(file)) m_packagesByFile.emplace(FileKey(file), &record);
    }
  }
}

const Record* NextSteps::PackageOf(const Record& service) const {
  const auto inf = m_infsByService.find(Orvane::LowerCase(service.service));
  if (inf != m_infsByService.end()) {
    const auto package = m_packages.find(inf->second);
    if (package != m_packages.end()) return package->second;
  }
  // In other folders, a file of that name need not come from the package.
  if (Orvane::LowerCase(service.path).find(SystemFolder) == std::string::npos) return nullptr;
  const auto package = m_packagesByFile.find(FileKey(service.path));
  return package == m_packagesByFile.end() ? nullptr : package->second;
}

std::string NextSteps::Removal(const Record& service) const {
  if (const Record* const package = PackageOf(service)) {
    const std::string command = CommandFor(DeletePackage, package->inf);
    return "remove its package" + With(command.empty() ? command : command + " /uninstall");
  }
  return "remove the service" + With(CommandFor(DeleteService, service.service));
}

std::string NextSteps::ForMalicious(const Record& service) const {
  return "take this machine off the network, keep a copy of the image as evidence, then " + Removal(service);
}

std::string NextSteps::ForVulnerable(const Record& service) const {
  return "update the product it belongs to, or " + Removal(service);
}

std::string NextSteps::ForInvalidSignature(const Record& service) const {
  return "install it again from " + MakerOf(service) + ", or " + Removal(service);
}

std::string NextSteps::ForUnsigned(const Record& service) const {
  return "get a signed version from " + MakerOf(service) + ", or " + Removal(service);
}

std::string NextSteps::ForListedName(const Record& service) const {
  return "compare the image with the listed one; if it is affected, update it, or " + Removal(service);
}

std::string NextSteps::ForImageInUserFolder(const Record& service) const {
  return "find out which program put it there; if nobody knows it, " + Removal(service);
}

std::string NextSteps::ForProblem(const Record& device) const {
  if (device.problem_code == NotInstalled) return ForDeviceWithoutDriver(device);
  const auto remedy = std::find_if(Remedies.begin(), Remedies.end(), [&device](const Remedy& candidate) {
    return candidate.problem == device.problem_code;
  });
  if (remedy == Remedies.end()) {
    const std::string driver = device.inf.empty() ? "install a driver" : "update or reinstall its driver";
    return driver + ", then restart the device" + With(CommandFor(RestartDevice, device.instance_id));
  }
  const std::string text(remedy->text);
  return remedy->command.empty() ? text : text + With(CommandFor(remedy->command, device.instance_id));
}

std::string NextSteps::ForDeviceWithoutDriver(const Record& device) const {
  return "look for a driver" + DriverSearch(device) + " and install it with pnputil /add-driver FILE.inf /install";
}

std::string NextSteps::ForNotRunning(const Record& service) const {
  if (IsImageMissing(service)) return ForMissingImage(service);
  const std::string configure = CommandFor(ConfigureService, service.service);
  return "start it" + With(CommandFor(StartService, service.service)) +
         "; if it is not needed, let it start on demand only" +
         With(configure.empty() ? configure : configure + " start= demand");
}

std::string NextSteps::ForMissingImage(const Record& service) const {
  return "install the driver again, or " + Removal(service);
}

std::string NextSteps::ForNoVersionOrCompany(const Record& driver) const {
  return IsService(driver) ? "find out who made it: look at its signature and at the program that installed it"
                           : "look for a newer driver" + DriverSearch(driver);
}

std::string NextSteps::ForSeveralVersions(const std::string& newest, const std::set<std::string>& older) const {
  std::string steps;
  for (const std::string& place : older) {
    const auto package = m_packages.find(Orvane::LowerCase(place));
    const bool isUnused = package != m_packages.end() && package->second->devices_using == 0u;
    const std::string step = isUnused ? "remove " + place + With(CommandFor(DeletePackage, place)) : "update " + place;
    steps += (steps.empty() ? "" : ", ") + step;
  }
  return steps + ": " + newest + " is the newest version";
}

std::string NextSteps::ForUnusedPackage(const Record& package) const {
  return "remove" + With(CommandFor(DeletePackage, package.inf)) + ", unless its device is only unplugged";
}

}  // namespace inventory
