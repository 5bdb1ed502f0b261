#include <gtest/gtest.h>
#include <openssl/evp.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "driver/test_config.h"
#include "hash/digest_engine.h"
#include "support/run_request.h"

// The adapters against published values.

namespace {

using namespace runner;

const CryptEngine kEngines[] = {CryptEngine::GNUTLS, CryptEngine::OPENSSL, CryptEngine::HDD,
                                CryptEngine::KERNEL_CRYPT_API};

using Digest = std::vector<std::uint8_t>;

const std::uint8_t* bytes(std::string_view text) {
  return reinterpret_cast<const std::uint8_t*>(text.data());
}

// startsWith compares the first bytes of a digest with hexadecimal text.
bool startsWith(const Digest& digest, std::string_view text) {
  const Digest start = fromHex(text);
  return std::equal(start.begin(), start.end(), digest.begin());
}

TEST(DigestEngine, GivesThePublishedAnswers) {
  constexpr std::string_view kMessage = "what do ya want for nothing?";
  struct Row {
    HashId hash;
    const char* abc;    // the digest of "abc", FIPS 180-4
    const char* empty;  // the digest of the empty message
    const char* jefe;   // the HMAC of RFC 2202 and RFC 4231, case 2
  };
  const Row rows[] = {
      {HashId::SHA1, "a9993e364706816a", "da39a3ee5e6b4b0d", "effcdf6ae5eb2fa2"},
      {HashId::SHA224, "23097d223405d822", "d14a028c2a3a2bc9", "a30e01098bc6dbbf"},
      {HashId::SHA256, "ba7816bf8f01cfea", "e3b0c44298fc1c14", "5bdcc146bf60754e"},
      {HashId::SHA384, "cb00753f45a35e8b", "38b060a751ac9638", "af45d2e376484031"},
      {HashId::SHA512, "ddaf35a193617aba", "cf83e1357eefb8bd", "164b7a7bfcf819e2"},
  };
  for (const CryptEngine engine : kEngines) {
    for (const Row& row : rows) {
      SCOPED_TRACE(testing::Message() << static_cast<int>(engine) << " " << row.abc);
      const TestConfig config{.keyLength = 4, .hashId = row.hash, .engine = engine};
      Digest out(kMaxDigestLength);
      EXPECT_EQ(calcHash(row.hash, engine, bytes("abc"), 3, out.data()), 0);
      EXPECT_TRUE(startsWith(out, row.abc));
      EXPECT_EQ(calcHash(row.hash, engine, nullptr, 0, out.data()), 0);
      EXPECT_TRUE(startsWith(out, row.empty));
      EXPECT_EQ(calcHmac(config, bytes(kMessage), kMessage.size(), out.data(), bytes("Jefe")), 0);
      EXPECT_TRUE(startsWith(out, row.jefe));
    }
  }
}

TEST(DigestEngine, TakesAnEmptyKeyAndRefusesUnknownHashes) {
  Digest out(kMaxDigestLength);
  for (const CryptEngine engine : kEngines) {
    TestConfig config{.hashId = HashId::SHA1, .engine = engine};
    EXPECT_EQ(calcHmac(config, nullptr, 0, out.data(), nullptr), 0);
    EXPECT_TRUE(startsWith(out, "fbdb1d1b18aa6c08324b7d64b71fb76370690e1d"));
    for (const int number : {0, 1, 7}) {
      config.hashId = HashId{number};
      EXPECT_EQ(calcHash(config.hashId, engine, bytes("abc"), 3, out.data()), -1);
      EXPECT_EQ(calcHmac(config, bytes("abc"), 3, out.data(), bytes("")), -1);
    }
  }
}

// No OpenSSL algorithm has this property. The three tests of a request fail one after the other.
TEST(HashTests, NameTheFailedEngineCall) {
  ASSERT_EQ(EVP_set_default_properties(nullptr, "provider=none"), 1);
  const auto consoleOf = [](const std::string& name) {
    return runInProcess(example(name, ".req"), CryptEngine::OPENSSL).console;
  };
  EXPECT_EQ(consoleOf("sha-256-hash"),
            "err happens!! (6038)\nerr happens!! (6165)\nerr happens!! (6329)\n");
  EXPECT_EQ(consoleOf("hmac-sha-256-mac"),
            "err happens!! (6040)\nerr happens!! (6167)\nerr happens!! (6331)\n");
  ASSERT_EQ(EVP_set_default_properties(nullptr, ""), 1);
}

}  // namespace
