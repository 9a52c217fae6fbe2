/// @file
/// Global locales that a host may set.
#pragma once

#include <locale>
#include <string>

namespace test {

/// Numbers are written as "1.2.3".
class GroupedDigits : public std::numpunct<char> {
 protected:
  char do_thousands_sep() const override { return '.'; }
  std::string do_grouping() const override { return "\1"; }
};

/// The lower case of "Q" is "x", and the upper case of "Q" is "S".
class OddLetters : public std::ctype<char> {
 protected:
  char do_tolower(char c) const override { return c == 'Q' ? 'x' : std::ctype<char>::do_tolower(c); }
  char do_toupper(char c) const override { return c == 'Q' ? 'S' : std::ctype<char>::do_toupper(c); }
  const char* do_tolower(char* low, const char* high) const override {
    for (; low != high; ++low) *low = do_tolower(*low);
    return high;
  }
  const char* do_toupper(char* low, const char* high) const override {
    for (; low != high; ++low) *low = do_toupper(*low);
    return high;
  }
};

/// The classic locale with one of these is the process's global one while the object lives.
template <typename Facet>
class HostLocale {
 public:
  HostLocale() : m_former(std::locale::global(std::locale(std::locale::classic(), new Facet))) {}
  ~HostLocale() { std::locale::global(m_former); }
  HostLocale(const HostLocale&) = delete;
  HostLocale& operator=(const HostLocale&) = delete;

 private:
  std::locale m_former;
};

}  // namespace test
