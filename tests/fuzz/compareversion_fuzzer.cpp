// The order of versions.
#include <fuzzer/FuzzedDataProvider.h>

#include <stdexcept>
#include <vector>

#include "model.h"
#include "versioncompare.h"

namespace {

std::vector<std::string> Split(const std::string& version) {
  std::vector<std::string> components(1);
  for (const char c : version) {
    if (c == '.' || c == ' ') {
      components.emplace_back();
    } else {
      components.back() += c;
    }
  }
  return components;
}

bool IsHexDigit(char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F'); }

/// Throws for whatever is no number of up to 63 bits.
long long Number(const std::string& component) {
  if (component.empty()) throw std::invalid_argument("empty");
  for (const char c : component) {
    if (!IsHexDigit(c)) throw std::invalid_argument("no number");
  }
  return std::stoll(component, nullptr, 16);
}

int CompareBytes(const std::string& a, const std::string& b) {
  for (std::size_t i = 0; i < a.size() && i < b.size(); ++i) {
    const auto byteA = static_cast<unsigned char>(a[i]);
    const auto byteB = static_cast<unsigned char>(b[i]);
    if (byteA != byteB) return byteA > byteB ? 1 : -1;
  }
  if (a.size() == b.size()) return 0;
  return a.size() > b.size() ? 1 : -1;
}

int CompareComponents(const std::string& a, const std::string& b) {
  try {
    const long long numberA = Number(a);
    const long long numberB = Number(b);
    if (numberA > numberB) return 1;
    if (numberB > numberA) return -1;
    return 0;
  } catch (const std::exception&) {
    return CompareBytes(a, b);
  }
}

int Compare(const std::string& a, const std::string& b) {
  const std::vector<std::string> componentsA = Split(a);
  const std::vector<std::string> componentsB = Split(model::Lower(b));
  for (std::size_t i = 0; i < componentsA.size() && i < componentsB.size(); ++i) {
    const int result = CompareComponents(componentsA[i], componentsB[i]);
    if (result != 0) return result;
  }
  if (componentsA.size() > componentsB.size()) return 1;
  if (componentsB.size() > componentsA.size()) return -1;
  return 0;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider input(data, size);
  const std::string a = input.ConsumeRandomLengthString();
  const std::string b = input.ConsumeRemainingBytesAsString();
  model::Expect("CompareVersion", Orvane::CompareVersion(a, b), Compare(a, b));
  const std::string lowerA = model::Lower(a);
  const std::string lowerB = model::Lower(b);
  const int result = Orvane::CompareVersion(lowerA, lowerB);
  model::Expect("CompareVersion the other way round", Orvane::CompareVersion(lowerB, lowerA), -result);
  model::Expect("CompareVersion of the same", Orvane::CompareVersion(lowerA, a), 0);
  return 0;
}
