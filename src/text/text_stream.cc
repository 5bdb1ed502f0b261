#include "text/text_stream.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace runner {
namespace {

// unbuffered takes a file and its buffer in the C library from it.
FileHandle unbuffered(std::FILE* file) {
  if (file != nullptr) std::setvbuf(file, nullptr, _IONBF, 0);
  return FileHandle(file);
}

// openToWrite opens a file and creates it if there is none. With O_NONBLOCK in `flags` a named pipe
// without a reader fails to open, where opening would wait for one; writing waits as ever.
FileHandle openToWrite(const char* path, int flags) {
  constexpr mode_t kForAll = 0666;  // as far as the mask of the process lets them
  const int descriptor = open(path, O_WRONLY | O_CREAT | flags, kForAll);
  if (descriptor < 0) return nullptr;
  fcntl(descriptor, F_SETFL, flags & O_APPEND);
  FileHandle file = unbuffered(fdopen(descriptor, "w"));
  if (!file) close(descriptor);
  return file;
}

// isRegularFile tells whether a file can be read several times from its start. It does not open the
// file, since opening a pipe would wait for the other end.
bool isRegularFile(const char* path) {
  struct stat file {};
  return stat(path, &file) == 0 && S_ISREG(file.st_mode);
}

// takeFault clears the error of a file after a call that fell short and moved `count` bytes.
// Returns whether there was one, other than a signal that interrupted the call.
bool takeFault(std::FILE* file, std::size_t count) {
  if (count > 0 && std::ferror(file) == 0) return false;
  std::clearerr(file);
  return errno != EINTR;
}

}  // namespace

bool TextReader::open(const char* path) {
  if (!isRegularFile(path)) return false;
  if (!block_.allocateUnfilled(kStreamBlockSize)) return false;
  file_ = unbuffered(std::fopen(path, "r"));
  failed_ = false;
  end_ = block_.text().data();
  continueAt(end_);
  return file_ != nullptr;
}

bool TextReader::reserve(std::size_t capacity) { return spare_.grow(capacity); }

bool TextReader::close() {
  file_.reset();
  return !failed_;
}

// gatherLine reads a line that does not stand in the block yet, or not in one piece: that one it
// copies piece by piece into the spare room, whatever it contains.
std::optional<std::string_view> TextReader::gatherLine(std::size_t capacity) {
  const bool atEnd = !hasUnread();
  if (const auto line = viewLine(capacity)) return line;
  if (capacity < 2 || (!atEnd && !reserve(capacity))) failed_ = true;
  if (atEnd || failed_) return std::nullopt;
  char* const line = spare_.text().data();
  std::size_t length = 0;
  std::size_t textLength = capacity;  // up to a zero byte, when there is one
  while (length < capacity - 1 && hasUnread()) {
    const std::size_t clean = clean_.size();
    const std::string_view piece = take(capacity - 1 - length);
    if (piece.size() > clean) textLength = std::min(textLength, length + clean);
    piece.copy(&line[length], piece.size());
    length += piece.size();
    if (piece.ends_with('\n')) break;
  }
  if (length == 0) return std::nullopt;
  return std::string_view(line, std::min(length, textLength));
}

// take takes at least one character and at most `most` of what is unread, up to and including a
// newline.
std::string_view TextReader::take(std::size_t most) {
  const auto unread = std::string_view(clean_.data(), end_).substr(0, most);
  const auto piece = unread.substr(0, std::min(unread.find('\n'), unread.size() - 1) + 1);
  if (piece.size() <= clean_.size()) {
    clean_.remove_prefix(piece.size());
  } else {
    continueAt(piece.end());
  }
  return piece;
}

bool TextReader::hasUnread() { return clean_.data() != end_ || refill(); }

// refill reads the next block. Returns false at the end of the file, and after a read that failed.
bool TextReader::refill() {
  const std::span<char> block = block_.text();
  std::size_t count = 0;
  while (count == 0 && !failed_) {
    count = std::fread(block.data(), 1, block.size(), file_.get());
    if (count == block.size() || std::feof(file_.get()) != 0) break;
    failed_ = takeFault(file_.get(), count);
  }
  end_ = block.data() + count;
  continueAt(block.data());
  return count > 0;
}

void TextReader::continueAt(const char* next) {
  const std::string_view unread(next, end_);
  clean_ = unread.substr(0, unread.find('\0'));
}

bool TextWriter::create(const char* path) { return open(path, O_TRUNC); }

bool TextWriter::append(const char* path) { return open(path, O_APPEND | O_NONBLOCK); }

bool TextWriter::open(const char* path, int flags) {
  file_ = openToWrite(path, flags);
  if (!file_ || !block_.allocateUnfilled(kStreamBlockSize + kMaxExtension)) {
    file_.reset();
    return false;
  }
  failed_ = false;
  // A file that has no end to seek, like a pipe, is taken to be empty.
  const long place = std::fseek(file_.get(), 0, SEEK_END) == 0 ? std::ftell(file_.get()) : 0;
  begin_ = static_cast<std::size_t>(std::max(place, 0L)) % kStreamBlockSize;
  end_ = begin_;
  return true;
}

void TextWriter::write(std::string_view text) {
  for (; text.size() > kMaxExtension; text.remove_prefix(kMaxExtension)) {
    text.copy(extend(kMaxExtension).data(), kMaxExtension);
  }
  text.copy(extend(text.size()).data(), text.size());
}

bool TextWriter::close() {
  writeThrough(end_);
  return std::fclose(file_.release()) == 0 && !failed_;
}

// writeBlock makes room for `size` characters when more than a block is held back.
void TextWriter::writeBlock(std::size_t size) {
  if (size > kMaxExtension || !file_) std::abort();
  writeThrough(kStreamBlockSize);
  end_ -= kStreamBlockSize;
  std::memcpy(block_.data(), block_.data() + kStreamBlockSize, end_);
  begin_ = 0;
}

// writeThrough writes what is held back before `end`.
void TextWriter::writeThrough(std::size_t end) {
  while (begin_ < end && !failed_) {
    const std::size_t size = end - begin_;
    const std::size_t count = std::fwrite(block_.data() + begin_, 1, size, file_.get());
    begin_ += count;
    failed_ = count < size && takeFault(file_.get(), count);
  }
}

}  // namespace runner
