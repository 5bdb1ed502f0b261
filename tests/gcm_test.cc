#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "cipher/aead_engine.h"
#include "support/failing_allocator.h"
#include "support/run_request.h"

namespace runner {
namespace {

// The examples of the GCM submission to NIST (McGrew and Viega): key, text and AAD of its cases 4
// to 6 (AES-128) and 16 to 18 (AES-256 with the key twice), which differ in the IV.
const std::string kKey = "FEFFE9928665731C6D6A8F9467308308";
const std::string kText =
    "D9313225F88406E5A55909C5AFF5269A86A7A9531534F7DA2E4C303D8A318A72"
    "1C3C0C95956809532FCF0E2449A6B525B16AEDF5AA0DE657BA637B39";
const std::string kAad = "FEEDFACEDEADBEEFFEEDFACEDEADBEEFABADDAD2";
const std::string kIv = "CAFEBABEFACEDBADDECAF888";
const std::string kLongIv =
    "9313225DF88406E555909C5AFF5269AA6A7A9538534F7DA1E4C303D2A318A728C3C0C95156809539FCF0E2429A6B52"
    "5416AEDBF5A0DE6A57A637B39B";
const std::string kAnswer =
    "42831EC2217774244B7221B784D0D49CE3AA212F2C02A4E035C17E2329ACA12E"
    "21D514B25466931C7D8F6A5AAC84AA051BA30B396A0AAC973D58E091";
const std::string kTag = "5BC94FBC3221A5DB94FAE95AE7121A47";
// Case 1: no text and no AAD under zeros.
const std::string kZeroTag = "58E2FCCEFA7E3061367F1D57A4E7455A";

void fill(Buffer& buffer, std::string_view hex) {
  const std::vector<std::uint8_t> bytes = fromHex(hex);
  ASSERT_TRUE(buffer.allocate(bytes.size()));
  std::ranges::copy(bytes, buffer.data());
}

void fillParams(AeadParams& params, std::string_view key, std::string_view iv,
                std::string_view text, std::string_view aad, std::string_view tag) {
  fill(params.key, key);
  fill(params.input, text);
  fill(params.iv, iv);
  fill(params.aad, aad);
  fill(params.output, text);
  fill(params.tag, tag);
  params.inputLength = static_cast<int>(text.size() / 2);
  params.ivLength = static_cast<int>(iv.size() / 2);
  params.aadLength = static_cast<int>(aad.size() / 2);
}

std::vector<std::uint8_t> contentOf(const Buffer& buffer) {
  return {buffer.data(), buffer.data() + buffer.size()};
}

TestConfig configOf(CryptEngine engine, std::string_view key) {
  TestConfig config;
  config.engine = engine;
  config.keyLength = static_cast<int>(key.size() / 2);
  return config;
}

TEST(AeadEngine, GivesThePublishedAnswers) {
  struct Case {
    bool gnutls;  // whether GnuTLS takes the IV
    std::string key;
    std::string iv;
    std::string answer;
    std::string tag;
  };
  const Case cases[] = {
      {true, kKey, kIv, kAnswer, kTag},
      {true, kKey + kKey, kIv,
       "522DC1F099567D07F47F37A32A84427D643A8CDCBFE5C0C97598A2BD2555D1AA"
       "8CB08E48590DBB3DA7B08B1056828838C5F61E6393BA7A0ABCC9F662",
       "76FC6ECE0F4E1768CDDF8853BB2D551B"},
      {false, kKey, kIv.substr(0, 16),
       "61353B4C2806934A777FF51FA22A4755699B2A714FCDC6F83766E5F97B6C7423"
       "73806900E49F24B22B097544D4896B424989B5E1EBAC0F07C23F4598",
       "3612D2E79E3B0785561BE14AACA2FCCB"},
      {false, kKey, kLongIv,
       "8CE24998625615B603A033ACA13FB894BE9112A5C3A211A8BA262A3CCA7E2CA7"
       "01E4A9A4FBA43C90CCDCB281D48C7C6FD62875D2ACA417034C34AEE5",
       "619CC5AEFFFE0BFA462AF43C1699D050"},
      {false, kKey + kKey, kLongIv,
       "5A8DEF2F0C9E53F1F75D7853659E2A20EEB2B22AAFDE6419A058AB4F6F746BF4"
       "0FC0C3B780F244452DA3EBF1C5D82CDEA2418997200EF82E44AE7E3F",
       "A44A8266EE1C8EB0C8B5D4CF5AE9F19A"},
  };
  for (const CryptEngine engine : {CryptEngine::GNUTLS, CryptEngine::OPENSSL}) {
    for (const Case& row : cases) {
      if (engine == CryptEngine::GNUTLS && !row.gnutls) continue;
      SCOPED_TRACE(row.tag);
      const TestConfig config = configOf(engine, row.key);
      AeadParams params;
      fillParams(params, row.key, row.iv, kText, kAad, kZeroTag);
      EXPECT_EQ(execAeadEncrypt(config, params), 60);
      EXPECT_EQ(params.outputLength, 60);
      EXPECT_EQ(contentOf(params.output), fromHex(row.answer));
      EXPECT_EQ(contentOf(params.tag), fromHex(row.tag));

      fillParams(params, row.key, row.iv, row.answer, kAad, row.tag);
      EXPECT_EQ(execAeadDecrypt(config, params), 60);
      EXPECT_EQ(params.tagValid, 1);
      EXPECT_EQ(params.outputLength, 60);
      EXPECT_EQ(contentOf(params.output), fromHex(kText));

      // One wrong bit, and nothing of the plaintext is left.
      params.tagValid = 0;
      params.tag.data()[15] ^= 1;
      EXPECT_EQ(execAeadDecrypt(config, params), 0);
      EXPECT_EQ(params.tagValid, 0);
      EXPECT_EQ(contentOf(params.output), std::vector<std::uint8_t>(60));
    }
  }
}

TEST(AeadEngine, SaysWhatItCannotDo) {
  struct Case {
    CryptEngine engine;
    int keyLength;
    int ivLength;
    std::string_view encryption;
    std::string_view decryption;
  };
  const Case cases[] = {
      {CryptEngine::GNUTLS, 16, 13, "aead_encrypt_gnutls : initialize error!!\n",
       "aead_decrypt_gnutls : initialize error!!\n"},
      {CryptEngine::GNUTLS, 20, 12, "aead_encrypt_gnutls : initialize error!!\n",
       "aead_decrypt_gnutls : initialize error!!\n"},
      {CryptEngine::OPENSSL, 16, 0, "aead_encrypt_openssl : SET_IVLEN error!!\n",
       "aead_decrypt_openssl : SET_IVLEN error!!\n"},
      {CryptEngine::HDD, 16, 12, "execAeadEncrypt : unsupported crypt engine!!\n",
       "execAeadDecrypt : unsupported crypt engine!!\n"},
      {CryptEngine::KERNEL_CRYPT_API, 16, 12, "execAeadEncrypt : unsupported crypt engine!!\n",
       "execAeadDecrypt : unsupported crypt engine!!\n"},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(row.encryption);
    TestConfig config;
    config.engine = row.engine;
    config.keyLength = row.keyLength;
    AeadParams params;
    fillParams(params, kKey + kKey, kLongIv, kText, kAad, kTag);
    params.ivLength = row.ivLength;
    testing::internal::CaptureStdout();
    EXPECT_LT(execAeadEncrypt(config, params), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), row.encryption);
    testing::internal::CaptureStdout();
    EXPECT_LT(execAeadDecrypt(config, params), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), row.decryption);
    EXPECT_EQ(params.tagValid, 0);
  }
}

