#include "samples.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "trustedmachine.h"

namespace test {
namespace {

using Json = nlohmann::json;

constexpr const char* CatalogFiles[] = {"catalog-1.cat", "catalog-2.cat", "foreign.cat", "altered.cat"};

const Json& Expected() {
  static const Json expected = Json::parse(SampleBytes("expected.json"));
  return expected;
}

Sample ReadSample(const Json& json) {
  const auto text = [&](const char* member) { return json.value(member, std::string()); };
  return {text("file"),    text("sha256"), text("image_sha256"), text("image_sha1"), text("state"),
          text("catalog"), text("signer"), text("issuer"),       text("signed_at")};
}

}  // namespace

std::string SamplePath(const std::string& file) {
  return std::filesystem::absolute(std::filesystem::u8path(SAMPLES) / std::filesystem::u8path(file))
      .make_preferred()
      .u8string();
}

std::string SampleBytes(const std::string& file) {
  std::ifstream stream(std::filesystem::u8path(SamplePath(file)), std::ios::binary);
  if (!stream) throw std::runtime_error(SamplePath(file) + " cannot be read");
  return std::string(std::istreambuf_iterator<char>(stream), {});
}

const std::vector<Sample>& Samples() {
  static const std::vector<Sample> samples = [] {
    std::vector<Sample> all;
    for (const Json& sample : Expected().at("samples")) all.push_back(ReadSample(sample));
    return all;
  }();
  return samples;
}

const SampleCertificate& CertificateOf(const std::string& name) {
  static const std::map<std::string, SampleCertificate> certificates = [] {
    std::map<std::string, SampleCertificate> all;
    for (const Json& json : Expected().at("certificates")) {
      all[json.at("certificate")] = {json.at("thumbprint"), json.at("tbs_hash")};
    }
    return all;
  }();
  return certificates.at(name);
}

void TrustingMachine::SetUp() {
  ScratchMachine::SetUp();
  if (IsSkipped()) return;
  AddTrustedRoot(SamplePath("root.der"));
  for (const char* const catalog : CatalogFiles) AddCatalog(SamplePath(catalog));
}

void TrustingMachine::TearDown() {
  if (IsSkipped()) return;
  for (const char* const catalog : CatalogFiles) RemoveCatalog(SamplePath(catalog));
  RemoveTrustedRoot(SamplePath("root.der"));
}

}  // namespace test
