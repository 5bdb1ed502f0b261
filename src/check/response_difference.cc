#include "check/response_difference.h"

#include <algorithm>
#include <fstream>

namespace runner {
namespace {

constexpr std::size_t kOwnLines = 3;
constexpr std::size_t kLeastWidth = 12;
constexpr const char* kDots = "...";
constexpr std::size_t kDotsLength = 3;

std::optional<std::string> readLine(std::ifstream& file) {
  std::string line;
  if (!std::getline(file, line)) return std::nullopt;
  // A last line without its newline is another line.
  if (file.eof()) line += "(no newline)";
  return line;
}

// excerpt returns `text` cut to `width` characters with the one at `place` among them.
std::string excerpt(const std::optional<std::string>& text, std::size_t place, std::size_t width) {
  if (!text) return "nothing";
  if (text->size() <= width) return *text;
  if (place + kDotsLength < width) return text->substr(0, width - kDotsLength) + kDots;
  const std::size_t begin = std::min(place, text->size());
  const std::string rest = text->substr(begin);
  if (rest.size() + kDotsLength <= width) return kDots + rest;
  return kDots + rest.substr(0, width - 2 * kDotsLength) + kDots;
}

}  // namespace

std::optional<ResponseDifference> findDifference(const std::string& path,
                                                 const std::string& otherPath) {
  std::ifstream file(path, std::ios::binary);
  std::ifstream otherFile(otherPath, std::ios::binary);
  for (std::size_t number = 1;; ++number) {
    auto line = readLine(file);
    auto otherLine = readLine(otherFile);
    if (!line && !otherLine && number > kOwnLines) return std::nullopt;
    if ((line == otherLine && line) || (line && otherLine && number <= kOwnLines)) continue;
    return ResponseDifference{number, std::move(line), std::move(otherLine)};
  }
}

std::string describeDifference(const ResponseDifference& difference, std::size_t width) {
  const std::string start = "line " + std::to_string(difference.line) + ": GnuTLS ";
  const std::string middle = ", OpenSSL ";
  const std::size_t fixed = start.size() + middle.size();
  const std::size_t room = std::max(kLeastWidth, width > fixed ? (width - fixed) / 2 : 0);
  std::size_t place = 0;
  if (difference.text && difference.otherText) {
    const auto [first, other] = std::ranges::mismatch(*difference.text, *difference.otherText);
    place = static_cast<std::size_t>(first - difference.text->begin());
  }
  return start + excerpt(difference.text, place, room) + middle +
         excerpt(difference.otherText, place, room);
}

std::string printable(std::string text) {
  const auto isControl = [](unsigned char c) { return c < ' ' || c == 0x7f; };
  std::ranges::replace_if(text, isControl, '?');
  return text;
}

}  // namespace runner
