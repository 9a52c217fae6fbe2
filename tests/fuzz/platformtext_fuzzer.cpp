// Texts in buffers that the platform filled. The buffer is exactly as large as it says: a byte too far is a finding.
#include "platform/platformtext.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <memory>

#include "model.h"

namespace {

/// The bytes from `begin` up to the first zero, or to the end.
std::string Text(const std::string& bytes, std::size_t begin) {
  std::string text;
  for (std::size_t i = begin; i < bytes.size() && bytes[i] != '\0'; ++i) text += bytes[i];
  return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider input(data, size);
  const std::size_t position = input.ConsumeIntegral<std::uint16_t>();
  const std::string bytes = input.ConsumeRemainingBytesAsString();
  const std::size_t inside = bytes.empty() ? 0 : position % (bytes.size() + 1);
  const std::unique_ptr<char[]> owned(new char[bytes.size()]);
  std::copy(bytes.begin(), bytes.end(), owned.get());
  const char* const buffer = owned.get();
  model::Expect("BoundedText", Orvane::BoundedText(buffer, bytes.size()), Text(bytes, 0));
  model::Expect("TextWithin", Orvane::TextWithin(buffer + inside, buffer, bytes.size()), Text(bytes, inside));
  model::Expect("TextWithin of nothing", Orvane::TextWithin(static_cast<const char*>(nullptr), buffer, bytes.size()),
                "");
  const auto rest = Orvane::BytesFrom(buffer + inside, buffer, bytes.size());
  model::Expect("BytesFrom", rest ? std::to_string(*rest) : "none", std::to_string(bytes.size() - inside));

  // A text elsewhere is read to its own terminator.
  const std::string elsewhere = Text(bytes, inside);
  model::Expect("TextWithin elsewhere", Orvane::TextWithin(elsewhere.c_str(), buffer, bytes.size()), elsewhere);
  model::Expect("BytesFrom elsewhere", Orvane::BytesFrom(elsewhere.c_str(), buffer, bytes.size()) ? "some" : "none",
                "none");
  return 0;
}
