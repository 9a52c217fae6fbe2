/// @file
/// What a machine is made of: driver services, registry values, devices, driver images. Every function asks Windows
/// for it and throws std::runtime_error when Windows refuses. Texts are UTF-8 and reach Windows whole, whatever its
/// code page is.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace test {

/// Whether this Windows is Wine.
bool IsWine();

/// The system directory, such as "C:\windows\system32".
std::string SystemDirectory();

/// The path of `file` in the folder of driver images.
std::string DriverPath(const std::string& file);

/// The inf directory, such as "C:\windows\inf".
std::string InfDirectory();

/// The folder of this program, which also holds the driver images that the build makes.
std::wstring ProgramDirectory();

/// The path of `file` in the program's folder, in the ANSI code page whatever the folder is called: by short names
/// where needed.
std::string ProgramFile(const std::wstring& file);

/// Whether this machine was made to be changed: a private Wine prefix of this project.
bool IsPrivateMachine();

// --- Registry. Keys are below HKEY_LOCAL_MACHINE, in the 64-bit view.

/// True when the key did not exist before.
bool MakeRegistryKey(const std::string& key);
/// True when the key did not exist before. The bytes of a text are in the ANSI code page, and may lack their end.
bool SetRegistryValue(const std::string& key, const std::string& name, DWORD type, const std::string& bytes);
/// Sets a value of type REG_SZ. True when the key did not exist before.
bool SetRegistryText(const std::string& key, const std::string& name, const std::string& text);
void DeleteRegistryValue(const std::string& key, const std::string& name);
/// With all that is below it.
void DeleteRegistryKey(const std::string& key);
std::vector<std::string> RegistrySubkeys(const std::string& key);

// --- Services.

std::string ServiceKey(const std::string& name);

/// The image path is registered as it stands, also as the value "ImagePath" of the key; an empty one is in neither.
void CreateDriverService(const std::string& name, const std::string& imagePath, DWORD startType, DWORD serviceType);
void StartDriverService(const std::string& name);
/// Stops the service where it runs, and removes its registry key too. Nothing happens when there is no such service.
void DeleteDriverService(const std::string& name);

// --- Devices.

/// What the driver key of a device says about the installed package.
struct InstalledPackage {
  std::string inf;
  std::string version;
  /// "5-17-2023".
  std::string date;
  std::string provider = {};
};

struct DeviceSettings {
  std::string instanceId;
  std::string description;
  std::string manufacturer;
  /// Setup class: "Display", "HIDClass", "Net", "SCSIAdapter" or "System"; any other for none.
  std::string className;
  std::vector<std::string> hardwareIds;
  std::string location;
  std::string service;
  std::string friendlyName;
  std::optional<InstalledPackage> package;
  /// INF files of the packages that extend it.
  std::vector<std::string> extensions;
  /// Problem that Windows reports for it, such as 28.
  std::optional<DWORD> problemCode;
};

void CreateDevice(const DeviceSettings& settings);
/// Nothing happens when there is no such device.
void RemoveDevice(const std::string& instanceId);

// --- Files.

/// Makes the folders above `path` that do not exist. Returns the first of them; empty when all existed.
std::string MakeFoldersFor(const std::string& path);

/// Copies `image`, a file of the program's folder, to `path`. Makes folders as MakeFoldersFor().
std::string CopyImage(const std::wstring& image, const std::string& path);

/// Creation time in UTC. Wine has none of its own for a file and shows the time of the last write, which is set too.
void SetFileCreationTime(const std::string& path, const SYSTEMTIME& utc);

/// Version resource of a driver image.
struct VersionSettings {
  WORD file[4] = {};
  WORD product[4] = {};
  WORD language = 0x0409;
  WORD codePage = 0x04B0;
  /// Such as "CompanyName", in UTF-16.
  std::vector<std::pair<std::wstring, std::wstring>> texts;
};

/// The bytes of a version resource.
std::vector<char> VersionResourceBytes(const VersionSettings& settings);

/// Puts `bytes` into the image at `path` as its version resource.
void SetVersionResource(const std::string& path, const std::vector<char>& bytes);

}  // namespace test
