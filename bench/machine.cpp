// benchmachine SERVICES DEVICES PACKAGES: describes a machine of that size, on standard output, for samplemachine.
#include <cstdio>
#include <iostream>
#include <nlohmann/json.hpp>
#include <string>

namespace {

using Json = nlohmann::json;

std::string Format(const char* format, int number) {
  char text[200];
  std::snprintf(text, sizeof(text), format, number);
  return text;
}

/// Every tenth image has no version resource, as some old drivers.
bool HasVersion(int number) { return number % 10 != 7; }

/// Every twentieth service has lost its image.
bool HasImage(int number) { return number % 20 != 13; }

/// Below the system directory: one in four in a folder of its own, as packages bring them.
std::string ImageFile(int number) {
  const std::string file = Format("bench%03d.sys", number);
  return (number % 4 == 3 ? Format("DriverStore\\FileRepository\\bench%03d.inf_amd64\\", number) : "drivers\\") + file;
}

Json Driver(int number) {
  Json driver = {{"file", ImageFile(number)},
                 {"size", 24576 + 1024 * (number * 7 % 200)},
                 {"created", Format("2023-05-06T22:14:%02d", number % 60)}};
  if (!HasVersion(number)) return driver;
  driver["file_version"] = Format("10.0.22621.%d", number);
  driver["product_version"] = Format("10.0.22621.%d", number);
  driver["company"] = Format("Sample Maker %d Incorporated", number % 12);
  driver["description"] = Format("Driver of the sample component %d", number);
  return driver;
}

Json Service(int number) {
  static const char* const roots[] = {"\\SystemRoot\\System32\\", "System32\\", "%SystemRoot%\\System32\\"};
  static const char* const starts[] = {"boot", "system", "automatic", "manual", "disabled"};
  return {{"name", Format("bench%03d", number)},
          {"image_path", roots[number % 3] + ImageFile(number)},
          {"type", number % 9 == 0 ? "file system" : "kernel"},
          {"start", starts[number % 5]}};
}

/// One in ten lists no driver file, as packages that only configure a device.
Json Package(int number) {
  std::vector<std::string> lines = {"; Installation of a sample component",
                                    "",
                                    "[Version]",
                                    "Signature=\"$WINDOWS NT$\"",
                                    "Class=System",
                                    "ClassGuid={4d36e97d-e325-11ce-bfc1-08002be10318}",
                                    "Provider=%Maker%",
                                    "CatalogFile=" + Format("pack%03d.cat", number),
                                    "DriverVer=05/17/2023," + Format("12.19.2.%d", number),
                                    "",
                                    "[DestinationDirs]",
                                    "DefaultDestDir=12",
                                    "",
                                    "[SourceDisksNames]",
                                    "1=%Disk%,,,",
                                    "",
                                    "[SourceDisksFiles]",
                                    Format("pack%03d.dll=1,,", number)};
  if (number % 10 != 9) lines.push_back(Format("pack%03d.sys=1,,", number));
  if (number % 5 == 0) lines.push_back(Format("pack%03dfilter.sys=1,,", number));
  lines.insert(lines.end(), {"", "[Manufacturer]", "%Maker%=Models,NTamd64", "", "[Models.NTamd64]"});
  for (int model = 0; model < 10; ++model) {
    lines.push_back(Format("%%Device%d%%=Install,PCI\\VEN_10EC&DEV_", model) + Format("%04X", number * 16 + model));
  }
  lines.insert(lines.end(), {"", "[Install]", "CopyFiles=Files", "", "[Files]", Format("pack%03d.sys", number), "",
                             "[Install.Services]", "AddService=" + Format("pack%03d,2,Service", number), "",
                             "[Service]", "ServiceType=1", "StartType=3", "ErrorControl=1",
                             "ServiceBinary=" + Format("%%12%%\\pack%03d.sys", number), "", "[Strings]",
                             Format("Maker=\"Sample Maker %d Incorporated\"", number % 12),
                             Format("Disk=\"Installation disk of the sample component %d\"", number)});
  for (int model = 0; model < 10; ++model) {
    lines.push_back(Format("Device%d=", model) + Format("\"Sample component, model %d\"", model));
  }
  return {{"inf", Format("oem%d.inf", number)}, {"lines", lines}};
}

/// One in three is a platform device, one in ten has no driver.
Json Device(int number, int packages) {
  const std::string id = number % 3 == 2 ? Format("ACPI\\SMPL%04X", number)
                                         : Format("PCI\\VEN_10EC&DEV_%04X&SUBSYS_0A5C1028&REV_01", number * 16);
  Json device = {{"instance_id", id + "\\3&11583659&0"},
                 {"description", Format("Sample component %d", number)},
                 {"manufacturer", Format("Sample Maker %d Incorporated", number % 12)},
                 {"class", "System"},
                 {"hardware_ids", {id}},
                 {"location", Format("PCI bus 0, device %d, function 0", number)}};
  if (number % 10 == 4 || packages == 0) return device;
  const int package = number % packages;
  device["service"] = Format("pack%03d", package);
  device["package"] = {
      {"inf", Format("oem%d.inf", package)}, {"version", Format("12.19.2.%d", package)}, {"date", "5-17-2023"}};
  return device;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    std::fputs("benchmachine SERVICES DEVICES PACKAGES\n", stderr);
    return 2;
  }
  const int services = std::atoi(argv[1]);
  const int devices = std::atoi(argv[2]);
  const int packages = std::atoi(argv[3]);
  Json machine = {{"drivers", Json::array()},
                  {"services", Json::array()},
                  {"packages", Json::array()},
                  {"devices", Json::array()},
                  {"registry", Json::array()}};
  for (int i = 0; i < services; ++i) {
    if (HasImage(i)) machine["drivers"].push_back(Driver(i));
    machine["services"].push_back(Service(i));
  }
  for (int i = 0; i < packages; ++i) machine["packages"].push_back(Package(i));
  for (int i = 0; i < devices; ++i) machine["devices"].push_back(Device(i, packages));
  machine["registry"].push_back(
      {{"key", "SOFTWARE\\Intel\\InfInst"}, {"value", "Version"}, {"text", "10.1.19444.8378"}});
  std::cout << machine.dump(1) << "\n";
  return 0;
}
