#ifndef RUNNER_SIG_SIGNATURE_PRIMITIVES_H_
#define RUNNER_SIG_SIGNATURE_PRIMITIVES_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "driver/test_config.h"
#include "sig/pubkey.h"
#include "text/buffer.h"

// What the RSA, DSA and ECDSA adapters share: the digest that OpenSSL's verification wants, the
// encoding of a pair (r, s), and GnuTLS's verification.

namespace runner {

// MessageDigest is the digest of a message, and the number by which OpenSSL knows its hash.
struct MessageDigest {
  std::array<std::uint8_t, kMaxDigestLength> bytes{};
  std::size_t length = 0;
  int nid = 0;
};

// digestMessage computes the digest of `message` through OpenSSL; nothing for an unknown hash or
// when the library fails.
[[nodiscard]] std::optional<MessageDigest> digestMessage(HashId hashId,
                                                         std::span<const std::uint8_t> message);

// encodeSigRS encodes the big-endian integers r and s as a DER SEQUENCE of two INTEGERs (X.690),
// each with a zero byte in front when its first byte is 0x80 or more; leading zero bytes stay.
// Returns an empty Buffer after the line "signature size is too large!!" when r or s is longer than
// 127 bytes or the content longer than 255, and after "malloc err!! (4589)" without memory.
[[nodiscard]] Buffer encodeSigRS(std::span<const std::uint8_t> r, std::span<const std::uint8_t> s);

// encodeForVerify is encodeSigRS, which it follows with the line "encoding signature(rs) failed!!"
// when the result is empty.
[[nodiscard]] Buffer encodeForVerify(std::span<const std::uint8_t> r,
                                     std::span<const std::uint8_t> s);

// verify_gnutls verifies `signature`, in the form that GnuTLS wants for the algorithm, over
// `message` with the algorithm of config.mode and config.hashId. Returns 0 when it verifies, 1 when
// it does not, and -1 for a mode without signatures or an unknown hash. Prints nothing.
[[nodiscard]] int verify_gnutls(const TestConfig& config, PubKey key,
                                std::span<const std::uint8_t> message,
                                std::span<const std::uint8_t> signature);

// verifyPair_gnutls is verify_gnutls for the encoding of the pair (r, s), which it makes only when
// the algorithm is known; -1 also when encodeForVerify fails.
[[nodiscard]] int verifyPair_gnutls(const TestConfig& config, PubKey key,
                                    std::span<const std::uint8_t> message,
                                    std::span<const std::uint8_t> r,
                                    std::span<const std::uint8_t> s);

}  // namespace runner

#endif  // RUNNER_SIG_SIGNATURE_PRIMITIVES_H_
