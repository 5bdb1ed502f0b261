#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "driver/request_header.h"
#include "driver/test_config.h"
#include "support/run_request.h"

// Value-list requests: their headers, as parsed and as reported.

namespace {

using runner::ModeId;
using runner::TestConfig;
using runner::TestFunction;

struct ParsedHeader {
  TestConfig config;
  int result = 0;
  std::string console;
  std::string response;
};

ParsedHeader parseHeader(std::string_view request) {
  const TempDir dir;
  writeFile(dir.file("request"), request);
  ParsedHeader parsed;
  testing::internal::CaptureStdout();
  parsed.result = runner::parseRequestHeader(parsed.config, dir.file("request").c_str(),
                                             dir.file("response").c_str());
  parsed.console = testing::internal::GetCapturedStdout();
  parsed.response = readFile(dir.file("response"));
  return parsed;
}

const char* const kDrbgHeader =
    "# CTR_DRBG\n[AlgorithmName = CTR_DRBG no df]\n[UnderlyingAlgorithm = AES-256]\n"
    "[SecurityStrength = 128]\n[RequestedNumberOfBits = 511]\n[NumberOfTrials = 15]\n";
const char* const kEcdsaHeader =
    "# ECDSA\n[TargetFunction = SignatureVerification]\n[Curve = P-384]\n"
    "[HashAlgorithm = SHA-224]\n[BitLengthOfMessage = 1024]\n[NumberOfMessages = 15]\n";
const char* const kFfcHeader =
    "# DSA\n[TargetFunction = SignatureVerification]\n[FFCDomainParameterSizeSet = (2048, 256)]\n"
    "[L = 2048]\n[N = 256]\n[HashAlgorithm = SHA-512]\n[BitLengthOfMessage = 1024]\n"
    "[NumberOfMessages = 7]\n";

TEST(ValueListHeader, FillsTheConfig) {
  const TestConfig drbg = parseHeader(kDrbgHeader).config;
  EXPECT_EQ(drbg.testFunction, TestFunction::DRBG);
  EXPECT_EQ(drbg.mode, ModeId::ECB);
  EXPECT_EQ(drbg.keyLength, 16);
  EXPECT_EQ(drbg.messageLength, 63);
  EXPECT_EQ(drbg.count, 15);
  EXPECT_EQ(drbg.flags, runner::FLAG_VALUE_LIST);

  const TestConfig ecdsa = parseHeader(kEcdsaHeader).config;
  EXPECT_EQ(ecdsa.testFunction, TestFunction::VERIFICATION);
  EXPECT_EQ(ecdsa.mode, ModeId::ECDSA);
  EXPECT_STREQ(ecdsa.curveName, "P-384");
  EXPECT_EQ(ecdsa.hashId, runner::HashId::SHA224);
  EXPECT_EQ(ecdsa.keyLength, 28);
  EXPECT_EQ(ecdsa.messageLength, 128);
  EXPECT_EQ(ecdsa.count, 15);
  EXPECT_EQ(ecdsa.flags, runner::FLAG_VALUE_LIST);

  const TestConfig ffc = parseHeader(kFfcHeader).config;
  EXPECT_EQ(ffc.testFunction, TestFunction::VERIFICATION);
  EXPECT_EQ(ffc.mode, ModeId::DSA);
  EXPECT_EQ(ffc.hashId, runner::HashId::SHA512);
  EXPECT_EQ(ffc.keyLength, 256);
  EXPECT_EQ(ffc.subgroupLength, 32);
  EXPECT_EQ(ffc.messageLength, 128);
  EXPECT_EQ(ffc.count, 7);
  EXPECT_EQ(ffc.flags, runner::FLAG_VALUE_LIST);
}

struct HeaderCase {
  const char* name;
  const char* header;
  const char* from;
  const char* to;
  int result;
  const char* console;
};

const HeaderCase kHeaderCases[] = {
    {"DRBG", kDrbgHeader, "", "", 0,
     "function    : DRBG\nalgorithm   : AES-256\nkey length  : 128\nrequest size : 63\n"
     "trial num : 15\n"},
    {"repeated items in another order", kDrbgHeader, "[UnderlyingAlgorithm = AES-256]\n",
     "[SecurityStrength = 256]\n[SecurityStrength = 256]\n[UnderlyingAlgorithm = AES-128]\n", 0,
     "function    : DRBG\nkey length  : 256\nkey length  : 256\nalgorithm   : AES-128\n"
     "request size : 63\ntrial num : 15\n"},
    {"strength without a meaning", kDrbgHeader, "= 128", "= 192", -1,
     "function    : DRBG\nalgorithm   : AES-256\nrequest is inadequate!!\n"},
    {"count before length", kDrbgHeader, "[RequestedNumberOfBits = 511]\n[NumberOfTrials = 15]\n",
     "[NumberOfTrials = 15]\n[RequestedNumberOfBits = 511]\n", -1,
     "function    : DRBG\nalgorithm   : AES-256\nkey length  : 128\nrequest size : 63\n"
     "request is inadequate!!\n"},
    {"negative numbers", kDrbgHeader, "= 511]\n[NumberOfTrials = 15",
     "= -15]\n[NumberOfTrials = -2", 0,
     "function    : DRBG\nalgorithm   : AES-256\nkey length  : 128\nrequest size : -1\n"
     "trial num : -2\n"},

    {"ECDSA", kEcdsaHeader, "", "", 0,
     "function    : Verification\nhash: 224\nrequest size : 128\nmessage num : 15\n"},
    {"two items on a line", kEcdsaHeader, "[Curve = P-384]\n[HashAlgorithm = SHA-224]",
     "[Curve = P-256] HashAlgorithm = SHA-1", 0,
     "function    : Verification\nhash: 1\nrequest size : 128\nmessage num : 15\n"},
    {"unknown curve", kEcdsaHeader, "P-384", "P-255", -1,
     "function    : Verification\nUnsupported curve!!\nhash: 224\nrequest is inadequate!!\n"},
    {"known curve after an unknown one", kEcdsaHeader, "[Curve = P-384]",
     "[Curve = P-255]\n[Curve = P-521]", 0,
     "function    : Verification\nUnsupported curve!!\nhash: 224\nrequest size : 128\n"
     "message num : 15\n"},
    {"unknown curve after a known one", kEcdsaHeader, "[Curve = P-384]",
     "[Curve = P-384]\n[Curve = P-255]", -1,
     "function    : Verification\nUnsupported curve!!\nhash: 224\nrequest is inadequate!!\n"},
    {"unknown hash after a known one", kEcdsaHeader, "[Curve = P-384]",
     "[Curve = P-0]\nHashAlgorithm = SHA-1\nHashAlgorithm = SHA-2\n[Curve = P-384]\n# ", 0,
     "function    : Verification\nUnsupported curve!!\nhash: 1\nhash: 2\n"
     "Unsupported hash algorithm!!\nhash: 224\nrequest size : 128\nmessage num : 15\n"},
    {"value too long", kEcdsaHeader, "SHA-224]", "SHA-512/224]", -1,
     "function    : Verification\n[ERR]getStr: not enough buffer!!\nrequest is inadequate!!\n"},
    {"longest value, at the end of the file", kEcdsaHeader, "15]\n", "7654321", 0,
     "function    : Verification\nhash: 224\nrequest size : 128\nmessage num : 7654321\n"},
    {"length on the line that completes the items", kEcdsaHeader, "]\n[BitLengthOfMessage",
     " BitLengthOfMessage", -1, "function    : Verification\nhash: 224\nrequest is inadequate!!\n"},
    {"curve not on the next line", kEcdsaHeader, "[Curve", "\n[Curve", -1,
     "function    : Verification\nhash: 224\nrequest is inadequate!!\n"},

    {"FFC", kFfcHeader, "", "", 0,
     "function    : Verification\nhash: 512\nrequest size : 128\nmessage num : 7\n"},
    {"L and N on a line", kFfcHeader, "2048]\n[N", "2048, N", -1,
     "function    : Verification\nhash: 512\nrequest is inadequate!!\n"},
    {"key after 47 characters of a line", kFfcHeader, "[FFC",
     "-----------------------------------------------[FFC", 0,
     "function    : Verification\nhash: 512\nrequest size : 128\nmessage num : 7\n"},
    {"key after 46 characters of a line", kFfcHeader, "[FFC",
     "----------------------------------------------[FFC", -1,
     "function    : Verification\nhash: 512\nrequest is inadequate!!\n"},
    {"value cut after 47 characters of a line", kFfcHeader, "[BitLength",
     "---------------------- BitLength", 0,
     "function    : Verification\nhash: 512\nrequest size : 12\nmessage num : 7\n"},
};

TEST(ValueListHeader, ReportsItemsAndFaults) {
  for (const HeaderCase& row : kHeaderCases) {
    SCOPED_TRACE(row.name);
    const ParsedHeader parsed = parseHeader(edited(row.header, row.from, row.to));
    EXPECT_EQ(parsed.result, row.result);
    EXPECT_EQ(parsed.console, row.console);
  }
}

TEST(ValueListHeader, IsInadequateWithoutItsLastLines) {
  for (const std::string header : {kDrbgHeader, kEcdsaHeader, kFfcHeader}) {
    for (std::size_t end = header.find('\n'); end + 1 < header.size();
         end = header.find('\n', end + 1)) {
      SCOPED_TRACE(header.substr(0, end));
      const ParsedHeader parsed = parseHeader(header.substr(0, end));
      EXPECT_EQ(parsed.result, -1);
      EXPECT_EQ(lastLines(parsed.console, 1), "request is inadequate!!\n");
    }
  }
}

TEST(ValueListHeader, LeavesTheResponseAlone) {
  const Outcome drbg = runBinary(kDrbgHeader);
  EXPECT_EQ(drbg.status, 0);
  EXPECT_EQ(drbg.response, "# File: Response file\n#\n");
  const ParsedHeader mixed = parseHeader("[Block Cipher]\nAES\n" + std::string(kEcdsaHeader));
  EXPECT_EQ(mixed.result, 0);
  EXPECT_EQ(mixed.response, "[Block Cipher]\nAES\n");
}

}  // namespace
