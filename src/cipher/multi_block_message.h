#ifndef RUNNER_CIPHER_MULTI_BLOCK_MESSAGE_H_
#define RUNNER_CIPHER_MULTI_BLOCK_MESSAGE_H_

#include "driver/test_config.h"

namespace runner {

// procMMT computes one AES message of several blocks in a single engine call. It reads and echoes
//   [Number of Blocks for MMT]  n, 1 to 33554431
//   [Key for MMT]               2 x keyLength digits
//   [IV for MMT]                32 digits (CBC only)
//   [Plaintext for MMT]         32 x n digits on one line (decryption: [Ciphertext for MMT])
// and writes
//   [Ciphertext for MMT]        the result (decryption: [Plaintext for MMT])
// Each key is written as soon as it is found, each value after it has been converted.
//
// Returns the result of the engine call, or a negative number after a line on standard output:
// "can't open PATH", "can't read PATH", "can't write PATH", "illegal blknum!!" for another n,
// "unexpected key length!!" for a key of more than 32 bytes, or what is wrong and the number of the
// failed step.
[[nodiscard]] int procMMT(const TestConfig& config, const char* requestPath,
                          const char* responsePath);

}  // namespace runner

#endif  // RUNNER_CIPHER_MULTI_BLOCK_MESSAGE_H_
