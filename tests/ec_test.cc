#include <gnutls/gnutls.h>
#include <gtest/gtest.h>
#include <openssl/ec.h>
#include <openssl/err.h>

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "ec/curve_state.h"
#include "ec/curve_table.h"
#include "ec/ec_key.h"
#include "ec/ecdsa_engine.h"
#include "sig/openssl_error.h"
#include "sig/sig_handles.h"
#include "sig/signature_primitives.h"
#include "support/failing_allocator.h"
#include "support/request_tables.h"
#include "support/run_request.h"

namespace runner {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr CryptEngine kGnutls = CryptEngine::GNUTLS;
constexpr CryptEngine kOpenssl = CryptEngine::OPENSSL;

// The examples, both on P-256.
const std::string kKeys = example("ecdsa-p-256-public-key-validation", ".req");
const std::string kKeysAnswer =
    fromHere(example("ecdsa-p-256-public-key-validation", ".rsp"), "[Algorithm Name]");
const std::string kSigned = example("ecdsa-p-256-sha-256-verification", ".req");
const std::string kSignedAnswer =
    fromHere(example("ecdsa-p-256-sha-256-verification", ".rsp"), "[Algorithm Name]");

const std::string kFound = "curveid: 2\n";
const std::string kNotFound = "curveid: -1\n";
const std::string kKeysDone = "procChkPublicKey finish normally\n";
const std::string kSignedDone = "procVerify finish normally\n";
const std::string kUnsupported = "Unsupported format of a public key!!\n";

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

// The parameters of a curve as OpenSSL itself has them.
struct Parameters {
  explicit Parameters(std::size_t index)
      : group(EC_GROUP_new_by_curve_name(curveNids[index]), EC_GROUP_free) {
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
  for (std::size_t i = 0; i < kCurveCount; ++i) {
    const CurveParams& curve = curveTable[i];
    const Parameters published(i);
    EXPECT_STREQ(curve.name, cases[i].name);
    EXPECT_STREQ(gnutls_ecc_curve_get_name(gnutlsCurveIds[i]), cases[i].gnutlsName);
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
  for (std::size_t i = 0; i < kCurveCount; ++i) {
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

TEST(PublicKeyValidation, ComparesDomainParametersAsNumbers) {
  const std::string request = keyList({"04" + kX + kY});
  const std::string done = kFound + kKeysDone;
  const std::string ends = kNotFound + "KEY0: " + errAt(3372);
  const std::string wrongBase = "Unsupported format of G!!\n" + ends;
  expectJudgements(
      {{kGnutls, edited(request, "\n5AC635D8", "\n00005ac635d8"), done, "0\n"},
       {kGnutls, edited(request, "\n1\n[", "\n01x\n["), done, "0\n"},
       {kGnutls, edited(request, "\n1\n[", "\n2\n["), ends, "none"},
       {kGnutls, edited(request, "\n1\n[", "\n\n["), ends, "none"},
       {kGnutls, edited(request, "FFFFFF\n", "FFFFFE\n"), ends, "none"},
       {kGnutls, edited(request, "FFFFFC\n", "FFFFFD\n"), ends, "none"},
       {kGnutls, edited(request, "5AC635D8", "5AC635D9"), ends, "none"},
       {kGnutls, edited(request, "\n046B", "\n046C"), ends, "none"},
       {kGnutls, edited(request, "BF51F5\n", "BF51F4\n"), ends, "none"},
       {kGnutls, edited(request, "632551\n", "632550\n"), ends, "none"},
       {kGnutls, edited(request, "\n046B", "\n\n046B"), wrongBase, "none"},
       {kGnutls, edited(request, "\n046B", "\n026B"), wrongBase, "none"},
       {kGnutls, edited(request, "BF51F5\n", "BF51F500\n"), wrongBase, "none"},
       {kOpenssl, edited(request, "5AC635D8", "5AC635D9"),
        kNotFound + "KEY0: something wrong?\n" + kKeysDone, "1\n"},
       {CryptEngine::HDD, request, kFound + "unsupported engine!!\nKEY0: " + errAt(3372), "none"}});
}

// refusal is what makeEcKey prints about a point that OpenSSL refuses.
std::string refusal(int reason) {
  std::array<char, 256> text{};
  ERR_error_string_n(ERR_PACK(ERR_LIB_EC, 0, reason), text.data(), text.size());
  return std::string("EC_KEY_set_public_key failed!!\n  ") + text.data() + "\n";
}

TEST(PublicKeyValidation, JudgesKeysOfEveryForm) {
  const std::string offCurve = keyList({"04" + kY + kX});
  const std::string xPlusP = "012FA74930AE816B436F484180E517F5050C92DED0C8DAF756CD91F54D51B302F0";
  const std::string outside = keyList({"04" + xPlusP + "00" + kY});
  // The coefficient b has this square root modulo p.
  const std::string xOfZero =
      keyList({"04" + std::string(64, '0') +
               "66485C780E2F83D72433BD5D84A06BB6541C2AF31DAE871728BF856A174F93F4"});
  const std::string compressed = keyList({"02" + kX});
  const std::string truncated = keyList({"04" + kX + kY.substr(2)});
  const std::string done = kFound + kKeysDone;
  const std::string ends = "KEY0: " + errAt(3372);
  const std::string zeroRefused = kFound + "pubkey_import_ecc_raw failed(-23)!!\n" + ends;
  const std::string illegalKey = "KEY0: illegal public key?\n" + kKeysDone;
  const std::string wrong = "KEY0: something wrong?\n" + kKeysDone;
  ERR_clear_error();
  expectJudgements(
      {{kGnutls, offCurve, done, "1\n"},
       {kOpenssl, offCurve, kFound + refusal(EC_R_POINT_IS_NOT_ON_CURVE) + illegalKey, "1\n"},
       {kGnutls, outside, done, "1\n"},
       {kOpenssl, outside, kFound + refusal(EC_R_COORDINATES_OUT_OF_RANGE) + wrong, "1\n"},
       {kGnutls, xOfZero, zeroRefused, "none"},
       {kOpenssl, xOfZero, done, "0\n"},
       {kGnutls, keyList({"04"}), zeroRefused, "none"},
       {kGnutls, compressed, kFound + kUnsupported + ends, "none"},
       {kOpenssl, compressed, kFound + kUnsupported + wrong, "1\n"},
       {kGnutls, truncated, kFound + kUnsupported + ends, "none"},
       {kOpenssl, keyList({""}), kFound + kUnsupported + wrong, "1\n"}});
}

TEST(PublicKeyValidation, TakesManyKeysAndKeepsTheirOrder) {
  // An error of an earlier verification words the first refusal only.
  lastOpensslError = kBadSignature;
  std::vector<std::string> keys(30, "04" + kX + kY);
  keys[7] = keys[29] = "02" + kX;
  const Outcome outcome = runInProcess(keyList(keys), kOpenssl);
  EXPECT_EQ(outcome.console, kFound + kUnsupported + "KEY7: bad signature?\n" + kUnsupported +
                                 "KEY29: something wrong?\n" + kKeysDone);
  EXPECT_EQ(lastLines(outcome.response, 2), "0\n1\n");
  EXPECT_EQ(lastLines(outcome.response, 24), "0\n1\n" + lastLines(outcome.response, 22));
}

// The linker finds no such function in the library that this program is made for.
TEST(PublicKeyValidation, SaysThatTheLibraryCannotValidate) {
  const std::string said = "gnutls_pubkey_verify_params is not supported!!\n";
  const Outcome outcome =
      runBinary(keyList({"04" + kX + kY, "04" + kY + kX}), RUNNER_WITHOUT_VERIFY_PARAMS);
  EXPECT_EQ(outcome.console, kFound + said + said + kKeysDone);
  EXPECT_EQ(lastLines(outcome.response, 3), "[Results]\n1\n1\n");
}

TEST(PublicKeyValidation, StopsWhereTheRequestIsWrong) {
  const std::string lacking = kFound + "lack of public key!!\n";
  expectFailures(kKeys, kKeysAnswer, kFound + kKeysDone,
                 {missing("[Domain Parameter]", 3292),
                  missing("[Number of Keys]", 3325),
                  {"8\n[P", "0\n[P", "", "8\n[P"},
                  {"8\n[P", "2147483648\n[P", "", "8\n[P"},
                  {"8\n[P", "eight\n[P", "", "8\n[P"},
                  missing("[Public Keys]", 3338),
                  {"647DD\n", "647D\n",
                   kFound + "\nillegal data!! (\n)\nnum=65, i=64, j=1\n" + errAt(3351), "04F2D1"},
                  {"04F2D1", "[04F2D1", lacking, "04F2D1"},
                  {fromHere(kKeys, "04F2D1"), "", lacking, "04F2D1"}});
  EXPECT_EQ(curveLookupPending, 1);
}

TEST(EcdsaVerification, StopsWhereTheRequestIsWrong) {
  const std::string key = "045CF02A00", message = "069A6E6B93", signature = "DC23D130C6";
  expectFailures(kSigned, kSignedAnswer, kFound + kSignedDone,
                 {missing("[Domain Parameter]", 4931),
                  missing("[Bitlength of Plaintexts]", 4966),
                  {"1024\n", "0\n", "", "1024\n"},
                  missing("[Number of Plaintexts]", 4980),
                  {"6\n[Pu", "-1\n[Pu", "", "6\n[Pu"},
                  missing("[Public Keys]", 4993),
                  {key, "[" + key, "lack of public key!!\n", key},
                  illegal(key, key + "A\n", "\n", "num=6, i=5, j=1", 5011),
                  missing("[Plaintexts]", 5018),
                  {message, "[" + message, "lack of planetext!!\n", message},
                  illegal(message, message + "\n", "\n", "num=128, i=5, j=0", 5031),
                  missing("[Signatures]", 5040),
                  {fromHere(kSigned, signature), "", "lack of signature!!\n", signature},
                  illegal(signature, signature + "A\n", "\n", "num=6, i=5, j=1", 5055)});
}

// Two of the six lines are cut; the others are echoed all the same.
TEST(DomainParameters, AreReadToTheEnd) {
  const std::string report = "\nillegal data!! (\n)\nnum=";
  const auto expectBoth = [&](const std::string& request, const std::string& answer,
                              const std::string& next, int site) {
    const std::string b = fromHere(answer, "5AC635D8").substr(0, 65);
    const std::string n = fromHere(answer, "FFFFFFFF00000000FFFF").substr(0, 65);
    const Outcome outcome = runInProcess(edited(edited(request, b, "5AC\n"), n, "FFFFF\n"));
    EXPECT_EQ(outcome.console,
              report + "2, i=1, j=1\n" + errAt(site) + report + "3, i=2, j=1\n" + errAt(site));
    EXPECT_EQ(outcome.response, edited(edited(answer.substr(0, answer.find(next)), b, ""), n, ""));
  };
  expectBoth(kKeys, kKeysAnswer, "[Number", 3316);
  expectBoth(kSigned, kSignedAnswer, "[Hash]", 4955);
}

TEST(EcTests, ReportFailedAllocations) {
  struct Case {
    const std::string& request;
    int successes;
    std::string console;
  };
  const Case cases[] = {
      {kKeys, 0, "malloc err!! (3315)\n"},
      {kKeys, 4, "malloc err!! (3315)\n"},
      {kKeys, 5, "malloc err!! (3308)\n"},
      {kKeys, 6, "malloc err!! (3350)\n"},
      {kKeys, 7, kFound + "malloc err!! (3350)\n"},
      {kSigned, 4, "malloc err!! (4954)\n"},
      {kSigned, 5, "malloc err!! (4947)\n"},
      {kSigned, 6, "malloc err!! (5004)\n"},
      {kSigned, 7, "malloc err!! (5010)\n"},
      {kSigned, 18, "malloc err!! (5030)\n"},
      {kSigned, 24, "malloc err!! (5054)\n"},
      {kSigned, 30, kFound + "malloc err!! (4589)\nencoding signature(rs) failed!!\n"}};
  for (const Case& row : cases) {
    SCOPED_TRACE(row.console);
    const FailingAllocator failing(row.successes);
    EXPECT_EQ(runInProcess(row.request).console, row.console);
  }
}

TEST(EcdsaVerification, HandsValuesOverAsTheyStand) {
  const std::string published = fromHere(kSignedAnswer, "[Results]\n").substr(10);
  // Bytes behind a message, and an odd one behind r and s, are not used.
  const std::string longer =
      edited(edited(kSigned, "\n[Signatures]", "00\n[Signatures]"), "E55E9979\n", "E55E997900\n");
  const std::string empty = edited(kSigned, fromHere(kSigned, "DC23D130C6").substr(0, 128), "");
  const std::string tooLong =
      edited(kSigned, fromHere(kSigned, "DC23D130C6").substr(0, 128), std::string(512, '1'));
  const std::string noHash = edited(kSigned, "M_Hash_SHA256", "M_Hash_MD5");
  const std::string compressed = edited(kSigned, "\n0487F8F2", "\n0287F8F2");
  const std::string done = kFound + kSignedDone;
  const std::string firstOnly = published.substr(0, 2);
  expectJudgements(
      {{kOpenssl, kSigned, done, published},
       {kGnutls, longer, done, published},
       {kOpenssl, longer, done, published},
       {kGnutls, empty, done, firstOnly + "1\n" + published.substr(4)},
       {kOpenssl, empty, done, firstOnly + "1\n" + published.substr(4)},
       {kGnutls, tooLong,
        kFound + "signature size is too large!!\nencoding signature(rs) failed!!\n", firstOnly},
       {kOpenssl, tooLong, done, firstOnly + "1\n" + published.substr(4)},
       {kGnutls, noHash, kFound, ""},
       {kOpenssl, noHash, kFound, ""},
       {kGnutls, compressed, kFound + kUnsupported + "KEY0: " + errAt(5088), ""},
       {kOpenssl, compressed, kFound + kUnsupported + "KEY0: something wrong?\n" + kSignedDone,
        "1\n" + published.substr(2)}});
  EXPECT_EQ(curveLookupPending, 1);
}

// Signatures that OpenSSL makes with keys of its own, a curve and a hash at a time.
TEST(VerifyEcdsa, KnowsEveryCurveAndHash) {
  const Bytes message = fromHex("616263"), other = fromHex("616264");
  for (std::size_t i = 0; i < kCurveCount; ++i) {
    SCOPED_TRACE(curveTable[i].name);
    TestConfig config{.mode = ModeId::ECDSA, .hashId = hashTable[i].id, .engine = kOpenssl};
    EC_KEY* const pair = EC_KEY_new_by_curve_name(curveNids[i]);
    const OwnedPubKey signer(toPubKey(pair), PubKeyDeleter(config));
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
      OwnedPubKey key(nullptr, PubKeyDeleter(config));
      ASSERT_EQ(importEcPoint(engine, key, x, y, static_cast<int>(i)), 0);
      EXPECT_EQ(verifyEcdsa(config, key.get(), message, r, s), 0);
      EXPECT_EQ(verifyEcdsa(config, key.get(), other, r, s), 1);
    }
  }
}

TEST(VerifyEcdsa, ReportsErrorsInsideOpenssl) {
  const TestConfig config{.mode = ModeId::ECDSA, .hashId = HashId::SHA256, .engine = kOpenssl};
  const OwnedPubKey withoutPoint(toPubKey(EC_KEY_new_by_curve_name(curveNids[2])),
                                 PubKeyDeleter(config));
  const Bytes one(1, 1);
  ERR_clear_error();
  testing::internal::CaptureStdout();
  EXPECT_EQ(verifyEcdsa(config, withoutPoint.get(), one, one, one), 1);
  const std::string text = refusal(EC_R_MISSING_PARAMETERS).substr(33);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "ECDSA_verify failed!!(" + text.substr(0, text.size() - 1) + ")\n");
  EXPECT_EQ(lastOpensslError, ERR_PACK(ERR_LIB_EC, 0, EC_R_MISSING_PARAMETERS));
}

}  // namespace
}  // namespace runner
