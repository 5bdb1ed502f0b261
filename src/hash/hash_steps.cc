#include "hash/hash_steps.h"

#include "hash/digest_engine.h"
#include "text/diagnostics.h"
#include "text/sections.h"

namespace runner {

int readMacKey(const TestConfig& config, TestFiles& files, Buffer& key, MacKeySites sites) {
  if (!computesMac(config)) return 0;
  if (!key.allocate(sizeOf(config.keyLength))) return mallocFailedAt(sites.allocation);
  if (enterSection(files, "[Key]", sites.section) < 0) return -1;
  return readHex(files, key.bytes(), sites.value);
}

int computeDigest(const TestConfig& config, std::span<const std::uint8_t> message,
                  std::uint8_t* out, const Buffer& key, DigestSites sites) {
  const auto length = static_cast<int>(message.size());
  if (computesMac(config)) {
    return calcHmac(config, message.data(), length, out, key.data()) < 0 ? failAt(sites.hmac) : 0;
  }
  const int result = calcHash(config.hashId, config.engine, message.data(), length, out);
  return result < 0 ? failAt(sites.hash) : 0;
}

}  // namespace runner
