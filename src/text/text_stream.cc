#include "text/text_stream.h"

#include <algorithm>
#include <cstring>

namespace runner {
namespace {

// openUnbuffered opens a file without a buffer in the C library.
FileHandle openUnbuffered(const char* path, const char* mode) {
  FileHandle file(std::fopen(path, mode));
  if (file) std::setvbuf(file.get(), nullptr, _IONBF, 0);
  return file;
}

}  // namespace

TextReader::TextReader() = default;

bool TextReader::open(const char* path) {
  file_ = openUnbuffered(path, "r");
  end_ = buffer_.data();
  continueAt(end_);
  return file_ != nullptr;
}

bool TextReader::refill() {
  const std::size_t count = std::fread(buffer_.data(), 1, buffer_.size(), file_.get());
  end_ = buffer_.data() + count;
  continueAt(buffer_.data());
  return count > 0;
}

void TextReader::continueAt(const char* next) {
  const std::string_view unread(next, end_);
  clean_ = unread.substr(0, unread.find('\0'));
}

// gatherLine copies a line piece by piece, whatever it contains.
std::optional<std::string_view> TextReader::gatherLine(std::span<char> line) {
  const std::size_t room = line.size() - 1;
  std::size_t length = 0;
  std::size_t textLength = std::string_view::npos;  // up to a zero byte, when there is one
  bool ended = false;
  while (!ended && length < room && (clean_.data() != end_ || refill())) {
    const auto unread = std::string_view(clean_.data(), end_).substr(0, room - length);
    const auto piece = unread.substr(0, std::min(unread.find('\n'), unread.size() - 1) + 1);
    if (piece.size() > clean_.size()) {
      textLength = std::min(textLength, length + clean_.size());
      continueAt(piece.end());
    } else {
      clean_.remove_prefix(piece.size());
    }
    piece.copy(&line[length], piece.size());
    length += piece.size();
    ended = piece.back() == '\n';
  }
  if (length == 0) return std::nullopt;
  return std::string_view(line.data(), std::min(length, textLength));
}

std::optional<std::string_view> TextReader::readLine(std::span<char> line) {
  const auto text = viewLine(line);
  const std::size_t length = text ? text->size() : 0;
  if (text && text->data() != line.data()) std::memcpy(line.data(), text->data(), length);
  line[length] = '\0';
  if (!text) return std::nullopt;
  return std::string_view(line.data(), length);
}

TextWriter::TextWriter() = default;

TextWriter::~TextWriter() {
  if (file_) writeThrough(end_);
}

bool TextWriter::create(const char* path) { return open(path, "w"); }

bool TextWriter::append(const char* path) { return open(path, "a"); }

bool TextWriter::open(const char* path, const char* mode) {
  file_ = openUnbuffered(path, mode);
  if (!file_) return false;
  failed_ = false;
  // A file without places, like a pipe, starts anywhere.
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

// writeBlock is called when more than a block is held back.
void TextWriter::writeBlock() {
  writeThrough(kStreamBlockSize);
  end_ -= kStreamBlockSize;
  std::memcpy(buffer_.data(), &buffer_[kStreamBlockSize], end_);
  begin_ = 0;
}

void TextWriter::writeThrough(std::size_t end) {
  const std::size_t size = end - begin_;
  if (std::fwrite(&buffer_[begin_], 1, size, file_.get()) != size) failed_ = true;
}

}  // namespace runner
