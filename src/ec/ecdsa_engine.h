#ifndef RUNNER_EC_ECDSA_ENGINE_H_
#define RUNNER_EC_ECDSA_ENGINE_H_

#include <cstdint>
#include <span>

#include "driver/test_config.h"
#include "sig/pubkey.h"

// ECDSA signatures (FIPS 186-4, 6.4), given by their big-endian integers r and s.
// A verification returns 0 when the signature verifies, 1 when it does not, and -1 when none
// could be made, as for an unknown hash.

namespace runner {

// verifyEcdsa verifies one signature with a key of ec_key.h, through
// the engine of `config` with its hash. GnuTLS takes the signature algorithm from the mode, RSASSA
// and DSA included, and returns -1 for any other mode; a pair that
// encodeSigRS refuses prints its line and "encoding signature(rs) failed!!". OpenSSL is
// ecdsa_verify_openssl. Any other engine prints "unsupported engine!!" and returns -1.
[[nodiscard]] int verifyEcdsa(const TestConfig& config, PubKey key,
                              std::span<const std::uint8_t> message,
                              std::span<const std::uint8_t> r, std::span<const std::uint8_t> s);

// ecdsa_verify_openssl verifies through OpenSSL, whose key `key` must be; the integers may have any
// length. An error inside the library prints "ECDSA_verify failed!!(TEXT)", stays in
// lastOpensslError and returns 1; "ECDSA_SIG_new() failed!!" is a lack of memory.
[[nodiscard]] int ecdsa_verify_openssl(HashId hashId, PubKey key,
                                       std::span<const std::uint8_t> message,
                                       std::span<const std::uint8_t> r,
                                       std::span<const std::uint8_t> s);

}  // namespace runner

#endif  // RUNNER_EC_ECDSA_ENGINE_H_
