#include "hash/digest_engine.h"

#include <gnutls/crypto.h>
#include <gnutls/gnutls.h>
#include <openssl/evp.h>
#include <openssl/hmac.h>
#include <openssl/sha.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <span>
#include <type_traits>

namespace runner {
namespace {

// Both tables follow the hash, see hashIndex.
constexpr std::array gnutlsDigests{GNUTLS_DIG_SHA1, GNUTLS_DIG_SHA224, GNUTLS_DIG_SHA256,
                                   GNUTLS_DIG_SHA384, GNUTLS_DIG_SHA512};
constexpr std::array gnutlsMacs{GNUTLS_MAC_SHA1, GNUTLS_MAC_SHA224, GNUTLS_MAC_SHA256,
                                GNUTLS_MAC_SHA384, GNUTLS_MAC_SHA512};
static_assert(gnutlsDigests.size() == hashTable.size());
static_assert(gnutlsMacs.size() == hashTable.size());

struct HashHandleDeleter {
  void operator()(gnutls_hash_hd_t handle) const noexcept { gnutls_hash_deinit(handle, nullptr); }
};
using HashHandle = std::unique_ptr<std::remove_pointer_t<gnutls_hash_hd_t>, HashHandleDeleter>;

struct HmacHandleDeleter {
  void operator()(gnutls_hmac_hd_t handle) const noexcept { gnutls_hmac_deinit(handle, nullptr); }
};
using HmacHandle = std::unique_ptr<std::remove_pointer_t<gnutls_hmac_hd_t>, HmacHandleDeleter>;

using Bytes = std::span<const std::uint8_t>;

// bytesAt returns the `length` bytes at `data`. Those of an empty value stand somewhere too,
// because GnuTLS does not check its pointers and OpenSSL takes a null HMAC key for a missing one.
Bytes bytesAt(const std::uint8_t* data, int length) {
  static constexpr std::uint8_t kNothing = 0;
  return {data != nullptr ? data : &kNothing, static_cast<std::size_t>(std::max(length, 0))};
}

int hash_gnutls(HashId hashId, Bytes data, std::uint8_t* out) {
  if (!isHash(hashId)) return -1;
  gnutls_hash_hd_t raw = nullptr;
  if (gnutls_hash_init(&raw, gnutlsDigests[hashIndex(hashId)]) < 0) return -1;
  const HashHandle handle(raw);
  if (gnutls_hash(handle.get(), data.data(), data.size()) < 0) return -1;
  gnutls_hash_output(handle.get(), out);
  return 0;
}

// digest_openssl returns `out`, or null for an unknown hash and when the library fails.
const std::uint8_t* digest_openssl(HashId hashId, Bytes data, std::uint8_t* out) {
  switch (hashId) {
    case HashId::SHA1:
      return SHA1(data.data(), data.size(), out);
    case HashId::SHA224:
      return SHA224(data.data(), data.size(), out);
    case HashId::SHA256:
      return SHA256(data.data(), data.size(), out);
    case HashId::SHA384:
      return SHA384(data.data(), data.size(), out);
    case HashId::SHA512:
      return SHA512(data.data(), data.size(), out);
    case HashId::NONE:
      break;
  }
  return nullptr;
}

int hash_openssl(HashId hashId, Bytes data, std::uint8_t* out) {
  return digest_openssl(hashId, data, out) != nullptr ? 0 : -1;
}

int hmac_gnutls(HashId hashId, Bytes data, std::uint8_t* out, Bytes key) {
  if (!isHash(hashId)) return -1;
  gnutls_hmac_hd_t raw = nullptr;
  if (gnutls_hmac_init(&raw, gnutlsMacs[hashIndex(hashId)], key.data(), key.size()) < 0) return -1;
  const HmacHandle handle(raw);
  if (gnutls_hmac(handle.get(), data.data(), data.size()) < 0) return -1;
  gnutls_hmac_output(handle.get(), out);
  return 0;
}

// chooseDigest returns null for an unknown hash.
const EVP_MD* chooseDigest(HashId hashId) {
  switch (hashId) {
    case HashId::SHA1:
      return EVP_sha1();
    case HashId::SHA224:
      return EVP_sha224();
    case HashId::SHA256:
      return EVP_sha256();
    case HashId::SHA384:
      return EVP_sha384();
    case HashId::SHA512:
      return EVP_sha512();
    case HashId::NONE:
      break;
  }
  return nullptr;
}

int hmac_openssl(HashId hashId, Bytes data, std::uint8_t* out, Bytes key) {
  const EVP_MD* const digest = chooseDigest(hashId);
  if (digest == nullptr) return -1;
  unsigned length = 0;
  const std::uint8_t* const result = HMAC(digest, key.data(), static_cast<int>(key.size()),
                                          data.data(), data.size(), out, &length);
  return result != nullptr ? 0 : -1;
}

}  // namespace

int calcHash(HashId hashId, CryptEngine engine, const std::uint8_t* data, int length,
             std::uint8_t* out) {
  const Bytes message = bytesAt(data, length);
  return engine == CryptEngine::GNUTLS ? hash_gnutls(hashId, message, out)
                                       : hash_openssl(hashId, message, out);
}

int calcHmac(const TestConfig& config, const std::uint8_t* data, int length, std::uint8_t* out,
             const std::uint8_t* key) {
  const Bytes message = bytesAt(data, length);
  const Bytes keyBytes = bytesAt(key, config.keyLength);
  return config.engine == CryptEngine::GNUTLS ? hmac_gnutls(config.hashId, message, out, keyBytes)
                                              : hmac_openssl(config.hashId, message, out, keyBytes);
}

}  // namespace runner
