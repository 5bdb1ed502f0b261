#ifndef RUNNER_CIPHER_AES_STEPS_H_
#define RUNNER_CIPHER_AES_STEPS_H_

#include <cstddef>
#include <cstdint>

#include "cipher/aes_engine.h"
#include "driver/test_config.h"
#include "text/test_files.h"

// What the AES test procedures have in common.

namespace runner {

// Where no other capacity is named, an AES test reads lines of at most 511 characters.
inline constexpr std::size_t kAesLineCapacity = 512;

// openAesFiles is openFiles for an AES test: it also refuses a key that is longer than any AES key,
// with "unexpected key length!!" and -1, before anything is read or written.
[[nodiscard]] int openAesFiles(TestFiles& files, const TestConfig& config);

// isEncryption tells the direction of the test: every function but ENCRYPTION decrypts.
constexpr bool isEncryption(const TestConfig& config) {
  return config.testFunction == TestFunction::ENCRYPTION;
}

// isCbc tells whether the test reads, writes and chains an IV.
constexpr bool isCbc(const TestConfig& config) { return config.mode == ModeId::CBC; }

// The failure numbers of an engine call, by direction.
struct CipherSites {
  int encryption;
  int decryption;
};

// computeCipher calls execEncrypt or execDecrypt, by the direction of the test, with their
// arguments and returns its result; a negative one after the number of the site has been printed.
[[nodiscard]] int computeCipher(const TestConfig& config, const std::uint8_t* in, int len,
                                const std::uint8_t* key, const std::uint8_t* iv, std::uint8_t* out,
                                CipherSites sites);

}  // namespace runner

#endif  // RUNNER_CIPHER_AES_STEPS_H_
