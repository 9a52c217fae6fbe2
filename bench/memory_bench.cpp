// How much memory an All listing takes at its peak over what its result needs, on the machine of benchmachine.
#include <windows.h>

#include <malloc.h>

#include <algorithm>
#include <stdexcept>
#include <vector>

#include "driverinfo.h"
#include "figures.h"
#include "importhook.h"

namespace {

/// Bytes that the C++ run-time library has given out and not got back, in the whole process, while it lives: records,
/// texts and containers of all modules. What Windows keeps for itself does not count.
class HeapBytes {
 public:
  std::size_t Now() const { return m_now; }
  std::size_t Peak() const { return m_peak; }

 private:
  void Add(std::size_t bytes) {
    m_now += bytes;
    m_peak = std::max(m_peak, m_now);
  }

  std::size_t m_now = 0;
  std::size_t m_peak = 0;
  // Both operators new and delete, and all strings, come from there.
  HMODULE m_runtime = GetModuleHandleA("libstdc++-6.dll");
  test::ImportHook<&malloc> m_malloc{m_runtime, "malloc", [this](std::size_t size) {
                                       void* const block = m_malloc.Real(size);
                                       if (block != nullptr) Add(_msize(block));
                                       return block;
                                     }};
  test::ImportHook<&free> m_free{m_runtime, "free", [this](void* block) {
                                   // What was there before it is none of this count.
                                   if (block != nullptr) m_now -= std::min(m_now, _msize(block));
                                   m_free.Real(block);
                                 }};
};

/// Bytes of the records and their texts.
std::size_t BytesOf(const std::vector<Orvane::DriverData>& drivers) {
  const HeapBytes bytes;
  const std::vector<Orvane::DriverData> copy = drivers;
  return bytes.Now();
}

/// The first listing of the process: later ones answer from caches.
void AddFigures() {
  std::vector<Orvane::DriverData> drivers;
  double peak = 0;
  {
    const HeapBytes bytes;
    Orvane::DriverInfo().list_drivers(drivers, Orvane::All);
    peak = static_cast<double>(bytes.Peak());
  }
  if (drivers.size() < 300) throw std::runtime_error("this is no machine of benchmachine");
  const auto result = static_cast<double>(BytesOf(drivers));
  bench::AddComparison({"Memory, peak of All over its result", "KiB", 3, "result", [=] { return result; }, "peak",
                        [=] { return peak; }});
}

}  // namespace

int main(int argc, char** argv) { return bench::Main(argc, argv, &AddFigures); }
