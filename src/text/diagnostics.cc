#include "text/diagnostics.h"

#include <cstdio>

namespace runner {

int failAt(int site) {
  std::printf("err happens!! (%d)\n", site);
  return -1;
}

int mallocFailedAt(int site) {
  std::printf("malloc err!! (%d)\n", site);
  return -1;
}

int failWith(const char* message) {
  std::printf("%s\n", message);
  return -1;
}

int failOpening(const char* path) {
  std::printf("can't open %s\n", path);
  return -1;
}

int failReading(const char* path) {
  std::printf("can't read %s\n", path);
  return -1;
}

int failWriting(const char* path) {
  std::printf("can't write %s\n", path);
  return -1;
}

int failIn(const char* name, const char* message) {
  std::printf("%s : %s\n", name, message);
  return -1;
}

}  // namespace runner
