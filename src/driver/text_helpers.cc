#include "driver/text_helpers.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <cstdlib>

#include "driver/diagnostics.h"

// Marks a loop over long values, which is compiled for AVX2 as well; the faster one is chosen when
// the program is loaded. A macro, because only x86 has the attribute.
#if defined(__x86_64__)
#define RUNNER_VECTOR_CLONES __attribute__((target_clones("avx2", "default")))
#else
#define RUNNER_VECTOR_CLONES
#endif

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
RUNNER_VECTOR_CLONES
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
  const std::string_view rest = text.substr(digits);
  std::printf("\nillegal data!! (%.*s)\nnum=%d, i=%d, j=%d\n", static_cast<int>(rest.size()),
              rest.data(), static_cast<int>(out.size()), static_cast<int>(index),
              static_cast<int>(half));
  return -1;
}

RUNNER_VECTOR_CLONES
void encodeDigits(std::span<const std::uint8_t> bytes, char* out, char ten) {
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    out[2 * i] = hexDigit(static_cast<std::uint8_t>(bytes[i] >> 4), ten);
    out[2 * i + 1] = hexDigit(static_cast<std::uint8_t>(bytes[i] & 0x0F), ten);
  }
}

void writeHexDigits(TextWriter& stream, std::span<const std::uint8_t> bytes, char ten) {
  constexpr std::size_t kChunk = kStreamBufferSize / 8;
  while (bytes.size() > kChunk) {
    encodeDigits(bytes.first(kChunk), stream.extend(2 * kChunk).data(), ten);
    bytes = bytes.subspan(kChunk);
  }
  const std::span<char> text = stream.extend(2 * bytes.size() + 1);
  encodeDigits(bytes, text.data(), ten);
  text.back() = '\n';
}

void writeNumber(TextWriter& stream, int number) {
  std::array<char, 16> digits;
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
  writeText(stream, {digits.data(), end});
}

// copyValue copies the value at the start of `text` for getStr.
int copyValue(std::string_view text, std::span<char> out) {
  const std::size_t length = std::min(text.find_first_of("\r\n] "), text.size());
  const std::size_t room = out.size() - 1;
  std::copy_n(text.begin(), std::min(length, room), out.begin());
  // A value that fills the room must be the end of the text: a terminator after it is one character
  // too many.
  if (length > room || (length == room && length < text.size())) {
    failWith("[ERR]getStr: not enough buffer!!");
    return 0;
  }
  out[length] = '\0';
  return 1;
}

}  // namespace

int findSection(TextReader& stream, const char* key) {
  std::array<char, kSectionLineCapacity> buffer;
  const std::string_view start = key;
  while (const auto line = stream.readLine(buffer)) {
    if (line->starts_with(start)) return 0;
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

std::optional<std::size_t> hexLineToBin(std::string_view line, std::span<std::uint8_t> out) {
  if (line.ends_with('\n')) line.remove_suffix(1);
  const std::size_t count = line.size() / 2;
  const bool fits = line.size() % 2 == 0 && count <= out.size();
  if (!fits || !convertDigits(line.data(), out.data(), count)) return std::nullopt;
  return count;
}

int hexToBlock(std::string_view text, std::span<std::uint8_t, 16> block) {
  return hexToBin(text, block);
}

void writeHex(TextWriter& stream, std::span<const std::uint8_t> bytes) {
  writeHexDigits(stream, bytes, 'A');
}

void writeBlockHex(TextWriter& stream, std::span<const std::uint8_t, 16> block) {
  writeHex(stream, block);
}

void writeLowerHex(TextWriter& stream, std::span<const std::uint8_t> bytes) {
  writeHexDigits(stream, bytes, 'a');
}

void writeText(TextWriter& stream, std::string_view text) { stream.write(text); }

void writeLine(TextWriter& stream, std::string_view text) {
  stream.write(text);
  stream.extend(1).front() = '\n';
}

void writeDecimal(TextWriter& stream, int number) {
  writeNumber(stream, number);
  writeText(stream, "\n");
}

void writeHashName(TextWriter& stream, HashId hashId) {
  writeLine(stream, "[Hash]");
  if (const HashProperties* const hash = findHash(hashId)) {
    writeLine(stream, hash->name);
  } else {
    writeText(stream, "unknown(");
    writeNumber(stream, static_cast<int>(hashId));
    writeLine(stream, ")");
  }
}

}  // namespace runner
