// The names and places that image paths tell.
#include <fuzzer/FuzzedDataProvider.h>

#include "drivernames.h"
#include "model.h"

namespace {

using model::Cut;
using model::First;
using model::Last;
using model::Length;

std::string ImageFileName(const std::string& path, const std::string& service) {
  if (Length(path) >= 4 && First(path, "\\??\\") >= 0) return Cut(path, 4, Length(path));
  if (path.empty()) return service + ".sys";
  const std::string lower = model::Lower(path);
  return Cut(lower, Last(lower, "\\") + 1, Length(lower));
}

std::string FirstPlace(const std::string& path, const std::string& systemDirectory) {
  if (First(path, ":") >= 0) return path;
  const bool isBelowSystem = model::StandsAt(path, 0, "\\system32") || model::StandsAt(path, 0, "system32") ||
                             model::StandsAt(path, 0, "\\System32") || model::StandsAt(path, 0, "System32") ||
                             model::StandsAt(path, 0, "\\SystemRoot\\");
  if (!isBelowSystem) return systemDirectory + "\\drivers\\" + path;
  const int last = Last(path, "32");
  return systemDirectory + Cut(path, last >= 0 ? last + 2 : 1, Length(path));
}

std::string RecordName(const std::string& path) {
  const std::string file = Cut(path, Last(path, "\\") + 1, Length(path));
  if (First(file, ".") < 0) return file;
  return Cut(file, 0, First(file, ".")) + ".sys";
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider input(data, size);
  const std::string service = input.ConsumeRandomLengthString();
  const std::string path = input.ConsumeRemainingBytesAsString();
  // What crosses the platform ends at its first zero byte.
  const std::string shortPath = path.c_str();
  const std::string shortService = service.c_str();
  model::Expect("GetImageFileName", Orvane::GetImageFileName(path.c_str(), service.c_str()),
                ImageFileName(shortPath, shortService));
  model::Expect("GetImageFileName without path", Orvane::GetImageFileName(nullptr, service.c_str()),
                shortService + ".sys");
  model::Expect("GetImageFileName without anything", Orvane::GetImageFileName(nullptr, nullptr), ".sys");
  model::Expect("FirstImagePlace", Orvane::FirstImagePlace(path, service), FirstPlace(path, service));
  model::Expect("ImageRecordName", Orvane::ImageRecordName(path), RecordName(path));

  std::string before = "old";
  std::string after = "old";
  Orvane::SplitAtSemicolon(path, before, after);
  const int semicolon = First(path, ";");
  model::Expect("SplitAtSemicolon, before", before, semicolon < 0 ? path : Cut(path, 0, semicolon));
  model::Expect("SplitAtSemicolon, after", after, semicolon < 0 ? path : Cut(path, semicolon + 1, Length(path)));
  return 0;
}
