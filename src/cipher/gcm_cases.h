#ifndef RUNNER_CIPHER_GCM_CASES_H_
#define RUNNER_CIPHER_GCM_CASES_H_

#include "driver/test_config.h"

namespace runner {

// procAEAD computes a list of AES-GCM cases. It reads and echoes
//   [Number of Plaintexts]  n, at least 1 (decryption: [Number of Ciphertexts])
// and then, n times,
//   [Key]                   2 x keyLength digits
//   [IV]                    at most 32 bytes
//   [Plaintext]             at most maxTextLength bytes (decryption: [Ciphertext])
//   [AAD]                   at most 32 bytes
// for decryption it also reads
//   [Tag]                   32 digits
// and for each case it writes
//   [Ciphertext]            the result (decryption: [Plaintext], with "INVALID" in place of the
//                           result when the tag does not verify)
//   [Tag]                   the computed tag (decryption: the one that was read)
// IV, text and AAD have the length of the digits at the start of their line; a text or an AAD may
// be empty. One that is too long prints "unexpected long data!!" and fails as one that does not
// convert. Lines are read up to 2 x maxTextLength + 1 characters, at least 511. The count's key is
// written when it is found, the keys of a case together with their converted values.
//
// Returns the result of the last engine call, which is not negative (a wrong tag gives 0), or a
// negative number: in silence for a count below 1, otherwise after "can't open PATH", "can't read
// PATH", "can't write PATH", or what is wrong and the number of the failed step.
[[nodiscard]] int procAEAD(const TestConfig& config, const char* requestPath,
                           const char* responsePath);

}  // namespace runner

#endif  // RUNNER_CIPHER_GCM_CASES_H_
