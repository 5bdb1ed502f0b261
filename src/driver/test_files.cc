#include "driver/test_files.h"

#include <new>
#include <utility>

#include "driver/diagnostics.h"

namespace runner {
namespace {

// openStream opens a file with a buffer that it allocates; without memory for one the stream keeps
// the C library's.
FileHandle openStream(const char* path, const char* mode, std::unique_ptr<StreamBuffer>& buffer) {
  FileHandle file(std::fopen(path, mode));
  buffer.reset(file ? new (std::nothrow) StreamBuffer : nullptr);
  if (buffer) std::setvbuf(file.get(), buffer->data(), _IOFBF, buffer->size());
  return file;
}

}  // namespace

int openFiles(TestFiles& files, const char* requestPath, const char* responsePath) {
  files.request = openStream(requestPath, "r", files.requestBuffer);
  if (!files.request) return failOpening(requestPath);
  files.response = openStream(responsePath, "a", files.responseBuffer);
  if (!files.response) {
    files.request.reset();
    return failOpening(responsePath);
  }
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
