#include <gtest/gtest.h>
#include <openssl/ec.h>
#include <openssl/err.h>
#include <openssl/obj_mac.h>
#include <openssl/rsa.h>

#include <cctype>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "ec/curve_state.h"
#include "ec/curve_table.h"
#include "ec/ec_key.h"
#include "ec/ecdsa_engine.h"
#include "ec/point_check.h"
#include "sig/dsa_engine.h"
#include "sig/openssl_error.h"
#include "sig/pubkey.h"
#include "sig/rsa_engine.h"
#include "sig/sig_handles.h"
#include "sig/signature_primitives.h"
#include "support/exchange.h"
#include "support/run_request.h"

namespace runner {
namespace {

using Bytes = std::vector<std::uint8_t>;

// Whole requests for every hash with every signature algorithm, every curve and both forms of a
// request, with the values of vectors/signatures.txt. Each signature stands once with its message
// and once with another one.

void expectFromBoth(const std::string& name, const Values& values, const std::string& console) {
  for (const auto engine : {CryptEngine::GNUTLS, CryptEngine::OPENSSL}) {
    expectExchange(filledIn(name, values), console, engine);
  }
}

// expectVerdicts expects the same of both forms of a request; in the second one digits are lower
// case.
void expectVerdicts(const std::string& algorithm, Values values, const std::string& curve) {
  const std::string done = curve + "procVerify finish normally\n";
  expectFromBoth(algorithm, values, done);
  if (algorithm == "rsa") return;
  for (auto& [name, value] : values) {
    for (char& digit : value) digit = static_cast<char>(std::tolower(digit));
  }
  values["key lines"] = filledIn(algorithm + " key", values);
  const std::string header = "hash: " + values["hash"] + "\nrequest size : 5\nmessage num : 2\n";
  expectFromBoth(algorithm + " records", values, header + done);
}

TEST(SignatureRows, KnowEveryAlgorithmCurveAndHash) {
  std::istringstream rows(readFile(RUNNER_VECTORS "/signatures.txt"));
  Values values;
  int count = 0;
  for (std::string row; std::getline(rows, row);) {
    if (row.empty() || row.starts_with('#')) continue;
    if (row.starts_with("algorithm ")) values.clear();
    std::istringstream words(row);
    for (std::string name; words >> name;) words >> values[name];
    SCOPED_TRACE(values["algorithm"] + " " + values["curve"] + " " + values["hash"]);
    const std::string curve = values["curve"].empty() ? "" : "curveid: " + values["id"] + "\n";
    if (row.starts_with("hash ")) {
      expectVerdicts(values["algorithm"], values, curve);
      ++count;
    } else if (!curve.empty()) {
      expectFromBoth("public keys", values, "procChkPublicKey finish normally\n");
    }
  }
  EXPECT_EQ(count, 7 * 5);
}

TEST(EncodeSigRS, WritesDerOfUpTo255Bytes) {
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
    const Buffer encoding = encodeSigRS(r, s);
    EXPECT_EQ(hexText(encoding.bytes()), row.beforeR + hexText(r) + row.beforeS + hexText(s));
  }
  const std::pair<std::size_t, std::size_t> lengths[] = {{128, 1}, {1, 128}, {126, 126}};
  for (const auto& [r, s] : lengths) {
    EXPECT_EQ(encodeForVerify(Bytes(r, 1), Bytes(s, 1)).size(), 0U);
  }
}

TEST(OpensslError, KeepsTheOldLayoutOfTheComparedCodes) {
  const std::pair<unsigned long, unsigned long> codes[] = {
      {ERR_PACK(ERR_LIB_EC, 0, EC_R_POINT_IS_NOT_ON_CURVE), 0x100B106B},
      {ERR_PACK(ERR_LIB_EC, 0, EC_R_BAD_SIGNATURE), 0x2A066064},
      {ERR_PACK(ERR_LIB_RSA, 0, 107), ERR_PACK(ERR_LIB_RSA, 0, 107)}};
  for (const auto& [code, recorded] : codes) {
    recordOpensslError(code);
    EXPECT_EQ(std::exchange(lastOpensslError, 0), recorded);
  }
}

// A key is released as what it is; AddressSanitizer sees one that is released twice or never.
TEST(PubKey, IsReleasedByEngineAndMode) {
  freePubKey(ModeId::DSA, CryptEngine::OPENSSL, nullptr);
  freePubKey(ModeId::DSA, CryptEngine::GNUTLS, nullptr);
  auto* const rsa = ownPubKey(RsaKey(RSA_new())).release();
  freePubKey(ModeId::HMAC, CryptEngine::OPENSSL, rsa);
  freePubKey(ModeId::RSASSA, CryptEngine::OPENSSL, rsa);
  auto* const gnutls = ownPubKey(newGnutlsKey()).release();
  freePubKey(ModeId::HMAC, CryptEngine::GNUTLS, gnutls);
  OwnedPubKey key = ownPubKey(EcKey(EC_KEY_new()));
  key = ownPubKey(DsaKey(DSA_new()));
  // Nothing is left of an earlier key when another one cannot be made.
  const auto isNone = [&](int result) {
    return result < 0 && !std::exchange(key, ownPubKey(RsaKey(RSA_new())));
  };
  EXPECT_TRUE(isNone(makeRsaKey(CryptEngine::GNUTLS, key, {}, {})));
  EXPECT_TRUE(isNone(makeDsaKey(CryptEngine::GNUTLS, key, {})));
  EXPECT_TRUE(isNone(importEcPoint(CryptEngine::GNUTLS, key, {}, {}, 0)));
  EXPECT_TRUE(isNone(importEcPublicKey(CryptEngine::GNUTLS, key, {})));
  EXPECT_TRUE(isNone(makeEcKey(key, {}, {}, 0)));
}

// The signature algorithm follows the mode of the run, not the kind of the key.
TEST(VerifyDsa, ChoosesTheAlgorithmByMode) {
  TestConfig config{.mode = ModeId::DSA, .hashId = HashId::SHA256};
  OwnedPubKey key;
  const Bytes p = {0xA1, 0xA5}, q = {0xA3}, message(3), tooLong(128, 1);
  ASSERT_EQ(makeDsaKey(config.engine, key, {.p = p, .q = q, .g = q, .y = q}), 0);
  EXPECT_EQ(verifyDsa(config, key.get(), message, q, q), 1);
  config.mode = ModeId::RSASSA;
  EXPECT_EQ(verifyDsa(config, key.get(), message, q, q), 1);
  config.mode = ModeId::HMAC;
  EXPECT_EQ(verifyDsa(config, key.get(), message, q, q), -1);
  config.engine = CryptEngine::OPENSSL;
  ASSERT_EQ(makeDsaKey(config.engine, key, {.p = p, .q = q, .g = q, .y = q}), 0);
  ERR_raise(ERR_LIB_RSA, 107);  // left behind by an earlier call
  EXPECT_EQ(verifyDsa(config, key.get(), message, Bytes(2), q), 1);
  EXPECT_EQ(std::exchange(lastOpensslError, 0), 0U);
  EXPECT_EQ(verifyDsa(config, nullptr, message, tooLong, q), -1);
  config.hashId = HashId::NONE;
  EXPECT_EQ(verifyDsa(config, nullptr, message, q, q), -1);
}

constexpr CryptEngine kOpenssl = CryptEngine::OPENSSL;

TEST(PublicKeyValidation, TakesManyKeysAndKeepsTheirOrder) {
  // An error of an earlier verification words the first refusal only.
  lastOpensslError = kBadSignature;
  const std::string request = example("ecdsa-p-256-public-key-validation", ".req");
  std::string keys = "30\n[Public Keys]\n", results;
  for (int i = 0; i < 30; ++i) {
    const bool isGood = i != 7 && i != 29;
    keys.append(isGood ? "04" : "02").append(request, request.find("2FA74931AE81"), 128) += "\n";
    results += isGood ? "0\n" : "1\n";
  }
  const Outcome outcome = runInProcess(edited(request, "8\n[Public Keys]\n...", keys), kOpenssl);
  const std::string unsupported = "Unsupported format of a public key!!\n";
  EXPECT_EQ(outcome.console, "curveid: 2\n" + unsupported + "KEY7: bad signature?\n" + unsupported +
                                 "KEY29: something wrong?\nprocChkPublicKey finish normally\n");
  EXPECT_EQ(lastLines(outcome.response, 30), results);
}

TEST(CurveState, IsResetByEveryRequest) {
  for (const std::string name :
       {"ecdsa-p-256-public-key-validation", "ecdsa-p-256-sha-256-verification"}) {
    const std::string request = example(name, ".req");
    for (const std::string& changed : {request, edited(request, "[Public Keys]\n04", "[x]\n")}) {
      runInProcess(changed);
      EXPECT_EQ(std::exchange(curveLookupPending, 0), 1);
    }
  }
}

TEST(Curves, KnowNoOtherEngineOrName) {
  testing::internal::CaptureStdout();
  EXPECT_EQ(checkPoint(CryptEngine::HDD, nullptr), -1);
  EXPECT_EQ(verifyEcdsa({.engine = CryptEngine::HDD}, nullptr, {}, {}, {}), -1);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "unsupported engine!!\nunsupported engine!!\n");
  EXPECT_EQ(findCurveName("P-999"), -1);
}

