/// @file
/// A C++17 wrapper of driverinventory.h: owned handles, records to iterate over, texts as std::string_view, failures as
/// exceptions. It is header-only, so it works with any compiler and any run-time library.
///
///     const auto inventory = Orvane::DriverInventory::Collect();
///     for (const Orvane::DriverRecord record : inventory) std::cout << record.Text("name") << '\n';
#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "driverinventory.h"

namespace Orvane {

/// A call that failed. what() is the sentence of driverinventory_error().
class DriverInventoryError : public std::runtime_error {
 public:
  DriverInventoryError(driverinventory_status status, const std::string& sentence)
      : std::runtime_error(sentence), m_status(status) {}
  /// Such as DRIVERINVENTORY_E_INPUT.
  driverinventory_status Status() const { return m_status; }

 private:
  driverinventory_status m_status;
};

namespace detail {

/// True for DRIVERINVENTORY_OK, false for DRIVERINVENTORY_ABSENT. Throws for any other status.
inline bool HasValue(driverinventory_status status) {
  if (status == DRIVERINVENTORY_OK) return true;
  if (status == DRIVERINVENTORY_ABSENT) return false;
  throw DriverInventoryError(status, driverinventory_error());
}

/// A text of the library as a std::string.
template <typename Fill>
std::string Document(const Fill& fill) {
  char* text = nullptr;
  std::size_t length = 0;
  HasValue(fill(&text, &length));
  struct Owner {
    char* text;
    ~Owner() { driverinventory_free(text); }
  } const owner{text};
  return std::string(text, length);
}

}  // namespace detail

/// A member of records. Create it once for many records, or pass its name.
class DriverMember {
 public:
  /// Throws if no member is called `name`.
  DriverMember(const char* name) : m_number(driverinventory_find_member(name)) {
    if (m_number < 0) {
      throw DriverInventoryError(DRIVERINVENTORY_E_MEMBER, std::string("There is no member ") + name + ".");
    }
  }
  int32_t Number() const { return m_number; }

 private:
  int32_t m_number;
};

/// One service, device, package or chipset package; valid while its inventory lives. The functions throw
/// DriverInventoryError for a member of another type.
class DriverRecord {
 public:
  DriverRecord(const driverinventory* inventory, std::size_t index) : m_inventory(inventory), m_index(index) {}

  /// Empty if it is unknown or does not apply.
  std::string_view Text(DriverMember member) const {
    const char* text = nullptr;
    std::size_t length = 0;
    const bool has = detail::HasValue(driverinventory_text(m_inventory, m_index, member.Number(), &text, &length));
    return has ? std::string_view(text, length) : std::string_view();
  }
  std::optional<std::uint64_t> Number(DriverMember member) const {
    uint64_t number = 0;
    const bool has = detail::HasValue(driverinventory_number(m_inventory, m_index, member.Number(), &number));
    return has ? std::optional<std::uint64_t>(number) : std::nullopt;
  }
  bool Flag(DriverMember member) const { return Number(member).has_value(); }
  std::vector<std::string_view> Texts(DriverMember member) const {
    std::size_t count = 0;
    detail::HasValue(driverinventory_text_count(m_inventory, m_index, member.Number(), &count));
    std::vector<std::string_view> texts(count);
    for (std::size_t i = 0; i < count; ++i) {
      const char* text = nullptr;
      std::size_t length = 0;
      detail::HasValue(driverinventory_text_at(m_inventory, m_index, member.Number(), i, &text, &length));
      texts[i] = std::string_view(text, length);
    }
    return texts;
  }

 private:
  const driverinventory* m_inventory;
  std::size_t m_index;
};

/// What to collect, and how; see driverinventory_options.
struct DriverInventoryOptions {
  std::uint32_t kinds = 0;
  bool verify = false;
  std::vector<std::string> knownLists;
  std::string hostId;
  /// Return false to stop. An exception that it throws ends the collection and reaches the caller.
  std::function<bool(std::string_view what, std::uint64_t done, std::uint64_t total)> progress;
};

/// A finished inventory.
class DriverInventory {
 public:
  /// Of this machine.
  static DriverInventory Collect(const DriverInventoryOptions& options = {}) {
    Progress progress{options, nullptr};
    std::vector<const char*> lists;
    for (const std::string& list : options.knownLists) lists.push_back(list.c_str());
    driverinventory_options wanted{};
    wanted.size = sizeof(wanted);
    wanted.kinds = options.kinds;
    wanted.verify = options.verify ? 1 : 0;
    wanted.known_list_count = static_cast<std::uint32_t>(lists.size());
    wanted.known_lists = lists.data();
    wanted.host_id = options.hostId.empty() ? nullptr : options.hostId.c_str();
    wanted.progress = options.progress ? &Progress::Call : nullptr;
    wanted.context = &progress;
    driverinventory* inventory = nullptr;
    const driverinventory_status status = driverinventory_collect(&wanted, &inventory);
    if (progress.thrown) std::rethrow_exception(progress.thrown);
    return Owned(status, inventory);
  }

