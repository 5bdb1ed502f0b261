#ifndef RUNNER_TEXT_SECTIONS_H_
#define RUNNER_TEXT_SECTIONS_H_

#include <climits>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "text/buffer.h"
#include "text/test_files.h"

// The steps of which a test procedure consists: find a section of the request, read its values,
// echo both into the response. A step that can fail returns 0, or -1 after a line that
// says what is wrong, unless its comment says that it is silent; the `site` that it takes is the
// number of its failure line. Lines are read with the line capacity of the files.

namespace runner {

// The failure numbers of a section with one value.
struct SectionSites {
  int section;  // the section is missing
  int value;    // its value cannot be converted
};

// The failure numbers of a value whose buffer is allocated when it is read.
struct ValueSites {
  int allocation;
  int value;
};

// enterSection finds the section `key`; the next line read is its first one.
[[nodiscard]] int enterSection(TestFiles& files, std::string_view key, int site);

// echoSection finds the section `key` and writes the key.
[[nodiscard]] int echoSection(TestFiles& files, std::string_view key, int site);

// setLineCapacity changes the capacity of the lines that are read from now on. It ends the view of
// the last line. Prints "malloc err!! (SITE)" when there is no memory for such a line.
[[nodiscard]] int setLineCapacity(TestFiles& files, std::size_t capacity, int site);

// nextLine reads the next line; nothing at the end of the file. The text holds until another line
// is read or room for one is reserved.
[[nodiscard]] std::optional<std::string_view> nextLine(TestFiles& files);

// nextValue reads the next line; a line that is missing because the file has ended is an empty one.
[[nodiscard]] std::string_view nextValue(TestFiles& files);

// nextListLine reads the next line of a list whose length was announced. At a section line, or at
// the end of the file, it prints `complaint` as a line and returns nothing.
[[nodiscard]] std::optional<std::string_view> nextListLine(TestFiles& files, const char* complaint);

// echoDecimal reads the next line as a decimal number, writes it and returns it.
int echoDecimal(TestFiles& files);

// echoPositive is echoDecimal for a number that must be at least 1 and at most `most`; it stores
// the number in `value`. Another number is not written, and the result is -1: after `complaint` as
// a line, or in silence when that is null.
[[nodiscard]] int echoPositive(TestFiles& files, int& value, const char* complaint,
                               int most = INT_MAX);

// echoCount finds the section `key`, writes the key, and reads and writes its number as
// echoPositive does.
[[nodiscard]] int echoCount(TestFiles& files, std::string_view key, int& value, int site,
                            const char* complaint = nullptr, int most = INT_MAX);

// readHex reads the next line as hexadecimal text of out.size() bytes.
[[nodiscard]] int readHex(TestFiles& files, std::span<std::uint8_t> out, int site);

// echoHex is readHex, followed by writing the bytes.
[[nodiscard]] int echoHex(TestFiles& files, std::span<std::uint8_t> out, int site);

// echoHexSection finds the section `key`, writes the key, and reads and writes its value.
[[nodiscard]] int echoHexSection(TestFiles& files, std::string_view key,
                                 std::span<std::uint8_t> out, SectionSites sites);

// echoSized allocates `value` with `size` bytes, and converts and writes the hexadecimal digits at
// the start of `text`.
[[nodiscard]] int echoSized(TestFiles& files, std::string_view text, Buffer& value,
                            std::size_t size, ValueSites sites);

// echoMeasured is echoSized with as many bytes as the digits at the start of `text` call for.
[[nodiscard]] int echoMeasured(TestFiles& files, std::string_view text, Buffer& value,
                               ValueSites sites);

}  // namespace runner

#endif  // RUNNER_TEXT_SECTIONS_H_
