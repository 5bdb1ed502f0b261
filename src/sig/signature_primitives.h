#ifndef RUNNER_SIG_SIGNATURE_PRIMITIVES_H_
#define RUNNER_SIG_SIGNATURE_PRIMITIVES_H_

#include <gnutls/gnutls.h>
#include <openssl/obj_mac.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "driver/test_config.h"
#include "sig/pubkey.h"
#include "text/buffer.h"

// What the RSA, DSA and ECDSA adapters share: the engines' numbers for hashes and signature
// algorithms, the digest that OpenSSL's verification wants, the encoding of a pair (r, s), and
// GnuTLS's verification.

namespace runner {

// The results of a verification; -1 means that none could be made.
inline constexpr int kVerified = 0;
inline constexpr int kNotVerified = 1;

// digestNids are OpenSSL's numbers of the hashes, by hashIndex.
inline constexpr std::array<int, hashTable.size()> digestNids{NID_sha1, NID_sha224, NID_sha256,
                                                              NID_sha384, NID_sha512};

// gnutlsSignIds are GnuTLS's numbers of the signature algorithms, each row by hashIndex.
struct GnutlsSignRow {
  ModeId mode;
  std::array<gnutls_sign_algorithm_t, hashTable.size()> ids;
};
inline constexpr std::array<GnutlsSignRow, 3> gnutlsSignIds{{
    {ModeId::RSASSA,
     {GNUTLS_SIGN_RSA_SHA1, GNUTLS_SIGN_RSA_SHA224, GNUTLS_SIGN_RSA_SHA256, GNUTLS_SIGN_RSA_SHA384,
      GNUTLS_SIGN_RSA_SHA512}},
    {ModeId::DSA,
     {GNUTLS_SIGN_DSA_SHA1, GNUTLS_SIGN_DSA_SHA224, GNUTLS_SIGN_DSA_SHA256, GNUTLS_SIGN_DSA_SHA384,
      GNUTLS_SIGN_DSA_SHA512}},
    {ModeId::ECDSA,
     {GNUTLS_SIGN_ECDSA_SHA1, GNUTLS_SIGN_ECDSA_SHA224, GNUTLS_SIGN_ECDSA_SHA256,
      GNUTLS_SIGN_ECDSA_SHA384, GNUTLS_SIGN_ECDSA_SHA512}},
}};

struct MessageDigest {
  std::array<std::uint8_t, kMaxDigestLength> bytes{};
  std::size_t length = 0;
};

// digestMessage computes the digest of `message` through OpenSSL; nothing for an unknown hash or
// when the library fails.
std::optional<MessageDigest> digestMessage(HashId hashId, std::span<const std::uint8_t> message);

// encodeSigRS encodes the big-endian integers r and s as a DER SEQUENCE of two INTEGERs (X.690),
// each with a zero byte in front when its first byte is 0x80 or more; leading zero bytes stay.
// Returns an empty Buffer after the line "signature size is too large!!" when r or s is longer than
// 127 bytes or the content longer than 255, and after "malloc err!! (4589)" without memory.
Buffer encodeSigRS(std::span<const std::uint8_t> r, std::span<const std::uint8_t> s);

// encodeForVerify is encodeSigRS, which it follows with the line "encoding signature(rs) failed!!"
// when the result is empty.
Buffer encodeForVerify(std::span<const std::uint8_t> r, std::span<const std::uint8_t> s);

// verifyGnutls verifies `signature`, in the form that GnuTLS wants for the algorithm, over
// `message` with the algorithm of config.mode and config.hashId. Returns 0 when it verifies, 1 when
// it does not, and -1 for a mode without signatures or an unknown hash. Prints nothing.
int verifyGnutls(const TestConfig& config, PubKey key, std::span<const std::uint8_t> message,
                 std::span<const std::uint8_t> signature);

// verifyPairGnutls is verifyGnutls for the encoding of the pair (r, s), which it makes only when
// the algorithm is known; -1 also when encodeForVerify fails.
int verifyPairGnutls(const TestConfig& config, PubKey key, std::span<const std::uint8_t> message,
                     std::span<const std::uint8_t> r, std::span<const std::uint8_t> s);

}  // namespace runner

#endif  // RUNNER_SIG_SIGNATURE_PRIMITIVES_H_
