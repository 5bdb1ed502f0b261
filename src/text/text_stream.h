#ifndef RUNNER_TEXT_TEXT_STREAM_H_
#define RUNNER_TEXT_TEXT_STREAM_H_

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

// FileHandle owns an open file.
using FileHandle = std::unique_ptr<std::FILE, FileCloser>;

// The streams read and write the file in blocks of this size.
inline constexpr std::size_t kStreamBlockSize = 262144;

// TextReader reads a text file by lines.
class TextReader {
 public:
  TextReader();  // leaves the buffer as it is, like that of TextWriter
  TextReader(const TextReader&) = delete;
  TextReader& operator=(const TextReader&) = delete;

  // open opens the file at `path`. Returns false when it cannot be opened.
  [[nodiscard]] bool open(const char* path);

  void close() { file_.reset(); }

  // viewLine reads one line of at most spare.size() - 1 characters, up to and including the
  // newline. The rest of a longer line is what the next call reads. Returns the text up to its
  // first zero byte, or nothing at the end of the file. The text stands in the stream's own buffer,
  // or in `spare` if it does not stand there in one piece, and holds until the next line is read.
  std::optional<std::string_view> viewLine(std::span<char> spare) {
    const std::size_t newline = clean_.substr(0, spare.size() - 1).find('\n');
    if (newline == std::string_view::npos) return gatherLine(spare);
    const std::string_view line = clean_.substr(0, newline + 1);
    clean_.remove_prefix(line.size());
    return line;
  }

  // readLine reads a line as viewLine does, but always into `line`, with a zero byte behind it. At
  // the end of the file `line` holds an empty text.
  std::optional<std::string_view> readLine(std::span<char> line);

 private:
  bool refill();
  void continueAt(const char* next);
  std::optional<std::string_view> gatherLine(std::span<char> line);

  FileHandle file_;
  // What is in buffer_ and not yet read begins with clean_, the text before its first zero byte,
  // and goes on to end_.
  std::string_view clean_;
  const char* end_ = nullptr;
  std::array<char, kStreamBlockSize> buffer_;
};

// TextWriter writes a text file. What it wrote stands in the file for certain only when close has
// returned true.
class TextWriter {
 public:
  // The most that extend takes.
  static constexpr std::size_t kMaxExtension = 16384;

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

  // extend writes `size` characters, at most kMaxExtension, that the caller fills in before
  // anything else is written.
  [[nodiscard]] std::span<char> extend(std::size_t size) {
    if (size > buffer_.size() - end_) writeBlock();
    const std::span<char> text = std::span(buffer_).subspan(end_, size);
    end_ += size;
    return text;
  }

  // close closes the file. Returns false when not everything could be written.
  [[nodiscard]] bool close();

 private:
  bool open(const char* path, const char* mode);
  void writeBlock();
  void writeThrough(std::size_t end);

  FileHandle file_;
  bool failed_ = false;
  // What is held back stands in buffer_ from begin_ to end_. The start of buffer_ stands for a
  // place in the file that is a multiple of the block size: whole pages are what the kernel takes
  // fastest, by far.
  std::size_t begin_ = 0;
  std::size_t end_ = 0;
  std::array<char, kStreamBlockSize + kMaxExtension> buffer_;
};

}  // namespace runner

#endif  // RUNNER_TEXT_TEXT_STREAM_H_
