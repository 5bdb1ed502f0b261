#include <gtest/gtest.h>

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "cipher/aes_engine.h"
#include "support/failing_allocator.h"
#include "support/run_request.h"

namespace runner {
namespace {

using Bytes = std::vector<std::uint8_t>;

// SP 800-38A, appendix F: the first two blocks of each example.
constexpr std::string_view kKey128 = "2b7e151628aed2a6abf7158809cf4f3c";
constexpr std::string_view kKey256 =
    "603deb1015ca71be2b73aef0857d77811f352c073b6108d72d9810a30914dff4";
constexpr std::string_view kIv = "000102030405060708090a0b0c0d0e0f";
constexpr std::string_view kPlaintext =
    "6bc1bee22e409f96e93d7e117393172aae2d8a571e03ac9c9eb76fac45af8e51";
constexpr std::string_view kCbc128 =
    "7649abac8119b246cee98e9b12e9197d5086cb9b507219ee95db113a917678b2";
constexpr std::string_view kCbc256 =
    "f58c4c04d6e5f1ba779eabfb5f7bfbd69cfc4e967edb808d679f777bc6702c7d";
constexpr std::string_view kEcb128 =
    "3ad77bb40d7a3660a89ecaf32466ef97f5d3d58503b9699de785895a96fdbaaf";
constexpr std::string_view kEcb256 =
    "f3eed1bdb5d2a03c064b5a7e3db181f8591ccb10d410ed26dc5ba74a31362870";

TestConfig configOf(CryptEngine engine, ModeId mode, std::string_view key) {
  TestConfig config;
  config.engine = engine;
  config.mode = mode;
  config.keyLength = static_cast<int>(key.size() / 2);
  return config;
}

TEST(AesEngine, GivesThePublishedAnswers) {
  struct Case {
    CryptEngine engine;
    ModeId mode;
    std::string_view key;
    std::string_view ciphertext;
  };
  const Case cases[] = {
      {CryptEngine::GNUTLS, ModeId::CBC, kKey128, kCbc128},
      {CryptEngine::GNUTLS, ModeId::CBC, kKey256, kCbc256},
      {CryptEngine::OPENSSL, ModeId::CBC, kKey128, kCbc128},
      {CryptEngine::OPENSSL, ModeId::CBC, kKey256, kCbc256},
      {CryptEngine::OPENSSL, ModeId::ECB, kKey128, kEcb128},
      {CryptEngine::OPENSSL, ModeId::ECB, kKey256, kEcb256},
  };
  const Bytes plaintext = fromHex(kPlaintext);
  const Bytes iv = fromHex(kIv);
  for (const Case& row : cases) {
    SCOPED_TRACE(row.ciphertext);
    const TestConfig config = configOf(row.engine, row.mode, row.key);
    const Bytes key = fromHex(row.key);
    Bytes out(48);
    EXPECT_EQ(execEncrypt(&config, plaintext.data(), 32, key.data(), iv.data(), out.data()), 32);
    EXPECT_EQ(Bytes(out.begin(), out.begin() + 32), fromHex(row.ciphertext));
    const Bytes ciphertext = out;
    out.assign(33, 0xEE);
    EXPECT_EQ(execDecrypt(&config, ciphertext.data(), 32, key.data(), iv.data(), out.data()), 32);
    EXPECT_EQ(Bytes(out.begin(), out.begin() + 32), plaintext);
    EXPECT_EQ(out[32], 0xEE);
  }
}

TEST(AesEngine, SaysWhatItCannotDo) {
  struct Case {
    int engine;
    ModeId mode;
    int keyLength;
    int len;
    int encryption;
    std::string_view encryptionLine;
    int decryption;
    std::string_view decryptionLine;
  };
  const Case cases[] = {
      {0, ModeId::ECB, 16, 16, -1, "not supported!!\n", -1, "not supported!!\n"},
      {0, ModeId::CBC, 20, 16, -59, "encrypt_gnutls : initialize error!!\n", -59,
       "decrypt_gnutls : initialize error!!\n"},
      {1, ModeId::CBC, 16, 15, 16, "", -1, "decrypt_openssl : finalize error!!\n"},
      {2, ModeId::CBC, 16, 16, -1, "", 1, ""},
      {3, ModeId::CBC, 16, 16, -1, "", -1, ""},
      {4, ModeId::CBC, 16, 16, -1, "execEncrypt : unsupported crypt engine!!\n", -1,
       "execDecrypt : not supported crypt engine!!\n"},
      {-1, ModeId::CBC, 16, 16, -1, "execEncrypt : unsupported crypt engine!!\n", -1,
       "execDecrypt : not supported crypt engine!!\n"},
  };
  const Bytes zeros(32);
  for (const Case& row : cases) {
    SCOPED_TRACE(row.engine);
    TestConfig config;
    config.engine = static_cast<CryptEngine>(row.engine);
    config.mode = row.mode;
    config.keyLength = row.keyLength;
    Bytes out(48, 0xEE);
    testing::internal::CaptureStdout();
    EXPECT_EQ(execEncrypt(&config, zeros.data(), row.len, zeros.data(), zeros.data(), out.data()),
              row.encryption);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), row.encryptionLine);
    out.assign(48, 0xEE);
    testing::internal::CaptureStdout();
    EXPECT_EQ(execDecrypt(&config, zeros.data(), row.len, zeros.data(), zeros.data(), out.data()),
              row.decryption);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), row.decryptionLine);
    if (row.decryption == 1) {
      EXPECT_EQ(out, Bytes(48, 0xEE));
    }
  }
  testing::internal::CaptureStdout();
  Bytes out(48);
  const TestConfig config;
  EXPECT_EQ(execEncrypt(nullptr, zeros.data(), 16, zeros.data(), zeros.data(), out.data()), -1);
  EXPECT_EQ(execDecrypt(&config, zeros.data(), 16, nullptr, zeros.data(), out.data()), -1);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "execEncrypt : illegal pointer!!\nexecDecrypt : illegal pointer!!\n");
}

