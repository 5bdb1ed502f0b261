#ifndef RUNNER_SIG_SIG_HANDLES_H_
#define RUNNER_SIG_SIG_HANDLES_H_

#include <gnutls/abstract.h>
#include <gnutls/gnutls.h>
#include <openssl/bn.h>
#include <openssl/dsa.h>
#include <openssl/ec.h>
#include <openssl/rsa.h>

#include <cstdint>
#include <span>
#include <type_traits>

#include "driver/test_config.h"
#include "sig/pubkey.h"
#include "text/diagnostics.h"
#include "text/owner.h"

// The engines' keys and numbers, owned, and what a PubKey stands for. For the adapters only.

namespace runner {

using GnutlsKey = Owner<std::remove_pointer_t<gnutls_pubkey_t>, gnutls_pubkey_deinit>;
using BigNumber = Owner<BIGNUM, BN_free>;
using DsaKey = Owner<DSA, DSA_free>;
using EcKey = Owner<EC_KEY, EC_KEY_free>;
using RsaKey = Owner<RSA, RSA_free>;

// ownPubKey hands a key over to an owner that knows its kind.
inline OwnedPubKey ownPubKey(GnutlsKey key) {
  return {reinterpret_cast<PubKey>(key.release()), PubKeyDeleter{.engine = CryptEngine::GNUTLS}};
}
inline OwnedPubKey ownPubKey(DsaKey key) {
  return {reinterpret_cast<PubKey>(key.release()),
          PubKeyDeleter{ModeId::DSA, CryptEngine::OPENSSL}};
}
inline OwnedPubKey ownPubKey(EcKey key) {
  return {reinterpret_cast<PubKey>(key.release()),
          PubKeyDeleter{ModeId::ECDSA, CryptEngine::OPENSSL}};
}
inline OwnedPubKey ownPubKey(RsaKey key) {
  return {reinterpret_cast<PubKey>(key.release()),
          PubKeyDeleter{ModeId::RSASSA, CryptEngine::OPENSSL}};
}

// asGnutlsKey, asDsa, asEcKey and asRsa see a handle as what its owner knows that it is.
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
