#include "cipher/aes_steps.h"

#include "text/diagnostics.h"

namespace runner {

int openAesFiles(TestFiles& files, const TestConfig& config) {
  if (openFiles(files) < 0) return -1;
  if (config.keyLength <= static_cast<int>(kMaxAesKeyLength)) return 0;
  return failWith("unexpected key length!!");
}

int computeCipher(const TestConfig& config, const std::uint8_t* in, int len,
                  const std::uint8_t* key, const std::uint8_t* iv, std::uint8_t* out,
                  CipherSites sites) {
  const bool encrypts = isEncryption(config);
  const int result = encrypts ? execEncrypt(&config, in, len, key, iv, out)
                              : execDecrypt(&config, in, len, key, iv, out);
  if (result < 0) failAt(encrypts ? sites.encryption : sites.decryption);
  return result;
}

}  // namespace runner
