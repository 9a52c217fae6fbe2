#include "trust/knownlists.h"

#include <algorithm>

#include "trust/knownlistreaders.h"

namespace trust {
namespace {

std::string WholeText(std::streambuf& text) {
  std::string whole;
  std::string chunk(1 << 16, '\0');
  for (;;) {
    const auto size = static_cast<std::size_t>(text.sgetn(chunk.data(), static_cast<std::streamsize>(chunk.size())));
    if (size == 0) return whole;
    whole.append(chunk, 0, size);
    if (whole.size() > LongestPolicy) throw InputProblem("contains more than 64 MiB of XML");
  }
}

/// Skips blanks.
int FirstCharacter(std::streambuf& text) {
  int c = text.sgetc();
  while (c == ' ' || c == '\t' || c == '\r' || c == '\n') c = text.snextc();
  return c;
}

}  // namespace

std::string HashIn(std::string_view text) {
  constexpr std::string_view blanks = " \t\r\n";
  const std::size_t begin = std::min(text.find_first_not_of(blanks), text.size());
  text = text.substr(begin, text.find_last_not_of(blanks) + 1 - begin);
  constexpr std::size_t md5 = 32;
  constexpr std::size_t sha1 = 40;
  constexpr std::size_t sha256 = 64;
  constexpr std::size_t sha384 = 96;
  if (text.size() != md5 && text.size() != sha1 && text.size() != sha256 && text.size() != sha384) return {};
  std::string hash(text);
  for (char& c : hash) {
    if (c >= 'A' && c <= 'F') c = static_cast<char>(c - 'A' + 'a');
    if (!((c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'))) return {};
  }
  return hash;
}

KnownEntry& Entries::Add() {
  if (m_entries.size() == MostEntries) throw InputProblem("contains more than 200,000 entries");
  return m_entries.emplace_back();
}

void Entries::AddHash(std::string_view text) {
  std::string hash = HashIn(text);
  if (hash.empty()) return;
  std::vector<std::string>& hashes = m_entries.back().hashes;
  if (m_hashes == MostHashes) throw InputProblem("contains more than 2,000,000 hashes");
  ++m_hashes;
  hashes.push_back(std::move(hash));
}

void JsonPaths::Begin(Orvane::JsonType arrayOrObject) {
  OnBegin(m_path, arrayOrObject);
  if (!m_path.empty()) m_path += '/';
  m_lengths.push_back(m_path.size());
}

void JsonPaths::End() {
  m_path.resize(m_lengths.back());
  if (!m_path.empty()) m_path.pop_back();
  m_lengths.pop_back();
  OnEnd(m_path);
}

void JsonPaths::Name(const std::string& name) {
  m_path.resize(m_lengths.back());
  m_path += name;
}

KnownContent ReadKnownList(std::streambuf& text) {
  switch (FirstCharacter(text)) {
    case '<':
      return ReadPolicy(WholeText(text));
    case '[':
      return ReadLolDrivers(text);
    case '{':
      return ReadCompactList(text);
    default:
      throw InputProblem(NotAList);
  }
}

}  // namespace trust
