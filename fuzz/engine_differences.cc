#include "engine_differences.h"

#include <algorithm>
#include <array>

namespace runner::fuzz {
namespace {

struct Refusal {
  CryptEngine engine;
  std::string_view text;
};

constexpr std::array kRefusals{
    // GnuTLS has no ECB.
    Refusal{CryptEngine::GNUTLS, "not supported!!\n"},
    // GnuTLS takes AES keys of 16, 24 and 32 bytes and GCM IVs of 12 bytes only.
    Refusal{CryptEngine::GNUTLS, "_gnutls : initialize error!!"},
    // OpenSSL refuses an empty GCM IV; GnuTLS takes it on processors without AES instructions.
    Refusal{CryptEngine::OPENSSL, " : SET_IVLEN error!!\n"},
    // A public key that cannot be made ends the test with GnuTLS and is a result with OpenSSL:
    // GnuTLS refuses empty and zero coordinates there, OpenSSL a point that is not on the curve.
    Refusal{CryptEngine::GNUTLS, ": err happens!! (3372)\n"},
    Refusal{CryptEngine::GNUTLS, ": err happens!! (4823)\n"},
    Refusal{CryptEngine::GNUTLS, ": err happens!! (5088)\n"},
    // GnuTLS refuses numbers without a value as parts of a key, OpenSSL lets verification fail.
    Refusal{CryptEngine::GNUTLS, "pubkey_import_rsa_raw failed!!"},
    Refusal{CryptEngine::GNUTLS, "pubkey_import_dsa_raw failed!!"},
    // ECDSA integers of more than 127 bytes do not fit the encoding that GnuTLS is given; OpenSSL
    // is
    // given the integers.
    Refusal{CryptEngine::GNUTLS, "encoding signature(rs) failed!!\n"},
};

constexpr int kAes192KeyLength = 24;

bool isCipherTest(const TestConfig& config) {
  return config.testFunction == TestFunction::ENCRYPTION ||
         config.testFunction == TestFunction::DECRYPTION ||
         config.testFunction == TestFunction::AEAD_ENCRYPTION ||
         config.testFunction == TestFunction::AEAD_DECRYPTION;
}

bool isDsaTest(const TestConfig& config) {
  return config.testFunction == TestFunction::VERIFICATION && config.mode == ModeId::DSA;
}

bool isEcdsaTest(const TestConfig& config) {
  return config.testFunction == TestFunction::VERIFICATION && config.mode == ModeId::ECDSA;
}

// hasPaddedHalf tells whether a line, a signature in the bracket form, has a half that begins with
// a zero byte.
bool hasPaddedHalf(std::string_view line) {
  return line.starts_with("00") || line.substr(line.size() / 4 * 2).starts_with("00");
}

// hasPaddedInteger tells whether one of the signatures in `response` has an r or s that begins with
// a zero byte.
bool hasPaddedInteger(const TestConfig& config, std::string_view response) {
  if ((config.flags & FLAG_VALUE_LIST) != 0) {
    return response.find("R = 00") != std::string_view::npos ||
           response.find("S = 00") != std::string_view::npos;
  }
  std::size_t at = response.find("[Signatures]\n");
  if (at == std::string_view::npos) return false;
  std::string_view list = response.substr(at);
  list.remove_prefix(list.find('\n') + 1);
  while (!list.empty() && list.front() != '[') {
    const std::string_view line = list.substr(0, list.find('\n'));
    if (hasPaddedHalf(line)) return true;
    list.remove_prefix(std::min(line.size() + 1, list.size()));
  }
  return false;
}

}  // namespace

bool isKnownRefusal(const TestConfig& config, const EngineRun& run) {
  // Without a hash a record fails, silently, but only when its key could be made: OpenSSL refuses a
  // point that is not on the curve earlier, as a result.
  if (isEcdsaTest(config) && config.hashId == HashId::NONE) return true;
  for (const Refusal& refusal : kRefusals) {
    if (run.engine == refusal.engine && run.console.find(refusal.text) != std::string::npos) {
      return true;
    }
  }
  return false;
}

bool mayDiffer(const TestConfig& config, std::string_view response) {
  // Under its AES-128 identifiers GnuTLS uses a 24-byte key whole, OpenSSL its first 16 bytes.
  if (isCipherTest(config) && config.keyLength == kAes192KeyLength) return true;
  // DSA_verify takes minimal encodings only; GnuTLS verifies an r or s with leading zero bytes.
  return isDsaTest(config) && hasPaddedInteger(config, response);
}

}  // namespace runner::fuzz
