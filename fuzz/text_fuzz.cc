#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "memory_file.h"
#include "text/text_helpers.h"

// The conversions of text on arbitrary bytes, against plain loops over single characters.

namespace {

void require(bool condition, const char* what) {
  if (condition) return;
  std::fprintf(stderr, "%s\n", what);
  std::abort();
}

// digitValue returns the value of a hexadecimal digit, -1 for another character.
int digitValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

std::size_t countDigits(std::string_view text) {
  const auto isDigit = [](char c) { return digitValue(c) >= 0; };
  return static_cast<std::size_t>(std::ranges::find_if_not(text, isDigit) - text.begin());
}

// expectedBytes converts the digits at the start of `text` into `size` bytes; what is not there is
// zero.
std::vector<std::uint8_t> expectedBytes(std::string_view text, std::size_t size) {
  std::vector<std::uint8_t> bytes(size);
  const std::size_t count = std::min(countDigits(text), 2 * size);
  for (std::size_t i = 0; i < count; ++i) {
    const int weight = i % 2 == 0 ? 16 : 1;
    bytes[i / 2] = static_cast<std::uint8_t>(bytes[i / 2] + digitValue(text[i]) * weight);
  }
  return bytes;
}

void compareReading(std::string_view text, std::size_t size) {
  const std::size_t digits = countDigits(text);
  std::vector<std::uint8_t> bytes(size, 0xA5);
  const bool converts = runner::hexToBin(text, bytes) == 0;
  require(converts == (digits >= 2 * size), "hexToBin accepts what is no value");
  require(bytes == expectedBytes(text, size), "hexToBin converts to other bytes");
  require(runner::measureHex(text) == (digits + 1) / 2, "measureHex counts other digits");

  const std::size_t lineEnd = text.ends_with('\n') ? text.size() - 1 : text.size();
  const bool isWhole = digits == lineEnd && lineEnd % 2 == 0 && lineEnd / 2 <= size;
  const auto length = runner::hexLineToBin(text, bytes);
  require(length.has_value() == isWhole, "hexLineToBin accepts another line");
  if (!length) return;
  require(*length == lineEnd / 2, "hexLineToBin returns another length");
  bytes.resize(*length);
  require(bytes == expectedBytes(text, *length), "hexLineToBin converts to other bytes");
}

void compareWriting(std::string_view text) {
  static runner::fuzz::MemoryFile file;
  const std::vector<std::uint8_t> bytes(text.begin(), text.end());
  std::string expected;
  for (const char* const digits : {"0123456789ABCDEF", "0123456789abcdef"}) {
    for (const std::uint8_t byte : bytes) expected.append({digits[byte / 16], digits[byte % 16]});
    expected.push_back('\n');
  }
  runner::TextWriter writer;
  require(writer.create(file.path()), "the file cannot be opened");
  runner::writeHex(writer, bytes);
  runner::writeLowerHex(writer, bytes);
  require(writer.close(), "the file cannot be written");
  require(file.content() == expected, "other digits are written");
}

// findValue tells whether `line` has the text before the "?" of `pattern` and a character after it.
// A partial match that overlaps the next candidate hides it, so that this is only one direction.
bool hasValue(std::string_view line, std::string_view pattern) {
  const std::string_view name = pattern.substr(0, pattern.find('?'));
  return line.find(name) != std::string_view::npos;
}

void compareValues(std::string_view line, std::string_view pattern, std::size_t capacity) {
  std::vector<char> value(capacity + 1, '\x7F');
  const bool found = runner::getStr(line, pattern, value) == 1;
  require(!found || hasValue(line, pattern), "getStr finds what is not there");
  if (!found || pattern.find('?') == std::string_view::npos) return;
  const auto end = std::ranges::find(value, '\0');
  require(end != value.end(), "getStr returns a value without an end");
  const std::string text(value.begin(), end);
  require(text.find_first_of("\r\n] ") == std::string::npos, "getStr goes on after the value");
  require(line.find(text) != std::string_view::npos, "getStr returns another value");
}

}  // namespace

// The first byte sizes the output, the second splits the rest into a pattern and a line.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static runner::fuzz::Console console;
  const std::size_t outputByte = size > 0 ? data[0] : 0;
  const std::size_t patternByte = size > 1 ? data[1] : 0;
  std::string_view text(reinterpret_cast<const char*>(data), size);
  text.remove_prefix(std::min<std::size_t>(2, size));
  // Up to four times 255, so that the loops for long values are reached.
  compareReading(text, 4 * outputByte);
  compareReading(text, runner::measureHex(text));
  compareWriting(text);
  const std::string_view pattern = text.substr(0, patternByte);
  compareValues(text.substr(pattern.size()), pattern, outputByte);
  // The number ends with the line, or at a zero byte.
  const std::string number(text.substr(0, text.find('\0')));
  require(runner::decimal(text) == static_cast<int>(std::strtol(number.c_str(), nullptr, 10)),
          "another number is read");
  console.take();
  return 0;
}
