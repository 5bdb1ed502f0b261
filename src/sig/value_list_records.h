#ifndef RUNNER_SIG_VALUE_LIST_RECORDS_H_
#define RUNNER_SIG_VALUE_LIST_RECORDS_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "driver/buffer.h"
#include "driver/test_files.h"

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
// The lines from COUNT to Result follow one another directly. Within a group lines are read into
// TestFiles::line, whose capacity the group sets; a longer line is seen as several. The `site` that
// a step takes is the number of its failure line.

namespace runner {

// The failure numbers of a named value.
struct NamedValueSites {
  int line;   // the line is missing or has another name
  int value;  // its digits cannot be converted
};

// RecordValue holds a value whose length each of its lines decides. The storage is kept from line
// to line and grows only when a value is longer than all before it.
struct RecordValue {
  Buffer storage;
  std::size_t length = 0;

  [[nodiscard]] std::span<const std::uint8_t> bytes() const {
    return storage.bytes().first(length);
  }
};

// sizeOf returns a length of the TestConfig as the size of a buffer: 0 for a negative one.
constexpr std::size_t sizeOf(int length) {
  return length < 0 ? 0 : static_cast<std::size_t>(length);
}

// findGroup copies lines, read with a capacity of 128 characters, up to and including the next one
// that contains all `marks`. Returns false at the end of the file.
bool findGroup(TestFiles& files, std::span<const char* const> marks);

// findRecord copies lines up to and including the next COUNT line. Returns 1 when it has the number
// `expected`, 0 when the file ends first. Otherwise it prints "[ERR]count %d is not found!!" with
// `expected` and returns -1.
int findRecord(TestFiles& files, int expected);

// nextNamedValue reads the next line and returns what follows `name` ("Msg = ") there. It returns
// nothing after "unexpected EOF!! (SITE)" at the end of the file, and after
// "\"NAME\" is not found!! (SITE)" and the line when that does not begin with `name`.
std::optional<std::string_view> nextNamedValue(TestFiles& files, const char* name, int site);

// echoMessage reads the message of a record, message.size() bytes whatever the length of the line,
// and writes it. Returns 0, or -1 after the failure line.
int echoMessage(TestFiles& files, std::span<std::uint8_t> message, NamedValueSites sites);

// echoRecordValue converts the digits at the start of `text` into `value` and writes it under
// `name`. Returns 0, or -1 after the failure line: "malloc err!! (ALLOCATION)" when `value` cannot
// grow, or that of `site`.
int echoRecordValue(TestFiles& files, const char* name, std::string_view text, RecordValue& value,
                    int allocation, int site);

// writeVerdict writes the result line of a record: "P" when `result`, that of its verification, is
// 0, and "F" for any other.
void writeVerdict(TestFiles& files, int result);

}  // namespace runner

#endif  // RUNNER_SIG_VALUE_LIST_RECORDS_H_
