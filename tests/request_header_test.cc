#include "driver/request_header.h"

#include <gtest/gtest.h>

#include <string>

#include "support/run_request.h"

namespace runner {
namespace {

struct Parsed {
  TestConfig config;
  int result = 0;
  std::string console;
  std::string response;
};

Parsed parse(std::string_view request) {
  const TempDir dir;
  writeFile(dir.file("request"), request);
  Parsed parsed;
  testing::internal::CaptureStdout();
  parsed.result =
      parseRequestHeader(parsed.config, dir.file("request").c_str(), dir.file("response").c_str());
  parsed.console = testing::internal::GetCapturedStdout();
  parsed.response = readFile(dir.file("response"));
  return parsed;
}

// fieldsOf returns what a header fills in: function, mode, hash, key length, subgroup length,
// message length, count, flags and curve.
std::string fieldsOf(const TestConfig& config) {
  std::string fields;
  for (const int number : {static_cast<int>(config.testFunction), static_cast<int>(config.mode),
                           static_cast<int>(config.hashId), config.keyLength, config.subgroupLength,
                           config.messageLength, config.count, static_cast<int>(config.flags)}) {
    fields += std::to_string(number) + " ";
  }
  return fields + (config.curveName != nullptr ? config.curveName : "-");
}

TEST(RequestHeader, FillsTheConfigAndEchoesItsSections) {
  // Key lines are echoed in their own form, save those of the maximum lengths, which stand as read.
  const Parsed gcm = parse(
      "[Algorithm Name]\nGCM/GMAC AES\n[Function Name] x\nDecryption\n[Bitlength of Key]\n256\n"
      "[Min BitLength of IV] y\n96\n[Max BitLength of Plaintext]\n  +0129z\n"
      "[Max BitLength of Ciphertext] z\n-9");
  EXPECT_EQ(gcm.result, 0);
  EXPECT_EQ(gcm.console, "");
  EXPECT_EQ(gcm.config.testFunction, TestFunction::AEAD_DECRYPTION);
  EXPECT_EQ(gcm.config.keyLength, 32);
  EXPECT_EQ(gcm.config.maxTextLength, 0);
  EXPECT_EQ(gcm.response,
            "[Algorithm Name]\nGCM/GMAC AES\n[Function Name]\nDecryption\n[Bitlength of Key]\n256\n"
            "[Min BitLength of IV]\n96\n[Max BitLength of Plaintext]\n129\n"
            "[Max BitLength of Ciphertext] z\n-9\n");
}

TEST(RequestHeader, ResolvesFunctionAndAlgorithm) {
  const char* const kHash = "[Hash]\nM_Hash_SHA384\n";
  const char* const kFormat = "[Data Format]\nM_Hash_Byte\n";
  struct Case {
    const char *algorithm, *function, *rest, *fields;
  };
  const Case cases[] = {
      {"DSA FIPS 186-4", "Key Generation", kHash, "2 8 5 0 0 0 0 0 -"},
      {"ECDSA", "Key Generation", kHash, "2 9 5 0 0 0 0 0 -"},
      {"RSASSA", "Key Generation", kHash, "2 10 5 0 0 0 0 0 -"},
      {"DSA FIPS 186-4", "Sign", kHash, "4 8 5 0 0 0 0 0 -"},
      {"ECDSA", "Public Key Validation", "[Characteristic]\nprime\n", "3 9 0 0 0 0 0 0 -"},
      {"SHA-1", "Hash", kFormat, "6 2 2 0 0 0 0 0 -"},
      {"SHA-512", "Hash", kFormat, "6 6 6 0 0 0 0 0 -"},
      {"HMAC", "MAC", "[Hash]\nno hash\n[Bitlength of Key]\n384\n", "7 7 0 48 0 0 0 0 -"},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(std::string(row.algorithm) + " " + row.function);
    const std::string header = std::string("[Algorithm Name]\n") + row.algorithm +
                               "\n[Function Name]\n" + row.function + "\n";
    const Parsed parsed = parse(header + row.rest);
    EXPECT_EQ(parsed.result, 0) << parsed.console;
    EXPECT_EQ(fieldsOf(parsed.config), row.fields);
    EXPECT_EQ(parsed.response, header + (row.rest == kHash ? "" : row.rest));
  }
}

// The headers of value-list requests.
const std::string kDrbg =
    "# CTR_DRBG\n[AlgorithmName = CTR_DRBG no df]\n[UnderlyingAlgorithm = AES-256]\n"
    "[SecurityStrength = 128]\n[RequestedNumberOfBits = 511]\n[NumberOfTrials = 15]\n";
const std::string kEcdsa =
    "# ECDSA\n[TargetFunction = SignatureVerification]\n[Curve = P-384]\n"
    "[HashAlgorithm = SHA-224]\n[BitLengthOfMessage = 1024]\n[NumberOfMessages = 15]\n";
const std::string kFfc =
    "# DSA\n[TargetFunction = SignatureVerification]\n[FFCDomainParameterSizeSet = (2048, 256)]\n"
    "[L = 2048]\n[N = 256]\n[HashAlgorithm = SHA-512]\n[BitLengthOfMessage = 1024]\n"
    "[NumberOfMessages = 7]\n";

TEST(ValueListHeader, FillsTheConfig) {
  const std::string other = edited(edited(kDrbg, "AES-256", "AES-128"), "= 128", "= 256");
  EXPECT_EQ(fieldsOf(parse(kDrbg).config), "10 1 0 16 0 63 15 1 -");
  EXPECT_EQ(fieldsOf(parse(other).config), "10 1 0 32 0 63 15 1 -");
  EXPECT_EQ(fieldsOf(parse(kEcdsa).config), "5 9 3 28 0 128 15 1 P-384");
  EXPECT_EQ(fieldsOf(parse(kFfc).config), "5 8 6 256 32 128 7 1 -");
}

TEST(ValueListHeader, IsInadequateWithoutItsLastLines) {
  for (const std::string& header : {kDrbg, kEcdsa, kFfc}) {
    for (std::size_t end = header.find('\n'); end + 1 < header.size();
         end = header.find('\n', end + 1)) {
      SCOPED_TRACE(header.substr(0, end));
      const Parsed parsed = parse(header.substr(0, end));
      EXPECT_EQ(parsed.result, -1);
      EXPECT_EQ(lastLines(parsed.console, 1), "request is inadequate!!\n");
    }
  }
}

TEST(ValueListHeader, LeavesTheResponseAlone) {
  const Outcome outcome = runBinary("[Block Cipher]\nAES\n" + kDrbg);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.response, "# File: Response file\n#\n[Block Cipher]\nAES\n");
}

TEST(Command, TellsItsOutcomeByExitStatus) {
  const TempDir dir;
  const std::string request = dir.file("request");
  const std::string response = dir.file("response");
  const std::string missing = dir.file("missing/file");
  writeFile(request, "[Algorithm Name]\nECDSA\n[Function Name]\nSign\n[Hash]\nM_Hash_SHA1\n");

  EXPECT_EQ(runCommand({}).status, 1);
  EXPECT_EQ(runCommand({request}).status, 1);
  EXPECT_EQ(runCommand({request, response, "more"}).status, 0);
  const std::string written = readFile(response);
  EXPECT_EQ(written.substr(written.find('\n')),
            "\n# File: Response file\n#\n[Algorithm Name]\nECDSA\n[Function Name]\nSign\n");

  const Outcome inadequate = runBinary("[Function Name]\nHash\n");
  EXPECT_EQ(inadequate.status, 255);

  const Outcome unreadable = runCommand({missing, response});
  EXPECT_EQ(unreadable.status, 255);
  EXPECT_EQ(unreadable.console, "can't open " + missing + "\n");
  EXPECT_EQ(lastLines(readFile(response), 2), "# File: Response file\n#\n");

  const Outcome unwritable = runCommand({request, missing});
  EXPECT_EQ(unwritable.status, 255);
  EXPECT_EQ(unwritable.console, "can't open " + missing + "\ncan't open " + missing + "\n");

  // One file under two names stays as it is.
  const std::string alias = dir.file("alias");
  std::filesystem::create_symlink(request, alias);
  const std::string before = readFile(request);
  const Outcome same = runCommand({request, alias});
  EXPECT_EQ(same.status, 255);
  EXPECT_EQ(same.console, "can't open " + alias + "\n");
  EXPECT_EQ(readFile(request), before);
}

}  // namespace
}  // namespace runner
