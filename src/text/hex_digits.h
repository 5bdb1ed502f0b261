#ifndef RUNNER_TEXT_HEX_DIGITS_H_
#define RUNNER_TEXT_HEX_DIGITS_H_

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

// Hexadecimal digits, converted many at a time: nearly all of a request and of a response consists
// of them.

namespace runner {

// The letters of the digits from ten on.
enum class DigitCase { UPPER, LOWER };

// decodeDigits converts the first 2 x out.size() characters of `digits`, which has that many, into
// `out`. Returns whether all of them are hexadecimal digits, of either case; when not, `out` may
// hold anything.
[[nodiscard]] bool decodeDigits(std::string_view digits, std::span<std::uint8_t> out);

// encodeDigits writes two digits for each byte to the start of `out`, which has room for them.
void encodeDigits(std::span<const std::uint8_t> bytes, std::span<char> out, DigitCase letters);

// countHexDigits returns the number of hexadecimal digits, of either case, at the start of `text`.
std::size_t countHexDigits(std::string_view text);

}  // namespace runner

#endif  // RUNNER_TEXT_HEX_DIGITS_H_
