#ifndef RUNNER_TEXT_TEST_FILES_H_
#define RUNNER_TEXT_TEST_FILES_H_

#include <cstddef>

#include "text/text_stream.h"

namespace runner {

// TestFiles holds the two files of a test procedure while it runs, and the capacity of the lines
// that it reads: one read takes at most lineCapacity - 1 characters.
struct TestFiles {
  const char* requestPath;
  const char* responsePath;
  std::size_t lineCapacity;
  TextReader request{};
  TextWriter response{};
};

// openFiles opens the request for reading and the response for appending. Returns 0. When one of
// them cannot be opened it prints "can't open PATH", leaves both closed and returns -1.
[[nodiscard]] int openFiles(TestFiles& files);

// closeRead closes a file that was read. Returns 0. When a read failed it prints "can't read PATH"
// and returns -1.
[[nodiscard]] int closeRead(TextReader& file, const char* path);

// closeWritten closes a file that was written to. Returns 0. When not everything could be written
// it prints "can't write PATH" and returns -1.
[[nodiscard]] int closeWritten(TextWriter& file, const char* path);

// closeFiles closes both files at the end of a test procedure and returns its result: `result`, or
// -1 when the request could not be read or the response could not be written completely, after the
// line of closeRead or closeWritten.
[[nodiscard]] int closeFiles(TestFiles& files, int result);

}  // namespace runner

#endif  // RUNNER_TEXT_TEST_FILES_H_
