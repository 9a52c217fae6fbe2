#include "inventory/nextsteps.h"

#include <gmock/gmock.h>

#include "inventory/healthrules.h"

using namespace inventory;

namespace {

Record Service(const std::string& name, const std::string& path) {
  Record service;
  service.kind = Kind::Service;
  service.service = name;
  service.path = path;
  service.provider = "Maker";
  return service;
}

Record Device(const std::string& id, const std::string& service, const std::string& inf) {
  Record device;
  device.kind = Kind::Device;
  device.instance_id = id;
  device.service = service;
  device.inf = inf;
  device.hardware_id = R"(PCI\VEN_8086&DEV_15F3)";
  return device;
}

Record Package(const std::string& inf, const std::vector<std::string>& files, std::uint64_t devicesUsing) {
  Record package;
  package.kind = Kind::Package;
  package.inf = inf;
  package.files = files;
  package.devices_using = devicesUsing;
  return package;
}

/// "net" belongs to oem1.inf, because its device does; "disk" to oem2.inf, because that brought its image.
const Records Machine = {Device(R"(PCI\1)", "NET", "OEM1.inf"), Device(R"(PCI\2)", "usb", "usb.inf"),
                         Package("oem1.inf", {}, 1), Package("oem2.inf", {"Disk.sys"}, 0),
                         Package("usb.inf", {"usb.sys"}, 1)};

TEST(NextStep, RemovesAServiceWithItsPackage) {
  const NextSteps steps(Machine);
  EXPECT_EQ(steps.ForVulnerable(Service("net", R"(C:\x\net.sys)")),
            "update the product it belongs to, or remove its package with pnputil /delete-driver oem1.inf /uninstall");
  EXPECT_EQ(steps.ForVulnerable(Service("disk", R"(C:\Windows\System32\drivers\disk.sys)")),
            "update the product it belongs to, or remove its package with pnputil /delete-driver oem2.inf /uninstall");
}

TEST(NextStep, RemovesAServiceOfNoPackageByItself) {
  const NextSteps steps(Machine);
  EXPECT_EQ(steps.ForVulnerable(Service("my disk", R"(C:\Users\me\disk.sys)")),
            "update the product it belongs to, or remove the service with sc.exe delete \"my disk\"")
      << "a file of that name is not the one of the package";
  EXPECT_EQ(steps.ForVulnerable(Service("usb", R"(C:\Windows\System32\drivers\usb.sys)")),
            "update the product it belongs to, or remove the service with sc.exe delete usb")
      << "packages of Windows stay";
}

TEST(NextStep, OfAnImageNamesItsMaker) {
  const NextSteps steps({});
  Record service = Service("net", R"(C:\x\net.sys)");
  EXPECT_EQ(steps.ForUnsigned(service),
            "get a signed version from Maker, or remove the service with sc.exe delete net");
  EXPECT_EQ(steps.ForInvalidSignature(service),
            "install it again from Maker, or remove the service with sc.exe delete net");
  service.provider.clear();
  EXPECT_EQ(steps.ForUnsigned(service),
            "get a signed version from its maker, or remove the service with sc.exe delete net");
  EXPECT_EQ(steps.ForMalicious(service),
            "take this machine off the network, keep a copy of the image as evidence, then remove the service with "
            "sc.exe delete net");
  EXPECT_EQ(steps.ForListedName(service),
            "compare the image with the listed one; if it is affected, update it, or remove the service with sc.exe "
            "delete net");
  EXPECT_EQ(steps.ForImageInUserFolder(service),
            "find out which program put it there; if nobody knows it, remove the service with sc.exe delete net");
  EXPECT_EQ(steps.ForMissingImage(service), "install the driver again, or remove the service with sc.exe delete net");
  EXPECT_EQ(steps.ForNoVersionOrCompany(service),
            "find out who made it: look at its signature and at the program that installed it");
  EXPECT_EQ(steps.ForNotRunning(service),
            "start it with sc.exe start net; if it is not needed, let it start on demand only with sc.exe config net "
            "start= demand");
  service.image_missing = true;
  EXPECT_EQ(steps.ForNotRunning(service), steps.ForMissingImage(service)) << "it cannot start";
}

TEST(NextStep, OfADeviceFollowsFromItsProblem) {
  const NextSteps steps({});
  Record device = Device(R"(PCI\VEN_8086&DEV_15F3\3&11583659&0&00)", "", "oem1.inf");
  const auto step = [&](std::uint64_t problem) {
    device.problem_code = problem;
    return steps.ForProblem(device);
  };
  EXPECT_EQ(step(22),
            "the device is disabled: enable it with pnputil /enable-device "
            "\"PCI\\VEN_8086&DEV_15F3\\3&11583659&0&00\"");
  EXPECT_EQ(step(14), "restart the machine");
  EXPECT_EQ(step(28), steps.ForDeviceWithoutDriver(device));
  EXPECT_EQ(step(43),
            "update or reinstall its driver, then restart the device with pnputil /restart-device "
            "\"PCI\\VEN_8086&DEV_15F3\\3&11583659&0&00\"");
  device.inf.clear();
  EXPECT_THAT(step(5000), testing::StartsWith("install a driver, then restart the device with pnputil "));
  EXPECT_EQ(steps.ForDeviceWithoutDriver(device),
            R"(look for a driver for PCI\VEN_8086&DEV_15F3 and install it with pnputil /add-driver FILE.inf /install)");
  device.hardware_id.clear();
  EXPECT_EQ(steps.ForNoVersionOrCompany(device), "look for a newer driver");
}

TEST(NextStep, OfPackagesNamesThem) {
  const NextSteps steps(Machine);
  EXPECT_EQ(steps.ForUnusedPackage(Machine[3]),
            "remove with pnputil /delete-driver oem2.inf, unless its device is only unplugged");
  EXPECT_EQ(steps.ForSeveralVersions("9.0", {"oem1.inf", "oem2.inf", R"(C:\Windows\net.sys)"}),
            "update C:\\Windows\\net.sys, update oem1.inf, remove oem2.inf with pnputil /delete-driver oem2.inf: 9.0 "
            "is the newest version");
}

TEST(NextStep, ShowsNoCommandThatAShellCouldTakeForAnother) {
  EXPECT_EQ(CommandFor("sc.exe delete", "net"), "sc.exe delete net");
  EXPECT_EQ(CommandFor("sc.exe delete", "my net&{x};'"), "sc.exe delete \"my net&{x};'\"");
  EXPECT_EQ(CommandFor("sc.exe delete", "Schl\u00FCssel"), "sc.exe delete \"Schl\u00FCssel\"");
  for (const char* const name : {"", "a\" & calc \"", "%PATH%", "$(calc)", "`n", "a\nb", "a\x7F", "a\u201Db",
                                 "a\u202Eb", "a\u2066b", "!x!", "-a", "/a", "a\\"}) {
    EXPECT_EQ(CommandFor("sc.exe delete", name), "") << name;
  }
  EXPECT_EQ(NextSteps({}).ForMissingImage(Service("a\" & calc \"", "C:\\a.sys")),
            "install the driver again, or remove the service");
}

TEST(NextStep, ComesWithEveryFinding) {
  Record stopped = Service("net", R"(C:\x\net.sys)");
  stopped.start_type = "Automatic";
  stopped.state = "Stopped";
  Records records = Machine;
  records.push_back(stopped);
  const std::vector<Finding> findings = Examine(records);
  EXPECT_GE(findings.size(), 4u);
  for (const Finding& finding : findings) {
    EXPECT_NE(finding.nextStep, "") << finding.rule;
    EXPECT_EQ(finding.id.find(finding.rule + "-"), 0u);
    EXPECT_EQ(finding.severity, FindHealthRule(finding.rule)->severity);
  }
}

TEST(Severity, IsKnownByItsName) {
  for (const Severity severity : Severities) EXPECT_EQ(SeverityNamed(SeverityName(severity)), severity);
  EXPECT_EQ(SeverityNamed("urgent"), std::nullopt);
  EXPECT_TRUE(IsAtLeast(Severity::Critical, Severity::High));
  EXPECT_TRUE(IsAtLeast(Severity::High, Severity::High));
  EXPECT_FALSE(IsAtLeast(Severity::Medium, Severity::High));
}

}  // namespace