// A point off the curve words the refusal, not an error that an earlier call has left behind.
TEST(MakeEcKey, ReportsItsOwnErrorsOnly) {
  OwnedPubKey key;
  const Bytes one(1, 1);
  ERR_raise(ERR_LIB_RSA, 107);
  testing::internal::CaptureStdout();
  EXPECT_EQ(makeEcKey(key, one, one, 2), -1);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "EC_KEY_set_public_key failed!!\n"
            "  error:0800006B:elliptic curve routines::point is not on curve\n");
  EXPECT_EQ(std::exchange(lastOpensslError, 0), kPointIsNotOnCurve);
}

TEST(VerifyEcdsa, ReportsErrorsInsideOpenssl) {
  const TestConfig config{.mode = ModeId::ECDSA, .hashId = HashId::SHA256, .engine = kOpenssl};
  const OwnedPubKey withoutPoint = ownPubKey(EcKey(EC_KEY_new_by_curve_name(NID_X9_62_prime256v1)));
  const Bytes one(1, 1);
  ERR_raise(ERR_LIB_RSA, 107);  // left behind by an earlier call
  testing::internal::CaptureStdout();
  EXPECT_EQ(verifyEcdsa(config, withoutPoint.get(), one, one, one), 1);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "ECDSA_verify failed!!(error:0800007C:elliptic curve routines::missing parameters)\n");
  EXPECT_EQ(std::exchange(lastOpensslError, 0), ERR_PACK(ERR_LIB_EC, 0, EC_R_MISSING_PARAMETERS));
}

}  // namespace
}  // namespace runner
