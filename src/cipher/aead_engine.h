#ifndef RUNNER_CIPHER_AEAD_ENGINE_H_
#define RUNNER_CIPHER_AEAD_ENGINE_H_

#include <cstddef>

#include "driver/test_config.h"
#include "text/buffer.h"

// AES-GCM (SP 800-38D) with a tag of 16 bytes through the engine of the run. Each call makes its
// own cipher context and releases it. A key length of 32 bytes selects AES-256-GCM, any other
// AES-128-GCM. GnuTLS gets the key with its length: it refuses other lengths than 16, 24 and 32
// bytes, and a 24-byte key it uses whole with AES instructions of the processor and refuses
// without. OpenSSL's AES-128 reads the first 16 bytes of any key. Which IV lengths work is up to
// the engine, too.

namespace runner {

inline constexpr std::size_t kTagLength = 16;

// The least that OpenSSL reads of a key, in bytes: AES-128 takes 16, however short keyLength is.
inline constexpr std::size_t kMinKeyRoom = 16;

// AeadParams are the texts of one AES-GCM case. The caller allocates the buffers, once for all of
// its cases, and sets the lengths, none of which exceeds its buffer.
struct AeadParams {
  Buffer key;     // keyLength bytes, in room for at least kMinKeyRoom
  Buffer input;   // plaintext (encryption) or ciphertext (decryption)
  Buffer iv;      // initialisation vector
  Buffer aad;     // additional authenticated data
  Buffer output;  // ciphertext (encryption) or plaintext (decryption), room for inputLength bytes
  Buffer tag;     // kTagLength bytes, written by encryption, read by decryption
  int inputLength = 0;
  int ivLength = 0;
  int aadLength = 0;     // may be 0, as inputLength may
  int outputLength = 0;  // bytes written to the output
  int tagValid = 0;      // decryption: whether the tag matched; the caller sets it to 0 before
};

// execAeadEncrypt encrypts the input into the output, sets outputLength and writes the tag. Returns
// the number of bytes of the output, or a negative number after a line on standard output.
[[nodiscard]] int execAeadEncrypt(const TestConfig& config, AeadParams& params);

// execAeadDecrypt decrypts the input into the output and compares the tag. When it matches, the
// call sets tagValid to 1 and returns the number of bytes of the output. When it does not, tagValid
// is 0 and the result is 0, without a line. Any other failure prints a line and returns a negative
// number. Unless the tag matched, the output holds zeros in place of what was decrypted.
[[nodiscard]] int execAeadDecrypt(const TestConfig& config, AeadParams& params);

// aead_encrypt_gnutls and aead_decrypt_gnutls compute through GnuTLS; a negative result is its
// error code.
[[nodiscard]] int aead_encrypt_gnutls(const TestConfig& config, AeadParams& params);
[[nodiscard]] int aead_decrypt_gnutls(const TestConfig& config, AeadParams& params);

// aead_encrypt_openssl and aead_decrypt_openssl compute through OpenSSL; a negative result is -1.
[[nodiscard]] int aead_encrypt_openssl(const TestConfig& config, AeadParams& params);
[[nodiscard]] int aead_decrypt_openssl(const TestConfig& config, AeadParams& params);

}  // namespace runner

#endif  // RUNNER_CIPHER_AEAD_ENGINE_H_
