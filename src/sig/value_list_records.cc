#include "sig/value_list_records.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "text/diagnostics.h"
#include "text/sections.h"
#include "text/text_helpers.h"

namespace runner {
namespace {

constexpr std::size_t kNumberCapacity = 128;

// findGroup copies lines up to and including the next group line. Returns false at the end of the
// file.
bool findGroup(TestFiles& files, std::span<const char* const> marks) {
  files.lineCapacity = kValueListLineCapacity;
  while (const auto line = nextLine(files)) {
    if (line->starts_with('#')) continue;
    writeText(files.response, *line);
    const auto isInLine = [&line](const char* mark) {
      return line->find(mark) != std::string_view::npos;
    };
    if (std::ranges::all_of(marks, isInLine)) return true;
  }
  return false;
}

// findRecord copies lines up to and including the next COUNT line. Returns its number; nothing at
// the end of the file.
std::optional<int> findRecord(TestFiles& files) {
  std::array<char, kNumberCapacity> number{};
  while (const auto line = nextLine(files)) {
    if (line->starts_with('#')) continue;
    writeText(files.response, *line);
    if (getStr(*line, "COUNT = ?", number) != 0) return decimal(number.data());
  }
  return std::nullopt;
}

void writeNamedValue(TestFiles& files, const char* name, std::span<const std::uint8_t> value) {
  writeText(files.response, name);
  writeLowerHex(files.response, value);
}

}  // namespace

Part nextPart(TestFiles& files, RecordCursor& cursor) {
  const int expected = cursor.number + 1;
  // No record number equals a count below 1: such a group goes on to the end of the file.
  const bool isFull = expected > 0 && expected == cursor.count;
  if (cursor.inGroup && !isFull) {
    if (const auto number = findRecord(files)) {
      cursor.number = expected;
      if (*number == expected) return Part::RECORD;
      std::printf("[ERR]count %d is not found!!\n", expected);
      return Part::WRONG;
    }
  }
  cursor.inGroup = findGroup(files, cursor.marks);
  if (!cursor.inGroup) return Part::END;
  cursor.hadGroup = true;
  cursor.number = -1;
  return Part::GROUP;
}

std::optional<std::string_view> nextNamedValue(TestFiles& files, const char* name, int site) {
  const auto line = nextLine(files);
  if (!line) {
    std::printf("unexpected EOF!! (%d)\n", site);
    return std::nullopt;
  }
  if (!line->starts_with(name)) {
    std::printf("\"%s\" is not found!! (%d)\n%.*s\n", name, site, static_cast<int>(line->size()),
                line->data());
    return std::nullopt;
  }
  return line->substr(std::string_view(name).size());
}

int allocateValues(std::initializer_list<NamedValue*> values) {
  for (NamedValue* const value : values) {
    if (!value->storage.allocate(sizeOf(value->expected))) return mallocFailedAt(value->allocation);
  }
  return 0;
}

int copyDigits(TestFiles& files, NamedValue& value, std::string_view digits, int site) {
  value.length = measureHex(digits);
  if (value.length > value.storage.size() && !value.storage.allocate(value.length)) {
    return mallocFailedAt(value.allocation);
  }
  if (hexToBin(digits, value.storage.bytes().first(value.length)) < 0) return failAt(site);
  writeNamedValue(files, value.name, value.bytes());
  return 0;
}

int copyMessage(TestFiles& files, std::span<std::uint8_t> message, NamedValueSites sites) {
  const auto digits = nextNamedValue(files, "Msg = ", sites.line);
  if (!digits) return -1;
  if (hexToBin(*digits, message) < 0) return failAt(sites.value);
  writeNamedValue(files, "Msg = ", message);
  return 0;
}

int copyValues(TestFiles& files, std::initializer_list<NamedValue*> values, NamedValueSites sites) {
  for (NamedValue* const value : values) {
    const auto digits = nextNamedValue(files, value->name, sites.line);
    if (!digits || copyDigits(files, *value, *digits, sites.value) < 0) return -1;
  }
  return 0;
}

void writeResultLetter(TestFiles& files, Verdict verdict) {
  writeLine(files.response, verdict == Verdict::PASS ? "Result = P" : "Result = F");
}

}  // namespace runner
