#ifndef RUNNER_SIG_DSA_ENGINE_H_
#define RUNNER_SIG_DSA_ENGINE_H_

#include <cstdint>
#include <span>

#include "driver/test_config.h"
#include "sig/pubkey.h"

// DSA (FIPS 186-4) through GnuTLS or, for any other engine, OpenSSL.

namespace runner {

// DsaKeyValues are the big-endian unsigned integers of a public key: the domain parameters and the
// public value.
struct DsaKeyValues {
  std::span<const std::uint8_t> p;
  std::span<const std::uint8_t> q;
  std::span<const std::uint8_t> g;
  std::span<const std::uint8_t> y;
};

// makeDsaKey makes the public key with these values; their data pointers must not be null. Returns
// 0 with the key in `keyOut`. Returns -1 with `keyOut` empty when the engine cannot make it or
// refuses the values; a line says which ("creating DSA instance failed!!", "pubkey init failed!!",
// "pubkey_import_dsa_raw failed!!"), except when OpenSSL cannot convert a value.
[[nodiscard]] int makeDsaKey(CryptEngine engine, OwnedPubKey& keyOut, const DsaKeyValues& values);

// verifyDsa verifies the signature (r, s), big-endian unsigned integers that are taken with their
// leading zero bytes, over `message` with config.hashId and a key from makeDsaKey. Returns 0 when
// it verifies and 1 when it does not; also 1 after "DSA_verify failed!!(TEXT)" when OpenSSL reports
// an error, whose code is then in lastOpensslError. Returns -1 for a hash (through GnuTLS also a
// mode) that has no signatures, and after "encoding signature(rs) failed!!".
[[nodiscard]] int verifyDsa(const TestConfig& config, PubKey key,
                            std::span<const std::uint8_t> message, std::span<const std::uint8_t> r,
                            std::span<const std::uint8_t> s);

}  // namespace runner

#endif  // RUNNER_SIG_DSA_ENGINE_H_
