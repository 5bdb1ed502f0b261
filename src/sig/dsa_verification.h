#ifndef RUNNER_SIG_DSA_VERIFICATION_H_
#define RUNNER_SIG_DSA_VERIFICATION_H_

#include "driver/test_config.h"

namespace runner {

// procVerifyDsa verifies DSA signatures under one set of domain parameters, each with a public
// value and a message of its own. It reads and echoes, from lines of at most 1023 characters,
//   [Bitlength of p]           decimal
//   [Bitlength of q]           decimal
//   [PQG]                      p, q and g; g is as long as p
//   [Hash]                     written only: the hash of the request header
//   [Bitlength of Plaintexts]  at least 1
//   [Number of Plaintexts]     K, at least 1
//   [Public Keys]              K public values y
//   [Plaintexts]               K messages
//   [Signatures]               K times r and s, half of the bytes each
// and writes
//   [Results]                  K lines: 0 when the signature verifies, 1 when it does not
// Public values and signatures are as long as the hexadecimal digits at the start of their lines;
// the last byte of a signature with an odd number of bytes is not used. Each key is written as soon
// as it is found, each value after it has been converted, each result after its verification.
//
// Returns 0 when all results were written. Otherwise -1 after a line on standard output; without
// one for a K or a message length below 1, and for an unknown hash.
[[nodiscard]] int procVerifyDsa(const TestConfig& config, const char* requestPath,
                                const char* responsePath);

}  // namespace runner

#endif  // RUNNER_SIG_DSA_VERIFICATION_H_
