#include "text/hex_digits.h"

// Each loop here does one thing to every byte, without branches or tables, so that the compiler
// turns it into vectors. RUNNER_VECTOR_CLONES has a loop compiled for AVX2 as well, with which long
// values are converted nearly twice as fast; the program's loader chooses. That needs x86, GCC's
// attribute (hence a macro), the GNU C library, and a build without the thread sanitizer, whose
// run-time library is not there yet when the loader calls.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__) && defined(__GLIBC__) && \
    !defined(__SANITIZE_THREAD__)
#define RUNNER_VECTOR_CLONES __attribute__((target_clones("avx2", "default")))
#else
#define RUNNER_VECTOR_CLONES
#endif

namespace runner {
namespace {

constexpr bool isHexDigit(std::uint8_t c) {
  const auto number = static_cast<std::uint8_t>(c - '0');
  const auto letter = static_cast<std::uint8_t>((c | 0x20) - 'a');
  return static_cast<bool>(static_cast<int>(number < 10) | static_cast<int>(letter < 6));
}

// hexValue returns the value of a hexadecimal digit: bit 6 tells a letter from a number.
constexpr std::uint8_t hexValue(std::uint8_t digit) {
  return static_cast<std::uint8_t>((digit & 0x0F) + (digit >> 6) * 9);
}

constexpr char hexDigit(int value, int letterOffset) {
  return static_cast<char>('0' + value + (value < 10 ? 0 : letterOffset));
}

bool consistsOfDigits(std::string_view text) {
  std::uint8_t invalid = 0;
  for (const char c : text) {
    invalid |= static_cast<std::uint8_t>(!isHexDigit(static_cast<std::uint8_t>(c)));
  }
  return invalid == 0;
}

}  // namespace

RUNNER_VECTOR_CLONES
bool decodeDigits(std::string_view digits, std::span<std::uint8_t> out) {
  std::uint8_t invalid = 0;
  for (std::size_t i = 0; i < out.size(); ++i) {
    const auto high = static_cast<std::uint8_t>(digits[2 * i]);
    const auto low = static_cast<std::uint8_t>(digits[2 * i + 1]);
    invalid |= static_cast<std::uint8_t>(!isHexDigit(high));
    invalid |= static_cast<std::uint8_t>(!isHexDigit(low));
    out[i] = static_cast<std::uint8_t>((hexValue(high) << 4) | hexValue(low));
  }
  return invalid == 0;
}

RUNNER_VECTOR_CLONES
void encodeDigits(std::span<const std::uint8_t> bytes, std::span<char> out, DigitCase letters) {
  const int letterOffset = (letters == DigitCase::UPPER ? 'A' : 'a') - '0' - 10;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    out[2 * i] = hexDigit(bytes[i] >> 4, letterOffset);
    out[2 * i + 1] = hexDigit(bytes[i] & 0x0F, letterOffset);
  }
}

std::size_t countHexDigits(std::string_view text) {
  constexpr std::size_t kStep = 64;
  std::size_t count = 0;
  while (count + kStep <= text.size() && consistsOfDigits(text.substr(count, kStep)))
    count += kStep;
  while (count < text.size() && isHexDigit(static_cast<std::uint8_t>(text[count]))) ++count;
  return count;
}

}  // namespace runner
