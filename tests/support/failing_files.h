#ifndef RUNNER_TESTS_SUPPORT_FAILING_FILES_H_
#define RUNNER_TESTS_SUPPORT_FAILING_FILES_H_

#include <cstddef>
#include <vector>

// The calls of the C library that read, write and close files.
enum class FileCall { READ, WRITE, CLOSE };

// FileFault is what becomes of a call: it moves no more than `moved` bytes and reports `error`.
// With 0 for the error it merely comes up short.
struct FileFault {
  FileCall call;
  int error;
  std::size_t moved = 0;
};

// FailingFiles lets the call with this number, counted from 1 among those of its kind, go wrong for
// as long as it lives, and any other move at most `most` bytes. It is for unbuffered streams, read
// and written in units of 1 byte. The test program is linked with --wrap=fread,--wrap=fwrite and
// --wrap=fclose.
class FailingFiles {
 public:
  FailingFiles(const FileFault& fault, int number, std::size_t most);
  ~FailingFiles();
  FailingFiles(const FailingFiles&) = delete;
  FailingFiles& operator=(const FailingFiles&) = delete;

  // struck tells whether there was such a call.
  [[nodiscard]] static bool struck();

  // ends returns how much had been written when each file was closed.
  [[nodiscard]] static std::vector<std::size_t> ends();
};

#endif  // RUNNER_TESTS_SUPPORT_FAILING_FILES_H_
