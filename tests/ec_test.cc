#include <gnutls/gnutls.h>
#include <gtest/gtest.h>
#include <openssl/ec.h>
#include <openssl/err.h>
#include <openssl/obj_mac.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "ec/curve_state.h"
#include "ec/curve_table.h"
#include "ec/ec_key.h"
#include "ec/ecdsa_engine.h"
#include "sig/openssl_error.h"
#include "sig/sig_handles.h"
#include "sig/signature_primitives.h"
#include "support/run_request.h"

namespace runner {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr CryptEngine kGnutls = CryptEngine::GNUTLS;
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

std::string taken(char* text) {
  std::string copy = text;
  OPENSSL_free(text);
  return copy;
}

// hexText returns a number in lower-case hexadecimal with `digits` digits.
std::string hexText(const BigNumber& number, std::size_t digits) {
  std::string text = taken(BN_bn2hex(number.get()));
  text.erase(0, text.find_first_not_of('0'));
  for (char& digit : text) digit = digit < 'A' ? digit : static_cast<char>(digit | 0x20);
  return std::string(digits - text.size(), '0') + text;
}

std::string decimalText(const BigNumber& number) { return taken(BN_bn2dec(number.get())); }

// OpenSSL's own numbers of the curves.
constexpr int kNids[] = {NID_X9_62_prime192v1, NID_secp224r1, NID_X9_62_prime256v1, NID_secp384r1,
                         NID_secp521r1};

// The parameters of a curve as OpenSSL itself has them.
struct Parameters {
  explicit Parameters(std::size_t index)
      : group(EC_GROUP_new_by_curve_name(kNids[index]), EC_GROUP_free) {
    const EC_POINT* const base = EC_GROUP_get0_generator(group.get());
    EC_GROUP_get_curve(group.get(), p.get(), a.get(), b.get(), nullptr);
    EC_POINT_get_affine_coordinates(group.get(), base, x.get(), y.get(), nullptr);
    BN_copy(n.get(), EC_GROUP_get0_order(group.get()));
  }
  std::unique_ptr<EC_GROUP, decltype(&EC_GROUP_free)> group;
  BigNumber p{BN_new()}, a{BN_new()}, b{BN_new()}, x{BN_new()}, y{BN_new()}, n{BN_new()};
};

TEST(CurveTable, HoldsThePublishedCurves) {
  struct Case {
    const char *name, *gnutlsName;
    std::size_t xDigits, digits;
  };
  const Case cases[] = {{"P-192", "SECP192R1", 48, 48},
                        {"P-224", "SECP224R1", 56, 56},
                        {"P-256", "SECP256R1", 64, 64},
                        {"P-384", "SECP384R1", 96, 96},
                        {"P-521", "SECP521R1", 130, 131}};
  ASSERT_EQ(curveTable.size(), std::size(kNids));
  for (std::size_t i = 0; i < curveTable.size(); ++i) {
    const CurveParams& curve = curveTable[i];
    const Parameters published(i);
    EXPECT_STREQ(curve.name, cases[i].name);
    EXPECT_STREQ(gnutls_ecc_curve_get_name(static_cast<gnutls_ecc_curve_t>(curve.gnutlsId)),
                 cases[i].gnutlsName);
    EXPECT_EQ(curve.p, decimalText(published.p));
    EXPECT_EQ(curve.b, hexText(published.b, cases[i].digits));
    EXPECT_EQ(curve.Gx, hexText(published.x, cases[i].xDigits));
    EXPECT_EQ(curve.Gy, hexText(published.y, cases[i].digits));
    EXPECT_EQ(curve.n, decimalText(published.n));
    EXPECT_TRUE(BN_is_one(EC_GROUP_get0_cofactor(published.group.get())));
    EXPECT_STREQ(curve.h, "1");
    BN_sub(published.a.get(), published.a.get(), published.p.get());
    EXPECT_EQ(curve.a, decimalText(published.a));
  }
}

// The base point of each curve is a key of it for both engines; with another last digit it is none.
TEST(PublicKeyValidation, FindsEachCurve) {
  for (std::size_t i = 0; i < curveTable.size(); ++i) {
    const Parameters curve(i);
    const auto hex = [](const BigNumber& number) { return hexText(number, 132); };
    const std::string base = "04" + hex(curve.x) + hex(curve.y);
    const std::string other = base.substr(0, base.size() - 1) + (base.back() == '0' ? "1" : "0");
    const std::string request = kKeys.substr(0, kKeys.find("[Domain")) + "[Domain Parameter]\n" +
                                hex(curve.p) + "\n" + hex(curve.a) + "\n" + hex(curve.b) + "\n" +
                                base + "\n" + hex(curve.n) + "\n1\n" +
                                fromHere(keyList({base, other}), "[Number");
    for (const CryptEngine engine : {kGnutls, kOpenssl}) {
      const Outcome outcome = runInProcess(request, engine);
      EXPECT_TRUE(outcome.console.starts_with("curveid: " + std::to_string(i) + "\n"));
      EXPECT_EQ(lastLines(outcome.response, 3), "[Results]\n0\n1\n");
    }
  }
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

// The linker finds no such function in the library that this program is made for.
TEST(PublicKeyValidation, SaysThatTheLibraryCannotValidate) {
  const std::string said = "gnutls_pubkey_verify_params is not supported!!\n";
  const Outcome outcome =
      runBinary(keyList({"04" + kX + kY, "04" + kY + kX}), RUNNER_WITHOUT_VERIFY_PARAMS);
  EXPECT_EQ(outcome.console, "curveid: 2\n" + said + said + kKeysDone);
  EXPECT_EQ(lastLines(outcome.response, 3), "[Results]\n1\n1\n");
}

// Signatures that OpenSSL makes with keys of its own, a curve and a hash at a time.
TEST(VerifyEcdsa, KnowsEveryCurveAndHash) {
  const Bytes message = fromHex("616263"), other = fromHex("616264");
  for (std::size_t i = 0; i < curveTable.size(); ++i) {
    SCOPED_TRACE(curveTable[i].name);
    TestConfig config{.mode = ModeId::ECDSA, .hashId = kHashTable[i].id, .engine = kOpenssl};
    EC_KEY* const pair = EC_KEY_new_by_curve_name(kNids[i]);
    const EcKey signer(pair);
    ASSERT_EQ(EC_KEY_generate_key(pair), 1);
    const MessageDigest digest = *digestMessage(config.hashId, message);
    const std::unique_ptr<ECDSA_SIG, decltype(&ECDSA_SIG_free)> signature(
        ECDSA_do_sign(digest.bytes.data(), static_cast<int>(digest.length), pair), ECDSA_SIG_free);
    const BigNumber xNumber(BN_new()), yNumber(BN_new());
    EC_POINT_get_affine_coordinates(EC_KEY_get0_group(pair), EC_KEY_get0_public_key(pair),
                                    xNumber.get(), yNumber.get(), nullptr);
    const auto padded = [](const BIGNUM* number) {
      Bytes bytes(66);
      BN_bn2binpad(number, bytes.data(), 66);
      return bytes;
    };
    const Bytes x = padded(xNumber.get()), y = padded(yNumber.get());
    const Bytes r = padded(ECDSA_SIG_get0_r(signature.get()));
    const Bytes s = padded(ECDSA_SIG_get0_s(signature.get()));
    for (const CryptEngine engine : {kGnutls, kOpenssl}) {
      config.engine = engine;
      OwnedPubKey key;
      ASSERT_EQ(importEcPoint(engine, key, x, y, static_cast<int>(i)), 0);
      EXPECT_EQ(verifyEcdsa(config, key.get(), message, r, s), 0);
      EXPECT_EQ(verifyEcdsa(config, key.get(), other, r, s), 1);
    }
  }
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
