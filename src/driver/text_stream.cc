#include "driver/text_stream.h"

#include <algorithm>
#include <cstring>

namespace runner {
namespace {

FileHandle openUnbuffered(const char* path, const char* mode) {
  FileHandle file(std::fopen(path, mode));
  if (file) std::setvbuf(file.get(), nullptr, _IONBF, 0);
  return file;
}

// endOfLine returns the length of the line at the start of `text`, its newline included; all of
// `text` when there is no newline.
std::size_t endOfLine(std::string_view text) {
  const std::size_t newline = text.find('\n');
  return newline == std::string_view::npos ? text.size() : newline + 1;
}

}  // namespace

TextReader::TextReader() = default;

bool TextReader::open(const char* path) {
  file_ = openUnbuffered(path, "r");
  unread_ = {};
  return file_ != nullptr;
}

bool TextReader::refill() {
  const std::size_t count = std::fread(buffer_.data(), 1, buffer_.size(), file_.get());
  unread_ = {buffer_.data(), count};
  return count > 0;
}

std::optional<std::string_view> TextReader::readLine(std::span<char> line) {
  const std::size_t room = line.size() - 1;
  std::size_t length = 0;
  std::size_t textLength = std::string_view::npos;  // up to a zero byte, when there is one
  while (length < room && (!unread_.empty() || refill())) {
    const std::string_view piece = unread_.substr(0, endOfLine(unread_.substr(0, room - length)));
    const std::size_t zero = piece.find('\0');
    if (zero != std::string_view::npos) textLength = std::min(textLength, length + zero);
    std::memcpy(&line[length], piece.data(), piece.size());
    length += piece.size();
    unread_.remove_prefix(piece.size());
    if (piece.back() == '\n') break;
  }
  line[length] = '\0';
  if (length == 0) return std::nullopt;
  return std::string_view(line.data(), std::min(length, textLength));
}

TextWriter::TextWriter() = default;

TextWriter::~TextWriter() {
  if (file_) flush();
}

bool TextWriter::create(const char* path) { return open(path, "w"); }

bool TextWriter::append(const char* path) { return open(path, "a"); }

bool TextWriter::open(const char* path, const char* mode) {
  file_ = openUnbuffered(path, mode);
  failed_ = false;
  used_ = 0;
  return file_ != nullptr;
}

void TextWriter::write(std::string_view text) {
  if (text.size() > buffer_.size()) {
    flush();
    writeThrough(text);
    return;
  }
  std::ranges::copy(text, extend(text.size()).begin());
}

std::span<char> TextWriter::extend(std::size_t size) {
  if (size > buffer_.size() - used_) flush();
  const std::span<char> text = std::span(buffer_).subspan(used_, size);
  used_ += size;
  return text;
}

bool TextWriter::close() {
  flush();
  return std::fclose(file_.release()) == 0 && !failed_;
}

void TextWriter::flush() {
  writeThrough({buffer_.data(), used_});
  used_ = 0;
}

void TextWriter::writeThrough(std::string_view text) {
  if (std::fwrite(text.data(), 1, text.size(), file_.get()) != text.size()) failed_ = true;
}

}  // namespace runner