const std::string kHeader =
    "[Algorithm Name]\nAES\n[Function Name]\nEncryption\n[Modes of Operation]\nCBC\n"
    "[Bitlength of Key]\n128\n";
const std::string kZeroBlock = std::string(32, '0');
// FIPS 197's cipher of the zero block under the zero key (NIST GFSbox and VarKey begin from it).
const std::string kZeroAnswer = "66E94BD4EF8A2C3B884CFA59CA342B2E";

// A sound request with the smallest sections of all six procedures.
const std::string kRequest =
    kHeader + "[Plaintext for KAT-Text]\n" + kZeroBlock + "\n[Key for KAT-Key]\n" + kZeroBlock +
    "\n[Plaintext for KAT-GFSbox]\n" + kZeroBlock + "\n[Key for KAT-KeySbox]\n" + kZeroBlock +
    "\n[Number of Blocks for MMT]\n1\n[Key for MMT]\n" + kZeroBlock + "\n[IV for MMT]\n" +
    kZeroBlock + "\n[Plaintext for MMT]\n" + kZeroBlock +
    "\n[Number of Inner-loop for MCT]\n2\n[Number of Outer-loop for MCT]\n1\n[Initial Key for "
    "MCT]\n" +
    kZeroBlock + "\n[Initial Plaintext for MCT]\n" + kZeroBlock + "\n[Initial IV for MCT]\n" +
    kZeroBlock + "\n";

const std::string kTextDone = "procKAT_Text finish normally\n";
const std::string kKeyDone = "procKAT_Key finish normally\n";
const std::string kGfsboxDone = "procKAT_GFSbox finish normally\n";
const std::string kKeySboxDone = "procKAT_KeySbox finish normally\n";
const std::string kMmtDone = "procMMT finish normally\n";
const std::string kMctDone = "procMCT finish normally\n";
const std::string kKatsDone = kTextDone + kKeyDone + kGfsboxDone + kKeySboxDone;

std::string missing(const std::string& key, int site) {
  return "\"" + key + "\" is not found!!\nerr happens!! (" + std::to_string(site) + ")\n";
}

std::string illegal(const std::string& text, int num, int i, int j, int site) {
  return "\nillegal data!! (" + text + ")\nnum=" + std::to_string(num) +
         ", i=" + std::to_string(i) + ", j=" + std::to_string(j) + "\nerr happens!! (" +
         std::to_string(site) + ")\n";
}

