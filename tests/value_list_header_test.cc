#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "driver/request_header.h"
#include "driver/test_config.h"
#include "support/run_request.h"

// The headers of value-list requests: what they put into the TestConfig and what they report.

namespace {

const char* const kDrbg =
    "# CTR_DRBG\n[AlgorithmName = CTR_DRBG no df]\n[UnderlyingAlgorithm = AES-256]\n"
    "[SecurityStrength = 128]\n[RequestedNumberOfBits = 511]\n[NumberOfTrials = 15]\n";
const char* const kEcdsa =
    "# ECDSA\n[TargetFunction = SignatureVerification]\n[Curve = P-384]\n"
    "[HashAlgorithm = SHA-224]\n[BitLengthOfMessage = 1024]\n[NumberOfMessages = 15]\n";
const char* const kFfc =
    "# DSA\n[TargetFunction = SignatureVerification]\n[FFCDomainParameterSizeSet = (2048, 256)]\n"
    "[L = 2048]\n[N = 256]\n[HashAlgorithm = SHA-512]\n[BitLengthOfMessage = 1024]\n"
    "[NumberOfMessages = 7]\n";

// parse returns the fields of the TestConfig that the header fills: function, mode, hash, key
// length, subgroup length, message length, count, flags and curve.
std::string parse(std::string_view header) {
  const TempDir dir;
  writeFile(dir.file("request"), header);
  runner::TestConfig config;
  const std::string response = dir.file("response");
  EXPECT_EQ(runner::parseRequestHeader(config, dir.file("request").c_str(), response.c_str()), 0);
  std::string fields;
  for (const int number : {static_cast<int>(config.testFunction), static_cast<int>(config.mode),
                           static_cast<int>(config.hashId), config.keyLength, config.subgroupLength,
                           config.messageLength, config.count, static_cast<int>(config.flags)}) {
    fields += std::to_string(number) + " ";
  }
  return fields + (config.curveName != nullptr ? config.curveName : "-");
}

TEST(ValueListHeader, FillsTheConfig) {
  EXPECT_EQ(parse(kDrbg), "10 1 0 16 0 63 15 1 -");
  EXPECT_EQ(parse(kEcdsa), "5 9 3 28 0 128 15 1 P-384");
  EXPECT_EQ(parse(kFfc), "5 8 6 256 32 128 7 1 -");
}

// A header, one edit, and what is reported after the function.
struct Edit {
  const char* header;
  const char* from;
  const char* to;
  bool complete;
  const char* console;
};

const Edit kEdits[] = {
    {kDrbg, "", "", true,
     "algorithm   : AES-256\nkey length  : 128\nrequest size : 63\ntrial num : 15\n"},
    // Another order, and an item that comes twice.
    {kDrbg, "[UnderlyingAlgorithm = AES-256]\n[SecurityStrength = 128]",
     "[SecurityStrength = 128]\n[SecurityStrength = 256]\n[UnderlyingAlgorithm = AES-128]", true,
     "key length  : 128\nkey length  : 256\nalgorithm   : AES-128\nrequest size : 63\n"
     "trial num : 15\n"},
    {kDrbg, "= 128", "= 192", false, "algorithm   : AES-256\n"},
    {kDrbg, "[Req", "[NumberOfTrials = 1]\n[Req", true,
     "algorithm   : AES-256\nkey length  : 128\nrequest size : 63\ntrial num : 15\n"},
    {kDrbg, "= 511]\n[NumberOfTrials = 15", "= -15]\n[NumberOfTrials = -2", true,
     "algorithm   : AES-256\nkey length  : 128\nrequest size : -1\ntrial num : -2\n"},

    {kEcdsa, "", "", true, "hash: 224\nrequest size : 128\nmessage num : 15\n"},
    {kEcdsa, "]\n[HashAlgorithm = SHA-224]", " HashAlgorithm = SHA-1]", true,
     "hash: 1\nrequest size : 128\nmessage num : 15\n"},
    {kEcdsa, "P-384", "P-255", false, "Unsupported curve!!\nhash: 224\n"},
    {kEcdsa, "P-384]", "P-255]\n[Curve = P-521]", true,
     "Unsupported curve!!\nhash: 224\nrequest size : 128\nmessage num : 15\n"},
    {kEcdsa, "P-384]", "P-384]\n[Curve = P-255]", false, "Unsupported curve!!\nhash: 224\n"},
    {kEcdsa, "[Curve = P-384]\n[HashAlgorithm = SHA-224]",
     "[Curve = P-0]\nHashAlgorithm = SHA-1\nHashAlgorithm = SHA-2\nCurve = P-192", false,
     "Unsupported curve!!\nhash: 1\nhash: 2\nUnsupported hash algorithm!!\n"},
    // Seven characters are too long, unless they end the file.
    {kEcdsa, "SHA-224", "SHA-512/224", false, "[ERR]getStr: not enough buffer!!\n"},
    {kEcdsa, "15]\n", "7654321", true, "hash: 224\nrequest size : 128\nmessage num : 7654321\n"},
    // The length must come after the items, and the curve right after the function.
    {kEcdsa, "]\n[BitLengthOfMessage", " BitLengthOfMessage", false, "hash: 224\n"},
    {kEcdsa, "[Curve", "\n[Curve", false, "hash: 224\n"},

    {kFfc, "", "", true, "hash: 512\nrequest size : 128\nmessage num : 7\n"},
    {kFfc, "2048]\n[N", "2048, N", false, "hash: 512\n"},
    // The 48th character of a line begins another one.
    {kFfc, "[FFC", "-----------------------------------------------[FFC", true,
     "hash: 512\nrequest size : 128\nmessage num : 7\n"},
    {kFfc, "[FFC", "----------------------------------------------[FFC", false, "hash: 512\n"},
    {kFfc, "[Bit", "---------------------- Bit", true,
     "hash: 512\nrequest size : 12\nmessage num : 7\n"},
};

TEST(ValueListHeader, ReportsItemsAndFaults) {
  for (const Edit& row : kEdits) {
    SCOPED_TRACE(row.to);
    const Outcome outcome = runInProcess(edited(row.header, row.from, row.to));
    EXPECT_EQ(outcome.status, row.complete ? 0 : -1);
    EXPECT_EQ(outcome.console, std::string("function    : ") +
                                   (row.header == kDrbg ? "DRBG\n" : "Verification\n") +
                                   row.console + (row.complete ? "" : "request is inadequate!!\n"));
  }
}

TEST(ValueListHeader, IsInadequateWithoutItsLastLines) {
  for (const std::string header : {kDrbg, kEcdsa, kFfc}) {
    for (std::size_t end = header.find('\n'); end + 1 < header.size();
         end = header.find('\n', end + 1)) {
      SCOPED_TRACE(header.substr(0, end));
      const Outcome outcome = runInProcess(header.substr(0, end));
      EXPECT_EQ(outcome.status, -1);
      EXPECT_EQ(lastLines(outcome.console, 1), "request is inadequate!!\n");
    }
  }
}

TEST(ValueListHeader, LeavesTheResponseAlone) {
  const Outcome outcome = runBinary(std::string("[Block Cipher]\nAES\n") + kDrbg);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.response, "# File: Response file\n#\n[Block Cipher]\nAES\n");
}

}  // namespace
