#ifndef RUNNER_HASH_SHORT_AND_LONG_MESSAGES_H_
#define RUNNER_HASH_SHORT_AND_LONG_MESSAGES_H_

#include "driver/test_config.h"

// The message tests of NIST's SHAVS compute the digest or the HMAC of a list of messages whose
// lengths are fixed by the hash. B is its block length in bytes, 64 up to SHA-256 and 128 above.

namespace runner {

// procSMT, the short message test, reads
//   [Key]                    2 x keyLength digits (MAC only, not echoed)
//   [Data of SMT]            B + 1 lines: a message of 0, 1, 2 ... B bytes each
// and writes
//   [Data of SMT]            the messages
//   [Hash Value of SMT]      the digests (MAC: [MAC of SMT])
// Each message is written before its digest is computed, the digests only when all are there. A
// line is read up to 7 characters beyond its digits; what remains of it counts as the next line.
//
// Returns 0, or -1: silently for an unknown hash, after "lack of input message!!" when a section
// line stands where a message should, after "can't open PATH", "can't read PATH" or "can't write
// PATH", otherwise after the number of the failed step.
[[nodiscard]] int procSMT(const TestConfig& config, const char* requestPath,
                          const char* responsePath);

// procSLMT, the selected long message test, reads
//   [Key]                    2 x keyLength digits (MAC only, not echoed)
//   [Upperbound of SLMT]     U, at least 1
//   [Data of SLMT]           B lines: message j = 1 .. B has B + j x (U - 1) bytes
// and writes
//   [Upperbound of SLMT]     U
//   [Data of SLMT]           the messages
//   [Hash Value of SLMT]     the digests (MAC: [MAC of SLMT])
// in the same way. "illegal bound!!" refuses a U below 1, and one with which the longest line would
// not fit a 32-bit length. Returns what procSMT returns.
[[nodiscard]] int procSLMT(const TestConfig& config, const char* requestPath,
                           const char* responsePath);

}  // namespace runner

#endif  // RUNNER_HASH_SHORT_AND_LONG_MESSAGES_H_