TEST(AesRequest, RunsSixProceduresInOrder) {
  const Outcome outcome = runInProcess(kRequest);
  EXPECT_EQ(outcome.console, kKatsDone + kMmtDone + kMctDone);
  EXPECT_NE(outcome.response.find(
                "[Key for KAT-Text]\n" + kZeroBlock + "\n[Plaintext for KAT-Text]\n" + kZeroBlock +
                "\n[IV for KAT-Text]\n" + kZeroBlock + "\n[Ciphertext for KAT-Text]\n" +
                kZeroAnswer + "\n[Plaintext for KAT-Key]\n" + kZeroBlock + "\n[IV for KAT-Key]\n" +
                kZeroBlock + "\n[Key for KAT-Key]\n" + kZeroBlock + "\n[Ciphertext for KAT-Key]\n" +
                kZeroAnswer + "\n"),
            std::string::npos)
      << outcome.response;
}

TEST(AesRequest, FailsStepByStep) {
  struct Case {
    std::string_view from;
    std::string_view to;
    std::string console;
    std::string tail;  // the end of the response
  };
  const Case cases[] = {
      {"[Plaintext for KAT-Text]", "[x]",
       missing("[Plaintext for KAT-Text]", 2087) + kKeyDone + kGfsboxDone + kKeySboxDone +
           kMmtDone + kMctDone,
       ""},
      {"[Plaintext for KAT-Text]\n", "[Plaintext for KAT-Text]\n\n",
       illegal("\n", 16, 0, 0, 2103) + kKeyDone + kGfsboxDone + kKeySboxDone + kMmtDone + kMctDone,
       ""},
      {"[Key for KAT-Key]", "[x]",
       kTextDone + missing("[Key for KAT-Key]", 2202) + kGfsboxDone + kKeySboxDone + kMmtDone +
           kMctDone,
       ""},
      {"[Number of Blocks for MMT]", "[x]",
       kKatsDone + missing("[Number of Blocks for MMT]", 2346) + kMctDone, ""},
      {"MMT]\n1\n", "MMT]\n0\n", kKatsDone + "illegal blknum!!\n" + kMctDone, ""},
      {"MMT]\n1\n", "MMT]\n33554432\n", kKatsDone + "illegal blknum!!\n" + kMctDone, ""},
      {"[Key for MMT]", "[x]", kKatsDone + missing("[Key for MMT]", 2360) + kMctDone, ""},
      {"[Key for MMT]\n0", "[Key for MMT]\n", kKatsDone + illegal("\n", 16, 15, 1, 2363) + kMctDone,
       ""},
      {"[IV for MMT]", "[x]", kKatsDone + missing("[IV for MMT]", 2369) + kMctDone, ""},
      {"[IV for MMT]\n00", "[IV for MMT]\n0x",
       kKatsDone + illegal("x" + kZeroBlock.substr(2) + "\n", 16, 0, 1, 2372) + kMctDone, ""},
      {"[Plaintext for MMT]", "[x]", kKatsDone + missing("[Plaintext for MMT]", 2378) + kMctDone,
       ""},
      {"MMT]\n1\n", "MMT]\n2\n", kKatsDone + illegal("\n", 32, 16, 0, 2385) + kMctDone, ""},
      {"[Number of Inner-loop for MCT]", "[x]",
       kKatsDone + kMmtDone + missing("[Number of Inner-loop for MCT]", 2449), kZeroAnswer + "\n"},
      {"MCT]\n2\n", "MCT]\n-2\n", kKatsDone + kMmtDone, "[Number of Inner-loop for MCT]\n"},
      {"[Number of Outer-loop for MCT]", "[x]",
       kKatsDone + kMmtDone + missing("[Number of Outer-loop for MCT]", 2461), "\n2\n"},
      {"MCT]\n1\n", "MCT]\none\n", kKatsDone + kMmtDone, "[Number of Outer-loop for MCT]\n"},
      {"[Initial Key for MCT]", "[x]",
       kKatsDone + kMmtDone + missing("[Initial Key for MCT]", 2473), "\n1\n"},
      {"[Initial Key for MCT]\n", "[Initial Key for MCT]\n\n",
       kKatsDone + kMmtDone + illegal("\n", 16, 0, 0, 2476), "[Initial Key for MCT]\n"},
      {"[Initial Plaintext for MCT]", "[x]",
       kKatsDone + kMmtDone + missing("[Initial Plaintext for MCT]", 2481), "\n"},
      {"[Initial Plaintext for MCT]\n", "[Initial Plaintext for MCT]\n-",
       kKatsDone + kMmtDone + illegal("-" + kZeroBlock + "\n", 16, 0, 0, 2484),
       "[Initial Plaintext for MCT]\n"},
      {"[Initial IV for MCT]", "[x]", kKatsDone + kMmtDone + missing("[Initial IV for MCT]", 2490),
       "\n"},
      {"[Initial IV for MCT]\n", "[Initial IV for MCT]\n1\n",
       kKatsDone + kMmtDone + illegal("\n", 16, 0, 1, 2493), "[Initial IV for MCT]\n"},
      // ECB is not GnuTLS's to compute; the lists and parameters before the engine call stay.
      {"CBC", "ECB",
       "not supported!!\nerr happens!! (2106)\nnot supported!!\nerr happens!! (2253)\n"
       "not supported!!\nerr happens!! (2106)\nnot supported!!\nerr happens!! (2253)\n"
       "not supported!!\nerr happens!! (2390)\nnot supported!!\nerr happens!! (2504)\n",
       "[Ciphertext for MCT]\n"},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(std::string(row.from) + " -> " + std::string(row.to));
    const Outcome outcome = runInProcess(edited(kRequest, row.from, row.to));
    EXPECT_EQ(outcome.console, row.console);
    EXPECT_TRUE(outcome.response.ends_with(row.tail)) << outcome.response;
  }
  const Outcome tooLong = runInProcess(edited(kRequest, "128", "384"));
  EXPECT_EQ(lastLines(tooLong.console, 7), tooLong.console);
  EXPECT_EQ(tooLong.response, edited(kHeader, "128", "384"));
}

