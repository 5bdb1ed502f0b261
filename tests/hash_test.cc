#include <gtest/gtest.h>
#include <openssl/evp.h>

#include <string>
#include <vector>

#include "driver/test_config.h"
#include "hash/digest_engine.h"
#include "support/exchange.h"
#include "support/run_request.h"

// Whole requests for every hash and every length of a MAC key. The answers are those of OpenSSL's
// EVP interface, which takes its algorithms by name.

namespace {

struct HashRun {
  std::string algorithm;  // "SHA-1"
  std::string key;        // empty for a hash

  // answer returns the digest or the MAC of a message.
  [[nodiscard]] std::string answer(const std::string& message) const {
    std::string out(EVP_MAX_MD_SIZE, '\0');
    std::size_t length = 0;
    const auto* const data = reinterpret_cast<const unsigned char*>(message.data());
    auto* const to = reinterpret_cast<unsigned char*>(out.data());
    if (key.empty()) {
      EVP_Q_digest(nullptr, algorithm.c_str(), nullptr, data, message.size(), to, &length);
    } else {
      EVP_Q_mac(nullptr, "HMAC", nullptr, algorithm.c_str(), nullptr, key.data(), key.size(), data,
                message.size(), to, out.size(), &length);
    }
    return out.substr(0, length);
  }

  [[nodiscard]] std::string message(std::size_t length) const {
    std::string text;
    while (text.size() < length) text += key.empty() ? "abcdefg" : "Hi There";
    return text.substr(0, length);
  }

  [[nodiscard]] Values values() const {
    return {{"algorithm", algorithm},
            {"name", "M_Hash_SHA" + algorithm.substr(4)},
            {"bits", std::to_string(8 * key.size())},
            {"key", hexText(key)},
            {"if long", key.size() > 63 ? "" : kLeftOut},
            {"if short", key.size() > 63 ? kLeftOut : ""},
            {"answers", key.empty() ? "Hash Value" : "MAC"}};
  }
};

// messagesOf is the short message test and, with messages up to twice as long, the long one.
std::string messagesOf(const HashRun& run, Values values) {
  const std::size_t blockLength =
      run.algorithm == "SHA-384" || run.algorithm == "SHA-512" ? 128 : 64;
  for (std::size_t length = 0; length <= 2 * blockLength; ++length) {
    const std::string kind = length <= blockLength ? "short " : "long ";
    const bool isFirst = !values.contains(kind + "messages");
    const std::string message = run.message(length);
    values[kind + "messages"] += (isFirst ? "" : "\n") + hexText(message);
    values[kind + "answers"] += (isFirst ? "" : "\n=") + hexText(run.answer(message));
  }
  return filledIn("messages", values);
}

// chainOf is the chain of SHAVS, section 6.4, from a seed that is longer than some digests.
std::string chainOf(const HashRun& run, Values values) {
  std::string seed = run.message(40);
  values["seed"] = hexText(seed);
  for (const char* const separator : {"", "\n="}) {
    std::vector<std::string> chain(3, seed);
    while (chain.size() < 3 + 5) {
      const auto end = chain.end();
      chain.push_back(run.answer(end[-3] + end[-2] + end[-1]));
    }
    seed = chain.back();
    values["chain"] += separator + hexText(seed);
  }
  return filledIn("chain", values);
}

TEST(HashRows, GiveTheAnswersOfAnotherInterface) {
  for (const std::string algorithm : {"SHA-1", "SHA-224", "SHA-256", "SHA-384", "SHA-512"}) {
    for (const std::size_t keyLength : {0U, 16U, 20U, 24U, 32U, 48U, 64U}) {
      const HashRun run{algorithm, std::string(keyLength, '\x0B')};
      const Values values = run.values();
      // Behind a key that is longer than a line of theirs, the first two tests do not come far.
      const std::string text = filledIn(keyLength == 0 ? "hash" : "mac", values) +
                               (keyLength == 64 ? "" : messagesOf(run, values)) +
                               chainOf(run, values);
      const std::string console = "procSMT finish normally\nprocSLMT finish normally\n";
      for (const int engine : {0, 1, 2, 3}) {
        SCOPED_TRACE(testing::Message() << algorithm << " " << keyLength << " engine " << engine);
        expectExchange(text, (keyLength == 64 ? "" : console) + "procPGMT finish normally\n",
                       static_cast<runner::CryptEngine>(engine));
      }
    }
  }
}

// The adapters' own refusals: no request gets as far with an unknown hash or with an empty key.
TEST(DigestEngine, TakesAnEmptyKeyAndRefusesUnknownHashes) {
  unsigned char out[runner::kMaxDigestLength] = {};
  for (const int engine : {0, 1, 2, 3}) {
    runner::TestConfig config{.hashId = runner::HashId::SHA1,
                              .engine = static_cast<runner::CryptEngine>(engine)};
    EXPECT_EQ(runner::calcHmac(config, nullptr, 0, out, nullptr), 0);
    EXPECT_EQ(hexText(std::span(out).first(20)), "FBDB1D1B18AA6C08324B7D64B71FB76370690E1D");
    for (const int number : {0, 1, 7}) {
      config.hashId = runner::HashId{number};
      EXPECT_EQ(runner::calcHash(config.hashId, config.engine, out, 3, out), -1);
      EXPECT_EQ(runner::calcHmac(config, out, 3, out, out), -1);
    }
  }
}

}  // namespace
