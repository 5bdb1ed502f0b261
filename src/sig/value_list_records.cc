#include "sig/value_list_records.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "text/diagnostics.h"
#include "text/sections.h"
#include "text/text_helpers.h"

namespace runner {
namespace {

constexpr std::size_t kLineCapacity = 128;
constexpr std::size_t kNumberCapacity = 128;

void writeNamedValue(TestFiles& files, const char* name, std::span<const std::uint8_t> value) {
  writeText(files.response, name);
  writeLowerHex(files.response, value);
}

// findGroup copies lines up to and including the next one that contains all `marks`. Returns false
// at the end of the file.
bool findGroup(TestFiles& files, std::span<const char* const> marks) {
  std::array<char, kLineCapacity> buffer;
  while (const auto line = files.request.viewLine(buffer)) {
    if (line->starts_with('#')) continue;
    writeText(files.response, *line);
    const auto isInLine = [&line](const char* mark) {
      return line->find(mark) != std::string_view::npos;
    };
    if (std::ranges::all_of(marks, isInLine)) return true;
  }
  return false;
}

}  // namespace

int testGroups(const TestConfig& config, TestFiles& files, std::span<const char* const> marks,
               int (*testGroup)(const TestConfig&, TestFiles&)) {
  int result = -1;
  while (findGroup(files, marks)) {
    result = testGroup(config, files);
    if (result < 0) break;
  }
  return result;
}

int findRecord(TestFiles& files, int expected, int count) {
  // No record number equals a count below 1: such a group goes on to the end of the file.
  if (expected > 0 && expected == count) return 0;
  std::array<char, kNumberCapacity> number{};
  while (const auto line = nextLine(files)) {
    if (line->starts_with('#')) continue;
    writeText(files.response, *line);
    if (getStr(*line, "COUNT = ?", number) == 0) continue;
    if (decimal(number.data()) == expected) return 1;
    std::printf("[ERR]count %d is not found!!\n", expected);
    return -1;
  }
  return 0;
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

int echoMessage(TestFiles& files, std::span<std::uint8_t> message, NamedValueSites sites) {
  const auto digits = nextNamedValue(files, "Msg = ", sites.line);
  if (!digits) return -1;
  if (hexToBin(*digits, message) < 0) return failAt(sites.value);
  writeNamedValue(files, "Msg = ", message);
  return 0;
}

int allocateValues(std::initializer_list<RecordValue*> values) {
  for (RecordValue* const value : values) {
    if (!value->storage.allocate(bufferSize(value->expected)))
      return mallocFailedAt(value->allocation);
  }
  return 0;
}

int echoValue(TestFiles& files, RecordValue& value, std::string_view digits, int site) {
  value.length = measureHex(digits);
  if (value.length > value.storage.size() && !value.storage.allocate(value.length)) {
    return mallocFailedAt(value.allocation);
  }
  const auto bytes = value.storage.bytes().first(value.length);
  if (hexToBin(digits, bytes) < 0) return failAt(site);
  writeNamedValue(files, value.name, bytes);
  return 0;
}

int echoValues(TestFiles& files, std::initializer_list<RecordValue*> values,
               NamedValueSites sites) {
  for (RecordValue* const value : values) {
    const auto digits = nextNamedValue(files, value->name, sites.line);
    if (!digits || echoValue(files, *value, *digits, sites.value) < 0) return -1;
  }
  return 0;
}

void writeVerdict(TestFiles& files, int result) {
  writeLine(files.response, result == 0 ? "Result = P" : "Result = F");
}

}  // namespace runner
