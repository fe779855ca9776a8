// Holds as many alerts as its argument says, until its input ends. Tells when it has them.

#include <cstdio>
#include <cstdlib>
#include <vector>

#include "host.hpp"

namespace {

using namespace brindlewort::hosts;

int hold(int count) {
  const Apartment apartment;
  const Library library;
  std::vector<ComPtr<IAlert>> alerts;
  for (int i = 0; i < count; ++i) alerts.push_back(library.make<IAlert>());
  std::puts("holding");
  std::fflush(stdout);
  while (std::getchar() != EOF) {
  }
  return 0;
}

}  // namespace

int main(int count, char** arguments) {
  return count == 2 ? hold(std::atoi(arguments[1])) : 1;
}
