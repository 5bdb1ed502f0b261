#ifndef RUNNER_SIG_KEY_RECORDS_H_
#define RUNNER_SIG_KEY_RECORDS_H_

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "driver/test_config.h"
#include "sig/pubkey.h"
#include "text/buffer.h"
#include "text/record_list.h"
#include "text/sections.h"
#include "text/test_files.h"

// The records of a signature verification test. A request gives them in three lists of one line a
// record: the keys, from which the records are made, then the messages and the signatures, in the
// order that the test has them. A list is a section with as many lines as were announced. A step
// that can fail returns 0, or -1 when the test cannot go on, after the line that belongs to the
// failure.

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

// The failure numbers of a list.
struct ListSites {
  int section;      // the section is missing
  ValueSites line;  // of each line
};

// ListSection is a list of a request.
struct ListSection {
  std::string_view key;
  const char* complaint;  // printed when lines are missing; null: a missing line is an empty one
  ListSites sites;
};

// The failure numbers of readRecords.
struct RecordSites {
  int messageBits;  // the section is missing
  int count;        // the section is missing
  int record;       // the allocation of a record
  ListSites keys;
  ListSites messages;
  ListSites signatures;
};

// writeHashName writes the section "[Hash]" with the name of the hash; "unknown(%d)" with the
// number when there is no such hash.
void writeHashName(TextWriter& stream, HashId hashId);

// readKeys finds the section, writes its key, and reads `count` lines of hexadecimal text, each as
// long as its digits say. It appends a record for each to `records` and writes the bytes;
// `recordSite` is the allocation of a record.
[[nodiscard]] int readKeys(TestFiles& files, const ListSection& list, int recordSite, int count,
                           RecordList<KeyRecord>& records);

// readMessages reads and writes the message of each record in the same way, all of `length` bytes.
[[nodiscard]] int readMessages(TestFiles& files, const ListSection& list, std::size_t length,
                               RecordList<KeyRecord>& records);

// readSignatures reads and writes the signature of each record in the same way, each as long as its
// digits say.
[[nodiscard]] int readSignatures(TestFiles& files, const ListSection& list,
                                 RecordList<KeyRecord>& records);

// readRecords reads and writes what follows the domain parameters in a request for DSA or ECDSA:
//   [Hash]                     written only
//   [Bitlength of Plaintexts]  at least 1
//   [Number of Plaintexts]     at least 1
//   [Public Keys], [Plaintexts] and [Signatures]
[[nodiscard]] int readRecords(TestFiles& files, HashId hashId, const RecordSites& sites,
                              RecordList<KeyRecord>& records);

// SignatureHalves are the two integers of a DSA or ECDSA signature.
struct SignatureHalves {
  std::span<const std::uint8_t> r;
  std::span<const std::uint8_t> s;
};

// splitSignature returns the halves of the record's signature, which keeps owning them. The last
// byte of an odd number of bytes belongs to neither.
SignatureHalves splitSignature(const KeyRecord& record);

// writeResultNumber writes the result line of a record, 0 for PASS and 1 for FAIL, and returns 0.
// For STOP it writes nothing and returns -1.
[[nodiscard]] int writeResultNumber(TestFiles& files, Verdict verdict);

}  // namespace runner

#endif  // RUNNER_SIG_KEY_RECORDS_H_
