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
#include "support/failing_allocator.h"
#include "support/request_tables.h"
#include "support/run_request.h"

namespace {

using runner::CryptEngine;
using runner::HashId;
using runner::ModeId;
using Bytes = std::vector<std::uint8_t>;

constexpr CryptEngine kEngines[] = {CryptEngine::GNUTLS, CryptEngine::OPENSSL};

// Small requests with made-up values, for all that happens before the engine.
const std::string kDone = "procVerify finish normally\n";
const std::string kHash = "[Hash]\nM_Hash_SHA256\n";
const std::string kRsaHead = "[Algorithm Name]\nRSASSA\n[Function Name]\nVerification\n";
const std::string kRsaBits = "[Bitlength of Modulus]\n15\n";
const std::string kRsaLists =
    "[n]\nABCD\n[Number of Signatures]\n2\n[e]\n03\n010001\n[Signatures]\nA1\nB1B2\n"
    "[Bitlength of Plaintexts]\n9\n[Plaintexts]\nC1C3\nC2C4\n";
const std::string kRsaRequest = kRsaHead + kHash + kRsaBits + kRsaLists;
const std::string kRsaResponse = kRsaHead + kRsaBits + kHash + kRsaLists + "[Results]\n1\n1\n";
const std::string kDsaHead = "[Algorithm Name]\nDSA FIPS\n[Function Name]\nVerification\n";
const std::string kDsaLists =
    "[Bitlength of Plaintexts]\n16\n[Number of Plaintexts]\n2\n"
    "[Public Keys]\nB1\nB2B3B4\n[Plaintexts]\nC1C3\nC2C4\n[Signatures]\nE1E2\nE3E4E5E6E7\n";
const std::string kDsaParameters =
    "[Bitlength of p]\n15\n[Bitlength of q]\n8\n[PQG]\nA1A5\nA3\nA1A7\n";
const std::string kDsaRequest = kDsaHead + kHash + kDsaParameters + kDsaLists;
const std::string kDsaResponse =
    kDsaHead + kDsaParameters + kHash + kDsaLists + "[Results]\n1\n1\n";

TEST(RsaVerification, StopsWhereTheRequestIsWrong) {
  expectFailures(kRsaRequest, kRsaResponse, kDone,
                 {missing("[Bitlength of Modulus]", 5551),
                  missing("[n]", 5567),
                  illegal("ABCD", "ABCG", "G\n", "num=2, i=1, j=1", 5571),
                  missing("[Number of Signatures]", 5576),
                  {"2\n[e]", "0\n[e]", "", "2\n[e]"},
                  {"2\n[e]", "4294967295\n[e]", "", "2\n[e]"},
                  {"2\n[e]", "two\n[e]", "", "2\n[e]"},
                  missing("[e]", 5589),
                  {"010001\n", "", "lack of exp!!\n", "010001\n"},
                  {fromHere(kRsaRequest, "010001\n"), "", "lack of exp!!\n", "010001\n"},
                  illegal("010001\n", "01000\n", "\n", "num=3, i=2, j=1", 5608),
                  missing("[Signatures]", 5615),
                  {"B1B2\n", "", "lack of signature!!\n", "B1B2\n"},
                  illegal("B1B2\n", "B1B\n", "\n", "num=2, i=1, j=1", 5631),
                  missing("[Bitlength of Plaintexts]", 5640),
                  {"9\n[P", "-9\n[P", "", "9\n[P"},
                  missing("[Plaintexts]", 5654),
                  illegal("C2C4\n", "[C2\n", "[C2\n", "num=2, i=0, j=0", 5667),
                  illegal("C2C4\n", "", "", "num=2, i=0, j=0", 5667)});
}

TEST(DsaVerification, StopsWhereTheRequestIsWrong) {
  expectFailures(kDsaRequest, kDsaResponse, kDone,
                 {missing("[Bitlength of p]", 4145),
                  missing("[Bitlength of q]", 4154),
                  missing("[PQG]", 4164),
                  illegal("A1A5\n", "A1\n", "\n", "num=2, i=1, j=0", 4170),
                  illegal("A3\n", "x\n", "x\n", "num=1, i=0, j=0", 4170),
                  illegal("A1A7\n", "\n", "\n", "num=2, i=0, j=0", 4170),
                  missing("[Bitlength of Plaintexts]", 4178),
                  {"16\n", "0\n", "", "16\n"},
                  missing("[Number of Plaintexts]", 4192),
                  {"2\n[Pu", "-2\n[Pu", "", "2\n[Pu"},
                  missing("[Public Keys]", 4205),
                  {"B2B3B4\n", "", "lack of public key!!\n", "B2B3B4\n"},
                  illegal("B2B3B4\n", "B2B3B\n", "\n", "num=3, i=2, j=1", 4224),
                  missing("[Plaintexts]", 4231),
                  {"C2C4\n", "", "lack of planetext!!\n", "C2C4\n"},
                  illegal("C2C4\n", "C2\n", "\n", "num=2, i=1, j=0", 4244),
                  missing("[Signatures]", 4253),
                  {"E3E4E5E6E7\n", "[\n", "lack of signature!!\n", "E3E4"},
                  {"E3E4E5E6E7\n", "", "lack of signature!!\n", "E3E4"},
                  illegal("E3E4E5E6E7\n", "E3E4E5E6E\n", "\n", "num=5, i=4, j=1", 4269)});
}

TEST(Verification, ReportsFailedAllocations) {
  struct Case {
    const std::string& request;
    int successes;
    const char* console;
  };
  const Case cases[] = {
      {kRsaRequest, 0, "malloc err!! (5561)\n"},
      {kRsaRequest, 1, "malloc err!! (5600)\n"},
      {kRsaRequest, 2, "malloc err!! (5607)\n"},
      {kRsaRequest, 5, "malloc err!! (5630)\n"},
      {kRsaRequest, 7, "malloc err!! (5666)\n"},
      {kDsaRequest, 0, "malloc err!! (4169)\n"},
      {kDsaRequest, 2, "malloc err!! (4169)\n"},
      {kDsaRequest, 3, "malloc err!! (4216)\n"},
      {kDsaRequest, 4, "malloc err!! (4223)\n"},
      {kDsaRequest, 7, "malloc err!! (4243)\n"},
      {kDsaRequest, 9, "malloc err!! (4268)\n"},
      {kDsaRequest, 11, "malloc err!! (4589)\nencoding signature(rs) failed!!\n"}};
  for (const Case& row : cases) {
    SCOPED_TRACE(row.console);
    const FailingAllocator failing(row.successes);
    EXPECT_EQ(runInProcess(row.request).console, row.console);
  }
}

TEST(Verification, NeedsAKnownHash) {
  for (const CryptEngine engine : kEngines) {
    for (const std::string& request : {kRsaRequest, kDsaRequest}) {
      const Outcome outcome = runInProcess(edited(request, "M_Hash_SHA256", "MD5"), engine);
      EXPECT_EQ(outcome.console, "");
      EXPECT_NE(outcome.response.find("[Hash]\nunknown(0)\n"), std::string::npos);
      EXPECT_EQ(lastLines(outcome.response, 1), "[Results]\n");
    }
  }
}

// A line holds 1023 characters: 1024 digits are too many, 1022 and a newline are not.
TEST(Verification, ReadsLinesUpToTheirCapacity) {
  const std::string digits(1024, 'F');
  const std::string wide = edited(kRsaRequest, "15\n[n]\nABCD", "4096\n[n]\n" + digits);
  EXPECT_EQ(runInProcess(wide).console,
            "\nillegal data!! ()\nnum=512, i=511, j=1\nerr happens!! (5571)\n");
  const std::string longest = digits.substr(2) + "\n";
  const Outcome outcome = runInProcess(edited(kRsaRequest, "B1B2\n", longest));
  EXPECT_EQ(outcome.response, edited(kRsaResponse, "B1B2\n", longest));
}

TEST(Verification, ReleasesLongListsRecordByRecord) {
  std::string request = edited(kDsaRequest, "2\n[Pu", "300000\n[Pu");
  request.resize(request.find("B1\n"));
  for (int i = 0; i < 300000; ++i) request += "B1\n";
  const Outcome outcome = runInProcess(request);
  EXPECT_EQ(outcome.console, "\"[Plaintexts]\" is not found!!\nerr happens!! (4231)\n");
}

TEST(Verification, HandsValuesOverAsTheyStand) {
  const std::string rsaRefused = "pubkey_import_rsa_raw failed!! ret:-23\nerr happens!! (5682)\n";
  const std::string dsaRefused = "pubkey_import_dsa_raw failed!!\nerr happens!! (4281)\n";
  const auto withoutBits = edited(kRsaRequest, "15\n", "-15\n");
  const auto withoutExponent = edited(kRsaRequest, "010001\n", "\n");
  const auto withoutSignature = edited(kRsaRequest, "B1B2\n", "\n");
  const auto zeroPublicValue = edited(kDsaRequest, "B2B3B4", "000000");
  const auto withoutQ = edited(kDsaRequest, "[Bitlength of q]\n8\n", "[Bitlength of q]\n0\n");
  expectJudgements({{CryptEngine::GNUTLS, withoutBits, rsaRefused, ""},
                    {CryptEngine::OPENSSL, withoutBits, kDone, "1\n1\n"},
                    {CryptEngine::GNUTLS, withoutExponent, rsaRefused, "1\n"},
                    {CryptEngine::OPENSSL, withoutExponent, kDone, "1\n1\n"},
                    {CryptEngine::GNUTLS, withoutSignature, kDone, "1\n1\n"},
                    {CryptEngine::OPENSSL, withoutSignature, kDone, "1\n1\n"},
                    {CryptEngine::GNUTLS, zeroPublicValue, dsaRefused, "1\n"},
                    {CryptEngine::GNUTLS, withoutQ, dsaRefused, ""}});
}

TEST(Verification, GivesThePublishedVerdictsThroughOpenssl) {
  const std::string names[] = {"rsa-2048-sha-256-verification",
                               "dsa-2048-256-sha-256-verification"};
  for (const std::string& name : names) {
    SCOPED_TRACE(name);
    const Outcome outcome = runInProcess(example(name, ".req"), CryptEngine::OPENSSL);
    EXPECT_EQ(outcome.console, kDone);
    EXPECT_EQ(outcome.response, fromHere(example(name, ".rsp"), "[Algorithm Name]"));
  }
}

// The second signature of the example is a good one. With a byte more its halves stay the same;
// with leading zero bytes its encoding is not minimal, which GnuTLS accepts and OpenSSL does not.
TEST(DsaVerification, SplitsTheSignatureInHalves) {
  const std::string request = example("dsa-2048-256-sha-256-verification", ".req");
  const std::string good = fromHere(request, "96246546C49D").substr(0, 128);
  const std::string longer = edited(request, good, good + "00");
  const std::string padded =
      edited(request, good, "0000" + good.substr(0, 64) + "0000" + good.substr(64));
  const std::string error = "DSA_verify failed!!(error:00000000:lib(0)::reason(0))\n";
  ERR_clear_error();  // of what other tests left in OpenSSL's queue
  expectJudgements({{CryptEngine::GNUTLS, longer, kDone, "1\n0\n1\n1\n0\n1\n"},
                    {CryptEngine::OPENSSL, longer, kDone, "1\n0\n1\n1\n0\n1\n"},
                    {CryptEngine::GNUTLS, padded, kDone, "1\n0\n1\n1\n0\n1\n"},
                    {CryptEngine::OPENSSL, padded, error + kDone, "1\n1\n1\n1\n0\n1\n"}});
}

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

// The numbers of both libraries' interfaces, and the first byte of the digest of "abc" (FIPS
// 180-4).
TEST(HashTables, FollowTheHash) {
  constexpr int kRows[][5] = {{64, 1, 2, 12, 0xA9},
                              {675, 9, 10, 13, 0x23},
                              {672, 6, 11, 14, 0xBA},
                              {673, 7, 17, 15, 0xCB},
                              {674, 8, 18, 16, 0xDD}};
  for (std::size_t i = 0; i < std::size(kRows); ++i) {
    EXPECT_EQ(runner::digestNids[i], kRows[i][0]);
    for (std::size_t mode = 0; mode < 3; ++mode) {
      EXPECT_EQ(runner::gnutlsSignIds[mode].ids[i], kRows[i][mode + 1]);
    }
    const auto digest = runner::digestMessage(runner::hashTable[i].id, fromHex("616263"));
    EXPECT_EQ(digest->bytes[0], kRows[i][4]);
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

// A key is released by its kind; AddressSanitizer sees one that is released twice or never.
TEST(PubKey, IsReleasedByEngineAndMode) {
  runner::freePubKey(ModeId::DSA, CryptEngine::OPENSSL, nullptr);
  runner::freePubKey(ModeId::DSA, CryptEngine::GNUTLS, nullptr);
  const runner::PubKey rsa = runner::toPubKey(RSA_new());
  runner::freePubKey(ModeId::HMAC, CryptEngine::OPENSSL, rsa);
  runner::freePubKey(ModeId::RSASSA, CryptEngine::OPENSSL, rsa);
  runner::freePubKey(ModeId::ECDSA, CryptEngine::OPENSSL, runner::toPubKey(EC_KEY_new()));
  runner::freePubKey(ModeId::HMAC, CryptEngine::GNUTLS,
                     runner::toPubKey(runner::newGnutlsKey().release()));
}

// The signature algorithm follows the mode of the run, not the kind of the key.
TEST(VerifyDsa, ChoosesTheAlgorithmByMode) {
  runner::TestConfig config{.mode = ModeId::DSA, .hashId = HashId::SHA256};
  runner::OwnedPubKey key(nullptr, runner::PubKeyDeleter(config));
  const Bytes p = fromHex("A1A5"), q = fromHex("A3"), message(3), tooLong(128, 1);
  ASSERT_EQ(runner::makeDsaKey(config.engine, key, {.p = p, .q = q, .g = q, .y = q}), 0);
  EXPECT_EQ(runner::verifyDsa(config, key.get(), message, q, q), 1);
  config.mode = ModeId::RSASSA;
  EXPECT_EQ(runner::verifyDsa(config, key.get(), message, q, q), 1);
  config.mode = ModeId::HMAC;
  EXPECT_EQ(runner::verifyDsa(config, key.get(), message, tooLong, q), -1);
}

}  // namespace
