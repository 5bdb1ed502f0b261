#ifndef RUNNER_SIG_VALUE_LIST_RECORDS_H_
#define RUNNER_SIG_VALUE_LIST_RECORDS_H_

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>
#include <string_view>

#include "driver/test_config.h"
#include "text/buffer.h"
#include "text/test_files.h"

// The steps of which a value-list signature test consists. Such a test copies the request into the
// response as it reads it, with its values in lower-case digits and a verdict for each record:
//
//   # a comment                    not copied; anywhere but between the lines of a record
//   ...                            any lines, copied
//   [ ... ]                        a group line, told by the marks of the test; copied
//   ...                            any lines, copied
//   COUNT = n                      the record's number in its group, from 0; copied
//   Msg = <2 x message length digits>
//   <name> = <digits>              the key and the signature, each as long as it is
//   Result = ...                   written as "Result = P" or "Result = F"
//
// The lines from COUNT to Result follow one another directly. Within a group the size of
// TestFiles::line, which the group sets, is the capacity of the lines; outside one they have at
// most 127 characters. A longer line is seen as several. The `site` that a step takes is the number
// of its failure line.

namespace runner {

// The failure numbers of a named value.
struct NamedValueSites {
  int line;   // the line is missing or has another name
  int value;  // its digits cannot be converted
};

// RecordValue is a named value whose length each of its lines decides. The storage is kept from
// line to line and grows only when a value is longer than all before it.
struct RecordValue {
  const char* name;  // the line up to the digits ("R = ")
  int expected;      // the length for which the storage is allocated at first, in bytes
  int allocation;    // the failure number of the storage
  Buffer storage{};
  std::size_t length = 0;

  [[nodiscard]] std::span<const std::uint8_t> bytes() const {
    return storage.bytes().first(length);
  }
};

// bufferSize returns a length of the TestConfig as the size of a buffer: 0 for a negative one.
constexpr std::size_t bufferSize(int length) {
  return length < 0 ? 0 : static_cast<std::size_t>(length);
}

// testGroups copies lines up to and including the next one that contains all `marks`, calls
// `testGroup` for the group that begins there, and so on to the end of the file. Returns the result
// of the last one: 0, or the negative one that ends the test; -1 when there is no group.
int testGroups(const TestConfig& config, TestFiles& files, std::span<const char* const> marks,
               int (*testGroup)(const TestConfig&, TestFiles&));

// findRecord copies lines up to and including the next COUNT line. Returns 1 when it has the number
// `expected`, and 0 when the group ends: at the end of the file, and without reading on after
// `count` records. Otherwise it prints "[ERR]count %d is not found!!" with `expected` and returns
// -1.
int findRecord(TestFiles& files, int expected, int count);

// nextNamedValue reads the next line and returns what follows `name` ("Msg = ") there. It returns
// nothing after "unexpected EOF!! (SITE)" at the end of the file, and after
// "\"NAME\" is not found!! (SITE)" and the line when that does not begin with `name`.
std::optional<std::string_view> nextNamedValue(TestFiles& files, const char* name, int site);

// echoMessage reads the message of a record, message.size() bytes whatever the length of the line,
// and writes it. Returns 0, or -1 after the failure line.
int echoMessage(TestFiles& files, std::span<std::uint8_t> message, NamedValueSites sites);

// allocateValues gives each value storage for its expected length. Returns 0, or -1 after
// "malloc err!! (ALLOCATION)".
int allocateValues(std::initializer_list<RecordValue*> values);

// echoValue converts the digits at the start of `digits`, which stand on the line of `value`, into
// it and writes it. Returns 0, or -1 after the failure line: that of `site`, or of the allocation
// when the storage cannot grow.
int echoValue(TestFiles& files, RecordValue& value, std::string_view digits, int site);

// echoValues reads the lines of these values, in this order, each as echoValue does.
int echoValues(TestFiles& files, std::initializer_list<RecordValue*> values, NamedValueSites sites);

// writeVerdict writes the result line of a record: "P" when `result`, that of its verification, is
// 0, and "F" for any other.
void writeVerdict(TestFiles& files, int result);

}  // namespace runner

#endif  // RUNNER_SIG_VALUE_LIST_RECORDS_H_
