#ifndef RUNNER_TEXT_TEST_FILES_H_
#define RUNNER_TEXT_TEST_FILES_H_

#include <span>

#include "text/text_stream.h"

namespace runner {

// TestFiles holds the two files of a test procedure while it runs, and a buffer for the lines that
// it reads: its size is the line capacity, and the procedure owns it.
struct TestFiles {
  TextReader request{};
  TextWriter response{};
  std::span<char> line{};
};

// openFiles opens the request for reading and the response for appending. Returns 0. When one of
// them cannot be opened it prints "can't open PATH", leaves both closed and returns -1.
int openFiles(TestFiles& files, const char* requestPath, const char* responsePath);

// closeWritten closes a file that was written to. Returns 0. When not everything could be written
// it prints "can't write PATH" and returns -1.
int closeWritten(TextWriter& file, const char* path);

// closeFiles closes both files at the end of a test procedure and returns its result: `result`, or
// -1 when the response could not be written completely, which closeWritten reports.
int closeFiles(TestFiles& files, const char* responsePath, int result);

}  // namespace runner

#endif  // RUNNER_TEXT_TEST_FILES_H_
