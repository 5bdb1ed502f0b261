#include "driver/text_helpers.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "driver/buffer.h"
#include "driver/record_list.h"
#include "driver/test_files.h"
#include "support/run_request.h"

namespace runner {
namespace {

using Bytes = std::vector<std::uint8_t>;

TEST(GetStr, FindsTheValueOfAPattern) {
  struct Case {
    std::string line;
    std::string_view pattern;
    std::size_t capacity;
    std::string_view value;
    int found;
    bool tooLong = false;
  };
  const std::string seven(7, '7');
  const Case cases[] = {
      {"COUNT = 12\n", "COUNT = ?", 128, "12", 1},
      {"[COUNT = 12]\n", "COUNT = ?", 128, "12", 1},
      {"COUNT =  5\n", "COUNT = ?", 128, "", 1},
      {"Msg = 00\n", "COUNT = ?", 128, "untouched", 0},
      {"[Curve = P-256]\r\n", "Curve = P-?", 128, "256", 1},
      {"[L = 2048, N = 224]\n", "[N = ?", 128, "untouched", 0},
      {"[L = 2048, N = 224]\n", "[L = ?", 128, "2048,", 1},
      // The character that ended a partial match does not begin a new one.
      {"CCOUNT = 1\n", "COUNT = ?", 128, "untouched", 0},
      {"C COUNT = 1\n", "COUNT = ?", 128, "1", 1},
      {"COUNT = ", "COUNT = ?", 128, "untouched", 0},
      {"COUNT = \n", "COUNT = ?", 128, "", 1},
      {"value rest", "?", 128, "value", 1},
      {"a plain line", "plain", 128, "untouched", 1},
      {"", "?", 128, "untouched", 0},
      {"short", "a longer pattern", 128, "untouched", 0},
      {"NumberOfMessages = " + seven, "NumberOfMessages = ?", 8, seven, 1},
      {"NumberOfMessages = " + seven + "\n", "NumberOfMessages = ?", 8, "", 0, true},
      {"NumberOfMessages = " + seven + "]", "NumberOfMessages = ?", 8, "", 0, true},
      {"NumberOfMessages = 123456]", "NumberOfMessages = ?", 8, "123456", 1},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(row.line + " / " + std::string(row.pattern));
    std::array<char, 128> out{"untouched"};
    testing::internal::CaptureStdout();
    EXPECT_EQ(getStr(row.line, row.pattern, std::span(out).first(row.capacity)), row.found);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              row.tooLong ? "[ERR]getStr: not enough buffer!!\n" : "");
    if (!row.tooLong) {
      EXPECT_EQ(std::string_view(out.data()), row.value);
    }
  }
}

TEST(HexToBin, ConvertsOrReportsTheOffendingCharacter) {
  struct Case {
    std::string_view text;
    Bytes expected;
    std::string_view report;
  };
  const Case cases[] = {
      {"0aFf", {0x0A, 0xFF}, ""},
      {"0aFfxyz", {0x0A, 0xFF}, ""},
      {"", {}, ""},
      {"0G12", {0x00, 0x00}, "\nillegal data!! (G12)\nnum=2, i=0, j=1\n"},
      {"AG12", {0xA0, 0x00}, "\nillegal data!! (G12)\nnum=2, i=0, j=1\n"},
      {"0a\n", {0x0A, 0x00}, "\nillegal data!! (\n)\nnum=2, i=1, j=0\n"},
      {"0a1", {0x0A, 0x10}, "\nillegal data!! ()\nnum=2, i=1, j=1\n"},
      {"12 456", {0x12, 0x00, 0x00}, "\nillegal data!! ( 456)\nnum=3, i=1, j=0\n"},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(row.text);
    Bytes out(row.expected.size(), 0xEE);
    testing::internal::CaptureStdout();
    EXPECT_EQ(hexToBin(row.text, out), row.report.empty() ? 0 : -1);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), row.report);
    EXPECT_EQ(out, row.expected);
  }
}

