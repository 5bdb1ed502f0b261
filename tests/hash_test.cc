#include <gtest/gtest.h>
#include <openssl/evp.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "driver/test_config.h"
#include "hash/digest_engine.h"
#include "hash/message_tests.h"
#include "hash/pseudo_random_message_test.h"
#include "support/failing_allocator.h"
#include "support/run_request.h"

// The adapters against published values, and the three tests called one by one, mostly with
// requests that are not sound. Sound requests are among the examples.

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

using Procedure = int (*)(const TestConfig&, const char*, const char*);

const TestConfig kHash{.testFunction = TestFunction::HASH, .hashId = HashId::SHA1};
const TestConfig kMac{.testFunction = TestFunction::MAC, .keyLength = 4, .hashId = HashId::SHA1};
const TestConfig kNoHash{.testFunction = TestFunction::MAC, .keyLength = 4};
const TestConfig kLongKey{
    .testFunction = TestFunction::MAC, .keyLength = 64, .hashId = HashId::SHA1};

// runTest runs one test on a request without a header.
Outcome runTest(Procedure test, const TestConfig& config, std::string_view request) {
  const TempDir dir;
  const std::string requestPath = dir.file("request");
  const std::string responsePath = dir.file("response");
  writeFile(requestPath, request);
  Outcome outcome;
  testing::internal::CaptureStdout();
  outcome.status = test(config, requestPath.c_str(), responsePath.c_str());
  outcome.console = testing::internal::GetCapturedStdout();
  outcome.response = readFile(responsePath);
  return outcome;
}

std::string repeated(std::string_view text, int count) {
  std::string result;
  for (int i = 0; i < count; ++i) result += text;
  return result;
}

std::string messages(int count, int shortest) {
  std::string lines;
  for (int i = 0; i < count; ++i) lines += repeated("ab", shortest + i) + "\n";
  return lines;
}

const std::string kInner = "[Number of Inner-loop for PGMT]\n5\n";
const std::string kLoops = kInner + "[Number of Outer-loop for PGMT]\n2\n";
const std::string kSeed = kLoops + "[Initial Data for PGMT]\n";
const std::string kSeedBits = "\n[Bitlength of Initial Data for PGMT]\n";

// A request for the three tests with SHA-1.
const std::string kSound = "[Key]\n4a656665\n[Data of SMT]\n" + messages(65, 0) +
                           "[Upperbound of SLMT]\n2\n[Data of SLMT]\n" + messages(64, 65) + kSeed +
                           repeated("ab", 255) + kSeedBits + "160\n";

std::string failure(int site) { return "err happens!! (" + std::to_string(site) + ")\n"; }

std::string missing(const std::string& key, int site) {
  return "\"" + key + "\" is not found!!\n" + failure(site);
}

// illegal is the report of hexadecimal text that ends at `text`.
std::string illegal(const std::string& text, const std::string& where, int site) {
  return "\nillegal data!! (" + text + ")\n" + where + "\n" + failure(site);
}

TEST(HashTests, SayWhatIsWrongWithARequest) {
  struct Row {
    Procedure test;
    std::string from;
    std::string to;
    std::string response;
    std::string console;
    TestConfig config = kMac;
  };
  const std::string two = "[Data of SMT]\n\nAB\n";
  const std::string bound = "[Upperbound of SLMT]\n";
  const std::string list = bound + "2\n[Data of SLMT]\n";
  const std::string lack = "lack of input message!!\n";
  const std::string loops = "illegal number of loop!!\n";
  const std::string key = repeated("ab", 64);
  const Row rows[] = {
      {procSMT, "[Key]", "", "", missing("[Key]", 6009)},
      {procSMT, "4a65", "4X", "", illegal("X6665\n", "num=4, i=0, j=1", 6012)},
      {procSMT, "4a656665", key, "", illegal("", "num=64, i=63, j=1", 6012), kLongKey},
      {procSMT, "[Data of SMT]", "", "", missing("[Data of SMT]", 6016)},
      {procSMT, "]\n\nab", "]\n[\nab", "[Data of SMT]\n", lack},
      {procSMT, "\nabab\n", "\n[bab\n", two, lack},
      {procSMT, "\nabab\n", "\nabaX\n", two, illegal("X\n", "num=2, i=1, j=1", 6032)},
      // A line may have 7 characters beyond its digits; the rest of a longer one is the next line.
      {procSMT, "\nabab", "123456\nX", two, illegal("X\n", "num=2, i=0, j=0", 6032)},
      {procSMT, "\nabab", "1234567\nX", two, illegal("\n", "num=2, i=0, j=0", 6032)},
      {procSMT, "[Key]", "[Key]", "", "", kNoHash},
      {procSLMT, "[Key]", "", "", missing("[Key]", 6124)},
      {procSLMT, "4a65", "4X", "", illegal("X6665\n", "num=4, i=0, j=1", 6127)},
      {procSLMT, bound, "", "", missing("[Upperbound of SLMT]", 6131)},
      {procSLMT, "T]\n2\n", "T]\n0\n", bound, "illegal bound!!\n"},
      {procSLMT, "T]\n2\n", "T]\n16777216\n", bound, "illegal bound!!\n"},
      {procSLMT, "T]\n2\n", "T]\n16777215\n", bound + "16777215\n[Data of SLMT]\n",
       illegal("\n", "num=16777278, i=65, j=0", 6161)},
      {procSLMT, "[Data of SLMT]", "", bound + "2\n", missing("[Data of SLMT]", 6144)},
      {procSLMT, "SLMT]\nab", "SLMT]\n[", list, lack},
      {procSLMT, "SLMT]\nab", "SLMT]\nX\n", list, illegal("X\n", "num=65, i=0, j=0", 6161)},
      {procSLMT, "[Key]", "[Key]", "", "", kNoHash},
      {procPGMT, "[Key]", "", "", missing("[Key]", 6232)},
      {procPGMT, "4a65", "4X", "", illegal("X6665\n", "num=4, i=0, j=1", 6235)},
      {procPGMT, "[Number of I", "", "", missing("[Number of Inner-loop for PGMT]", 6239)},
      {procPGMT, "[Number of O", "", kInner, missing("[Number of Outer-loop for PGMT]", 6246)},
      {procPGMT, "\n5\n", "\n0\n", edited(kLoops, "5", "0"), loops},
      {procPGMT, "PGMT]\n2\n", "PGMT]\nx\n", edited(kLoops, "2", "0"), loops},
      {procPGMT, "[Initial", "", kLoops, missing("[Initial Data for PGMT]", 6259)},
      {procPGMT, "[Bitlen", "", kSeed, missing("[Bitlength of Initial Data for PGMT]", 6264)},
      {procPGMT, "160", "-8", kSeed, "illegal length!!\n"},
      {procPGMT, "160", "2048", kSeed, "unexpected long data!!\n"},
      {procPGMT, "PGMT]\nab", "PGMT]\nX\n", kSeed, illegal("X\n", "num=20, i=0, j=0", 6297)},
      {procPGMT, "[Key]", "[Key]", kSeed, "", kNoHash},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.console);
    const Outcome outcome = runTest(row.test, row.config, edited(kSound, row.from, row.to));
    EXPECT_EQ(outcome.status, -1);
    EXPECT_EQ(outcome.response, row.response);
    EXPECT_EQ(outcome.console, row.console);
  }
}

