#include "platform/handles.h"
#include "servicedrivers.h"

namespace Orvane {

std::string GetLastErrorText() {
  const DWORD error = GetLastError();
  char* text = nullptr;
  // If there is no message, the pointer stays null.
  FormatMessageA(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_FROM_SYSTEM, nullptr,
                 error, MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT), reinterpret_cast<char*>(&text), 0, nullptr);
  const LocalMemory owner(text);
  return owner ? std::string(text) : std::string();
}

}  // namespace Orvane
