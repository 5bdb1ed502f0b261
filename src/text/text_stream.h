#ifndef RUNNER_TEXT_TEXT_STREAM_H_
#define RUNNER_TEXT_TEXT_STREAM_H_

#include <cstddef>
#include <cstdio>
#include <optional>
#include <span>
#include <string_view>

#include "text/buffer.h"
#include "text/owner.h"

// The text files of a run. A test reads and writes some twenty short lines for each engine call, or
// a few of many megabytes, and the engine call may take well under a microsecond: the streams have
// large blocks of their own, which lines are taken from and digits are written into directly.

namespace runner {

// FileHandle owns an open file.
using FileHandle = Owner<std::FILE, std::fclose>;

// The streams read and write a file in blocks of this size, in bytes.
inline constexpr std::size_t kStreamBlockSize = 262144;

// TextReader reads a text file by lines.
class TextReader {
 public:
  // open opens the regular file at `path`. Returns false when it cannot be opened, is of another
  // kind, or there is no memory for the block.
  [[nodiscard]] bool open(const char* path);

  // reserve makes room for a line of this capacity that does not stand in the block in one piece,
  // so that readLine need not. Returns false when there is no memory. It ends the view of the last
  // line.
  [[nodiscard]] bool reserve(std::size_t capacity);

  // readLine reads one line of at most capacity - 1 characters, up to and including the newline.
  // The rest of a longer line is what the next call reads. Returns the text up to its first zero
  // byte, which holds until the next line is read, or nothing at the end of the file. A capacity
  // below 2, and a lack of memory, count as a file that cannot be read.
  [[nodiscard]] std::optional<std::string_view> readLine(std::size_t capacity) {
    const auto line = viewLine(capacity);
    return line ? line : gatherLine(capacity);
  }

  // close closes the file. Returns false when a read failed: what looked like the end of the file
  // was none.
  [[nodiscard]] bool close();

 private:
  // viewLine reads a line that stands in the block in one piece; nothing for any other.
  std::optional<std::string_view> viewLine(std::size_t capacity) {
    if (capacity < 2) return std::nullopt;
    const std::size_t newline = clean_.substr(0, capacity - 1).find('\n');
    if (newline == std::string_view::npos) return std::nullopt;
    const std::string_view line = clean_.substr(0, newline + 1);
    clean_.remove_prefix(line.size());
    return line;
  }

  bool hasUnread();
  bool refill();
  void continueAt(const char* next);
  std::string_view take(std::size_t most);
  std::optional<std::string_view> gatherLine(std::size_t capacity);

  FileHandle file_;
  bool failed_ = false;
  Buffer block_;
  Buffer spare_;  // holds a line that does not stand in the block in one piece
  // What is in the block and not yet read begins with clean_, the text before its first zero byte,
  // and goes on to end_.
  std::string_view clean_;
  const char* end_ = nullptr;
};

// TextWriter writes a text file. What it wrote stands in the file for certain only when close has
// returned true. After the first write that fails nothing more is written.
class TextWriter {
 public:
  // The most that extend takes.
  static constexpr std::size_t kMaxExtension = 16384;

  // create opens the file at `path` and truncates it; append opens it for writing at its end. Both
  // create a file that does not exist. They return false when it cannot be opened or there is no
  // memory for the block; append also at a named pipe without a reader, which create waits for.
  [[nodiscard]] bool create(const char* path);
  [[nodiscard]] bool append(const char* path);

  // write writes `text`.
  void write(std::string_view text);

  // extend writes `size` characters, at most kMaxExtension, that the caller fills in before
  // anything else is written. A size for which there is no room, and a writer that is not open, end
  // the process.
  [[nodiscard]] std::span<char> extend(std::size_t size) {
    if (size > block_.size() - end_) writeBlock(size);
    const std::span<char> text = block_.text().subspan(end_, size);
    end_ += size;
    return text;
  }

  // close closes the file, which must be open. Returns false when not everything could be written.
  [[nodiscard]] bool close();

 private:
  bool open(const char* path, int flags);
  void writeBlock(std::size_t size);
  void writeThrough(std::size_t end);

  FileHandle file_;
  bool failed_ = false;
  // A block, and room for one extension. What is held back stands in it from begin_ to end_. Its
  // start stands for a place in the file that is a multiple of the block size: whole pages are what
  // the kernel takes fastest, by far.
  Buffer block_;
  std::size_t begin_ = 0;
  std::size_t end_ = 0;
};

}  // namespace runner

#endif  // RUNNER_TEXT_TEXT_STREAM_H_
