#include "text/text_helpers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "support/exchange.h"
#include "support/run_request.h"
#include "text/buffer.h"
#include "text/record_list.h"
#include "text/text_stream.h"

namespace runner {
namespace {

using Bytes = std::vector<std::uint8_t>;

TEST(GetStr, FindsTheValueOfAPattern) {
  const std::string seven = "NumberOfMessages = 7777777";
  const std::string_view tooLong = "[ERR]getStr: not enough buffer!!\n";
  const struct {
    std::string line;
    std::string_view pattern;
    std::size_t capacity;
    int found;
    std::string_view value;  // or what is printed
  } cases[] = {
      {"COUNT =  5\n", "COUNT = ?", 128, 1, ""},
      {"[Curve = P-256]\r\n", "Curve = P-?", 128, 1, "256"},
      {"[L = 2048, N = 224]\n", "[N = ?", 128, 0, "untouched"},
      {"[L = 2048, N = 224]\n", "[L = ?", 128, 1, "2048,"},
      // The character that ended a partial match does not begin a new one.
      {"CCOUNT = 1\n", "COUNT = ?", 128, 0, "untouched"},
      {"C COUNT = 1\r\n", "COUNT = ?", 128, 1, "1"},
      {"COUNT = ", "COUNT = ?", 128, 0, "untouched"},
      {"12 COUNT = ", "COUNT = ?", 128, 0, "untouched"},
      {"value rest", "?", 128, 1, "value"},
      {"", "?", 128, 0, "untouched"},
      {"", "", 128, 0, "untouched"},
      {"x", "", 128, 1, "untouched"},
      {"COUNT = 7", "COUNT = ?", 128, 1, "7"},
      {seven, "NumberOfMessages = ?", 8, 1, "7777777"},
      {seven + "\n", "NumberOfMessages = ?", 8, 0, tooLong},
      {seven + "77", "NumberOfMessages = ?", 8, 0, tooLong},
      {"NumberOfMessages = 123456]", "NumberOfMessages = ?", 8, 1, "123456"},
      {"7", "?", 0, 0, tooLong},
  };
  for (const auto& row : cases) {
    SCOPED_TRACE(row.line + " / " + std::string(row.pattern));
    std::array<char, 128> out{"untouched"};
    testing::internal::CaptureStdout();
    EXPECT_EQ(getStr(row.line, row.pattern, std::span(out).first(row.capacity)), row.found);
    const std::string console = testing::internal::GetCapturedStdout();
    EXPECT_EQ(console.empty() ? out.data() : console, row.value);
    const std::string_view untouched = "untouched";
    EXPECT_TRUE(row.capacity == 128 || out[row.capacity] == untouched[row.capacity]);
  }
}

TEST(HexToBin, ConvertsOrReportsTheOffendingCharacter) {
  const struct {
    std::string_view text;
    Bytes expected;
    std::string_view report;
  } cases[] = {
      {"0aFf", {0x0A, 0xFF}, ""},
      {"0aFfxyz", {0x0A, 0xFF}, ""},
      {"", {}, ""},
      {"0G12", {0x00, 0x00}, "\nillegal data!! (G12)\nnum=2, i=0, j=1\n"},
      {"AG12", {0xA0, 0x00}, "\nillegal data!! (G12)\nnum=2, i=0, j=1\n"},
      {"0a\n", {0x0A, 0x00}, "\nillegal data!! (\n)\nnum=2, i=1, j=0\n"},
      {std::string_view("0a12").substr(0, 3),
       {0x0A, 0x10},
       "\nillegal data!! ()\nnum=2, i=1, j=1\n"},
      {"12 456", {0x12, 0x00, 0x00}, "\nillegal data!! ( 456)\nnum=3, i=1, j=0\n"},
  };
  for (const auto& row : cases) {
    SCOPED_TRACE(row.text);
    Bytes out(row.expected.size(), 0xEE);
    testing::internal::CaptureStdout();
    EXPECT_EQ(hexToBin(row.text, out), row.report.empty() ? 0 : -1);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), row.report);
    EXPECT_EQ(out, row.expected);
  }
}

// Every character value, at every place of texts that take a short step, two steps that overlap,
// and several of the long ones, and the loop for long values.
TEST(HexToBin, AcceptsJustTheHexadecimalDigits) {
  constexpr std::string_view kDigits = "0123456789abcdefABCDEF";
  testing::internal::CaptureStdout();
  for (const std::size_t length : {6U, 22U, 70U, 530U}) {
    Bytes out(length / 2);
    for (int c = 1; c < 256; ++c) {
      for (std::size_t place = 0; place < length; ++place) {
        std::string text(length, '5');
        text[place] = static_cast<char>(c);
        const std::size_t digit = kDigits.find(static_cast<char>(c));
        const bool valid = digit != std::string_view::npos;
        ASSERT_EQ(hexToBin(text, out), valid ? 0 : -1) << c << " at " << place;
        ASSERT_EQ(measureHex(text), valid ? length / 2 : (place + 1) / 2) << c << " at " << place;
        if (!valid) continue;
        const std::size_t value = digit < 16 ? digit : digit - 6;
        ASSERT_EQ(out[place / 2], place % 2 == 0 ? value * 16 + 5 : 0x50 + value);
      }
    }
  }
  testing::internal::GetCapturedStdout();
  EXPECT_EQ(measureHex(std::string(70, 'g')), 0U);
}

