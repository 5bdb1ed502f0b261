#ifndef RUNNER_CIPHER_CIPHER_HANDLES_H_
#define RUNNER_CIPHER_CIPHER_HANDLES_H_

#include <gnutls/crypto.h>
#include <gnutls/gnutls.h>
#include <openssl/evp.h>

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "text/buffer.h"
#include "text/diagnostics.h"
#include "text/owner.h"

// The engines' cipher contexts, owned. For the adapters only.

namespace runner {

// What OpenSSL's cipher calls return on success.
inline constexpr int kOpensslOk = 1;

using CipherHandle = Owner<std::remove_pointer_t<gnutls_cipher_hd_t>, gnutls_cipher_deinit>;
using CipherContext = Owner<EVP_CIPHER_CTX, EVP_CIPHER_CTX_free>;

// GnutlsDirection is what differs between encryption and decryption: the name of the back-end, the
// cipher call, and the message for its failure.
struct GnutlsDirection {
  const char* name;
  int (*compute)(gnutls_cipher_hd_t, const void*, std::size_t, void*, std::size_t);
  const char* error;
};

// failWithCode prints "NAME : MESSAGE" and returns `code`, a negative code of GnuTLS.
inline int failWithCode(const char* name, const char* message, int code) {
  failIn(name, message);
  return code;
}

// datum lends `size` bytes (none when it is negative) to GnuTLS, which takes them through a pointer
// to non-constant bytes but does not write to them.
inline gnutls_datum_t datum(const std::uint8_t* data, int size) {
  return {const_cast<unsigned char*>(data), static_cast<unsigned>(sizeOf(size))};
}

// byKeyLength returns `aes256` for a key of 32 bytes, `aes128` for any other.
template <typename Algorithm>
constexpr Algorithm byKeyLength(int keyLength, Algorithm aes128, Algorithm aes256) {
  return keyLength == 32 ? aes256 : aes128;
}

}  // namespace runner

#endif  // RUNNER_CIPHER_CIPHER_HANDLES_H_
