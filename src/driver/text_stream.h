#ifndef RUNNER_DRIVER_TEXT_STREAM_H_
#define RUNNER_DRIVER_TEXT_STREAM_H_

#include <array>
#include <cstddef>
#include <cstdio>
#include <memory>
#include <optional>
#include <span>
#include <string_view>

// The text files of a run. A test reads and writes some twenty short lines for each engine call, or
// a few of many megabytes, and the engine call may take well under a microsecond: the streams have
// large buffers of their own, which lines are taken from and digits are written into directly.

namespace runner {

struct FileCloser {
  void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};

// FileHandle owns an open file without a buffer in the C library.
using FileHandle = std::unique_ptr<std::FILE, FileCloser>;

inline constexpr std::size_t kStreamBufferSize = 262144;
using StreamBuffer = std::array<char, kStreamBufferSize>;

// TextReader reads a text file by lines.
class TextReader {
 public:
  TextReader();  // leaves the buffer as it is, like that of TextWriter
  TextReader(const TextReader&) = delete;
  TextReader& operator=(const TextReader&) = delete;

  // open opens the file at `path`. Returns false when it cannot be opened.
  [[nodiscard]] bool open(const char* path);

  void close() { file_.reset(); }

  // readLine reads one line into `line`, whose size is the capacity of the line: at most size - 1
  // characters, up to and including the newline, and a zero byte behind them. The rest of a longer
  // line is what the next call reads. Returns the text up to its first zero byte, or nothing at the
  // end of the file, when `line` holds an empty text.
  std::optional<std::string_view> readLine(std::span<char> line);

 private:
  bool refill();

  FileHandle file_;
  std::string_view unread_;  // in buffer_
  StreamBuffer buffer_;
};

// TextWriter writes a text file. What it wrote stands in the file for certain only when close has
// returned true.
class TextWriter {
 public:
  TextWriter();
  TextWriter(const TextWriter&) = delete;
  TextWriter& operator=(const TextWriter&) = delete;

  // Writes what is held back, if the file is still open, without looking whether it can.
  ~TextWriter();

  // create opens the file at `path` and truncates it; append opens it for writing at its end. Both
  // create a file that does not exist. They return false when it cannot be opened.
  [[nodiscard]] bool create(const char* path);
  [[nodiscard]] bool append(const char* path);

  // write writes `text`.
  void write(std::string_view text);

  // extend writes `size` characters, at most kStreamBufferSize, that the caller fills in before
  // anything else is written.
  [[nodiscard]] std::span<char> extend(std::size_t size);

  // close closes the file. Returns false when not everything could be written.
  [[nodiscard]] bool close();

 private:
  bool open(const char* path, const char* mode);
  void flush();
  void writeThrough(std::string_view text);

  FileHandle file_;
  bool failed_ = false;
  std::size_t used_ = 0;  // characters of buffer_ that are held back
  StreamBuffer buffer_;
};

}  // namespace runner

#endif  // RUNNER_DRIVER_TEXT_STREAM_H_
