#include "check/descriptors.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>

namespace runner {

Descriptor::~Descriptor() {
  if (isOpen()) close(number_);
}

std::string Descriptor::path() const { return "/proc/self/fd/" + std::to_string(number_); }

int createTemporaryFile(const std::string& directory) {
  std::string name = directory + "/runner-check-XXXXXX";
  const int number = mkostemp(name.data(), O_CLOEXEC);
  if (number >= 0) unlink(name.c_str());
  return number;
}

}  // namespace runner
