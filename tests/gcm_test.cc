#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "cipher/aead_engine.h"
#include "support/failing_allocator.h"
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

const std::string kHeader =
    "[Algorithm Name]\nGCM/GMAC\n[Function Name]\nEncryption\n[Bitlength of Key]\n128\n"
    "[Max BitLength of Plaintext]\n480\n";
const std::string kDecryptionHeader =
    edited(edited(kHeader, "Encryption", "Decryption"), "Plaintext", "Ciphertext");
const std::string kDone = "procAEAD finish normally\n";
const std::string kKeySection = "[Key]\n" + kKey + "\n";
const std::string kIvSection = "[IV]\n" + kIv + "\n";
const std::string kAadSection = "[AAD]\n" + kAad + "\n";
const std::string kTagSection = "[Tag]\n" + kTag + "\n";
// Case 1 of the submission: no text and no AAD under zeros.
const std::string kZeroKey = "[Key]\n" + std::string(32, '0') + "\n";
const std::string kZeroIv = "[IV]\n" + std::string(24, '0') + "\n";
const std::string kZeroTag = "[Tag]\n58E2FCCEFA7E3061367F1D57A4E7455A\n";

const std::string kEncryption = kHeader + "[Number of Plaintexts]\n2\n" + kKeySection + kIvSection +
                                "[Plaintext]\n" + kText + "\n" + kAadSection + kZeroKey + kZeroIv +
                                "[Plaintext]\n\n[AAD]\n\n";
const std::string kCiphertextCase =
    kKeySection + kIvSection + "[Ciphertext]\n" + kAnswer + "\n" + kAadSection;

// Cases whose tag is wrong, after one with a text and before one without.
TEST(AeadRequest, WithholdsWhatDoesNotVerify) {
  const std::string start = kDecryptionHeader + "[Number of Ciphertexts]\n4\n";
  const std::string wrong = edited(kCiphertextCase, "[AAD]\nFE", "[AAD]\nFF");
  const std::string zeros = kZeroKey + kZeroIv + "[Ciphertext]\n\n[AAD]\n\n";
  const std::string invalid = "[Plaintext]\nINVALID\n" + kTagSection;
  // Whatever follows the last case is not read.
  const std::string request = start + kCiphertextCase + kTagSection + wrong + kTagSection + zeros +
                              kTagSection + zeros + kZeroTag + "[Key]\nnone\n";
  const std::string response = start + kCiphertextCase + "[Plaintext]\n" + kText + "\n" +
                               kTagSection + wrong + invalid + zeros + invalid + zeros +
                               "[Plaintext]\n\n" + kZeroTag;
  for (const CryptEngine engine : {CryptEngine::GNUTLS, CryptEngine::OPENSSL}) {
    const Outcome outcome = runInProcess(request, engine);
    EXPECT_EQ(outcome.console, kDone);
    EXPECT_EQ(outcome.response, response);
  }
}

struct Edit {
  std::string from;
  std::string to;
  std::string console;  // without the line of the failure site
  int site;             // 0 if there is none
  std::string tail;     // the end of the response
  CryptEngine engine = CryptEngine::GNUTLS;
};

void expectOutcomes(const std::string& request, const std::vector<Edit>& edits) {
  for (const Edit& row : edits) {
    SCOPED_TRACE(row.from + " -> " + row.to);
    const Outcome outcome = runInProcess(edited(request, row.from, row.to), row.engine);
    const std::string site =
        row.site == 0 ? "" : "err happens!! (" + std::to_string(row.site) + ")\n";
    EXPECT_EQ(outcome.console, row.console + site);
    EXPECT_TRUE(outcome.response.ends_with(row.tail)) << outcome.response;
  }
}