// In decryption the ciphertexts and the keys are two lists.
TEST(KnownAnswerTest, PairsCiphertextsWithKeys) {
  const std::string header = edited(kHeader, "Encryption", "Decryption");
  const std::string key = "80" + std::string(30, '0');
  // NIST's VarKey, first vector: the zero block under this key.
  const std::string answer = "0EDD33D3C621E546455BD8BA1418BEC8";
  const std::string keys = "[Ciphertext for KAT-Key]\n" + answer + "\n";
  struct Case {
    std::string sections;
    std::string console;
    std::string tail;
  };
  const std::string kEcho = keys + "[IV for KAT-Key]\n" + kZeroBlock + "\n[Key for KAT-Key]\n";
  const std::string kAnswered = kEcho + key + "\n[Plaintext for KAT-Key]\n" + kZeroBlock + "\n";
  const Case cases[] = {
      {keys + "[Key for KAT-Key]\n" + key + "\nmore\n", kKeyDone, kAnswered},
      {keys + "[other]\n[Key for KAT-Key]\n" + key, kKeyDone, kAnswered},
      {keys, missing("[Key for KAT-Key]", 2225), ""},
      {keys + answer + "\n[Key for KAT-Key]\n" + key + "\n", "unexpected EOF!!\n" + kKeyDone, ""},
      {keys + answer + "\n[Key for KAT-Key]\n" + key + "\n[",
       "unexpected end of key data!!\n" + kKeyDone, ""},
      {keys + "[Key for KAT-Key]\n8\n", illegal("\n", 16, 0, 1, 2241) + kKeyDone, ""},
      {keys + "F\n[x]\n[Key for KAT-Key]\n" + key + "\n" + key + "\n",
       illegal("\n", 16, 0, 1, 2217) + kKeyDone, ""},
      {"[Ciphertext for KAT-Key]\n[Key for KAT-Key]\n", kKeyDone,
       "[Ciphertext for KAT-Key]\n[IV for KAT-Key]\n" + kZeroBlock +
           "\n[Key for KAT-Key]\n[Plaintext for KAT-Key]\n"},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(row.sections);
    const Outcome outcome = runInProcess(header + row.sections);
    const std::string before = missing("[Ciphertext for KAT-Text]", 2087);
    EXPECT_EQ(outcome.console.substr(0, before.size() + row.console.size()), before + row.console);
    EXPECT_TRUE(outcome.response.ends_with(row.tail)) << outcome.response;
  }
}

