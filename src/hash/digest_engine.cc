#include "hash/digest_engine.h"

#include <gnutls/crypto.h>
#include <gnutls/gnutls.h>
#include <openssl/evp.h>
#include <openssl/hmac.h>
#include <openssl/sha.h>

#include <array>
#include <span>
#include <type_traits>

#include "text/buffer.h"
#include "text/owner.h"

namespace runner {
namespace {

// What the engines call a hash.
struct EngineHash {
  gnutls_digest_algorithm_t gnutlsDigest;
  gnutls_mac_algorithm_t gnutlsMac;
  decltype(&SHA1) opensslDigest;
  decltype(&EVP_sha1) opensslMac;
};

// By hashIndex.
constexpr std::array<EngineHash, kHashTable.size()> kEngineHashes{{
    {GNUTLS_DIG_SHA1, GNUTLS_MAC_SHA1, SHA1, EVP_sha1},
    {GNUTLS_DIG_SHA224, GNUTLS_MAC_SHA224, SHA224, EVP_sha224},
    {GNUTLS_DIG_SHA256, GNUTLS_MAC_SHA256, SHA256, EVP_sha256},
    {GNUTLS_DIG_SHA384, GNUTLS_MAC_SHA384, SHA384, EVP_sha384},
    {GNUTLS_DIG_SHA512, GNUTLS_MAC_SHA512, SHA512, EVP_sha512},
}};
static_assert(kEngineHashes.back().gnutlsDigest != GNUTLS_DIG_UNKNOWN, "a row for each hash");

void releaseHash(gnutls_hash_hd_t handle) { gnutls_hash_deinit(handle, nullptr); }
using HashHandle = Owner<std::remove_pointer_t<gnutls_hash_hd_t>, releaseHash>;

void releaseHmac(gnutls_hmac_hd_t handle) { gnutls_hmac_deinit(handle, nullptr); }
using HmacHandle = Owner<std::remove_pointer_t<gnutls_hmac_hd_t>, releaseHmac>;

using Bytes = std::span<const std::uint8_t>;

// bytesAt returns the `length` bytes at `data`. Those of an empty value stand somewhere too,
// because GnuTLS does not check its pointers and OpenSSL takes a null HMAC key for the key that the
// context has already, which a new one has not.
Bytes bytesAt(const std::uint8_t* data, int length) {
  static constexpr std::uint8_t kNothing = 0;
  return {data != nullptr ? data : &kNothing, sizeOf(length)};
}

int hash_gnutls(const EngineHash& hash, Bytes data, std::uint8_t* out) {
  gnutls_hash_hd_t raw = nullptr;
  if (gnutls_hash_init(&raw, hash.gnutlsDigest) < 0) return -1;
  const HashHandle handle(raw);
  if (gnutls_hash(handle.get(), data.data(), data.size()) < 0) return -1;
  gnutls_hash_output(handle.get(), out);
  return 0;
}

int hash_openssl(const EngineHash& hash, Bytes data, std::uint8_t* out) {
  return hash.opensslDigest(data.data(), data.size(), out) != nullptr ? 0 : -1;
}

int hmac_gnutls(const EngineHash& hash, Bytes data, std::uint8_t* out, Bytes key) {
  gnutls_hmac_hd_t raw = nullptr;
  if (gnutls_hmac_init(&raw, hash.gnutlsMac, key.data(), key.size()) < 0) return -1;
  const HmacHandle handle(raw);
  if (gnutls_hmac(handle.get(), data.data(), data.size()) < 0) return -1;
  gnutls_hmac_output(handle.get(), out);
  return 0;
}

int hmac_openssl(const EngineHash& hash, Bytes data, std::uint8_t* out, Bytes key) {
  unsigned length = 0;
  const std::uint8_t* const result =
      HMAC(hash.opensslMac(), key.data(), static_cast<int>(key.size()), data.data(), data.size(),
           out, &length);
  return result != nullptr ? 0 : -1;
}

}  // namespace

int calcHash(HashId hashId, CryptEngine engine, const std::uint8_t* data, int length,
             std::uint8_t* out) {
  if (!isHash(hashId)) return -1;
  const EngineHash& hash = kEngineHashes[hashIndex(hashId)];
  const Bytes message = bytesAt(data, length);
  switch (engine) {
    case CryptEngine::GNUTLS:
      return hash_gnutls(hash, message, out);
    default:  // any other engine is OpenSSL here
      return hash_openssl(hash, message, out);
  }
}

int calcHmac(const TestConfig& config, const std::uint8_t* data, int length, std::uint8_t* out,
             const std::uint8_t* key) {
  if (!isHash(config.hashId)) return -1;
  const EngineHash& hash = kEngineHashes[hashIndex(config.hashId)];
  const Bytes message = bytesAt(data, length);
  const Bytes keyBytes = bytesAt(key, config.keyLength);
  switch (config.engine) {
    case CryptEngine::GNUTLS:
      return hmac_gnutls(hash, message, out, keyBytes);
    default:  // any other engine is OpenSSL here
      return hmac_openssl(hash, message, out, keyBytes);
  }
}

}  // namespace runner
