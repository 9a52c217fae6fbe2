#include "deviceidentity.h"

#include <gtest/gtest.h>

#include <cctype>
#include <clocale>

using namespace Orvane;

namespace {

/// The four parts joined by "-"; "none" for an identifier of another form.
std::string Parsed(std::string_view identifier) {
  const auto identifiers = ParseIdentifier(identifier);
  if (!identifiers) return "none";
  return identifiers->vendor + "-" + identifiers->device + "-" + identifiers->part3 + "-" + identifiers->part4;
}

TEST(Identifier, OfPciHasSubsystemVendorThirdAndSubsystemDeviceFourth) {
  EXPECT_EQ(Parsed("PCI\\VEN_8086&DEV_15F3&SUBSYS_0A5C1028&REV_03"), "8086-15F3-1028-0A5C");
  EXPECT_EQ(Parsed("PCI\\VEN_8086&DEV_15F3&SUBSYS_0A5C1028&REV_03\\3&11583659&0&FE"), "8086-15F3-1028-0A5C");
  EXPECT_EQ(Parsed("PCI\\VEN_8086&DEV_15F3&CC_0200&SUBSYS_0A5C1028"), "8086-15F3-1028-0A5C");
}

TEST(Identifier, OfPciWithoutSubsystemHasZeros) {
  EXPECT_EQ(Parsed("PCI\\VEN_8086&DEV_15F3"), "8086-15F3-0000-0000");
  EXPECT_EQ(Parsed("PCI\\VEN_8086&DEV_15F3&REV_03"), "8086-15F3-0000-0000");
  EXPECT_EQ(Parsed("PCI\\VEN_8086&DEV_15F3\\SUBSYS_0A5C1028"), "8086-15F3-0000-0000") << "that is the instance";
  EXPECT_EQ(Parsed("PCI\\VEN_8086&DEV_15F3&SUBSYS_0A5C"), "8086-15F3-0000-0000");
  EXPECT_EQ(Parsed("PCI\\VEN_8086&DEV_15F3&SUBSYS_0A5C102G"), "8086-15F3-0000-0000");
}

TEST(Identifier, OfAcpiIsSplitIntoVendorAndProduct) {
  EXPECT_EQ(Parsed("ACPI\\VEN_INTC&DEV_105E"), "INTC-105E-0000-0000");
  EXPECT_EQ(Parsed("ACPI\\VEN_INTC&DEV_105E&REV_0001"), "INTC-105E-0000-0000");
  EXPECT_EQ(Parsed("ACPI\\AMDI0030"), "AMDI-0030-0000-0000");
  EXPECT_EQ(Parsed("ACPI\\AMDI0030\\0"), "AMDI-0030-0000-0000");
  EXPECT_EQ(Parsed("ACPI\\PNP0C0A\\1"), "PNP-0C0A-0000-0000");
  EXPECT_EQ(Parsed("ACPI\\PNPA000"), "PNP-A000-0000-0000") << "the last four are the product";
  EXPECT_EQ(Parsed("ACPI\\80860F14\\1"), "8086-0F14-0000-0000") << "some vendors are numbers";
}

TEST(Identifier, KeepsItsCase) {
  EXPECT_EQ(Parsed("pci\\ven_10de&dev_1eb8&subsys_12a210de"), "10de-1eb8-10de-12a2");
  EXPECT_EQ(Parsed("acpi\\intc105e"), "intc-105e-0000-0000");
}

TEST(Identifier, OfAnotherFormIsNone) {
  for (const char* const identifier : {"",
                                       "\\",
                                       "PCI",
                                       "PCI\\",
                                       "PCI\\VEN_8086",
                                       "PCI\\DEV_15F3",
                                       "PCI\\VEN_808&DEV_15F3",
                                       "PCI\\VEN_8086&DEV_15F31",
                                       "PCI\\VEN_808G&DEV_15F3",
                                       "PCI\\AMDI0030",
                                       "PCIX\\VEN_8086&DEV_15F3",
                                       "USB\\VID_8086&PID_15F3",
                                       "ACPI\\FixedButton",
                                       "ACPI\\ThermalZone\\THRM",
                                       "ACPI\\VEN_IN&DEV_105E",
                                       "ACPI\\VEN_INTEL&DEV_105E",
                                       "ACPI\\AMDI003G",
                                       "ACPI\\0030",
                                       "ACPI\\AB0030",
                                       "ACPI\\AMDIX0030",
                                       "ACPI\\AM\xC4I0030",
                                       "*INTC105E"}) {
    EXPECT_EQ(Parsed(identifier), "none") << identifier;
  }
}

TEST(Identifier, HasNoLettersOutsideAsciiInAnyLocaleOfTheHost) {
  ASSERT_NE(std::setlocale(LC_CTYPE, "German_Germany.1252"), nullptr);
  ASSERT_NE(std::isalnum(0xC4), 0);
  EXPECT_EQ(Parsed("ACPI\\AM\xC4I0030"), "none");
  std::setlocale(LC_CTYPE, "C");
}

TEST(Identifier, MayHaveAnyLength) {
  EXPECT_EQ(Parsed("PCI\\" + std::string(1'000'000, '&')), "none");
  EXPECT_EQ(Parsed("PCI\\VEN_8086&DEV_15F3&" + std::string(1'000'000, 'x')), "8086-15F3-0000-0000");
}

TEST(Enumerator, IsWhatStandsBeforeTheFirstBackslash) {
  EXPECT_TRUE(HasEnumerator("PCI\\VEN_8086", "PCI"));
  EXPECT_TRUE(HasEnumerator("pci\\ven_8086", "PCI"));
  EXPECT_FALSE(HasEnumerator("PCIIDE\\IDECHANNEL", "PCI"));
  EXPECT_FALSE(HasEnumerator("PCI", "PCI"));
  EXPECT_FALSE(HasEnumerator("", "PCI"));
}

}  // namespace
