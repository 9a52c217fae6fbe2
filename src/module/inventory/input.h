/// @file
/// Files that are read: as text, whatever their encoding, and a part at a time, however large they are.
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

/// The content of a file in UTF-8. A byte order mark says what the file is in: UTF-8, or UTF-16 of either byte order; a
/// file without one is taken for UTF-8, and its bytes are passed on unchecked. The mark is dropped.
class InputFile : public std::streambuf {
 public:
  /// Opens the file at `path` (UTF-8). Opening and reading throw InputProblem if Windows refuses, or if the file is
  /// longer than LongestInput.
  explicit InputFile(const std::string& path);

 protected:
  int_type underflow() override;
  /// Goes back to the beginning, and nowhere else.
  pos_type seekpos(pos_type position, std::ios_base::openmode which) override;

 private:
  enum class Encoding { Unknown, Utf8, Utf16LittleEndian, Utf16BigEndian };

  /// The next bytes of the file; none at its end.
  std::string_view ReadBytes();
  /// Drops the mark at the beginning of `bytes` and takes its word.
  std::string_view WithoutMark(std::string_view bytes);
  /// Of bytes in UTF-16. Half a character at the end waits for the other half.
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
