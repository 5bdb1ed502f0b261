#include "text/text_helpers.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <limits>
#include <system_error>

#include "text/diagnostics.h"
#include "text/hex_digits.h"

namespace runner {
namespace {

constexpr std::size_t kSectionLineCapacity = 512;

// reportIllegalData prints where `text` stops being hexadecimal, at character `digits`, and leaves
// in `out` what was converted before it.
int reportIllegalData(std::string_view text, std::size_t digits, std::span<std::uint8_t> out) {
  const std::size_t index = digits / 2;
  const std::size_t half = digits % 2;
  std::ranges::fill(out, std::uint8_t{0});
  (void)decodeDigits(text, out.first(index));
  if (half == 1) {
    const std::array<char, 2> pair{text[digits - 1], '0'};
    (void)decodeDigits({pair.data(), pair.size()}, out.subspan(index, 1));
  }
  const std::string_view rest = text.substr(digits);
  std::printf("\nillegal data!! (%.*s)\nnum=%d, i=%d, j=%d\n", static_cast<int>(rest.size()),
              rest.data(), static_cast<int>(out.size()), static_cast<int>(index),
              static_cast<int>(half));
  return -1;
}

void writeHexDigits(TextWriter& stream, std::span<const std::uint8_t> bytes, DigitCase letters) {
  constexpr std::size_t kChunk = TextWriter::kMaxExtension / 4;
  while (bytes.size() > kChunk) {
    encodeDigits(bytes.first(kChunk), stream.extend(2 * kChunk), letters);
    bytes = bytes.subspan(kChunk);
  }
  const std::span<char> text = stream.extend(2 * bytes.size() + 1);
  encodeDigits(bytes, text, letters);
  text.back() = '\n';
}

// copyValue copies the value at the start of `text` for getStr.
int copyValue(std::string_view text, std::span<char> out) {
  const std::size_t length = std::min(text.find_first_of("\r\n] "), text.size());
  const std::size_t room = out.empty() ? 0 : out.size() - 1;
  std::copy_n(text.begin(), std::min(length, room), out.begin());
  // A value that fills the room must be the end of the text: a terminator after it is one character
  // too many.
  if (out.empty() || length > room || (length == room && length < text.size())) {
    failWith("[ERR]getStr: not enough buffer!!");
    return 0;
  }
  out[length] = '\0';
  return 1;
}

}  // namespace

int findSection(TextReader& stream, std::string_view key) {
  while (const auto line = stream.readLine(kSectionLineCapacity)) {
    if (line->starts_with(key)) return 0;
  }
  std::printf("\"%.*s\" is not found!!\n", static_cast<int>(key.size()), key.data());
  return -1;
}

int getStr(std::string_view line, std::string_view pattern, std::span<char> out) {
  if (line.empty() || pattern.size() > line.size()) return 0;
  if (pattern.empty()) return 1;
  if (pattern.front() == '?') return copyValue(line, out);
  std::size_t matched = 0;
  for (std::size_t i = 0; i < line.size(); ++i) {
    if (line[i] != pattern[matched]) {
      matched = 0;
      continue;
    }
    if (++matched == pattern.size()) return 1;
    if (i + 1 < line.size() && pattern[matched] == '?') return copyValue(line.substr(i + 1), out);
  }
  return 0;
}

int decimal(std::string_view text) {
  constexpr std::uint64_t kMost = std::numeric_limits<std::int64_t>::max();
  text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) text.remove_prefix(1);
  std::uint64_t number = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
  if (result.ec == std::errc::result_out_of_range)
    number = std::numeric_limits<std::uint64_t>::max();
  number = std::min(number, negative ? kMost + 1 : kMost);
  return static_cast<int>(static_cast<std::uint32_t>(negative ? 0 - number : number));
}

std::size_t bytesForBits(int bits) {
  return bits <= 0 ? 0 : (static_cast<std::size_t>(bits) + 7) / 8;
}

std::size_t measureHex(std::string_view text) { return (countHexDigits(text) + 1) / 2; }

int hexToBin(std::string_view text, std::span<std::uint8_t> out) {
  if (out.size() <= text.size() / 2 && decodeDigits(text, out)) return 0;
  return reportIllegalData(text, countHexDigits(text.substr(0, 2 * out.size())), out);
}

std::optional<std::size_t> hexLineToBin(std::string_view line, std::span<std::uint8_t> out) {
  if (line.ends_with('\n')) line.remove_suffix(1);
  const std::size_t count = line.size() / 2;
  const bool fits = line.size() % 2 == 0 && count <= out.size();
  if (!fits || !decodeDigits(line, out.first(count))) return std::nullopt;
  return count;
}

int hexToBlock(std::string_view text, std::span<std::uint8_t, 16> block) {
  return hexToBin(text, block);
}

void writeHex(TextWriter& stream, std::span<const std::uint8_t> bytes) {
  writeHexDigits(stream, bytes, DigitCase::UPPER);
}

void writeBlockHex(TextWriter& stream, std::span<const std::uint8_t, 16> block) {
  writeHex(stream, block);
}

void writeLowerHex(TextWriter& stream, std::span<const std::uint8_t> bytes) {
  writeHexDigits(stream, bytes, DigitCase::LOWER);
}

void writeText(TextWriter& stream, std::string_view text) { stream.write(text); }

void writeLine(TextWriter& stream, std::string_view text) {
  const std::span<char> line = stream.extend(text.size() + 1);
  text.copy(line.data(), text.size());
  line.back() = '\n';
}

void writeDecimal(TextWriter& stream, int number) {
  std::array<char, 16> digits;
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
  writeLine(stream, {digits.data(), end});
}

}  // namespace runner
