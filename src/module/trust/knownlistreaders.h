/// @file
/// The readers behind ReadKnownList().
#pragma once

#include <streambuf>
#include <string>
#include <string_view>

#include "platform/jsoninput.h"
#include "trust/knownlists.h"

namespace trust {

constexpr char NotAList[] = "is not a list of known drivers";

/// Tracks where in a JSON text each value is, as a path of member names: "a/b" is the member b of an object that is the
/// member a, "a/" an element of the array a, "a//b" a member of an object in it.
class JsonPaths : public Orvane::JsonEvents {
 public:
  void Begin(Orvane::JsonType arrayOrObject) final;
  void End() final;
  void Name(const std::string& name) final;
  void Value(const Orvane::JsonScalar& value) final { OnValue(m_path, value); }

 protected:
  virtual void OnBegin(std::string_view path, Orvane::JsonType arrayOrObject) = 0;
  virtual void OnEnd(std::string_view path) = 0;
  virtual void OnValue(std::string_view path, const Orvane::JsonScalar& value) = 0;
  ~JsonPaths() = default;

  /// The number of open arrays and objects. In OnBegin() and OnEnd(), the one that begins or ends does not count.
  std::size_t Depth() const { return m_lengths.size(); }

 private:
  std::string m_path;
  /// The length of the path to the open array or object and to each one around it.
  std::vector<std::size_t> m_lengths;
};

/// Collects the entries of one file and enforces the limits.
class Entries {
 public:
  KnownEntry& Add();
  /// Adds to the latest entry; anything that is not a hash is ignored.
  void AddHash(std::string_view text);
  KnownEntry& Latest() { return m_entries.back(); }
  std::size_t size() const { return m_entries.size(); }
  std::size_t Hashes() const { return m_hashes; }
  std::vector<KnownEntry> Take() { return std::move(m_entries); }

 private:
  std::vector<KnownEntry> m_entries;
  std::size_t m_hashes = 0;
};

KnownContent ReadLolDrivers(std::streambuf& json);
KnownContent ReadCompactList(std::streambuf& json);
KnownContent ReadPolicy(const std::string& xml);

}  // namespace trust
