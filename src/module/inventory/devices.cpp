#include "inventory/devices.h"

#include <windows.h>
// After windows.h.
#include <initguid.h>
// Defines the property keys, since initguid.h is included before it.
#include <devpkey.h>
#include <setupapi.h>

#include <algorithm>
#include <array>
#include <utility>

#include "inventory/filenames.h"
#include "pciinfo.h"
#include "platform/encoding.h"
#include "platform/handles.h"
#include "platform/logline.h"
#include "platform/platformtext.h"

namespace inventory {
namespace {

using Orvane::DeviceSet;
using Orvane::PciDeviceRecord;
using Orvane::RegKey;
using Orvane::Utf8FromAnsi;
using Orvane::Utf8FromWide;

DeviceFacts InUtf8(const PciDeviceRecord& record) {
  return {
      Utf8FromAnsi(record.text4),          Utf8FromAnsi(record.text3),          Utf8FromAnsi(record.description),
      Utf8FromAnsi(record.text14),         Utf8FromAnsi(record.provider),       Utf8FromAnsi(record.text7),
      Utf8FromAnsi(record.text11),         Utf8FromAnsi(record.vendor_id),      Utf8FromAnsi(record.device_id),
      Utf8FromAnsi(record.identity_part3), Utf8FromAnsi(record.identity_part4), FileName(Utf8FromAnsi(record.inf_name)),
      Utf8FromAnsi(record.text12),         Utf8FromAnsi(record.text13)};
}

/// Enumerates all devices, present or not.
class Enumeration {
 public:
  Enumeration() : m_set(SetupDiGetClassDevsW(nullptr, nullptr, nullptr, DIGCF_ALLCLASSES)) {
    m_device.cbSize = sizeof(m_device);
  }

  explicit operator bool() const { return static_cast<bool>(m_set); }
  bool Next() { return SetupDiEnumDeviceInfo(m_set.get(), m_next++, &m_device) != FALSE; }

  std::string InstanceId() {
    std::array<wchar_t, 1024> text{};
    const bool isRead = SetupDiGetDeviceInstanceIdW(m_set.get(), &m_device, text.data(),
                                                    static_cast<DWORD>(text.size()), nullptr) != FALSE;
    return isRead ? Utf8FromWide(Orvane::BoundedText(text.data(), text.size())) : std::string();
  }

  /// File name of the INF that the device was installed from; empty without an INF.
  std::string InstalledInf() {
    const RegKey key(SetupDiOpenDevRegKey(m_set.get(), &m_device, DICS_FLAG_GLOBAL, 0, DIREG_DRV, KEY_QUERY_VALUE));
    std::array<wchar_t, MAX_PATH> text{};
    DWORD size = sizeof(text);
    if (!key || RegQueryValueExW(key.get(), L"InfPath", nullptr, nullptr, reinterpret_cast<BYTE*>(text.data()),
                                 &size) != ERROR_SUCCESS) {
      return {};
    }
    return FileName(Utf8FromWide(Orvane::BoundedText(text.data(), text.size())));
  }

  /// File names of the INFs that extend the device.
  std::vector<std::string> ExtensionInfs() {
    std::vector<std::string> infs;
    std::vector<wchar_t> texts(1 << 15);
    DEVPROPTYPE type = 0;
    // Terminated texts such as "oem3.inf:PCI\VEN_8086...", and another terminator after the last.
    const auto size = static_cast<DWORD>((texts.size() - 2) * sizeof(wchar_t));
    if (!Property(DEVPKEY_Device_ExtendedConfigurationIds, type, texts.data(), size) ||
        type != DEVPROP_TYPE_STRING_LIST) {
      return infs;
    }
    for (std::wstring_view left(texts.data(), texts.size()); left.front() != L'\0';) {
      const std::wstring_view text = left.substr(0, left.find(L'\0'));
      infs.push_back(Utf8FromWide(text.substr(0, text.find(L':'))));
      left.remove_prefix(text.size() + 1);
    }
    return infs;
  }

  std::optional<std::uint64_t> ProblemCode() {
    // Some platforms report success and write nothing; 0 means no problem.
    std::uint32_t code = 0;
    DEVPROPTYPE type = 0;
    const bool isRead = Property(DEVPKEY_Device_ProblemCode, type, &code, sizeof(code));
    return isRead && type == DEVPROP_TYPE_UINT32 && code != 0 ? std::optional<std::uint64_t>(code) : std::nullopt;
  }

 private:
  bool Property(const DEVPROPKEY& key, DEVPROPTYPE& type, void* buffer, DWORD size) {
    return SetupDiGetDevicePropertyW(m_set.get(), &m_device, &key, &type, static_cast<BYTE*>(buffer), size, nullptr,
                                     0) != FALSE;
  }

  DeviceSet m_set;
  SP_DEVINFO_DATA m_device{};
  DWORD m_next = 0;
};

}  // namespace

std::vector<DeviceFacts> ReadPresentDevices() {
  std::vector<PciDeviceRecord> records;
  GetPciInfo(records);
  std::vector<DeviceFacts> devices;
  for (const PciDeviceRecord& record : records) devices.push_back(InUtf8(record));
  return devices;
}

std::vector<DeviceNode> ReadDeviceNodes() {
  std::vector<DeviceNode> nodes;
  Enumeration devices;
  if (!devices) {
    const DWORD error = GetLastError();
    ORVANE_LOG(2) << "The devices cannot be listed: " << Orvane::ErrorText(error);
    return nodes;
  }
  while (devices.Next()) {
    DeviceNode node;
    node.instance_id = devices.InstanceId();
    node.infs = devices.ExtensionInfs();
    std::string installed = devices.InstalledInf();
    if (!installed.empty()) node.infs.push_back(std::move(installed));
    node.problem_code = devices.ProblemCode();
    nodes.push_back(std::move(node));
  }
  return nodes;
}

}  // namespace inventory
