#include <csignal>

#include "driver/dispatch.h"

// The command `runner REQUEST RESPONSE`. Exit status: 1 when an argument is missing, 255 when the
// request header cannot be parsed, otherwise 0.
int main(int argc, char** argv) {
  if (argc < 3) return 1;
  // A response that outgrows a file size limit is reported like one that outgrows its disk.
  std::signal(SIGXFSZ, SIG_IGN);
  return runner::runRequest(argv[1], argv[2]);
}
