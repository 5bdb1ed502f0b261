#include "sig/signature_primitives.h"

#include <gnutls/gnutls.h>
#include <openssl/obj_mac.h>

#include <algorithm>

#include "hash/digest_engine.h"
#include "sig/sig_handles.h"
#include "text/diagnostics.h"

namespace runner {
namespace {

// What the engines call a hash, and the signatures with it.
struct SignatureHash {
  int nid;  // OpenSSL's number
  gnutls_sign_algorithm_t rsa;
  gnutls_sign_algorithm_t dsa;
  gnutls_sign_algorithm_t ecdsa;
};

// By hashIndex.
constexpr std::array<SignatureHash, kHashTable.size()> kSignatureHashes{{
    {NID_sha1, GNUTLS_SIGN_RSA_SHA1, GNUTLS_SIGN_DSA_SHA1, GNUTLS_SIGN_ECDSA_SHA1},
    {NID_sha224, GNUTLS_SIGN_RSA_SHA224, GNUTLS_SIGN_DSA_SHA224, GNUTLS_SIGN_ECDSA_SHA224},
    {NID_sha256, GNUTLS_SIGN_RSA_SHA256, GNUTLS_SIGN_DSA_SHA256, GNUTLS_SIGN_ECDSA_SHA256},
    {NID_sha384, GNUTLS_SIGN_RSA_SHA384, GNUTLS_SIGN_DSA_SHA384, GNUTLS_SIGN_ECDSA_SHA384},
    {NID_sha512, GNUTLS_SIGN_RSA_SHA512, GNUTLS_SIGN_DSA_SHA512, GNUTLS_SIGN_ECDSA_SHA512},
}};
static_assert(kSignatureHashes.back().nid != NID_undef, "a row for each hash");

constexpr std::size_t kMaxIntegerLength = 127;
constexpr std::size_t kMaxShortContent = 127;
constexpr std::size_t kMaxContent = 255;

// padLength returns the number of zero bytes that keep `integer` positive.
std::size_t padLength(std::span<const std::uint8_t> integer) {
  return !integer.empty() && integer.front() >= 0x80 ? 1 : 0;
}

// fieldLength returns the length of `integer` with its pad, tag and length byte.
std::size_t fieldLength(std::span<const std::uint8_t> integer) {
  return 2 + padLength(integer) + integer.size();
}

// putInteger writes `integer` as a DER INTEGER and returns what follows it in zero-filled `out`.
std::span<std::uint8_t> putInteger(std::span<std::uint8_t> out,
                                   std::span<const std::uint8_t> integer) {
  const std::size_t pad = padLength(integer);
  out[0] = 0x02;
  out[1] = static_cast<std::uint8_t>(pad + integer.size());
  std::ranges::copy(integer, out.subspan(2 + pad).begin());
  return out.subspan(fieldLength(integer));
}

// putHeader writes the tag and the length of a SEQUENCE and returns what follows them.
std::span<std::uint8_t> putHeader(std::span<std::uint8_t> out, std::size_t content) {
  std::size_t length = 0;
  out[length++] = 0x30;
  if (content > kMaxShortContent) out[length++] = 0x81;
  out[length++] = static_cast<std::uint8_t>(content);
  return out.subspan(length);
}

// gnutlsSignId returns the signature algorithm of the run, GNUTLS_SIGN_UNKNOWN when there is none.
gnutls_sign_algorithm_t gnutlsSignId(const TestConfig& config) {
  if (!isHash(config.hashId)) return GNUTLS_SIGN_UNKNOWN;
  const SignatureHash& hash = kSignatureHashes[hashIndex(config.hashId)];
  switch (config.mode) {
    case ModeId::RSASSA:
      return hash.rsa;
    case ModeId::DSA:
      return hash.dsa;
    case ModeId::ECDSA:
      return hash.ecdsa;
    default:
      return GNUTLS_SIGN_UNKNOWN;
  }
}

int verifyWith(gnutls_sign_algorithm_t algorithm, PubKey key, std::span<const std::uint8_t> message,
               std::span<const std::uint8_t> signature) {
  const gnutls_datum_t messageDatum = datum(message);
  const gnutls_datum_t signatureDatum = datum(signature);
  const int result =
      gnutls_pubkey_verify_data2(asGnutlsKey(key), algorithm, 0, &messageDatum, &signatureDatum);
  return result < 0 ? kNotVerified : kVerified;
}

}  // namespace

std::optional<MessageDigest> digestMessage(HashId hashId, std::span<const std::uint8_t> message) {
  const HashProperties* const hash = findHash(hashId);
  if (hash == nullptr) return std::nullopt;
  std::optional<MessageDigest> digest(std::in_place);
  digest->length = static_cast<std::size_t>(hash->digestLength);
  digest->nid = kSignatureHashes[hashIndex(hashId)].nid;
  const int result = calcHash(hashId, CryptEngine::OPENSSL, message.data(),
                              static_cast<int>(message.size()), digest->bytes.data());
  if (result < 0) return std::nullopt;
  return digest;
}

Buffer encodeSigRS(std::span<const std::uint8_t> r, std::span<const std::uint8_t> s) {
  Buffer encoding;
  const std::size_t content = fieldLength(r) + fieldLength(s);
  if (r.size() > kMaxIntegerLength || s.size() > kMaxIntegerLength || content > kMaxContent) {
    failWith("signature size is too large!!");
    return encoding;
  }
  const std::size_t header = content > kMaxShortContent ? 3 : 2;
  if (!encoding.allocate(header + content)) {
    mallocFailedAt(4589);
    return encoding;
  }
  putInteger(putInteger(putHeader(encoding.bytes(), content), r), s);
  return encoding;
}

Buffer encodeForVerify(std::span<const std::uint8_t> r, std::span<const std::uint8_t> s) {
  Buffer encoding = encodeSigRS(r, s);
  if (encoding.size() == 0) failWith("encoding signature(rs) failed!!");
  return encoding;
}

int verify_gnutls(const TestConfig& config, PubKey key, std::span<const std::uint8_t> message,
                  std::span<const std::uint8_t> signature) {
  const gnutls_sign_algorithm_t algorithm = gnutlsSignId(config);
  if (algorithm == GNUTLS_SIGN_UNKNOWN) return -1;
  return verifyWith(algorithm, key, message, signature);
}

int verifyPair_gnutls(const TestConfig& config, PubKey key, std::span<const std::uint8_t> message,
                      std::span<const std::uint8_t> r, std::span<const std::uint8_t> s) {
  const gnutls_sign_algorithm_t algorithm = gnutlsSignId(config);
  if (algorithm == GNUTLS_SIGN_UNKNOWN) return -1;
  const Buffer encoding = encodeForVerify(r, s);
  if (encoding.size() == 0) return -1;
  return verifyWith(algorithm, key, message, encoding.bytes());
}

}  // namespace runner
