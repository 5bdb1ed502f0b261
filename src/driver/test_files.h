#ifndef RUNNER_DRIVER_TEST_FILES_H_
#define RUNNER_DRIVER_TEST_FILES_H_

#include <array>
#include <cstdio>
#include <memory>
#include <span>

namespace runner {

struct FileCloser {
  void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};

// FileHandle owns an open stream. What it closes by itself is not checked; a stream that was
// written to is closed with closeWritten.
using FileHandle = std::unique_ptr<std::FILE, FileCloser>;

// StreamBuffer is what a stream reads ahead or holds back: larger than the C library's own, because
// requests and responses have lines of many megabytes.
using StreamBuffer = std::array<char, 262144>;

// TestFiles holds the two files of a test procedure while it runs, and the buffer into which it
// reads lines: its size is the line capacity, and the procedure owns it.
struct TestFiles {
  std::unique_ptr<StreamBuffer> requestBuffer{};  // outlives its stream
  std::unique_ptr<StreamBuffer> responseBuffer{};
  FileHandle request{};
  FileHandle response{};
  std::span<char> line{};
};

// openFiles opens the request for reading and the response for appending. Returns 0. When one of
// them cannot be opened it prints "can't open PATH", leaves both closed and returns -1.
int openFiles(TestFiles& files, const char* requestPath, const char* responsePath);

// closeWritten closes a stream that was written to. Returns 0. When not everything could be written
// it prints "can't write PATH" and returns -1.
int closeWritten(FileHandle file, const char* path);

// closeFiles closes both files at the end of a test procedure and returns its result: `result`, or
// -1 when the response could not be written completely, which closeWritten reports.
int closeFiles(TestFiles& files, const char* responsePath, int result);

}  // namespace runner

#endif  // RUNNER_DRIVER_TEST_FILES_H_