TEST(AeadRequest, FailsStepByStep) {
  const std::string count = "[Number of Plaintexts]\n";
  const std::string keyed = count + "2\n" + kKeySection;
  const std::string withIv = keyed + kIvSection;
  const std::string tooLong = "unexpected long data!!\n";
  expectOutcomes(kEncryption,
                 {{"s]", "]", "\"[Number of Plaintexts]\" is not found!!\n", 6565, "480\n"},
                  {"s]\n2", "s]\n0", "", 0, count},
                  {"s]\n2", "s]\n-2", "", 0, count},
                  {"s]\n2", "s]\n2147483647", "\"[Key]\" is not found!!\n", 6587, kZeroTag},
                  {"[Key]\n00", "[Key]\n", "\nillegal data!! (\n)\nnum=16, i=15, j=0\n", 6589,
                   "[Ciphertext]\n" + kAnswer + "\n" + kTagSection},
                  {kZeroIv, "", "\"[IV]\" is not found!!\n", 6595, kZeroKey},
                  {kIv, kIv + "0", "\nillegal data!! (\n)\nnum=13, i=12, j=1\n", 6599, keyed},
                  {kIv, kLongIv.substr(0, 65), tooLong, 6599, keyed},
                  {kIv, kLongIv.substr(0, 64), "aead_encrypt_gnutls : initialize error!!\n", 6626,
                   kAadSection},
                  {kIv, kLongIv.substr(0, 64), kDone, 0, kZeroTag, CryptEngine::OPENSSL},
                  {kIv, "", "aead_encrypt_openssl : SET_IVLEN error!!\n", 6626, kAadSection,
                   CryptEngine::OPENSSL},
                  {"", "", "execAeadEncrypt : unsupported crypt engine!!\n", 6626, kAadSection,
                   CryptEngine::HDD},
                  {"[Plaintext]\n\n", "", "\"[Plaintext]\" is not found!!\n", 6605, kZeroIv},
                  {kText, "0", "\nillegal data!! (\n)\nnum=1, i=0, j=1\n", 6609, withIv},
                  {kText, kText + "0", tooLong, 6609, withIv},
                  {"480", "472", tooLong, 6609, withIv},
                  {"480", "-480", tooLong, 6609, withIv},
                  {"480", "long", tooLong, 6609, withIv},
                  {"[AAD]\n\n", "", "\"[AAD]\" is not found!!\n", 6615, "[Plaintext]\n\n"},
                  {kAad, "0x", "\nillegal data!! (x\n)\nnum=1, i=0, j=1\n", 6619, kText + "\n"},
                  {kAad, kAad + kAad.substr(0, 25), tooLong, 6619, kText + "\n"},
                  {kAad, kAad + kAad.substr(0, 24) + "\r", kDone, 0, kZeroTag}});
  expectOutcomes(
      kDecryptionHeader + "[Number of Ciphertexts]\n1\n" + kCiphertextCase + kTagSection,
      {{"s]", "]", "\"[Number of Ciphertexts]\" is not found!!\n", 6565, "480\n"},
       {"[Ciphertext]", "[]", "\"[Ciphertext]\" is not found!!\n", 6605, kIvSection},
       {"[Tag]", "[]", "\"[Tag]\" is not found!!\n", 6630, kAadSection},
       {kTag, "", "\nillegal data!! (\n)\nnum=16, i=0, j=0\n", 6632, kAadSection},
       {kIv, kIv + "00", "aead_decrypt_gnutls : initialize error!!\n", 6634, kAadSection},
       {"", "", "execAeadDecrypt : unsupported crypt engine!!\n", 6634, kAadSection,
        CryptEngine::HDD}});
  // A key of 64 bytes, as some MAC has it, is no AES key.
  const std::string longKey = edited(edited(kEncryption, "128", "512"), kKey, kText + "00112233");
  EXPECT_EQ(runInProcess(longKey).console,
            "aead_encrypt_gnutls : initialize error!!\nerr happens!! (6626)\n");
}

TEST(AeadRequest, ReportsAllocationsThatFail) {
  int successes = 0;
  for (const int site : {6560, 6576, 6577, 6578, 6579, 6580, 6581}) {
    const FailingAllocator failing(successes++);
    EXPECT_EQ(runInProcess(kEncryption).console, "malloc err!! (" + std::to_string(site) + ")\n");
  }
}

}  // namespace
}  // namespace runner
