#include "interface/texts.h"

#include <cstring>
#include <memory>
#include <set>

#include "interface/exclusive.h"
#include "interface/failure.h"

namespace flat {
namespace {

struct FirstByte {
  using is_transparent = void;
  static const char* Of(const char* text) { return text; }
  static const char* Of(const std::unique_ptr<char[]>& text) { return text.get(); }
  template <typename A, typename B>
  bool operator()(const A& a, const B& b) const {
    return std::less<const char*>()(Of(a), Of(b));
  }
};

using Texts = std::set<std::unique_ptr<char[]>, FirstByte>;

/// What hosts have not freed yet.
Texts& HandedOut() {
  static Texts texts;
  return texts;
}

SRWLOCK lock = SRWLOCK_INIT;

}  // namespace

char* HandOut(const std::string& text) {
  std::unique_ptr<char[]> copy(new char[text.size() + 1]);
  std::memcpy(copy.get(), text.c_str(), text.size() + 1);
  const Exclusive scope(lock);
  return HandedOut().insert(std::move(copy)).first->get();
}

void TakeBack(char* text) {
  Texts::node_type freed;
  const Exclusive scope(lock);
  Texts& texts = HandedOut();
  const auto found = texts.find(static_cast<const char*>(text));
  if (found == texts.end()) {
    throw Failure(DRIVERINVENTORY_E_HANDLE, "That is no text of the library, or it was freed.");
  }
  freed = texts.extract(found);
}

}  // namespace flat
