#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "memory_file.h"
#include "text/text_stream.h"

// The text streams against those of the C library, where a block of the stream ends: what is read
// by lines of changing capacities is what fgets reads, and what is written stands in the file.

namespace {

using runner::fuzz::MemoryFile;

// The longest distance between the start of the text under test and the end of a block.
constexpr std::size_t kMaxDistance = 254;

// What stands in a file before the text under test: a long line, which is the same in every file,
// and a short one that ends `distance` bytes before a block does.
const std::string& longLine() {
  static const std::string line =
      std::string(runner::kStreamBlockSize - 2 * kMaxDistance, '.') + '\n';
  return line;
}

std::string shortLine(std::size_t distance) {
  return std::string(2 * kMaxDistance - 2 - distance, '-') + '\n';
}

void require(bool condition, const char* what) {
  if (condition) return;
  std::fprintf(stderr, "%s\n", what);
  std::abort();
}

// expectedLine reads a line with fgets, up to its first zero byte. fgets does not tell how far it
// got when there are zero bytes; the position in the file does.
std::optional<std::string> expectedLine(std::FILE* file, std::size_t capacity) {
  std::vector<char> line(capacity);
  if (std::fgets(line.data(), static_cast<int>(capacity), file) == nullptr) return std::nullopt;
  return std::string(line.data());
}

constexpr std::size_t kMaxCapacity = 80;

// The capacity of the next line: small, and another one from line to line.
std::size_t nextCapacity(std::string_view text, std::size_t index) {
  constexpr std::size_t kLeast = 2;
  const std::size_t byte = text.empty() ? 0 : static_cast<std::uint8_t>(text[index % text.size()]);
  return kLeast + byte % (kMaxCapacity - kLeast);
}

void compareLines(runner::TextReader& reader, std::FILE* expected, std::string_view text) {
  for (std::size_t index = 0;; ++index) {
    const std::size_t capacity = nextCapacity(text, index);
    const auto line = reader.readLine(capacity);
    const auto expectedText = expectedLine(expected, capacity);
    require(line.has_value() == expectedText.has_value(), "the end of the file differs");
    if (!line) break;
    require(*line == *expectedText, "a line differs");
  }
  require(reader.close(), "the file was not read to its end");
}

// compareReading reads a file that has `text` behind the lines of the filler, if there is one.
void compareReading(const MemoryFile& file, std::string_view filler, std::string_view text) {
  runner::TextReader reader;
  const runner::FileHandle expected(std::fopen(file.path(), "r"));
  require(reader.open(file.path()) && expected != nullptr, "the file cannot be opened");
  if (!filler.empty()) {
    require(reader.readLine(longLine().size() + 1) == longLine(), "the long line differs");
    std::fseek(expected.get(), static_cast<long>(longLine().size()), SEEK_SET);
  }
  compareLines(reader, expected.get(), text);
}

// compareWriting appends a long line and `text`, in pieces, to a file that has `start` bytes.
void compareWriting(std::size_t start, std::string_view text) {
  static MemoryFile file;
  std::string expected = longLine().substr(0, start);
  file.assign(expected);
  runner::TextWriter writer;
  require(writer.append(file.path()), "the file cannot be opened");
  writer.write(longLine());
  expected.append(longLine());
  for (std::size_t index = 0; !text.empty(); ++index) {
    const std::string_view piece = text.substr(0, nextCapacity(text, index));
    if (piece.size() % 2 == 0) {
      writer.write(piece);
    } else {
      std::ranges::copy(piece, writer.extend(piece.size()).begin());
    }
    expected.append(piece);
    text.remove_prefix(piece.size());
  }
  require(writer.close(), "the file cannot be written");
  require(file.content() == expected, "what was written differs");
}

// compareFile reads `text` from a file of its own, or where `distance` bytes are left of a block.
void compareFile(std::optional<std::size_t> distance, std::string_view text) {
  static MemoryFile alone;
  static MemoryFile behindFiller;
  if (!distance) {
    alone.assign(text);
    compareReading(alone, "", text);
    return;
  }
  static const bool filled = (behindFiller.assign(longLine()), true);
  (void)filled;
  const std::string tail = shortLine(*distance) + std::string(text);
  behindFiller.replaceTail(longLine().size(), tail);
  compareReading(behindFiller, longLine(), text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view text(reinterpret_cast<const char*>(data), size);
  // The first byte says how much of a block is left for the text; 0: the file is the text alone.
  const std::size_t first = size > 0 ? data[0] : 0;
  text.remove_prefix(std::min<std::size_t>(1, size));
  compareFile(first == 0 ? std::nullopt : std::optional(first - 1), text);
  // One in four: the reader is what has the more difficult task.
  constexpr std::size_t kWritingShare = 4;
  if (size % kWritingShare == 0) compareWriting(first * 1024, text);
  return 0;
}