TEST(AesRequest, ReportsAllocationsThatFail) {
  // The fifth and further allocations of the sound request are those of procMMT and procMCT.
  const std::pair<int, std::string> cases[] = {
      {0, "malloc err!! (2097)\n" + kKeyDone + kGfsboxDone + kKeySboxDone + kMmtDone + kMctDone},
      {1, kTextDone + "malloc err!! (2208)\n" + kGfsboxDone + kKeySboxDone + kMmtDone + kMctDone},
      {4, kKatsDone + "malloc err!! (2380)\n" + kMctDone},
      {5, kKatsDone + kMmtDone + "malloc err!! (2444)\n"},
      {6, kKatsDone + kMmtDone + "malloc err!! (2445)\n"},
  };
  for (const auto& [successes, console] : cases) {
    const FailingAllocator failing(successes);
    EXPECT_EQ(runInProcess(kRequest).console, console);
  }
}

// Three outer iterations from a key of AA bytes and zero blocks; the last outputs were computed
// from AESAVS's definition with another library. A 256-bit key with an inner loop of 1 keeps its
// last half.
TEST(MonteCarloTest, FollowsTheChainInEveryMode) {
  struct Case {
    const char* mode;
    const char* function;
    const char* keyBits;
    const char* innerCount;
    const char* lastOutput;
  };
  const Case cases[] = {
      {"CBC", "Encryption", "128", "1", "F074596ECE29BDEBB67D12F234719AE1"},
      {"CBC", "Encryption", "256", "1", "6E1276681D10F810E0F0224AFDC745F9"},
      {"CBC", "Decryption", "128", "1", "273EC6B16DAEDB06110E6F709FF87BA0"},
      {"CBC", "Decryption", "256", "1", "49E6FF9DFA649DEC3975459C572E4716"},
      {"CBC", "Decryption", "256", "3", "2FFE6D3DBEF0E08F6E4B57BC2A73714B"},
      {"ECB", "Encryption", "128", "1", "4037CB9CB55C1D5EF59EA33BC0FE6BE5"},
      {"ECB", "Encryption", "256", "3", "66C86A444218BAD0EB5664A0521C7316"},
      {"ECB", "Decryption", "128", "3", "7FCD5FDCD65F6D1597C77BE655590C88"},
      {"ECB", "Decryption", "256", "1", "2F719E1C7C5787705633473FFC05BA71"},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(std::string(row.mode) + row.function + row.keyBits);
    const bool encrypts = std::string_view(row.function) == "Encryption";
    const std::string key(static_cast<std::size_t>(std::stoi(row.keyBits)) / 4, 'A');
    const std::string header = edited(
        edited(edited(kHeader, "Encryption", row.function), "128", row.keyBits), "CBC", row.mode);
    const std::string request = header + "[Number of Inner-loop for MCT]\n" + row.innerCount +
                                "\n[Number of Outer-loop for MCT]\n3\n[Initial Key for MCT]\n" +
                                key + "\n[Initial " + (encrypts ? "Plaintext" : "Ciphertext") +
                                " for MCT]\n" + kZeroBlock + "\n[Initial IV for MCT]\n" +
                                kZeroBlock + "\n";
    const std::string lastLine = std::string(row.lastOutput) + "\n";
    EXPECT_EQ(lastLines(runInProcess(request, CryptEngine::OPENSSL).response, 1), lastLine);
    if (std::string_view(row.mode) == "CBC") {
      EXPECT_EQ(lastLines(runInProcess(request).response, 1), lastLine);
    }
    // The "HDD" engine decrypts to whatever stood in the output: zeros.
    const Outcome hdd = runInProcess(request, CryptEngine::HDD);
    if (encrypts) {
      EXPECT_TRUE(hdd.console.ends_with("err happens!! (2504)\n"));
    } else {
      EXPECT_EQ(lastLines(hdd.response, 3),
                kZeroBlock + "\n" + kZeroBlock + "\n" + kZeroBlock + "\n");
    }
  }
}

}  // namespace
}  // namespace runner