// Every character value, at every place of a text that is long enough for the vector loop.
TEST(HexToBin, AcceptsJustTheHexadecimalDigits) {
  constexpr std::string_view kDigits = "0123456789abcdefABCDEF";
  constexpr std::size_t kLength = 70;
  Bytes out(kLength / 2);
  testing::internal::CaptureStdout();
  for (int c = 1; c < 256; ++c) {
    for (std::size_t place = 0; place < kLength; ++place) {
      std::string text(kLength, '5');
      text[place] = static_cast<char>(c);
      const std::size_t digit = kDigits.find(static_cast<char>(c));
      const bool valid = digit != std::string_view::npos;
      ASSERT_EQ(hexToBin(text, out), valid ? 0 : -1) << c << " at " << place;
      ASSERT_EQ(measureHex(text), valid ? kLength / 2 : (place + 1) / 2) << c << " at " << place;
      if (!valid) continue;
      const std::size_t value = digit < 16 ? digit : digit - 6;
      ASSERT_EQ(out[place / 2], place % 2 == 0 ? value * 16 + 5 : 0x50 + value);
    }
  }
  testing::internal::GetCapturedStdout();
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
    if (size == 2) {
      EXPECT_EQ(out, (Bytes{0x0A, 0xFF}));
    }
  }
}

TEST(WriteHex, WritesEveryByteInOrder) {
  const TempDir dir;
  Bytes bytes(20000);  // more than one chunk
  std::string expected;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    bytes[i] = static_cast<std::uint8_t>(i * 7 + i / 256);
    expected += "0123456789ABCDEF"[bytes[i] / 16];
    expected += "0123456789ABCDEF"[bytes[i] % 16];
  }
  TextWriter file;
  ASSERT_TRUE(file.create(dir.file("out").c_str()));
  writeHex(file, bytes);
  writeHex(file, {});
  writeLowerHex(file, Bytes{0x00, 0xAB, 0x10});
  writeHashName(file, HashId::SHA384);
  writeHashName(file, static_cast<HashId>(7));
  ASSERT_TRUE(file.close());
  EXPECT_EQ(readFile(dir.file("out")),
            expected + "\n\n00ab10\n[Hash]\nM_Hash_SHA384\n[Hash]\nunknown(7)\n");
}

TEST(Lines, AreReadByCapacityAndEndAtAZeroByte) {
  const TempDir dir;
  writeFile(dir.file("in"), std::string("0123456789\nab\0cd\n[Key] for it\nlast", 34));
  TextReader file;
  ASSERT_TRUE(file.open(dir.file("in").c_str()));
  std::array<char, 8> buffer{};
  EXPECT_EQ(file.readLine(buffer), "0123456");
  EXPECT_EQ(file.readLine(buffer), "789\n");
  EXPECT_EQ(file.readLine(buffer), "ab");
  EXPECT_EQ(findSection(file, "[Key]"), 0);
  EXPECT_EQ(file.readLine(buffer), "last");
  EXPECT_EQ(file.readLine(buffer), std::nullopt);
  EXPECT_STREQ(buffer.data(), "");
  testing::internal::CaptureStdout();
  EXPECT_EQ(findSection(file, "[Key]"), -1);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "\"[Key]\" is not found!!\n");
}

TEST(Decimal, SaturatesAt64BitsAndKeepsTheLow32) {
  const std::pair<const char*, int> cases[] = {
      {" \t+12x", 12},   {"-7", -7},
      {"007", 7},        {"x", 0},
      {"4294967297", 1}, {"2147483648", -2147483647 - 1},
      {"", 0},           {"99999999999999999999", -1},
  };
  for (const auto& [text, expected] : cases) EXPECT_EQ(decimal(text), expected) << text;
}

TEST(RecordList, KeepsTheOrderAndIsReleasedWithoutRecursion) {
  struct Number {
    RecordPtr<Number> next;
    int value;
  };
  RecordList<Number> list;
  constexpr int kCount = 1'000'000;
  for (int i = 0; i < kCount; ++i) list.append()->value = i;
  int expected = 0;
  for (const Number& number : list) ASSERT_EQ(number.value, expected++);
  EXPECT_EQ(expected, kCount);
}

}  // namespace
}  // namespace runner
