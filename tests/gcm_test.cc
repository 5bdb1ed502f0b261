#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "cipher/aead_engine.h"
#include "support/run_request.h"

namespace runner {
namespace {

// Cases 4, 6 and 16 (AES-256, the key twice) of the GCM submission to NIST by McGrew and Viega.
const std::string kKey = "FEFFE9928665731C6D6A8F9467308308";
const std::string kIv = "CAFEBABEFACEDBADDECAF888";
const std::string kLongIv =
    "9313225DF88406E555909C5AFF5269AA6A7A9538534F7DA1E4C303D2A318A728C3C0C95156809539FCF0E2429A6B52"
    "5416AEDBF5A0DE6A57A637B39B";
const std::string kText =
    "D9313225F88406E5A55909C5AFF5269A86A7A9531534F7DA2E4C303D8A318A721C3C0C95956809532FCF0E2449A6B5"
    "25B16AEDF5AA0DE657BA637B39";
const std::string kAad = "FEEDFACEDEADBEEFFEEDFACEDEADBEEFABADDAD2";
const std::string kAnswer =
    "42831EC2217774244B7221B784D0D49CE3AA212F2C02A4E035C17E2329ACA12E21D514B25466931C7D8F6A5AAC84AA"
    "051BA30B396A0AAC973D58E091";
const std::string kTag = "5BC94FBC3221A5DB94FAE95AE7121A47";
const std::string kAnswer256 =
    "522DC1F099567D07F47F37A32A84427D643A8CDCBFE5C0C97598A2BD2555D1AA8CB08E48590DBB3DA7B08B10568288"
    "38C5F61E6393BA7A0ABCC9F662";
const std::string kTag256 = "76FC6ECE0F4E1768CDDF8853BB2D551B";
const std::string kAnswerLongIv =
    "8CE24998625615B603A033ACA13FB894BE9112A5C3A211A8BA262A3CCA7E2CA701E4A9A4FBA43C90CCDCB281D48C7C"
    "6FD62875D2ACA417034C34AEE5";
const std::string kTagLongIv = "619CC5AEFFFE0BFA462AF43C1699D050";

int fill(Buffer& buffer, std::string_view hex) {
  const std::vector<std::uint8_t> bytes = fromHex(hex);
  EXPECT_TRUE(buffer.allocate(bytes.size()));
  std::ranges::copy(bytes, buffer.data());
  return static_cast<int>(bytes.size());
}

std::vector<std::uint8_t> contentOf(const Buffer& buffer) {
  return {buffer.data(), buffer.data() + buffer.size()};
}

TEST(AeadEngine, GivesThePublishedAnswers) {
  struct Case {
    CryptEngine engine;
    std::string key;
    std::string iv;
    std::string answer;
    std::string tag;
  };
  const Case cases[] = {
      {CryptEngine::GNUTLS, kKey, kIv, kAnswer, kTag},
      {CryptEngine::GNUTLS, kKey + kKey, kIv, kAnswer256, kTag256},
      {CryptEngine::OPENSSL, kKey, kIv, kAnswer, kTag},
      {CryptEngine::OPENSSL, kKey + kKey, kIv, kAnswer256, kTag256},
      {CryptEngine::OPENSSL, kKey, kLongIv, kAnswerLongIv, kTagLongIv},
      // Of a key that is none of AES-128, OpenSSL reads the first 16 bytes.
      {CryptEngine::OPENSSL, kKey + "11223344", kIv, kAnswer, kTag},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(row.tag);
    AeadParams params;
    params.ivLength = fill(params.iv, row.iv);
    params.aadLength = fill(params.aad, kAad);
    params.inputLength = fill(params.input, kText);
    fill(params.output, kText);
    fill(params.tag, kTag256);
    const TestConfig config{.keyLength = fill(params.key, row.key), .engine = row.engine};
    EXPECT_EQ(execAeadEncrypt(config, params), 60);
    EXPECT_EQ(params.outputLength, 60);
    EXPECT_EQ(contentOf(params.output), fromHex(row.answer));
    EXPECT_EQ(contentOf(params.tag), fromHex(row.tag));

    fill(params.input, row.answer);
    EXPECT_EQ(execAeadDecrypt(config, params), 60);
    EXPECT_EQ(params.tagValid, 1);
    EXPECT_EQ(contentOf(params.output), fromHex(kText));
    // One wrong bit, and nothing of the plaintext is left.
    params.tagValid = 0;
    params.tag.data()[15] ^= 1;
    EXPECT_EQ(execAeadDecrypt(config, params), 0);
    EXPECT_EQ(params.tagValid, 0);
    EXPECT_EQ(contentOf(params.output), std::vector<std::uint8_t>(60));
  }
}

}  // namespace
}  // namespace runner
