#ifndef RUNNER_HASH_DIGEST_ENGINE_H_
#define RUNNER_HASH_DIGEST_ENGINE_H_

#include <cstdint>

#include "driver/test_config.h"

// Digests (FIPS 180-4) and HMACs (FIPS 198-1) of whole messages through the engine of the run:
// GnuTLS for the engine of that name, OpenSSL for every other one. Each call makes its own library
// handle and releases it, and nothing is printed.

namespace runner {

// calcHash writes the digest of the `length` bytes of `data`, which may be null when `length` is 0,
// to `out`, which has room for the digest length of the hash. Returns 0, or -1 for an unknown hash
// and when the engine fails; `out` is undefined then.
[[nodiscard]] int calcHash(HashId hashId, CryptEngine engine, const std::uint8_t* data, int length,
                           std::uint8_t* out);

// calcHmac writes the HMAC of the `length` bytes of `data` under the config.keyLength bytes of
// `key`, with the hash and the engine of `config`. It is never truncated. All else is as for
// calcHash; `key` too may be null when it has no bytes.
[[nodiscard]] int calcHmac(const TestConfig& config, const std::uint8_t* data, int length,
                           std::uint8_t* out, const std::uint8_t* key);

}  // namespace runner

#endif  // RUNNER_HASH_DIGEST_ENGINE_H_
