#include "description.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "platform/encoding.h"

namespace samplemachine {
namespace {

using Json = nlohmann::json;

DWORD Named(const std::map<std::string, DWORD>& values, const std::string& name) {
  const auto value = values.find(name);
  if (value == values.end()) throw std::runtime_error("\"" + name + "\" is not one of the names that may stand there");
  return value->second;
}

SYSTEMTIME Time(const std::string& text) {
  SYSTEMTIME time{};
  if (std::sscanf(text.c_str(), "%4hu-%2hu-%2huT%2hu:%2hu:%2hu", &time.wYear, &time.wMonth, &time.wDay, &time.wHour,
                  &time.wMinute, &time.wSecond) != 6) {
    throw std::runtime_error("\"" + text + "\" is no time");
  }
  return time;
}

void ReadVersion(const std::string& text, WORD (&words)[4]) {
  if (std::sscanf(text.c_str(), "%hu.%hu.%hu.%hu", &words[0], &words[1], &words[2], &words[3]) != 4) {
    throw std::runtime_error("\"" + text + "\" is no version of four numbers");
  }
}

/// The full path of a file that a description names, from its own folder on.
std::string PathFrom(const std::filesystem::path& folder, const std::string& file) {
  return (folder / std::filesystem::u8path(file)).lexically_normal().make_preferred().u8string();
}

Driver ReadDriver(const Json& json, const std::filesystem::path& folder) {
  Driver driver{};
  driver.file = json.at("file");
  driver.created = Time(json.at("created"));
  if (json.contains("image")) {
    driver.image = PathFrom(folder, json.at("image"));
    return driver;
  }
  driver.size = json.at("size");
  driver.hasVersion = json.contains("file_version");
  if (!driver.hasVersion) return driver;
  ReadVersion(json.at("file_version"), driver.version.file);
  ReadVersion(json.at("product_version"), driver.version.product);
  for (const auto& [key, member] :
       {std::pair(L"CompanyName", "company"), std::pair(L"FileDescription", "description")}) {
    if (json.contains(member))
      driver.version.texts.emplace_back(key, Orvane::WideFromUtf8(json.at(member).get<std::string>()));
  }
  return driver;
}

Service ReadService(const Json& json) {
  static const std::map<std::string, DWORD> types = {{"kernel", SERVICE_KERNEL_DRIVER},
                                                     {"file system", SERVICE_FILE_SYSTEM_DRIVER}};
  static const std::map<std::string, DWORD> starts = {{"boot", SERVICE_BOOT_START},
                                                      {"system", SERVICE_SYSTEM_START},
                                                      {"automatic", SERVICE_AUTO_START},
                                                      {"manual", SERVICE_DEMAND_START},
                                                      {"disabled", SERVICE_DISABLED}};
  return {json.at("name"), json.at("image_path"), Named(types, json.value("type", "kernel")),
          Named(starts, json.at("start")), json.value("running", false)};
}

test::DeviceSettings ReadDevice(const Json& json) {
  test::DeviceSettings device;
  device.instanceId = json.at("instance_id");
  device.description = json.at("description");
  device.manufacturer = json.at("manufacturer");
  device.className = json.at("class");
  device.hardwareIds = json.at("hardware_ids").get<std::vector<std::string>>();
  device.location = json.value("location", "");
  device.service = json.value("service", "");
  device.friendlyName = json.value("friendly_name", "");
  device.extensions = json.value("extensions", std::vector<std::string>());
  if (json.contains("problem_code")) device.problemCode = json.at("problem_code").get<DWORD>();
  if (json.contains("package")) {
    const Json& package = json.at("package");
    device.package = test::InstalledPackage{package.at("inf"), package.at("version"), package.at("date"),
                                            package.value("provider", "")};
  }
  return device;
}

Package ReadPackage(const Json& json) { return {json.at("inf"), json.at("lines").get<std::vector<std::string>>()}; }

RegistryText ReadRegistry(const Json& json) { return {json.at("key"), json.at("value"), json.at("text")}; }

template <typename Read>
auto ReadAll(const Json& json, const char* member, Read read) {
  std::vector<decltype(read(json))> all;
  for (const Json& item : json.at(member)) all.push_back(read(item));
  return all;
}

}  // namespace

Description ReadDescription(const std::string& path) {
  std::ifstream file(std::filesystem::u8path(path));
  if (!file) throw std::runtime_error(path + " cannot be read.");
  const std::filesystem::path folder = std::filesystem::absolute(std::filesystem::u8path(path)).parent_path();
  const auto readDriver = [&](const Json& json) { return ReadDriver(json, folder); };
  const auto readPath = [&](const Json& json) { return PathFrom(folder, json); };
  try {
    Json json = {{"roots", Json::array()}, {"catalogs", Json::array()}};
    json.update(Json::parse(file));
    return {ReadAll(json, "drivers", readDriver),    ReadAll(json, "services", ReadService),
            ReadAll(json, "packages", ReadPackage),  ReadAll(json, "devices", ReadDevice),
            ReadAll(json, "registry", ReadRegistry), ReadAll(json, "roots", readPath),
            ReadAll(json, "catalogs", readPath)};
  } catch (const std::exception& problem) {
    throw std::runtime_error(path + " describes no machine: " + problem.what() + ".");
  }
}

}  // namespace samplemachine