TEST(HashTests, NameTheFailedAllocation) {
  struct Row {
    Procedure test;
    std::vector<int> sites;  // in the order of the allocations
  };
  const Row rows[] = {{procSMT, {6004, 6006, 6021, 6021, 6031}},
                      {procSLMT, {6120, 6122, 6151, 6160}},
                      {procPGMT, {6230, 6296, 6305, 6306}}};
  for (const Row& row : rows) {
    const std::string response = runTest(row.test, kMac, kSound).response;
    for (int successes = 0; const int site : row.sites) {
      const FailingAllocator allocator(successes++);
      const Outcome outcome = runTest(row.test, kMac, kSound);
      EXPECT_EQ(outcome.console, "malloc err!! (" + std::to_string(site) + ")\n");
      EXPECT_TRUE(response.starts_with(outcome.response)) << outcome.response;
    }
  }
}

TEST(HashTests, NameTheFailedEngineCall) {
  struct Row {
    Procedure test;
    int hash;
    int hmac;
  };
  // No OpenSSL algorithm has this property.
  ASSERT_EQ(EVP_set_default_properties(nullptr, "provider=none"), 1);
  for (const Row row : {Row{procSMT, 6038, 6040}, {procSLMT, 6165, 6167}, {procPGMT, 6329, 6331}}) {
    for (TestConfig config : {kHash, kMac}) {
      config.engine = CryptEngine::OPENSSL;
      const Outcome outcome = runTest(row.test, config, kSound);
      EXPECT_EQ(outcome.status, -1);
      EXPECT_EQ(outcome.console,
                failure(config.testFunction == TestFunction::HASH ? row.hash : row.hmac));
    }
  }
  ASSERT_EQ(EVP_set_default_properties(nullptr, ""), 1);
}

TEST(HashTests, ChainFromSeedsOfAnyLength) {
  struct Row {
    TestConfig config;
    int bits;
    std::string results;  // computed by Python's hashlib and hmac
  };
  const Row rows[] = {
      {kHash, 4,
       "[Hash Value of PGMT]\n21E02B3932A0B45F795CD1070E91F66895CEA0E0\n"
       "17D95A9616700EFF5AE8CA4E7F667493375AC745\n"},
      {kMac, 12,
       "[MAC of PGMT]\n5122F8A4F7105A263A20F6D37DB34EEBAD99A073\n"
       "597FBD59D07A29936AFB51E504018E279F515451\n"},
      {kHash, 2047,
       "[Hash Value of PGMT]\n7712282EEF6A190F9F40F37961B31E5D29EEB0C0\n"
       "3C8A5145DF75853CD473F0BEDCC4515D4BE5D02E\n"},
  };
  for (const CryptEngine engine : kEngines) {
    for (Row row : rows) {
      SCOPED_TRACE(row.results);
      row.config.engine = engine;
      const std::string bits = std::to_string(row.bits) + "\n";
      const Outcome outcome = runTest(procPGMT, row.config, edited(kSound, "160\n", bits));
      EXPECT_EQ(outcome.status, 0);
      std::string expected = kSeed + repeated("AB", row.bits / 8);
      expected.append(kSeedBits).append(bits).append(row.results);
      EXPECT_EQ(outcome.response, expected);
    }
  }
}

}  // namespace
