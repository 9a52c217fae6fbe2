// The library's own comparison, on the build machine: reads pairs of lower-case versions, a line each and a tab
// between them; writes -1, 0 or 1 for each.
#include <iostream>
#include <string>

#include "versioncompare.h"

int main() {
  for (std::string line; std::getline(std::cin, line);) {
    const std::size_t tab = line.find('\t');
    std::cout << Orvane::CompareVersion(line.substr(0, tab), line.substr(tab + 1)) << "\n";
  }
}
