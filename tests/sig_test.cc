#include <gtest/gtest.h>
#include <openssl/ec.h>
#include <openssl/err.h>
#include <openssl/rsa.h>

#include <string>
#include <utility>
#include <vector>

#include "sig/dsa_engine.h"
#include "sig/openssl_error.h"
#include "sig/pubkey.h"
#include "sig/sig_handles.h"
#include "sig/signature_primitives.h"
#include "support/exchange.h"

namespace {

using runner::CryptEngine;
using runner::HashId;
using runner::ModeId;
using Bytes = std::vector<std::uint8_t>;

TEST(EncodeSigRS, WritesDer) {
  const struct {
    std::size_t rLength, sLength;
    std::uint8_t rFirst, sFirst;  // followed by 01 01 ...
    std::string beforeR, beforeS;
  } cases[] = {
      {20, 20, 0x7F, 0x7F, "302C0214", "0214"},     {20, 20, 0x7F, 0x80, "302D0214", "021500"},
      {20, 20, 0x00, 0x01, "302C0214", "0214"},     {0, 1, 0x00, 0xFF, "30060200", "020200"},
      {61, 61, 0x01, 0x7F, "307E023D", "023D"},     {61, 61, 0x80, 0xFF, "308180023E00", "023E00"},
      {66, 66, 0x81, 0x01, "308189024300", "0242"}, {126, 125, 0x01, 0x01, "3081FF027E", "027D"},
      {61, 61, 0x80, 0x7F, "307F023E00", "023D"},   {127, 122, 0x01, 0x01, "3081FD027F", "027A"},
      {122, 127, 0x01, 0x01, "3081FD027A", "027F"},
  };
  for (const auto& row : cases) {
    Bytes r(row.rLength, 1), s(row.sLength, 1);
    if (!r.empty()) r[0] = row.rFirst;
    s[0] = row.sFirst;
    const runner::Buffer encoding = runner::encodeSigRS(r, s);
    EXPECT_EQ(hexText(encoding.bytes()), row.beforeR + hexText(r) + row.beforeS + hexText(s));
  }
}

TEST(EncodeSigRS, RefusesWhatIsTooLong) {
  const std::pair<std::size_t, std::size_t> lengths[] = {{128, 1}, {1, 128}, {126, 126}};
  for (const auto& [r, s] : lengths) {
    testing::internal::CaptureStdout();
    EXPECT_EQ(runner::encodeForVerify(Bytes(r, 1), Bytes(s, 1)).size(), 0U);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "signature size is too large!!\nencoding signature(rs) failed!!\n");
  }
}

TEST(OpensslError, KeepsTheOldLayoutOfTheComparedCodes) {
  const std::pair<unsigned long, unsigned long> codes[] = {
      {ERR_PACK(ERR_LIB_EC, 0, EC_R_POINT_IS_NOT_ON_CURVE), 0x100B106B},
      {ERR_PACK(ERR_LIB_EC, 0, EC_R_BAD_SIGNATURE), 0x2A066064},
      {ERR_PACK(ERR_LIB_RSA, 0, 107), ERR_PACK(ERR_LIB_RSA, 0, 107)}};
  for (const auto& [code, recorded] : codes) {
    runner::recordOpensslError(code);
    EXPECT_EQ(std::exchange(runner::lastOpensslError, 0), recorded);
  }
}

// A key is released as what it is; AddressSanitizer sees one that is released twice or never.
TEST(PubKey, IsReleasedByEngineAndMode) {
  runner::freePubKey(ModeId::DSA, CryptEngine::OPENSSL, nullptr);
  runner::freePubKey(ModeId::DSA, CryptEngine::GNUTLS, nullptr);
  const runner::PubKey rsa = runner::ownPubKey(runner::RsaKey(RSA_new())).release();
  runner::freePubKey(ModeId::HMAC, CryptEngine::OPENSSL, rsa);
  runner::freePubKey(ModeId::RSASSA, CryptEngine::OPENSSL, rsa);
  const runner::PubKey gnutls = runner::ownPubKey(runner::newGnutlsKey()).release();
  runner::freePubKey(ModeId::HMAC, CryptEngine::GNUTLS, gnutls);
  runner::OwnedPubKey key = runner::ownPubKey(runner::EcKey(EC_KEY_new()));
  key = runner::ownPubKey(runner::DsaKey(DSA_new()));
  key = runner::ownPubKey(runner::RsaKey(RSA_new()));
}

// The signature algorithm follows the mode of the run, not the kind of the key.
TEST(VerifyDsa, ChoosesTheAlgorithmByMode) {
  runner::TestConfig config{.mode = ModeId::DSA, .hashId = HashId::SHA256};
  runner::OwnedPubKey key;
  const Bytes p = {0xA1, 0xA5}, q = {0xA3}, message(3), tooLong(128, 1);
  ASSERT_EQ(runner::makeDsaKey(config.engine, key, {.p = p, .q = q, .g = q, .y = q}), 0);
  EXPECT_EQ(runner::verifyDsa(config, key.get(), message, q, q), 1);
  config.mode = ModeId::RSASSA;
  EXPECT_EQ(runner::verifyDsa(config, key.get(), message, q, q), 1);
  config.mode = ModeId::HMAC;
  EXPECT_EQ(runner::verifyDsa(config, key.get(), message, tooLong, q), -1);
  config.engine = CryptEngine::OPENSSL;
  EXPECT_EQ(runner::verifyDsa(config, nullptr, message, tooLong, q), -1);
  config.hashId = HashId::NONE;
  EXPECT_EQ(runner::verifyDsa(config, nullptr, message, q, q), -1);
}

}  // namespace
