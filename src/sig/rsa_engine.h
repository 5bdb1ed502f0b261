#ifndef RUNNER_SIG_RSA_ENGINE_H_
#define RUNNER_SIG_RSA_ENGINE_H_

#include <cstdint>
#include <span>

#include "driver/test_config.h"
#include "sig/pubkey.h"

// RSASSA-PKCS1-v1_5 (RFC 8017) through GnuTLS or, for any other engine, OpenSSL.

namespace runner {

// makeRsaKey makes the public key with this modulus and public exponent, big-endian unsigned
// integers whose data pointers must not be null. Returns 0 with the key in `keyOut`. Returns -1
// with `keyOut` empty when the engine cannot make it or refuses the values; a line says which
// ("creating RSA instance failed!!", "pubkey init failed!!", "pubkey_import_rsa_raw failed!!
// ret:%d"), except when OpenSSL cannot convert a value.
[[nodiscard]] int makeRsaKey(CryptEngine engine, OwnedPubKey& keyOut,
                             std::span<const std::uint8_t> modulus,
                             std::span<const std::uint8_t> exponent);

// verifyRsa verifies `signature` over `message` with config.hashId and a key from makeRsaKey.
// Returns 0 when it verifies, 1 when it does not, and -1 for a hash (through GnuTLS also a mode)
// that has no signatures. Prints nothing.
[[nodiscard]] int verifyRsa(const TestConfig& config, PubKey key,
                            std::span<const std::uint8_t> message,
                            std::span<const std::uint8_t> signature);

}  // namespace runner

#endif  // RUNNER_SIG_RSA_ENGINE_H_
