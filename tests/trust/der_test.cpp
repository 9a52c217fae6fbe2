// The reader of DER, by hand-made elements.
#include "trust/der.h"

#include <gtest/gtest.h>

using trust::Bytes;
using trust::DerElement;
using trust::DerReader;

namespace {

using namespace std::string_literals;

TEST(Der, GivesElementsInTheirOrder) {
  const std::string bytes = "\x02\x01\x07\x30\x03\x04\x01\xAA"s;
  DerReader reader(bytes);
  EXPECT_FALSE(reader.Next(trust::DerSequence));
  EXPECT_EQ(reader.Content(trust::DerInteger), Bytes("\x07"));
  const auto sequence = reader.Next();
  ASSERT_TRUE(sequence);
  EXPECT_EQ(sequence->tag, trust::DerSequence);
  EXPECT_EQ(sequence->content, Bytes("\x04\x01\xAA"));
  EXPECT_EQ(sequence->whole, Bytes("\x30\x03\x04\x01\xAA"));
  EXPECT_FALSE(reader.Next());
}

TEST(Der, ReadsLongLengths) {
  const std::string content(300, 'x');
  const std::string bytes = "\x04\x82\x01\x2C"s + content;
  EXPECT_EQ(DerReader(bytes).Content(trust::DerOctets), Bytes(content));
  const std::string four = "\x04\x84\x00\x00\x01\x2C"s + content;
  EXPECT_EQ(DerReader(four).Content(trust::DerOctets), Bytes(content));
}

TEST(Der, EndsAtWhatIsMalformed) {
  // Nothing, half a head, too long, indefinite, a length of more than four bytes, a tag of more than one.
  for (const std::string& bytes : {""s, "\x30"s, "\x30\x02\x00"s, "\x30\x80\x00\x00"s, "\x30\x85\x00\x00\x00\x00\x00"s,
                                   "\x30\x82\x01"s, "\x30\x84\xFF\xFF\xFF\xFF"s, "\x1F\x00"s, "\xBF\x00"s}) {
    EXPECT_FALSE(DerReader(bytes).Next()) << testing::PrintToString(bytes);
  }
}

TEST(Der, NamesObjectIdentifiers) {
  EXPECT_EQ(trust::OidText("\x2A\x86\x48\x86\xF7\x0D\x01\x07\x02"s), "1.2.840.113549.1.7.2");
  EXPECT_EQ(trust::OidText("\x55\x04\x03"s), "2.5.4.3");
  EXPECT_EQ(trust::OidText("\x67\x81\x0C\x01\x03"s), "2.23.140.1.3");
  EXPECT_EQ(trust::OidText(""s), "");
  // Without an end, and with a number that is too large.
  EXPECT_EQ(trust::OidText("\x2A\x86"s), "");
  EXPECT_EQ(trust::OidText("\x2A\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\x7F"s), "");
}

std::string Time(unsigned char tag, const std::string& text) { return trust::TimeText({tag, text, {}}); }

TEST(Der, WritesTimesInIsoForm) {
  EXPECT_EQ(Time(trust::DerUtcTime, "240517083000Z"), "2024-05-17T08:30:00Z");
  EXPECT_EQ(Time(trust::DerUtcTime, "991231235959Z"), "1999-12-31T23:59:59Z");
  EXPECT_EQ(Time(trust::DerUtcTime, "500101000000Z"), "1950-01-01T00:00:00Z");
  EXPECT_EQ(Time(trust::DerGeneralizedTime, "20500101000000Z"), "2050-01-01T00:00:00Z");
  EXPECT_EQ(Time(trust::DerGeneralizedTime, "20240517083000.125Z"), "2024-05-17T08:30:00Z");
}

TEST(Der, WritesNoTimeThatThereIsNot) {
  for (const char* const text : {"", "Z", "240517083000", "2405170830Z", "24051708300xZ", "241317083000Z",
                                 "240500083000Z", "240532083000Z", "240517243000Z", "240517086000Z"}) {
    EXPECT_EQ(Time(trust::DerUtcTime, text), "") << text;
  }
  EXPECT_EQ(Time(trust::DerGeneralizedTime, "20240517083000+0200"), "");
  EXPECT_EQ(Time(trust::DerOctets, "240517083000Z"), "");
}

std::string String(unsigned char tag, const std::string& content) { return trust::StringText({tag, content, {}}); }

TEST(Der, WritesStringsInUtf8) {
  EXPECT_EQ(String(0x0C, "Bl\xC3\xA4tter \xE2\x86\x92 \xF0\x9F\x98\x80"),
            "Bl\xC3\xA4tter \xE2\x86\x92 \xF0\x9F\x98\x80");
  EXPECT_EQ(String(0x13, "Printable"), "Printable");
  EXPECT_EQ(String(0x14, "Bl\xE4tter"), "Bl\xC3\xA4tter");
  EXPECT_EQ(String(0x1E, "\x00\x41\x21\x92\xD8\x3D\xDE\x00"s), "A\xE2\x86\x92\xF0\x9F\x98\x80");
  EXPECT_EQ(String(0x1C, "\x00\x00\x00\x41\x00\x01\xF6\x00"s), "A\xF0\x9F\x98\x80");
}

TEST(Der, ReplacesWhatIsNoText) {
  const std::string mark = "\xEF\xBF\xBD";
  EXPECT_EQ(String(0x0C, "a\xFF"s + "b"), "a" + mark + "b");
  EXPECT_EQ(String(0x0C, "\xC3"), mark);
  // More bytes than needed, a surrogate, a number too large.
  EXPECT_EQ(String(0x0C, "\xC0\xAF"), mark + mark);
  EXPECT_EQ(String(0x0C, "\xED\xA0\x80"), mark);
  EXPECT_EQ(String(0x0C, "\xF7\xBF\xBF\xBF"), mark);
  // Control characters, which would write on a terminal.
  EXPECT_EQ(String(0x13, "a\x1B[2Jb\0c"s), "a" + mark + "[2Jb" + mark + "c");
  EXPECT_EQ(String(0x1E, "\xD8\x3D\x00\x41"s), mark + "A");
}

}  // namespace
