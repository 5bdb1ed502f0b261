#ifndef RUNNER_CIPHER_AES_ENGINE_H_
#define RUNNER_CIPHER_AES_ENGINE_H_

#include <array>
#include <cstddef>
#include <cstdint>

#include "driver/test_config.h"

// AES in ECB and CBC mode (FIPS 197, SP 800-38A) through the engine of the run. Each call makes its
// own cipher context and releases it; callers that chain calls carry the IV themselves. A key
// length of 32 bytes selects AES-256, any other AES-128; mode ECB selects ECB, any other CBC.
// GnuTLS gets the key with its length: it refuses other lengths than 16, 24 and 32 bytes, and with
// AES instructions of the processor it uses a 24-byte key whole. OpenSSL's AES-128 reads the first
// 16 bytes of any key.

namespace runner {

inline constexpr std::size_t kBlockLength = 16;
inline constexpr std::size_t kMaxAesKeyLength = 32;

using Block = std::array<std::uint8_t, kBlockLength>;

// OpenSSL's encryption of whole blocks writes one block of padding behind the result. Whoever
// encrypts provides room for it and reads only the first `len` bytes.
using BlockWithPadding = std::array<std::uint8_t, 2 * kBlockLength>;

// execEncrypt encrypts `len` bytes of `in` under the key of config->keyLength bytes and the 16-byte
// `iv`, which is required in ECB mode too, into `out`, which has room for len + 16 bytes. Returns
// the number of bytes of the result, or a negative number after a line on standard output (from the
// engines "HDD" and "kenel crypt-API" without a line).
[[nodiscard]] int execEncrypt(const TestConfig* config, const std::uint8_t* in, int len,
                              const std::uint8_t* key, const std::uint8_t* iv, std::uint8_t* out);

// execDecrypt decrypts in the same way into `out`, which has room for `len` bytes. With the "HDD"
// engine it returns 1 and leaves `out` as it is.
[[nodiscard]] int execDecrypt(const TestConfig* config, const std::uint8_t* in, int len,
                              const std::uint8_t* key, const std::uint8_t* iv, std::uint8_t* out);

// encrypt_gnutls and decrypt_gnutls compute through GnuTLS, which offers no ECB: that, and a
// context that cannot be made, prints a line and returns a negative number. A failing cipher call
// prints a line and still returns `len`.
[[nodiscard]] int encrypt_gnutls(const TestConfig* config, const std::uint8_t* in, int len,
                                 const std::uint8_t* key, const std::uint8_t* iv,
                                 std::uint8_t* out);
[[nodiscard]] int decrypt_gnutls(const TestConfig* config, const std::uint8_t* in, int len,
                                 const std::uint8_t* key, const std::uint8_t* iv,
                                 std::uint8_t* out);

// encrypt_openssl and decrypt_openssl compute through OpenSSL. Encryption pads (PKCS #7), but
// returns `len` for whole blocks; decryption takes whole blocks only. Any failure prints a line and
// returns -1.
[[nodiscard]] int encrypt_openssl(ModeId mode, const std::uint8_t* in, int len,
                                  const std::uint8_t* key, int keyLength, const std::uint8_t* iv,
                                  std::uint8_t* out);
[[nodiscard]] int decrypt_openssl(ModeId mode, const std::uint8_t* in, int len,
                                  const std::uint8_t* key, int keyLength, const std::uint8_t* iv,
                                  std::uint8_t* out);

}  // namespace runner

#endif  // RUNNER_CIPHER_AES_ENGINE_H_
