#ifndef RUNNER_TEXT_TEXT_HELPERS_H_
#define RUNNER_TEXT_TEXT_HELPERS_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "text/text_stream.h"

// The vocabulary of request and response text: lines of a fixed capacity, section keys,
// name = value lines, decimal numbers and hexadecimal byte strings. No function here keeps a state,
// and none allocates memory but the reader's room for a line.

namespace runner {

// findSection reads lines of at most 511 characters until one begins with the whole `key`, and
// leaves the stream at the line after it. Returns 0. When the stream ends first it prints
// "\"KEY\" is not found!!" and returns -1.
[[nodiscard]] int findSection(TextReader& stream, std::string_view key);

// getStr finds `pattern` in `line` and copies the value that follows it, up to a carriage return, a
// line feed, "]", a blank or the end of the line, with a closing zero byte into `out`, whose size
// is the capacity. The pattern is literal text up to a "?", which marks where the value begins;
// without a "?" it only tests for presence. A partial match never overlaps the start of the next
// candidate. Returns 1 when found and 0 when not. A value that leaves no room for the closing zero
// byte is not found: that prints "[ERR]getStr: not enough buffer!!" and leaves as many of its
// characters as fit in `out`.
[[nodiscard]] int getStr(std::string_view line, std::string_view pattern, std::span<char> out);

// decimal converts the decimal number at the start of `text` as strtol does: leading white space
// and a sign are skipped, no digits give 0. A number beyond 64 bits counts as the nearest 64-bit
// number; of a number beyond 32 bits the low 32 bits are kept.
int decimal(std::string_view text);

// bytesForBits returns the number of bytes that hold `bits` bits, 0 for a negative number of bits.
std::size_t bytesForBits(int bits);

// measureHex returns the number of bytes that the hexadecimal digits at the start of `text` call
// for: (d + 1) / 2 for d digits of either case. An odd number of digits then fails in hexToBin.
std::size_t measureHex(std::string_view text);

// hexToBin converts the first 2 x out.size() characters of `text`, hexadecimal digits of either
// case, into `out`; what follows them is not looked at. Returns 0. At the first character that is
// no digit (or at the end of the text) it prints "\nillegal data!! (TEXT)\nnum=%d, i=%d, j=%d\n"
// with the text from there on, the size of `out`, the index of the byte, and 0 or 1 for its first
// or second digit, and returns -1; the bytes before that one are converted, that one holds its
// first digit, if any, and the ones after it are 0.
[[nodiscard]] int hexToBin(std::string_view text, std::span<std::uint8_t> out);

// hexLineToBin converts a line that consists of an even number of hexadecimal digits, and of a
// newline if it has one, into the first bytes of `out`. Returns their number; nothing, without
// printing a line, for any other line and for one that does not fit, when `out` may hold anything.
// It saves the pass over a long value that measureHex takes.
[[nodiscard]] std::optional<std::size_t> hexLineToBin(std::string_view line,
                                                      std::span<std::uint8_t> out);

// hexToBlock is hexToBin for a 16-byte block.
[[nodiscard]] int hexToBlock(std::string_view text, std::span<std::uint8_t, 16> block);

// writeHex writes two upper-case hexadecimal digits a byte and a newline; a newline alone for no
// bytes.
void writeHex(TextWriter& stream, std::span<const std::uint8_t> bytes);

// writeBlockHex is writeHex for a 16-byte block.
void writeBlockHex(TextWriter& stream, std::span<const std::uint8_t, 16> block);

// writeLowerHex writes as writeHex does, in lower case.
void writeLowerHex(TextWriter& stream, std::span<const std::uint8_t> bytes);

// writeText writes `text` as it stands.
void writeText(TextWriter& stream, std::string_view text);

// writeLine writes `text`, which is shorter than TextWriter::kMaxExtension, and a newline.
void writeLine(TextWriter& stream, std::string_view text);

// writeDecimal writes `number` in decimal and a newline.
void writeDecimal(TextWriter& stream, int number);

}  // namespace runner

#endif  // RUNNER_TEXT_TEXT_HELPERS_H_
