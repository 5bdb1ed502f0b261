#include "driver/process.h"

#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>

namespace runner {
namespace {

// openStandardFiles relies on open returning the lowest number that is free.
bool openStandardFiles() {
  for (int file = STDIN_FILENO; file <= STDERR_FILENO; ++file) {
    if (fcntl(file, F_GETFD) < 0 && open("/dev/null", O_RDWR) < 0) return false;
  }
  return true;
}

}  // namespace

bool prepareProcess() {
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
  return openStandardFiles();
}

}  // namespace runner
