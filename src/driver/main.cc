#include "driver/dispatch.h"
#include "driver/process.h"

// The command `runner REQUEST RESPONSE`. Exit status: 1 when an argument is missing, 255 when the
// run ended before its tests, otherwise 0.
int main(int argc, char** argv) {
  if (argc < 3) return 1;
  if (!runner::prepareProcess()) return 255;
  return runner::runRequest(argv[1], argv[2]);
}
