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

/// Says where in a JSON text each value is, as a path of member names: "a/b" is the member b of an object that is the
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

  /// How many arrays and objects are open. OnBegin() counts those around the one that begins, OnEnd() those around the
  /// one that ended.
  std::size_t Depth() const { return m_lengths.size(); }

 private:
  std::string m_path;
  /// How long the path is to the array or object that is open, and to each around it.
  std::vector<std::size_t> m_lengths;
};

/// Takes the entries of one file, and keeps count of what they may hold.
class Entries {
 public:
  KnownEntry& Add();
  /// Of the latest entry; what is no hash is passed over.
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
