/// @file
/// Driver images and catalogs in every state of a signature, and what other programs say of them: osslsigncode of the
/// images, openssl of the certificates.
#pragma once

#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "scratchmachine.h"

namespace test {

/// What osslsigncode says of a file. Texts are empty where it says nothing.
struct Sample {
  std::string file;
  std::string sha256;
  std::string imageSha256;
  std::string imageSha1;
  std::string state;
  std::string catalog;
  std::string signer;
  std::string issuer;
  std::string signedAt;
};

/// The full path of the sample `file`, UTF-8.
std::string SamplePath(const std::string& file);

std::string SampleBytes(const std::string& file);

const std::vector<Sample>& Samples();

/// What openssl says of a certificate.
struct SampleCertificate {
  std::string thumbprint;
  std::string tbsHash;
};

/// By name: "root", "issuing", "vendor", ...
const SampleCertificate& CertificateOf(const std::string& name);

/// A machine that trusts the root of the samples and has their catalogs, for the life of the test.
class TrustingMachine : public ScratchMachine {
 protected:
  void SetUp() override;
  void TearDown() override;
};

}  // namespace test
