#include "interface/failure.h"

#include <windows.h>

#include <cstdlib>
#include <cstring>
#include <locale>

#include "interface/exclusive.h"
#include "inventory/input.h"
#include "inventory/inventory.h"
#include "inventory/knownlists.h"

namespace flat {
namespace {

constexpr char OutOfMemory[] = "Memory ran out.";

/// Makes the locale of streams while the library is loaded. If that is left to the first stream, winpthreads crashes
/// when memory is short.
const std::locale LocaleOfStreams;

/// Frees the sentence of a thread that is ending.
void WINAPI FreeSentence(void* sentence) {
  if (sentence != OutOfMemory) std::free(sentence);
}

/// A slot for each thread, which Windows frees when a thread ends and, unlike the compiler's thread_local, also when
/// the library is unloaded while the thread goes on.
class Places {
 public:
  Places() : m_index(FlsAlloc(&FreeSentence)) {}
  ~Places() {
    if (m_index != FLS_OUT_OF_INDEXES) FlsFree(m_index);
  }
  Places(const Places&) = delete;
  Places& operator=(const Places&) = delete;

  const char* Get() const {
    return m_index == FLS_OUT_OF_INDEXES ? nullptr : static_cast<const char*>(FlsGetValue(m_index));
  }
  void Set(void* sentence) {
    if (m_index == FLS_OUT_OF_INDEXES) return FreeSentence(sentence);
    void* const former = FlsGetValue(m_index);
    if (!FlsSetValue(m_index, sentence)) return FreeSentence(sentence);
    FreeSentence(former);
  }

 private:
  DWORD m_index;
};

SRWLOCK lock = SRWLOCK_INIT;

Places& ThePlaces() {
  // See CMakeLists.txt: nothing else guards it.
  const Exclusive scope(lock);
  static Places places;
  return places;
}

}  // namespace

void KeepSentence(const char* sentence) noexcept {
  const std::size_t size = std::strlen(sentence) + 1;
  void* const copy = std::malloc(size);
  if (copy == nullptr) return ThePlaces().Set(const_cast<char*>(OutOfMemory));
  ThePlaces().Set(std::memcpy(copy, sentence, size));
}

const char* KeptSentence() noexcept {
  const DWORD error = GetLastError();
  const char* const sentence = ThePlaces().Get();
  SetLastError(error);
  return sentence == nullptr ? "" : sentence;
}

driverinventory_status HandleException() noexcept {
  try {
    throw;
  } catch (const Failure& failure) {
    KeepSentence(failure.what());
    return failure.status;
  } catch (const inventory::CollectionStopped&) {
    KeepSentence("The progress callback stopped the collection.");
    return DRIVERINVENTORY_E_STOPPED;
  } catch (const inventory::UnusableList& list) {
    KeepSentence(list.what());
    return DRIVERINVENTORY_E_INPUT;
  } catch (const std::bad_alloc&) {
    KeepSentence(OutOfMemory);
    return DRIVERINVENTORY_E_MEMORY;
  } catch (const std::length_error&) {
    KeepSentence(OutOfMemory);
    return DRIVERINVENTORY_E_MEMORY;
  } catch (const std::exception& exception) {
    KeepSentence(exception.what());
    return DRIVERINVENTORY_E_INTERNAL;
  } catch (...) {
    KeepSentence("An unknown error occurred.");
    return DRIVERINVENTORY_E_INTERNAL;
  }
}

}  // namespace flat
