#ifndef RUNNER_CIPHER_CIPHER_HANDLES_H_
#define RUNNER_CIPHER_CIPHER_HANDLES_H_

#include <gnutls/crypto.h>
#include <gnutls/gnutls.h>
#include <openssl/evp.h>

#include <cstdint>
#include <memory>
#include <type_traits>

#include "driver/test_config.h"

// The engines' cipher contexts, owned. For the adapters only.

namespace runner {

// OpenSSL's result of success.
inline constexpr int kOpensslOk = 1;

struct CipherHandleDeleter {
  void operator()(gnutls_cipher_hd_t handle) const noexcept { gnutls_cipher_deinit(handle); }
};
using CipherHandle =
    std::unique_ptr<std::remove_pointer_t<gnutls_cipher_hd_t>, CipherHandleDeleter>;

struct CipherContextDeleter {
  void operator()(EVP_CIPHER_CTX* context) const noexcept { EVP_CIPHER_CTX_free(context); }
};
using CipherContext = std::unique_ptr<EVP_CIPHER_CTX, CipherContextDeleter>;

// datum lends `size` bytes to GnuTLS, which takes them through a pointer to non-constant bytes but
// does not write to them.
inline gnutls_datum_t datum(const std::uint8_t* data, int size) {
  return {const_cast<unsigned char*>(data), static_cast<unsigned>(size)};
}

// byKeyLength returns `aes256` for a key of 32 bytes, `aes128` for any other.
template <typename Algorithm>
constexpr Algorithm byKeyLength(int keyLength, Algorithm aes128, Algorithm aes256) {
  return keyLength == 32 ? aes256 : aes128;
}

}  // namespace runner

#endif  // RUNNER_CIPHER_CIPHER_HANDLES_H_
