#ifndef RUNNER_CIPHER_MONTE_CARLO_H_
#define RUNNER_CIPHER_MONTE_CARLO_H_

#include "driver/test_config.h"

namespace runner {

// procMCT runs the AES Monte Carlo test of NIST's AESAVS: an inner loop of single-block engine
// calls whose outputs feed the next inputs, repeated under a key that follows from the last
// outputs. It reads and echoes
//   [Number of Inner-loop for MCT]  at least 1
//   [Number of Outer-loop for MCT]  at least 1
//   [Initial Key for MCT]           2 x keyLength digits
//   [Initial Plaintext for MCT]     32 digits (decryption: [Initial Ciphertext for MCT])
//   [Initial IV for MCT]            32 digits (CBC only)
// and writes
//   [Ciphertext for MCT]            the last output of each outer iteration (decryption:
//                                   [Plaintext for MCT])
// Bytes of the next key for which an iteration supplies no output (a 32-byte key with an inner loop
// of 1, a 24-byte key) stay as they are.
//
// Returns the result of the last engine call, or a negative number: in silence for a count below 1,
// otherwise after "can't open PATH", "can't read PATH", "can't write PATH", "unexpected key
// length!!" for a key of more than 32 bytes, or what is wrong and the number of the failed step.
[[nodiscard]] int procMCT(const TestConfig& config, const char* requestPath,
                          const char* responsePath);

}  // namespace runner

#endif  // RUNNER_CIPHER_MONTE_CARLO_H_
