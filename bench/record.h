/// @file
/// What a listing keeps of a driver, for comparing one listing with another.
#pragma once

#include <string>
#include <tuple>

namespace bench {

struct Record {
  std::string name;
  std::string description;
  std::string provider;
  std::string path;
  std::string fileVersion;
  std::string state;
  std::string startType;
  std::string date;
  std::string size;
  std::string productVersion;
};

inline auto Texts(const Record& r) {
  return std::tie(r.name, r.description, r.provider, r.path, r.fileVersion, r.state, r.startType, r.date, r.size,
                  r.productVersion);
}
inline bool operator==(const Record& a, const Record& b) { return Texts(a) == Texts(b); }
inline bool operator<(const Record& a, const Record& b) { return Texts(a) < Texts(b); }

}  // namespace bench