TEST(HexLineToBin, TakesWholeLinesThatFit) {
  const std::pair<std::string_view, int> cases[] = {
      {"0aFf\n", 2}, {"0aFf", 2},    {"\n", 0},        {"", 0},        {"0aF\n", -1},
      {"0aFg", -1},  {"0a\r\n", -1}, {"0aFf12\n", -1}, {"0a\n\n", -1},
  };
  for (const auto& [line, size] : cases) {
    SCOPED_TRACE(line);
    Bytes out(2);
    EXPECT_EQ(static_cast<int>(hexLineToBin(line, out).value_or(-1)), size);
    EXPECT_TRUE(size != 2 || out == (Bytes{0x0A, 0xFF}));
  }
}

// Lines that cross the blocks in which the file is read, and zero bytes that stand before and after
// such a place, beside the same file cut into lines here.
TEST(Lines, AreReadByCapacityAndEndAtAZeroByte) {
  constexpr std::size_t kCapacity = 100;
  const TempDir dir;
  std::string content;
  for (std::size_t i = 0; content.size() < 3 * kStreamBlockSize; ++i) {
    std::string line(i * i % 130, static_cast<char>('a' + i % 26));
    if (i % 7 == 0 && line.size() > 5) line[i % line.size()] = line[3 * i % line.size()] = '\0';
    content += line + "\n";
  }
  content += "last";
  writeFile(dir.file("in"), content);
  TextReader file;
  ASSERT_TRUE(file.open(dir.file("in").c_str()));
  for (std::size_t start = 0; start < content.size();) {
    const std::string piece = content.substr(start, kCapacity - 1);
    const std::size_t size = std::min(piece.find('\n'), piece.size() - 1) + 1;
    const std::string_view text = std::string_view(piece).substr(0, size);
    ASSERT_EQ(file.readLine(kCapacity), text.substr(0, text.find('\0'))) << start;
    start += size;
  }
  EXPECT_EQ(file.readLine(kCapacity), std::nullopt);
  EXPECT_TRUE(file.close());
}

// What would write past a buffer is refused.
TEST(Preconditions, AreChecked) {
  const TempDir dir;
  for (const std::size_t capacity : {0U, 1U, 2U}) {
    writeFile(dir.file("in"), capacity == 2 ? "t" : "\n");
    TextReader file;
    ASSERT_TRUE(file.open(dir.file("in").c_str()));
    EXPECT_EQ(file.readLine(capacity).value_or(""), capacity == 2 ? "t" : "");
    EXPECT_TRUE(file.reserve(capacity));
    EXPECT_EQ(file.close(), capacity == 2);
  }
  EXPECT_FALSE(TextReader().reserve(SIZE_MAX));
  for (const std::size_t size : {SIZE_MAX, SIZE_MAX - 6}) {
    Buffer buffer;
    EXPECT_FALSE(buffer.allocate(size));
    EXPECT_EQ(buffer.size(), 0U);
  }
  EXPECT_EQ(sizeOf(-1), 0U);
  EXPECT_EQ(bytesForBits(1), 1U);
  TextWriter file;
  ASSERT_TRUE(file.create(dir.file("out").c_str()));
  EXPECT_DEATH((void)file.extend(kStreamBlockSize + TextWriter::kMaxExtension + 1), "");
  EXPECT_TRUE(file.close());
}

TEST(TextWriter, AppendsTextsAndDigitsOfAllSizes) {
  const TempDir dir;
  const std::string path = dir.file("out");
  std::string expected(kStreamBlockSize - 3, '-');
  writeFile(path, expected);
  Bytes bytes(3 * kStreamBlockSize);
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = (i * 7 + i / 256) & 0xFF;
  TextWriter file;
  ASSERT_TRUE(file.append(path.c_str()));
  std::vector<std::size_t> sizes = {0, 1, 7, 8, 11, 16, 33, 300};
  sizes.resize(40, TextWriter::kMaxExtension + 1);
  for (std::size_t size = 4; size < 3 * kStreamBlockSize; size *= 3) sizes.push_back(size);
  for (const std::size_t size : sizes) {
    const auto part = std::span(bytes).first(size);
    const std::string text(part.begin(), part.end());
    file.write(text);
    writeHex(file, part);
    expected += text + hexText(part) + "\n";
  }
  writeLowerHex(file, Bytes{0x00, 0xAB, 0x10});
  ASSERT_TRUE(file.close());
  EXPECT_TRUE(readFile(path) == expected + "00ab10\n");
}

TEST(Decimal, SaturatesAt64BitsAndKeepsTheLow32) {
  const std::pair<const char*, int> cases[] = {{" \t+12x", 12},   {"-7", -7},
                                               {"007", 7},        {"x", 0},
                                               {"4294967297", 1}, {"2147483648", -2147483647 - 1},
                                               {"", 0},           {"99999999999999999999", -1},
                                               {"- 7", 0},        {"-99999999999999999999", 0},
                                               {"\r\v\f\n 5", 5}};
  for (const auto& [text, expected] : cases) EXPECT_EQ(decimal(text), expected) << text;
}

TEST(RecordList, IsReleasedWithoutRecursion) {
  struct Record {
    RecordPtr<Record> next;
  };
  RecordList<Record> list;
  for (int i = 0; i < 1'000'000; ++i) ASSERT_NE(list.append(), nullptr);
}

}  // namespace
}  // namespace runner