  /// Of the snapshot in a file; `path` is UTF-8.
  static DriverInventory Open(const std::string& path) {
    driverinventory* inventory = nullptr;
    const driverinventory_status status = driverinventory_open(path.c_str(), &inventory);
    return Owned(status, inventory);
  }

  /// Of a snapshot in memory.
  static DriverInventory Read(std::string_view snapshot) {
    driverinventory* inventory = nullptr;
    const driverinventory_status status =
        driverinventory_read(snapshot.data() == nullptr ? "" : snapshot.data(), snapshot.size(), &inventory);
    return Owned(status, inventory);
  }

  DriverInventory(DriverInventory&& other) noexcept
      : m_inventory(std::exchange(other.m_inventory, nullptr)), m_count(std::exchange(other.m_count, 0)) {}
  DriverInventory& operator=(DriverInventory&& other) noexcept {
    std::swap(m_inventory, other.m_inventory);
    std::swap(m_count, other.m_count);
    return *this;
  }
  ~DriverInventory() { driverinventory_release(m_inventory); }

  /// Iterates over the records.
  class Iterator {
   public:
    using iterator_category = std::input_iterator_tag;
    using value_type = DriverRecord;
    using difference_type = std::ptrdiff_t;
    using pointer = const DriverRecord*;
    using reference = DriverRecord;

    Iterator(const driverinventory* inventory, std::size_t index) : m_inventory(inventory), m_index(index) {}
    DriverRecord operator*() const { return DriverRecord(m_inventory, m_index); }
    Iterator& operator++() {
      ++m_index;
      return *this;
    }
    Iterator operator++(int) {
      const Iterator before = *this;
      ++m_index;
      return before;
    }
    bool operator==(const Iterator& other) const { return m_index == other.m_index; }
    bool operator!=(const Iterator& other) const { return m_index != other.m_index; }

   private:
    const driverinventory* m_inventory;
    std::size_t m_index;
  };

  std::size_t size() const { return m_count; }
  bool empty() const { return m_count == 0; }
  Iterator begin() const { return Iterator(m_inventory, 0); }
  Iterator end() const { return Iterator(m_inventory, m_count); }
  DriverRecord operator[](std::size_t index) const { return DriverRecord(m_inventory, index); }

  /// `name` is "tool_version", "host", "host_id", "windows" or "time". Empty if it is unknown.
  std::string_view Head(const char* name) const {
    const char* text = nullptr;
    std::size_t length = 0;
    const bool has = detail::HasValue(driverinventory_head(m_inventory, name, &text, &length));
    return has ? std::string_view(text, length) : std::string_view();
  }

  std::string Json() const { return Document(DRIVERINVENTORY_JSON); }
  std::string JsonLines() const { return Document(DRIVERINVENTORY_JSON_LINES); }
  std::string Snapshot() const { return Document(DRIVERINVENTORY_SNAPSHOT); }

  /// What deserves a look, as JSON.
  std::string Health() const {
    return detail::Document(
        [this](char** text, std::size_t* length) { return driverinventory_health(m_inventory, text, length); });
  }

  /// The differences from `before`, as JSON.
  std::string ComparedWith(const DriverInventory& before) const {
    return detail::Document([&](char** text, std::size_t* length) {
      return driverinventory_compare(before.m_inventory, m_inventory, text, length);
    });
  }

 private:
  /// Carries exceptions of the host's function past the library.
  struct Progress {
    const DriverInventoryOptions& options;
    std::exception_ptr thrown;

    static int32_t Call(void* context, const char* what, uint64_t done, uint64_t total) {
      Progress& progress = *static_cast<Progress*>(context);
      try {
        return progress.options.progress(what, done, total) ? 0 : 1;
      } catch (...) {
        progress.thrown = std::current_exception();
        return 1;
      }
    }
  };

  explicit DriverInventory(driverinventory* inventory) : m_inventory(inventory) {
    driverinventory_count(m_inventory, &m_count);
  }

  static DriverInventory Owned(driverinventory_status status, driverinventory* inventory) {
    detail::HasValue(status);
    return DriverInventory(inventory);
  }

  std::string Document(int32_t document) const {
    return detail::Document([&](char** text, std::size_t* length) {
      return driverinventory_document(m_inventory, document, text, length);
    });
  }

  driverinventory* m_inventory;
  std::size_t m_count = 0;
};

}  // namespace Orvane
