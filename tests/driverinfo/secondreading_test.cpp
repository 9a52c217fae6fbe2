// The second reading of a version resource, without file-system redirection.
#include "platform/handles.h"
#include "redirection.h"
#include "servicelisting.h"

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// Reads another image while redirection is switched off.
struct OtherImage {
  OtherImage(const Redirection& switchable, std::string image) : redirection(switchable), other(std::move(image)) {}

  const char* Seen(const char* path) const { return redirection.off ? other.c_str() : path; }

  const Redirection& redirection;
  std::string other;
  HOOK(size, Library(), GetFileVersionInfoSizeA,
       [this](const char* path, DWORD* handle) { return size.Real(Seen(path), handle); });
  HOOK(read, Library(), GetFileVersionInfoA, [this](const char* path, DWORD handle, DWORD bytes, void* buffer) {
    return read.Real(Seen(path), handle, bytes, buffer);
  });
};

/// Described() of the driver Oi.sys with these texts.
std::string Record(const std::string& description, const std::string& provider, const std::string& version,
                   const std::string& product) {
  WIN32_FIND_DATAA file{};
  const Orvane::FindHandle found(FindFirstFileA(DriverPath("Oi.sys").c_str(), &file));
  Orvane::DriverData driver;
  driver.name = "Oi.sys";
  driver.description = description;
  driver.provider = provider;
  driver.path = DriverPath("Oi.sys");
  driver.file_version = version;
  driver.state = "Stopped";
  driver.start_type = "Manual";
  driver.date = "06/21/2006 13:05:09";
  driver.size = std::to_string(file.nFileSizeLow / 1024);
  driver.product_version = product;
  return Described(driver);
}

class SecondReading : public ServiceListing {
 protected:
  /// The record and the log of a listing that reads `first` with redirection and `second` without.
  void Read(const std::wstring& first, const std::wstring& second) {
    m_image = std::make_unique<ScratchFile>(DriverPath("Oi.sys"), L"images\\" + first);
    const DriverService service("Oi", "Oi.sys");
    const OtherImage other(redirection, ProgramFile(L"images\\" + second));
    records = List();
  }

  Redirection redirection{Library(), TRUE};
  std::vector<std::string> records;

 private:
  std::unique_ptr<ScratchFile> m_image;
};

TEST_F(SecondReading, FindsAllWhereTheFirstFoundNothing) {
  Read(L"noresource.sys", L"full.sys");
  EXPECT_THAT(records, ElementsAre(Record("Example bus driver", "Example Systems", "6.2.9200.16384", "10.0.1.2")));
  EXPECT_THAT(log.Take(), ElementsAre(StartServices, EnterImage, ExitImage, EnterImage, ExitImage,
                                      ServiceListed("Oi.sys", "6.2.9200.16384"), NoIntel, NoAmd, NoPshed));
  EXPECT_THAT(redirection.calls, ElementsAre("load kernel32.dll 8", "look up Wow64DisableWow64FsRedirection", "disable",
                                             "look up Wow64RevertWow64FsRedirection", "revert null", "free"));
}

TEST_F(SecondReading, GivesOnlyTheMissingCompany) {
  Read(L"nocompany.sys", L"full.sys");
  EXPECT_THAT(records, ElementsAre(Record("Driver of no one", "Example Systems", "10.0.0.10", "10.0.100.0")));
}

TEST_F(SecondReading, GivesOnlyTheMissingDescription) {
  Read(L"nodescription.sys", L"full.sys");
  EXPECT_THAT(records, ElementsAre(Record("Example bus driver", "Quiet Systems", "1.0.0.7", "1.0.0.8")));
}

TEST_F(SecondReading, GivesBothVersionsWhereTheFileVersionIsMissing) {
  HOOK(query, Library(), VerQueryValueA, [&](const void* block, const char* path, void** value, UINT* length) {
    const BOOL found = query.Real(block, path, value, length);
    if (!redirection.off && path == std::string("\\")) *length = 0;
    return found;
  });
  Read(L"full.sys", L"nodescription.sys");
  EXPECT_THAT(records, ElementsAre(Record("Example bus driver", "Example Systems", "1.0.0.7", "1.0.0.8")));
}

TEST_F(SecondReading, LeavesEmptyWhatItDoesNotFindEither) {
  Read(L"nocompany.sys", L"noresource.sys");
  EXPECT_THAT(records, ElementsAre(Record("Driver of no one", "", "10.0.0.10", "10.0.100.0")));
}

TEST_F(SecondReading, IsNotMadeWhenNothingIsMissing) {
  Read(L"full.sys", L"nodescription.sys");
  EXPECT_THAT(records, ElementsAre(Record("Example bus driver", "Example Systems", "6.2.9200.16384", "10.0.1.2")));
  EXPECT_THAT(redirection.calls, IsEmpty());
}

TEST_F(ServiceListing, ReadsNoSecondTimeUnlessRedirectionIsOffForCertain) {
  const ScratchFile image(DriverPath("Oi.sys"), L"images\\nocompany.sys");
  const DriverService service("Oi", "Oi.sys");
  Redirection redirection(Library(), 2);
  List();
  EXPECT_THAT(log.Take(), ElementsAre(StartServices, EnterImage, ExitImage, ServiceListed("Oi.sys", "10.0.0.10"),
                                      NoIntel, NoAmd, NoPshed));
  EXPECT_THAT(redirection.calls, ElementsAre("load kernel32.dll 8", "look up Wow64DisableWow64FsRedirection", "disable",
                                             "look up Wow64RevertWow64FsRedirection", "revert null", "free"));
}

}  // namespace
