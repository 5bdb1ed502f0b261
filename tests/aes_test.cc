#include <gtest/gtest.h>

#include <cstdint>
#include <string_view>
#include <vector>

#include "cipher/aes_engine.h"
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
    int decryption;
    std::string_view encryptionLine;
    std::string_view decryptionLine;
  };
  const Case cases[] = {
      {0, ModeId::ECB, 16, 16, -1, -1, "not supported!!\n", "not supported!!\n"},
      {0, ModeId::CBC, 20, 16, -59, -59, "encrypt_gnutls : initialize error!!\n",
       "decrypt_gnutls : initialize error!!\n"},
      {1, ModeId::CBC, 16, 15, 16, -1, "", "decrypt_openssl : finalize error!!\n"},
      {2, ModeId::CBC, 16, 16, -1, 1, "", ""},
      {3, ModeId::CBC, 16, 16, -1, -1, "", ""},
      {4, ModeId::CBC, 16, 16, -1, -1, "execEncrypt : unsupported crypt engine!!\n",
       "execDecrypt : not supported crypt engine!!\n"},
      {-1, ModeId::CBC, 16, 16, -1, -1, "execEncrypt : unsupported crypt engine!!\n",
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

}  // namespace
}  // namespace runner