const std::string kHeader =
    "[Algorithm Name]\nGCM/GMAC\n[Function Name]\nEncryption\n[Bitlength of Key]\n128\n"
    "[Max BitLength of Plaintext]\n480\n";
const std::string kDecryptionHeader =
    edited(edited(kHeader, "Encryption", "Decryption"), "Plaintext", "Ciphertext");
const std::string kDone = "procAEAD finish normally\n";

std::string inputs(const std::string& key, const std::string& iv, const std::string& textKey,
                   const std::string& text, const std::string& aad) {
  return "[Key]\n" + key + "\n[IV]\n" + iv + "\n[" + textKey + "]\n" + text + "\n[AAD]\n" + aad +
         "\n";
}

std::string zeroInputs(const std::string& textKey) {
  return inputs(std::string(32, '0'), std::string(24, '0'), textKey, "", "");
}

std::string tagSection(const std::string& tag) { return "[Tag]\n" + tag + "\n"; }

// A sound request of two cases.
const std::string kEncryption = kHeader + "[Number of Plaintexts]\n2\n" +
                                inputs(kKey, kIv, "Plaintext", kText, kAad) +
                                zeroInputs("Plaintext");

TEST(AeadRequest, EncryptsThroughBothEngines) {
  // Whatever follows the last case is not read.
  const std::string request = kEncryption + "[Key]\nnone\n";
  const std::string response = kHeader + "[Number of Plaintexts]\n2\n" +
                               inputs(kKey, kIv, "Plaintext", kText, kAad) + "[Ciphertext]\n" +
                               kAnswer + "\n" + tagSection(kTag) + zeroInputs("Plaintext") +
                               "[Ciphertext]\n\n" + tagSection(kZeroTag);
  for (const CryptEngine engine : {CryptEngine::GNUTLS, CryptEngine::OPENSSL}) {
    const Outcome outcome = runInProcess(request, engine);
    EXPECT_EQ(outcome.console, kDone);
    EXPECT_EQ(outcome.response, response);
  }
}

