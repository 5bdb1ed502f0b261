#include <gtest/gtest.h>
#include <openssl/ec.h>
#include <openssl/err.h>
#include <openssl/obj_mac.h>

#include <string>
#include <utility>
#include <vector>

#include "ec/curve_state.h"
#include "ec/curve_table.h"
#include "ec/ec_key.h"
#include "ec/ecdsa_engine.h"
#include "ec/point_check.h"
#include "sig/openssl_error.h"
#include "sig/sig_handles.h"
#include "support/run_request.h"

namespace runner {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr CryptEngine kOpenssl = CryptEngine::OPENSSL;

// The example of a public-key validation on P-256.
const std::string kKeys = example("ecdsa-p-256-public-key-validation", ".req");
const std::string kKeysDone = "procChkPublicKey finish normally\n";

// Coordinates of a good key of the example.
const std::string kX = "2FA74931AE816B426F484180E517F5050C92DECFC8DAF756CD91F54D51B302F1";
const std::string kY = "5B994346137988C58C14AE2152AC2F6AD96D97DECB33099BD8A0210114CD1141";

// keyList is the example of a public-key validation with these keys.
std::string keyList(const std::vector<std::string>& keys) {
  std::string request = kKeys.substr(0, kKeys.find("[Number")) + "[Number of Keys]\n" +
                        std::to_string(keys.size()) + "\n[Public Keys]\n";
  for (const std::string& key : keys) request += key + "\n";
  return request;
}

TEST(PublicKeyValidation, TakesManyKeysAndKeepsTheirOrder) {
  // An error of an earlier verification words the first refusal only.
  lastOpensslError = kBadSignature;
  std::vector<std::string> keys(30, "04" + kX + kY);
  keys[7] = keys[29] = "02" + kX;
  const std::string unsupported = "Unsupported format of a public key!!\n";
  const Outcome outcome = runInProcess(keyList(keys), kOpenssl);
  EXPECT_EQ(outcome.console, "curveid: 2\n" + unsupported + "KEY7: bad signature?\n" + unsupported +
                                 "KEY29: something wrong?\n" + kKeysDone);
  EXPECT_EQ(lastLines(outcome.response, 2), "0\n1\n");
  EXPECT_EQ(lastLines(outcome.response, 24), "0\n1\n" + lastLines(outcome.response, 22));
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

TEST(Curves, HaveTwoEnginesAndFiveNames) {
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
