// batch_victim crash | throw | hang: a batch whose second input does that.
#include <windows.h>

#include <cstring>
#include <stdexcept>

#include "hostile.h"

int main(int argc, char** argv) {
  const char* const what = argc > 1 ? argv[1] : "";
  test::HostileBatch batch("victim", std::chrono::seconds(1));
  batch.Begin(0);
  batch.Begin(1);
  if (std::strcmp(what, "crash") == 0) *static_cast<volatile char*>(nullptr) = 'x';
  if (std::strcmp(what, "throw") == 0) {
    std::thread([] { throw std::runtime_error("hostile"); }).join();
  }
  if (std::strcmp(what, "hang") == 0) Sleep(INFINITE);
}
