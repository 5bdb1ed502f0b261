#ifndef RUNNER_SIG_KEY_RECORDS_H_
#define RUNNER_SIG_KEY_RECORDS_H_

#include <cstddef>
#include <cstdint>
#include <span>

#include "text/buffer.h"
#include "text/record_list.h"
#include "text/sections.h"
#include "text/test_files.h"

// The records of a signature verification test. A request gives them in three lists of one line a
// record: the keys, from which the records are made, then the messages and the signatures, in the
// order that the test has them. A list is a section with as many lines as were announced.

namespace runner {

// The line capacity of the signature tests.
inline constexpr std::size_t kKeyLineCapacity = 1024;

// KeyRecord is one signature to verify. Its buffers carry their lengths; the messages of one test
// have the same length.
struct KeyRecord {
  RecordPtr<KeyRecord> next;
  Buffer key;        // RSA: the public exponent; DSA: the public value; ECDSA: the public point
  Buffer signature;  // RSA: as it is; DSA and ECDSA: r and s, one half each
  Buffer message;
};

// KeyList describes one of the lists.
struct KeyList {
  const char* section;    // its key
  const char* complaint;  // printed when lines are missing; null: a missing line is an empty one
  int sectionSite;        // the section is missing
  ValueSites sites;       // of each line
};

// readKeys finds the section, writes its key, and reads `count` lines of hexadecimal text, each as
// long as its digits say. It appends a record for each to `records` and writes the bytes. Returns
// 0, or -1 after the line that belongs to the failure; `recordSite` is the allocation of a record.
int readKeys(TestFiles& files, const KeyList& list, int recordSite, int count,
             RecordList<KeyRecord>& records);

// readMessages reads and writes the message of each record in the same way, all of `length` bytes.
int readMessages(TestFiles& files, const KeyList& list, std::size_t length,
                 RecordList<KeyRecord>& records);

// readSignatures reads and writes the signature of each record in the same way, each as long as its
// digits say.
int readSignatures(TestFiles& files, const KeyList& list, RecordList<KeyRecord>& records);

// SignatureHalves are the two integers of a DSA or ECDSA signature.
struct SignatureHalves {
  std::span<const std::uint8_t> r;
  std::span<const std::uint8_t> s;
};

// splitSignature returns the halves of the record's signature, which keeps owning them. The last
// byte of an odd number of bytes belongs to neither.
SignatureHalves splitSignature(const KeyRecord& record);

}  // namespace runner

#endif  // RUNNER_SIG_KEY_RECORDS_H_