// A case whose tag is wrong between two others, which have a longer and a shorter text: it gives
// away neither its own plaintext nor that of the case before.
TEST(AeadRequest, WithholdsWhatDoesNotVerify) {
  const std::string count = "[Number of Ciphertexts]\n4\n";
  const std::string sound = inputs(kKey, kIv, "Ciphertext", kAnswer, kAad);
  const std::string wrongAad = inputs(kKey, kIv, "Ciphertext", kAnswer, kAad.substr(2));
  const std::string zeros = zeroInputs("Ciphertext");
  const std::string request = kDecryptionHeader + count + sound + tagSection(kTag) + wrongAad +
                              tagSection(kTag) + zeros + tagSection(kTag) + zeros +
                              tagSection(kZeroTag);
  const std::string invalid = "[Plaintext]\nINVALID\n" + tagSection(kTag);
  const std::string response = kDecryptionHeader + count + sound + "[Plaintext]\n" + kText + "\n" +
                               tagSection(kTag) + wrongAad + invalid + zeros + invalid + zeros +
                               "[Plaintext]\n\n" + tagSection(kZeroTag);
  for (const CryptEngine engine : {CryptEngine::GNUTLS, CryptEngine::OPENSSL}) {
    const Outcome outcome = runInProcess(request, engine);
    EXPECT_EQ(outcome.console, kDone);
    EXPECT_EQ(outcome.response, response);
  }
}

// The longest IV and AAD, and keys that are none of AES-128, of which OpenSSL reads the first 16
// bytes. The answers to the IV and the AAD were computed from SP 800-38D by another program.
TEST(AeadRequest, TakesWhatTheEngineTakes) {
  const std::string refused = "aead_encrypt_gnutls : initialize error!!\nerr happens!! (6626)\n";
  struct Case {
    std::string keyBits;
    std::string iv;
    std::string text;
    std::string aad;
    std::string gnutls;  // what GnuTLS says, empty if that depends on the processor
    std::string answer;
    std::string tag;
  };
  const Case cases[] = {
      {"128", kLongIv.substr(0, 64), kText, kAad, refused,
       "D4CA3F86F483DFCD6133E4AA1112B7CEC43534D1B30B5E1D06EA4DC4F090BC07"
       "50CAB011E2776A806F510B49CC0574D3B2A0121549D557C85F4FBC08",
       "EA7D411281343BE292C45622735DFD80"},
      {"128", kIv, "", kAad + kAad.substr(0, 24), kDone, "", "090398EF838D38F2500847A0FBC419A3"},
      {"160", kIv, kText, kAad, refused, kAnswer, kTag},
      {"192", kIv, kText, kAad, "", kAnswer, kTag},
      {"512", kIv, kText, kAad, refused, kAnswer, kTag},
  };
  const std::string longKey = kKey + kKey + kKey + kKey;
  for (const Case& row : cases) {
    SCOPED_TRACE(row.keyBits + row.iv);
    const std::string key = longKey.substr(0, std::stoul(row.keyBits) / 4);
    const std::string request = edited(kHeader, "128", row.keyBits) +
                                "[Number of Plaintexts]\n1\n" +
                                inputs(key, row.iv, "Plaintext", row.text, row.aad);
    const std::string response =
        request + "[Ciphertext]\n" + row.answer + "\n" + tagSection(row.tag);
    const Outcome openssl = runInProcess(request, CryptEngine::OPENSSL);
    EXPECT_EQ(openssl.console, kDone);
    EXPECT_EQ(openssl.response, response);
    if (row.gnutls.empty()) continue;
    const Outcome gnutls = runInProcess(request);
    EXPECT_EQ(gnutls.console, row.gnutls);
    EXPECT_EQ(gnutls.response, row.gnutls == kDone ? response : request);
  }
}

std::string missing(const std::string& key, int site) {
  return "\"" + key + "\" is not found!!\nerr happens!! (" + std::to_string(site) + ")\n";
}

std::string tooLong(int site) {
  return "unexpected long data!!\nerr happens!! (" + std::to_string(site) + ")\n";
}

std::string illegal(const std::string& text, int num, int i, int j, int site) {
  return "\nillegal data!! (" + text + ")\nnum=" + std::to_string(num) +
         ", i=" + std::to_string(i) + ", j=" + std::to_string(j) + "\nerr happens!! (" +
         std::to_string(site) + ")\n";
}

struct Failure {
  std::string from;
  std::string to;
  std::string console;
  std::string tail;  // the end of the response
};

