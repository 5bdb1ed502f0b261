#include "driver/text_helpers.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstdlib>

namespace runner {
namespace {

constexpr std::size_t kSectionLineCapacity = 512;

// The loops over hexadecimal text work on single bytes without branches or tables, in the form that
// the compiler turns into vector instructions; long values are the ones whose speed counts.

constexpr bool isHexDigit(std::uint8_t c) {
  const auto number = static_cast<std::uint8_t>(c - '0');
  const auto letter = static_cast<std::uint8_t>((c | 0x20) - 'a');
  return static_cast<bool>(static_cast<int>(number < 10) | static_cast<int>(letter < 6));
}

// hexValue returns the value of a hexadecimal digit: bit 6 tells a letter from a number.
constexpr std::uint8_t hexValue(std::uint8_t digit) {
  return static_cast<std::uint8_t>((digit & 0x0F) + (digit >> 6) * 9);
}

// hexDigit returns the digit for `value`, with letters that begin at `ten`.
constexpr char hexDigit(std::uint8_t value, char ten) {
  return static_cast<char>(value + (value < 10 ? '0' : ten - 10));
}

// convertDigits converts 2 x count characters without regard to their validity, which it returns.
bool convertDigits(const char* digits, std::uint8_t* out, std::size_t count) {
  std::uint8_t invalid = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const auto high = static_cast<std::uint8_t>(digits[2 * i]);
    const auto low = static_cast<std::uint8_t>(digits[2 * i + 1]);
    invalid |= static_cast<std::uint8_t>(!isHexDigit(high));
    invalid |= static_cast<std::uint8_t>(!isHexDigit(low));
    out[i] = static_cast<std::uint8_t>((hexValue(high) << 4) | hexValue(low));
  }
  return invalid == 0;
}

// reportIllegalData prints where `text` stops being hexadecimal, at character `digits`, and leaves
// in `out` what was converted before it.
int reportIllegalData(std::string_view text, std::size_t digits, std::span<std::uint8_t> out) {
  const std::size_t index = digits / 2;
  const std::size_t half = digits % 2;
  std::ranges::fill(out, std::uint8_t{0});
  convertDigits(text.data(), out.data(), index);
  if (half == 1) {
    out[index] =
        static_cast<std::uint8_t>(hexValue(static_cast<std::uint8_t>(text[digits - 1])) << 4);
  }
  writeText(stdout, "\nillegal data!! (");
  writeText(stdout, text.substr(digits));
  std::printf(")\nnum=%d, i=%d, j=%d\n", static_cast<int>(out.size()), static_cast<int>(index),
              static_cast<int>(half));
  return -1;
}

void writeHexDigits(std::FILE* stream, std::span<const std::uint8_t> bytes, char ten) {
  constexpr std::size_t kChunk = 8192;
  std::array<char, 2 * kChunk + 1> digits;
  while (true) {
    const std::size_t count = std::min(bytes.size(), kChunk);
    for (std::size_t i = 0; i < count; ++i) {
      digits[2 * i] = hexDigit(static_cast<std::uint8_t>(bytes[i] >> 4), ten);
      digits[2 * i + 1] = hexDigit(static_cast<std::uint8_t>(bytes[i] & 0x0F), ten);
    }
    bytes = bytes.subspan(count);
    if (bytes.empty()) {
      digits[2 * count] = '\n';
      writeText(stream, {digits.data(), 2 * count + 1});
      return;
    }
    writeText(stream, {digits.data(), 2 * count});
  }
}

// copyValue copies the value at the start of `text` for getStr.
int copyValue(std::string_view text, std::span<char> out) {
  const std::size_t length = std::min(text.find_first_of("\r\n] "), text.size());
  const std::size_t room = out.size() - 1;
  // A value that fills the room must be the end of the text: a terminator after it is one character
  // too many.
  if (length > room || (length == room && length < text.size())) {
    std::printf("[ERR]%s: not enough buffer!!\n", "getStr");
    return 0;
  }
  std::copy_n(text.begin(), length, out.begin());
  out[length] = '\0';
  return 1;
}

}  // namespace

std::optional<std::string_view> readLine(std::FILE* stream, std::span<char> buffer) {
  const auto capacity = static_cast<int>(std::min<std::size_t>(buffer.size(), INT_MAX));
  if (std::fgets(buffer.data(), capacity, stream) == nullptr) {
    buffer[0] = '\0';
    return std::nullopt;
  }
  return std::string_view(buffer.data());
}

int findSection(std::FILE* stream, const char* key) {
  std::array<char, kSectionLineCapacity> buffer;
  while (const auto line = readLine(stream, buffer)) {
    if (line->starts_with(key)) return 0;
  }
  std::printf("\"%s\" is not found!!\n", key);
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

int decimal(const char* text) { return static_cast<int>(std::strtol(text, nullptr, 10)); }

std::size_t bytesForBits(int bits) {
  return bits <= 0 ? 0 : (static_cast<std::size_t>(bits) + 7) / 8;
}

std::size_t countHexDigits(std::string_view text) {
  constexpr std::size_t kStride = 64;
  std::size_t count = 0;
  for (; count + kStride <= text.size(); count += kStride) {
    std::uint8_t invalid = 0;
    for (std::size_t i = 0; i < kStride; ++i) {
      invalid |= static_cast<std::uint8_t>(!isHexDigit(static_cast<std::uint8_t>(text[count + i])));
    }
    if (invalid != 0) break;
  }
  while (count < text.size() && isHexDigit(static_cast<std::uint8_t>(text[count]))) ++count;
  return count;
}

std::size_t measureHex(std::string_view text) { return (countHexDigits(text) + 1) / 2; }

int hexToBin(std::string_view text, std::span<std::uint8_t> out) {
  if (out.size() <= text.size() / 2 && convertDigits(text.data(), out.data(), out.size())) return 0;
  return reportIllegalData(text, countHexDigits(text.substr(0, 2 * out.size())), out);
}

int hexToBlock(std::string_view text, std::span<std::uint8_t, 16> block) {
  return hexToBin(text, block);
}

void writeHex(std::FILE* stream, std::span<const std::uint8_t> bytes) {
  writeHexDigits(stream, bytes, 'A');
}

void writeBlockHex(std::FILE* stream, std::span<const std::uint8_t, 16> block) {
  writeHex(stream, block);
}

void writeLowerHex(std::FILE* stream, std::span<const std::uint8_t> bytes) {
  writeHexDigits(stream, bytes, 'a');
}

void writeText(std::FILE* stream, std::string_view text) {
  std::fwrite(text.data(), 1, text.size(), stream);
}

void writeLine(std::FILE* stream, std::string_view text) {
  writeText(stream, text);
  std::fputc('\n', stream);
}

void writeDecimal(std::FILE* stream, int number) { std::fprintf(stream, "%d\n", number); }

void writeHashName(std::FILE* stream, HashId hashId) {
  writeLine(stream, "[Hash]");
  if (const HashProperties* hash = findHash(hashId)) {
    writeLine(stream, hash->name);
  } else {
    std::fprintf(stream, "unknown(%d)\n", static_cast<int>(hashId));
  }
}

}  // namespace runner
