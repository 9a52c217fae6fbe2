/// @file
/// Reads files as text, whatever their encoding, one part at a time, however large they are.
#pragma once

#include <array>
#include <cstdint>
#include <streambuf>
#include <string>
#include <string_view>
#include <vector>

#include "platform/handles.h"
#include "platform/inputproblem.h"

namespace inventory {

using Orvane::InputProblem;

/// The longest file that is read, in bytes.
constexpr std::uint64_t LongestInput = 1u << 30;

/// The content of a file in UTF-8. A byte order mark tells the encoding: UTF-8, or UTF-16 in either byte order. A file
/// without a mark is taken for UTF-8, and its bytes are passed on unchecked. The mark is dropped.
class InputFile : public std::streambuf {
 public:
  /// Opens the file at `path` (UTF-8). Opening and reading throw InputProblem if Windows refuses, or if the file is
  /// longer than LongestInput.
  explicit InputFile(const std::string& path);

 protected:
  int_type underflow() override;
  /// Seeks to the beginning; no other position is possible.
  pos_type seekpos(pos_type position, std::ios_base::openmode which) override;

 private:
  enum class Encoding { Unknown, Utf8, Utf16LittleEndian, Utf16BigEndian };

  /// The next bytes of the file; empty at its end.
  std::string_view ReadBytes();
  /// Drops the mark at the beginning of `bytes` and sets the encoding accordingly.
  std::string_view WithoutMark(std::string_view bytes);
  /// Converts bytes in UTF-16. Half a character at the end waits for its other half.
  std::string Utf8From(std::string_view bytes);
  void Count(std::uint64_t bytes);

  Orvane::FileHandle m_file;
  std::vector<char> m_bytes;
  std::string m_text;
  Encoding m_encoding = Encoding::Unknown;
  std::string m_oddByte;
  std::wstring m_wide;
  std::uint64_t m_length = 0;
};

}  // namespace inventory
