#include "text/hex_digits.h"

#include <algorithm>
#include <array>
#include <cstring>

// Marks a loop over long values, which is compiled for AVX2 as well; the faster one is chosen when
// the program is loaded. A macro, because only x86 has the attribute.
#if defined(__x86_64__)
#define RUNNER_VECTOR_CLONES __attribute__((target_clones("avx2", "default")))
#else
#define RUNNER_VECTOR_CLONES
#endif

namespace runner {
namespace {

// Values from this many bytes on are long: the loops over single bytes, without branches or tables,
// are what the compiler turns into the widest vectors of the processor. Most values are short, and
// such loops would convert the better part of them byte by byte.
constexpr std::size_t kLongSize = 256;

constexpr bool isHexDigit(std::uint8_t c) {
  const auto number = static_cast<std::uint8_t>(c - '0');
  const auto letter = static_cast<std::uint8_t>((c | 0x20) - 'a');
  return static_cast<bool>(static_cast<int>(number < 10) | static_cast<int>(letter < 6));
}

// hexValue returns the value of a hexadecimal digit: bit 6 tells a letter from a number.
constexpr std::uint8_t hexValue(std::uint8_t digit) {
  return static_cast<std::uint8_t>((digit & 0x0F) + (digit >> 6) * 9);
}

constexpr char hexDigit(std::uint8_t value, std::uint8_t letterOffset) {
  return static_cast<char>('0' + value + (value < 10 ? 0 : letterOffset));
}

RUNNER_VECTOR_CLONES
bool decodeLong(const char* digits, std::span<std::uint8_t> out) {
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
void encodeLong(std::span<const std::uint8_t> bytes, char* out, std::uint8_t letterOffset) {
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    out[2 * i] = hexDigit(static_cast<std::uint8_t>(bytes[i] >> 4), letterOffset);
    out[2 * i + 1] = hexDigit(static_cast<std::uint8_t>(bytes[i] & 0x0F), letterOffset);
  }
}

// Short values are converted in vectors of one size, which every 64-bit processor has. The types
// are the extension that GCC and clang share.
using Characters = std::uint8_t __attribute__((vector_size(16)));
using SignedCharacters = std::int8_t __attribute__((vector_size(16)));
using Words = std::uint64_t __attribute__((vector_size(16)));

// The digits of a word of bytes fill a vector.
constexpr std::size_t kWordSize = 8;
constexpr std::size_t kVectorSize = 2 * kWordSize;

template <typename Value>
Value load(const void* memory) {
  Value value;
  std::memcpy(&value, memory, sizeof(value));
  return value;
}

template <typename Value>
void store(void* memory, Value value) {
  std::memcpy(memory, &value, sizeof(value));
}

// isBelow returns all bits set where a character is below `limit`. Signed numbers are what
// processors compare.
Characters isBelow(Characters characters, int limit) {
  return Characters(SignedCharacters(characters + 0x80) < static_cast<std::int8_t>(limit - 0x80));
}

bool isZero(Characters characters) {
  const auto words = Words(characters);
  return (words[0] | words[1]) == 0;
}

// digitValues returns the values of 16 digits, and sets bits in `invalid` where there is none.
Characters digitValues(const char* digits, Characters& invalid) {
  const auto characters = load<Characters>(digits);
  const Characters isNumber = isBelow(characters - '0', 10);
  const Characters isLetter = isBelow((characters | 0x20) - 'a', 6);
  invalid |= ~(isNumber | isLetter);
  return (characters & 0x0F) + (isLetter & 9);
}

// joinValues returns the bytes for two vectors of digit values.
Characters joinValues(Characters first, Characters second) {
  const Characters high = __builtin_shufflevector(first, second, 0, 2, 4, 6, 8, 10, 12, 14, 16, 18,
                                                  20, 22, 24, 26, 28, 30);
  const Characters low = __builtin_shufflevector(first, second, 1, 3, 5, 7, 9, 11, 13, 15, 17, 19,
                                                 21, 23, 25, 27, 29, 31);
  return high << 4 | low;
}

void decodeWord(const char* digits, std::uint8_t* out, Characters& invalid) {
  const Characters values = digitValues(digits, invalid);
  store(out, Words(joinValues(values, values))[0]);
}

void decodeTwoWords(const char* digits, std::uint8_t* out, Characters& invalid) {
  const Characters first = digitValues(digits, invalid);
  store(out, joinValues(first, digitValues(digits + kVectorSize, invalid)));
}

// decodePart is decodeWord for less than a word.
void decodePart(std::string_view digits, std::span<std::uint8_t> out, Characters& invalid) {
  std::array<char, kVectorSize> padded;
  padded.fill('0');
  std::ranges::copy(digits.substr(0, 2 * out.size()), padded.begin());
  std::array<std::uint8_t, kWordSize> word;
  decodeWord(padded.data(), word.data(), invalid);
  std::copy_n(word.begin(), out.size(), out.begin());
}

// encodeVector returns the digits for `values` of 0 to 15. A letter is `letterOffset` further from
// its value than a number is.
Characters encodeVector(Characters values, std::uint8_t letterOffset) {
  const auto isLetter = Characters(SignedCharacters(values) > 9);
  return values + '0' + (isLetter & letterOffset);
}

void encodeWord(const std::uint8_t* bytes, char* out, std::uint8_t letterOffset) {
  const auto word = Characters(Words{load<std::uint64_t>(bytes), 0});
  const Characters values = __builtin_shufflevector(word >> 4, word & 0x0F, 0, 16, 1, 17, 2, 18, 3,
                                                    19, 4, 20, 5, 21, 6, 22, 7, 23);
  store(out, encodeVector(values, letterOffset));
}

void encodeTwoWords(const std::uint8_t* bytes, char* out, std::uint8_t letterOffset) {
  const auto words = load<Characters>(bytes);
  const Characters high = words >> 4;
  const Characters low = words & 0x0F;
  store(out, encodeVector(__builtin_shufflevector(high, low, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5,
                                                  21, 6, 22, 7, 23),
                          letterOffset));
  store(out + kVectorSize, encodeVector(__builtin_shufflevector(high, low, 8, 24, 9, 25, 10, 26, 11,
                                                                27, 12, 28, 13, 29, 14, 30, 15, 31),
                                        letterOffset));
}

// encodePart is encodeWord for less than a word.
void encodePart(std::span<const std::uint8_t> bytes, std::span<char> out,
                std::uint8_t letterOffset) {
  std::array<std::uint8_t, kWordSize> word{};
  std::ranges::copy(bytes, word.begin());
  std::array<char, kVectorSize> digits;
  encodeWord(word.data(), digits.data(), letterOffset);
  std::copy_n(digits.begin(), 2 * bytes.size(), out.begin());
}

}  // namespace

// A short value that does not end with a whole step has its last bytes converted in a step that
// ends with them, and that may convert some bytes once more.

bool decodeDigits(std::string_view digits, std::span<std::uint8_t> out) {
  const std::size_t size = out.size();
  if (size >= kLongSize) return decodeLong(digits.data(), out);
  Characters invalid{};
  if (size >= 2 * kWordSize) {
    for (std::size_t i = 0; i < size; i += 2 * kWordSize) {
      const std::size_t start = std::min(i, size - 2 * kWordSize);
      decodeTwoWords(&digits[2 * start], &out[start], invalid);
    }
  } else if (size >= kWordSize) {
    decodeWord(digits.data(), out.data(), invalid);
    decodeWord(&digits[2 * (size - kWordSize)], &out[size - kWordSize], invalid);
  } else {
    decodePart(digits, out, invalid);
  }
  return isZero(invalid);
}

void encodeDigits(std::span<const std::uint8_t> bytes, std::span<char> out, DigitCase letters) {
  const std::size_t size = bytes.size();
  const std::uint8_t letterOffset = (letters == DigitCase::UPPER ? 'A' : 'a') - '0' - 10;
  if (size >= kLongSize) {
    encodeLong(bytes, out.data(), letterOffset);
  } else if (size >= 2 * kWordSize) {
    for (std::size_t i = 0; i < size; i += 2 * kWordSize) {
      const std::size_t start = std::min(i, size - 2 * kWordSize);
      encodeTwoWords(&bytes[start], &out[2 * start], letterOffset);
    }
  } else if (size >= kWordSize) {
    encodeWord(bytes.data(), out.data(), letterOffset);
    encodeWord(&bytes[size - kWordSize], &out[2 * (size - kWordSize)], letterOffset);
  } else {
    encodePart(bytes, out, letterOffset);
  }
}

std::size_t countHexDigits(std::string_view text) {
  std::size_t count = 0;
  for (; count + kVectorSize <= text.size(); count += kVectorSize) {
    Characters invalid{};
    digitValues(&text[count], invalid);
    if (!isZero(invalid)) break;
  }
  while (count < text.size() && isHexDigit(static_cast<std::uint8_t>(text[count]))) ++count;
  return count;
}

}  // namespace runner
