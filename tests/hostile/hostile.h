/// @file
/// Batches of inputs that nobody would make on purpose. Each is made of a seed; the seed of one that fails, crashes or
/// hangs is told.
///
/// DRIVERINFO_HOSTILE_INPUTS says how many inputs a batch has (5000 when it is not set), DRIVERINFO_HOSTILE_SEED the
/// seed of the first (1): to see one again, set the second to its seed and the first to 1.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "random.h"

namespace test {

/// One batch. While it lives, an exception that nobody handles ends the process with code 3, and an input that takes
/// longer than `patience` ends it with code 4, both with the seed on standard error. At its end it says how many inputs
/// there were.
class HostileBatch {
 public:
  explicit HostileBatch(const char* kind, std::chrono::seconds patience = std::chrono::seconds(60));
  ~HostileBatch();
  HostileBatch(const HostileBatch&) = delete;
  HostileBatch& operator=(const HostileBatch&) = delete;

  std::size_t Size() const { return m_size; }

  /// What input `index` is made of, without beginning it.
  Random Input(std::size_t index) const { return Random(m_firstSeed + index); }

  /// Begins input `index` of the batch, which is made of what this returns and of nothing else. Failures from now on
  /// name its seed.
  Random Begin(std::size_t index);

  /// Calls `input` with the Random of each input, until some have failed.
  template <typename Input>
  void ForEach(Input input) {
    for (std::size_t i = 0; i < m_size && !HasFailed(); ++i) {
      Random random = Begin(i);
      input(random);
    }
  }

  /// Whether the running test has failed: what else fails then is mostly the same.
  static bool HasFailed() { return ::testing::Test::HasFailure(); }

 private:
  void Watch();

  std::size_t m_size;
  std::uint64_t m_firstSeed;
  std::size_t m_done = 0;
  std::chrono::seconds m_patience;
  std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
  std::optional<::testing::ScopedTrace> m_trace;
  std::mutex m_mutex;
  std::condition_variable m_over;
  bool m_isOver = false;
  std::thread m_watch;
};

}  // namespace test
