#include "driver/test_files.h"

#include <utility>

#include "driver/diagnostics.h"

namespace runner {

int openFiles(TestFiles& files, const char* requestPath, const char* responsePath) {
  files.request.reset(std::fopen(requestPath, "r"));
  if (!files.request) return failOpening(requestPath);
  files.response.reset(std::fopen(responsePath, "a"));
  if (!files.response) {
    files.request.reset();
    return failOpening(responsePath);
  }
  std::setvbuf(files.request.get(), files.requestBuffer.data(), _IOFBF, kStreamBuffer);
  std::setvbuf(files.response.get(), files.responseBuffer.data(), _IOFBF, kStreamBuffer);
  return 0;
}

int closeWritten(FileHandle file, const char* path) {
  const bool failedBefore = std::ferror(file.get()) != 0;
  const bool failedNow = std::fclose(file.release()) != 0;
  if (!failedBefore && !failedNow) return 0;
  std::printf("can't write %s\n", path);
  return -1;
}

int closeFiles(TestFiles& files, const char* responsePath, int result) {
  files.request.reset();
  return closeWritten(std::move(files.response), responsePath) < 0 ? -1 : result;
}

}  // namespace runner
