#ifndef RUNNER_SIG_VALUE_LIST_RECORDS_H_
#define RUNNER_SIG_VALUE_LIST_RECORDS_H_

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>
#include <string_view>

#include "sig/pubkey.h"
#include "text/buffer.h"
#include "text/test_files.h"

// The steps of which a value-list signature test consists. Such a test copies the request into the
// response as it reads it, with its values in lower-case digits and a verdict for each record:
//
//   # a comment                    not copied; before a group line or a COUNT line, nowhere else
//   ...                            any lines, copied
//   [ ... ]                        a group line, told by the marks of the test; copied
//   <name> = <digits>              the values of the group, if the test has any (P, Q and G of DSA)
//   ...                            any lines, copied
//   COUNT = n                      the record's number in its group, from 0; copied
//   Msg = <2 x message length digits>
//   <name> = <digits>              the key and the signature, each as long as it is
//   Result = ...                   written as "Result = P" or "Result = F"
//
// The group line and the values of the group follow one another directly, and so do the lines from
// COUNT to Result. The lines of a group have the line capacity of the files, which the group sets;
// outside one they have at most 127 characters. A longer line is seen as several. The `site` that a
// step takes is the number of its failure line.

namespace runner {

// The capacity of the lines outside a group.
inline constexpr std::size_t kValueListLineCapacity = 128;

// The failure numbers of a named value.
struct NamedValueSites {
  int line;   // the line is missing or has another name
  int value;  // its digits cannot be converted
};

// NamedValue is a value whose length each of its lines decides. The storage is kept from line to
// line and grows only when a value is longer than all before it.
struct NamedValue {
  const char* name;  // the line up to the digits ("R = ")
  int expected;      // the length for which the storage is allocated at first, in bytes
  int allocation;    // the failure number of the storage
  Buffer storage{};
  std::size_t length = 0;

  [[nodiscard]] std::span<const std::uint8_t> bytes() const {
    return storage.bytes().first(length);
  }
};

// Part is what the request has next.
enum class Part {
  GROUP,   // a group line
  RECORD,  // a record of the group
  END,     // neither: the file has ended
  WRONG,   // a record with another number than the next one
};

// RecordCursor is where a test stands in its request.
struct RecordCursor {
  std::span<const char* const> marks;  // what a group line contains
  int count;                           // the records of a group; below 1 there is no end to them
  bool inGroup = false;
  bool hadGroup = false;
  int number = 0;  // of the last record
};

// nextPart copies lines up to and including the next COUNT line of the group, or the next group
// line when the group has ended or there is none. A group ends at the end of the file and, without
// reading on, after its records. Outside a group the line capacity is kValueListLineCapacity. WRONG
// is told:
// "[ERR]count %d is not found!!" with the number that was expected.
[[nodiscard]] Part nextPart(TestFiles& files, RecordCursor& cursor);

// nextNamedValue reads the next line and returns what follows `name` ("Msg = ") there. It returns
// nothing after "unexpected EOF!! (SITE)" at the end of the file, and after
// "\"NAME\" is not found!! (SITE)" and the line when that does not begin with `name`.
[[nodiscard]] std::optional<std::string_view> nextNamedValue(TestFiles& files, const char* name,
                                                             int site);

// allocateValues gives each value storage for its expected length. Returns 0, or -1 after
// "malloc err!! (ALLOCATION)".
[[nodiscard]] int allocateValues(std::initializer_list<NamedValue*> values);

// copyDigits converts the digits at the start of `digits`, which stand on the line of `value`, into
// it and writes the line. Returns 0, or -1 after the failure line: that of `site`, or of the
// allocation when the storage cannot grow.
[[nodiscard]] int copyDigits(TestFiles& files, NamedValue& value, std::string_view digits,
                             int site);

// copyMessage reads and writes the message of a record, message.size() bytes whatever the length of
// the line. Returns 0, or -1 after the failure line.
[[nodiscard]] int copyMessage(TestFiles& files, std::span<std::uint8_t> message,
                              NamedValueSites sites);

// copyValues reads and writes the lines of these values, in this order. Returns 0, or -1 after the
// failure line.
[[nodiscard]] int copyValues(TestFiles& files, std::initializer_list<NamedValue*> values,
                             NamedValueSites sites);

// writeResultLetter writes the result line of a record, P for PASS and F for FAIL.
void writeResultLetter(TestFiles& files, Verdict verdict);

}  // namespace runner

#endif  // RUNNER_SIG_VALUE_LIST_RECORDS_H_
