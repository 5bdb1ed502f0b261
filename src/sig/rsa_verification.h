#ifndef RUNNER_SIG_RSA_VERIFICATION_H_
#define RUNNER_SIG_RSA_VERIFICATION_H_

#include "driver/test_config.h"

namespace runner {

// procVerifyRsa verifies RSASSA-PKCS1-v1_5 signatures under one modulus, each with an exponent and
// a message of its own. It reads and echoes, from lines of at most 1023 characters,
//   [Bitlength of Modulus]     decimal
//   [Hash]                     written only: the hash of the request header
//   [n]                        the modulus in as many bytes as its bits call for
//   [Number of Signatures]     K, at least 1
//   [e]                        K exponents
//   [Signatures]               K signatures
//   [Bitlength of Plaintexts]  at least 1
//   [Plaintexts]               K messages of this length
// and writes
//   [Results]                  K lines: 0 when the signature verifies, 1 when it does not
// Exponents and signatures are as long as the hexadecimal digits at the start of their lines. Each
// key is written as soon as it is found, each value after it has been converted, each result after
// its verification.
//
// Returns 0 when all results were written. Otherwise -1 after a line on standard output; without
// one for a K or a message length below 1, and for an unknown hash.
[[nodiscard]] int procVerifyRsa(const TestConfig& config, const char* requestPath,
                                const char* responsePath);

}  // namespace runner

#endif  // RUNNER_SIG_RSA_VERIFICATION_H_