void expectFailures(const std::string& request, std::span<const Failure> failures) {
  for (const Failure& row : failures) {
    SCOPED_TRACE(row.from + " -> " + row.to);
    const Outcome outcome = runInProcess(edited(request, row.from, row.to));
    EXPECT_EQ(outcome.console, row.console);
    EXPECT_TRUE(outcome.response.ends_with(row.tail)) << outcome.response;
  }
}

TEST(AeadRequest, FailsStepByStep) {
  const std::string count = "[Number of Plaintexts]\n";
  const std::string counted = count + "2\n";
  const std::string keyed = counted + "[Key]\n" + kKey + "\n";
  const std::string withIv = keyed + "[IV]\n" + kIv + "\n";
  const std::string withText = withIv + "[Plaintext]\n" + kText + "\n";
  const std::string firstCase = "[Ciphertext]\n" + kAnswer + "\n" + tagSection(kTag);
  const std::string textTooLong = tooLong(6609);
  const Failure failures[] = {
      {"[Number of P", "[Number of C", missing("[Number of Plaintexts]", 6565), "480\n"},
      {"s]\n2\n", "s]\n0\n", "", count},
      {"s]\n2\n", "s]\n-2\n", "", count},
      {"s]\n2\n", "s]\ntwo\n", "", count},
      {"s]\n2\n", "s]\n4294967296\n", "", count},
      {"s]\n2\n", "s]\n2147483647\n", missing("[Key]", 6587), tagSection(kZeroTag)},
      {"[Key]", "[K]", missing("[Key]", 6587), tagSection(kZeroTag)},
      {"[Key]\nFE", "[Key]\n", illegal("\n", 16, 15, 0, 6589), counted},
      {"[Key]\n00", "[Key]\n", illegal("\n", 16, 15, 0, 6589), firstCase},
      {kIv, kIv + "0", illegal("\n", 13, 12, 1, 6599), keyed},
      {kIv, kLongIv.substr(0, 65), tooLong(6599), keyed},
      {kText, kText.substr(1), illegal("\n", 60, 59, 1, 6609), withIv},
      {kText, kText + "0", textTooLong, withIv},
      {kText, kText + kText, textTooLong, withIv},
      {"480", "472", textTooLong, withIv},
      {"480", "0", textTooLong, withIv},
      {"480", "-480", textTooLong, withIv},
      {"480", "long", textTooLong, withIv},
      {kAad, kAad.substr(1), illegal("\n", 20, 19, 1, 6619), withText},
      {kAad, kAad + kAad.substr(0, 25), tooLong(6619), withText},
      {"AAD]\n\n", "AA]\n", missing("[AAD]", 6615), "[Plaintext]\n\n"},
      {"[Plaintext]\n\n[AAD]\n\n", "", missing("[Plaintext]", 6605),
       "[IV]\n" + std::string(24, '0') + "\n"},
      {"[IV]\n" + std::string(24, '0'), "", missing("[IV]", 6595),
       "[Key]\n" + std::string(32, '0') + "\n"},
      // An IV of no bytes is not GnuTLS's to take on every processor, one of 13 on none.
      {kIv, kIv + "00", "aead_encrypt_gnutls : initialize error!!\nerr happens!! (6626)\n",
       "[AAD]\n" + kAad + "\n"},
  };
  expectFailures(kEncryption, failures);

  const std::string inputsOfCase = inputs(kKey, kIv, "Ciphertext", kAnswer, kAad);
  const std::string decryption =
      kDecryptionHeader + "[Number of Ciphertexts]\n1\n" + inputsOfCase + tagSection(kTag);
  const Failure decryptionFailures[] = {
      {"[Number of C", "[Number of P", missing("[Number of Ciphertexts]", 6565), "480\n"},
      {"[Ciphertext]", "[Plaintext]", missing("[Ciphertext]", 6605), kIv + "\n"},
      {"[Tag]", "[]", missing("[Tag]", 6630), inputsOfCase},
      {kTag, kTag.substr(1), illegal("\n", 16, 15, 1, 6632), inputsOfCase},
      {kIv, kIv + "00", "aead_decrypt_gnutls : initialize error!!\nerr happens!! (6634)\n",
       "[AAD]\n" + kAad + "\n"},
  };
  expectFailures(decryption, decryptionFailures);
}

TEST(AeadRequest, ReportsAllocationsThatFail) {
  const int sites[] = {6560, 6576, 6577, 6578, 6579, 6580, 6581};
  for (int i = 0; i < std::ssize(sites); ++i) {
    const FailingAllocator failing(i);
    const Outcome outcome = runInProcess(kEncryption);
    EXPECT_EQ(outcome.console, "malloc err!! (" + std::to_string(sites[i]) + ")\n");
    EXPECT_EQ(outcome.response, i == 0 ? kHeader : kHeader + "[Number of Plaintexts]\n2\n");
  }
}

}  // namespace
}  // namespace runner
