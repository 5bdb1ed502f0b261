#ifndef RUNNER_EC_ECDSA_VERIFICATION_H_
#define RUNNER_EC_ECDSA_VERIFICATION_H_

#include "driver/test_config.h"

namespace runner {

// procVerifyEcdsa verifies a list of ECDSA signatures with the hash of `config`, all on one curve,
// each with its own key and message. It reads and echoes
//   [Domain Parameter]         p, a, b, G, n in hexadecimal, G uncompressed, and h in decimal
//   [Hash]                     not read here, only written
//   [Bitlength of Plaintexts]  at least 1, of each message
//   [Number of Plaintexts]     at least 1
//   [Public Keys]              as many uncompressed points
//   [Plaintexts]               as many messages of that length, rounded up to bytes
//   [Signatures]               as many signatures: r, then s of the same length; of a signature
//                              with an odd number of bytes the last one is not used
// and writes
//   [Results]                  a line for each signature: 0 when it verifies, 1 when it does not
// Lines have at most 1023 characters. The curve is identified once, at the first key, which prints
// "curveid: %d".
//
// A key that cannot be imported makes its signature fail with OpenSSL; with GnuTLS it ends the
// test. Returns 0 when all results were written, otherwise -1: silently for a number or a length
// below 1 and for an unknown hash, else after a line on standard output. The curve lookup is
// pending afterwards.
[[nodiscard]] int procVerifyEcdsa(const TestConfig& config, const char* requestPath,
                                  const char* responsePath);

}  // namespace runner

#endif  // RUNNER_EC_ECDSA_VERIFICATION_H_
