#ifndef RUNNER_HASH_HASH_STEPS_H_
#define RUNNER_HASH_HASH_STEPS_H_

#include <cstdint>
#include <span>

#include "driver/test_config.h"
#include "text/buffer.h"
#include "text/test_files.h"

// What the hash and MAC test procedures have in common. Every function but HASH computes MACs.

namespace runner {

// computesMac tells whether the run computes MACs, which need a key.
constexpr bool computesMac(const TestConfig& config) {
  return config.testFunction != TestFunction::HASH;
}

// The failure numbers of the key.
struct MacKeySites {
  int allocation;
  int section;  // "[Key]" is missing
  int value;    // its value cannot be converted
};

// readMacKey allocates config.keyLength bytes for `key` and reads them from the next "[Key]"
// section of the request, which is not echoed. For a HASH test it does nothing. Returns 0, or -1
// after it has printed what is wrong.
[[nodiscard]] int readMacKey(const TestConfig& config, TestFiles& files, Buffer& key,
                             MacKeySites sites);

// The failure numbers of an engine call, by what it computes.
struct DigestSites {
  int hash;
  int hmac;
};

// computeDigest writes the digest of `message`, or its HMAC under `key`, to `out`, which has room
// for the digest length of the hash. Returns 0, or -1 after it has printed the number of the site.
[[nodiscard]] int computeDigest(const TestConfig& config, std::span<const std::uint8_t> message,
                                std::uint8_t* out, const Buffer& key, DigestSites sites);

}  // namespace runner

#endif  // RUNNER_HASH_HASH_STEPS_H_
