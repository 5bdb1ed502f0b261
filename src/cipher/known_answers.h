#ifndef RUNNER_CIPHER_KNOWN_ANSWERS_H_
#define RUNNER_CIPHER_KNOWN_ANSWERS_H_

#include "driver/test_config.h"

// The known-answer tests compute lists of single AES blocks, each with the zero IV. In all keys, %s
// stands for the variant: "Text" and "GFSbox" with the zero key, "Key" and "KeySbox" with the zero
// plaintext. A list is all lines up to the next section or the end of the file.

namespace runner {

// procKAT_VarText reads
//   [Plaintext for KAT-%s]   blocks of 32 digits (decryption: [Ciphertext for KAT-%s])
// and writes
//   [Key for KAT-%s]         the zero key
//   [Plaintext for KAT-%s]   the blocks
//   [IV for KAT-%s]          the zero IV (CBC only)
//   [Ciphertext for KAT-%s]  the results
// with the plaintext and ciphertext keys exchanged for decryption. A line that does not convert, or
// an engine that fails, ends the test before anything is written.
//
// Returns the result of the last engine call (0 for an empty list), or a negative number: with
// nothing written after "can't open PATH", "unexpected key length!!" for a key of more than 32
// bytes, or what is wrong followed by "err happens!! (N)" or "malloc err!! (N)", or after "can't
// read PATH" or "can't write PATH" at the end.
[[nodiscard]] int procKAT_VarText(const TestConfig& config, const char* requestPath,
                                  const char* responsePath, const char* variant);

// procKAT_VarKey reads
//   [Ciphertext for KAT-%s]  blocks of 32 digits (decryption only)
//   [Key for KAT-%s]         keys of 2 x keyLength digits; for decryption one for each block
// and writes
//   [Plaintext for KAT-%s]   the zero block, once (decryption: [Ciphertext for KAT-%s], the blocks)
//   [IV for KAT-%s]          the zero IV (CBC only)
//   [Key for KAT-%s]         the keys
//   [Ciphertext for KAT-%s]  the results (decryption: [Plaintext for KAT-%s])
// A line that does not convert ends its list, and so does a lack of memory; of the first list, the
// entry of such a line is kept. What was read is computed and written. An encryption without memory
// for its first entry writes nothing and fails. Blocks left without a key are computed under the
// zero key, after "unexpected EOF!!" or "unexpected end of key data!!". A decryption without blocks
// writes the section keys alone.
//
// Returns what procKAT_VarText returns.
[[nodiscard]] int procKAT_VarKey(const TestConfig& config, const char* requestPath,
                                 const char* responsePath, const char* variant);

}  // namespace runner

#endif  // RUNNER_CIPHER_KNOWN_ANSWERS_H_
