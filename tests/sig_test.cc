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
#include "support/run_request.h"

namespace {

using runner::CryptEngine;
using runner::HashId;
using runner::ModeId;
using Bytes = std::vector<std::uint8_t>;

TEST(EncodeSigRS, WritesDer) {
  struct Case {
    std::size_t rLength, sLength;
    const char *rStart, *sStart;  // the first byte, followed by 11 11 ...
    const char *beforeR, *beforeS;
  };
  const Case cases[] = {
      {20, 20, "7F", "7F", "302C0214", "0214"},     {20, 20, "7F", "80", "302D0214", "021500"},
      {20, 20, "00", "01", "302C0214", "0214"},     {0, 1, "", "FF", "30060200", "020200"},
      {61, 61, "01", "7F", "307E023D", "023D"},     {61, 61, "80", "FF", "308180023E00", "023E00"},
      {66, 66, "81", "01", "308189024300", "0242"}, {126, 125, "01", "01", "3081FF027E", "027D"},
      {61, 61, "80", "7F", "307F023E00", "023D"},   {127, 122, "01", "01", "3081FD027F", "027A"},
      {122, 127, "01", "01", "3081FD027A", "027F"},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(row.beforeR);
    std::string r = row.rStart, s = row.sStart;
    while (r.size() < 2 * row.rLength) r += "11";
    while (s.size() < 2 * row.sLength) s += "11";
    const runner::Buffer encoding = runner::encodeSigRS(fromHex(r), fromHex(s));
    const std::string expected = std::string(row.beforeR).append(r).append(row.beforeS).append(s);
    EXPECT_EQ(Bytes(encoding.data(), encoding.data() + encoding.size()), fromHex(expected));
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
  const Bytes p = fromHex("A1A5"), q = fromHex("A3"), message(3), tooLong(128, 1);
  ASSERT_EQ(runner::makeDsaKey(config.engine, key, {.p = p, .q = q, .g = q, .y = q}), 0);
  EXPECT_EQ(runner::verifyDsa(config, key.get(), message, q, q), 1);
  config.mode = ModeId::RSASSA;
  EXPECT_EQ(runner::verifyDsa(config, key.get(), message, q, q), 1);
  config.mode = ModeId::HMAC;
  EXPECT_EQ(runner::verifyDsa(config, key.get(), message, tooLong, q), -1);
}

}  // namespace
