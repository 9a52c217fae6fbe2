#include "guest.h"

#include "driverinfo.h"

namespace {

class LibraryGuest : public sweeps::Guest {
 public:
  int List(int mode) override { return m_info.list_drivers(m_drivers, static_cast<Orvane::DriverInfoSetType>(mode)); }

  void Append(const std::string& name, const std::string& version) override {
    Orvane::DriverData driver;
    driver.name = name;
    driver.file_version = version;
    m_drivers.push_back(driver);
  }

  std::vector<test::Fields> Records() const override {
    std::vector<test::Fields> records;
    for (const Orvane::DriverData& driver : m_drivers) records.push_back(test::FieldsOf(driver));
    return records;
  }

  void Clear() override { m_drivers.clear(); }

 private:
  Orvane::DriverInfo m_info;
  std::vector<Orvane::DriverData> m_drivers;
};

}  // namespace

extern "C" __declspec(dllexport) sweeps::Guest* MakeGuest() { return new LibraryGuest; }
