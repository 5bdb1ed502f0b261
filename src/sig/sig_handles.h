#ifndef RUNNER_SIG_SIG_HANDLES_H_
#define RUNNER_SIG_SIG_HANDLES_H_

#include <gnutls/abstract.h>
#include <gnutls/gnutls.h>
#include <openssl/bn.h>
#include <openssl/dsa.h>
#include <openssl/ec.h>
#include <openssl/rsa.h>

#include <cstdint>
#include <memory>
#include <span>
#include <type_traits>

#include "sig/pubkey.h"
#include "text/diagnostics.h"

// The engines' keys and numbers, owned, and what a PubKey stands for. For the adapters only.

namespace runner {

struct GnutlsKeyDeleter {
  void operator()(gnutls_pubkey_t key) const noexcept { gnutls_pubkey_deinit(key); }
};
using GnutlsKey = std::unique_ptr<std::remove_pointer_t<gnutls_pubkey_t>, GnutlsKeyDeleter>;

struct BigNumberDeleter {
  void operator()(BIGNUM* number) const noexcept { BN_free(number); }
};
using BigNumber = std::unique_ptr<BIGNUM, BigNumberDeleter>;

struct DsaDeleter {
  void operator()(DSA* key) const noexcept { DSA_free(key); }
};
using DsaKey = std::unique_ptr<DSA, DsaDeleter>;

struct RsaDeleter {
  void operator()(RSA* key) const noexcept { RSA_free(key); }
};
using RsaKey = std::unique_ptr<RSA, RsaDeleter>;

// toPubKey makes the handle of a key that its owner has released.
inline PubKey toPubKey(gnutls_pubkey_t key) { return reinterpret_cast<PubKey>(key); }
inline PubKey toPubKey(DSA* key) { return reinterpret_cast<PubKey>(key); }
inline PubKey toPubKey(EC_KEY* key) { return reinterpret_cast<PubKey>(key); }
inline PubKey toPubKey(RSA* key) { return reinterpret_cast<PubKey>(key); }

// asGnutlsKey, asDsa, asEcKey and asRsa see a handle as what the run's engine and mode say it is.
inline gnutls_pubkey_t asGnutlsKey(PubKey key) { return reinterpret_cast<gnutls_pubkey_t>(key); }
inline DSA* asDsa(PubKey key) { return reinterpret_cast<DSA*>(key); }
inline EC_KEY* asEcKey(PubKey key) { return reinterpret_cast<EC_KEY*>(key); }
inline RSA* asRsa(PubKey key) { return reinterpret_cast<RSA*>(key); }

// newGnutlsKey makes an empty key; null after the line "pubkey init failed!!".
inline GnutlsKey newGnutlsKey() {
  gnutls_pubkey_t key = nullptr;
  if (gnutls_pubkey_init(&key) == 0) return GnutlsKey(key);
  failWith("pubkey init failed!!");
  return nullptr;
}

// bigNumber converts a big-endian unsigned integer; null when there is no memory.
inline BigNumber bigNumber(std::span<const std::uint8_t> bytes) {
  return BigNumber(BN_bin2bn(bytes.data(), static_cast<int>(bytes.size()), nullptr));
}

// datum lends bytes to GnuTLS, which takes them through a pointer to non-constant bytes but does
// not write to them. Their data pointer must not be null.
inline gnutls_datum_t datum(std::span<const std::uint8_t> bytes) {
  return {const_cast<unsigned char*>(bytes.data()), static_cast<unsigned>(bytes.size())};
}

}  // namespace runner

#endif  // RUNNER_SIG_SIG_HANDLES_H_
