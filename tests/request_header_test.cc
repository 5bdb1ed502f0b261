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

  // "[Key]" and "[Hash]" are only echoed once the function is MAC.
  const Parsed mac = parse(
      "[Key]\n00\n[Algorithm Name]\nHMAC\n[Function Name]\nMAC\n[Hash]\nM_Hash_SHA384\n"
      "[Bitlength of Key]\n160\n[Key]\nabcd\n");
  EXPECT_EQ(mac.result, 0);
  EXPECT_EQ(mac.config.mode, ModeId::HMAC);
  EXPECT_EQ(mac.config.hashId, HashId::SHA384);
  EXPECT_EQ(mac.response,
            "[Algorithm Name]\nHMAC\n[Function Name]\nMAC\n[Hash]\nM_Hash_SHA384\n"
            "[Bitlength of Key]\n160\n[Key]\nabcd\n");
}

TEST(RequestHeader, ResolvesFunctionAndAlgorithm) {
  struct Case {
    std::string_view algorithm;
    std::string_view function;
    std::string_view rest;
    TestFunction testFunction;
    ModeId mode;
    HashId hashId;
  };
  const Case cases[] = {
      {"SHA-224", "Hash", "[Data Format]\nM_Hash_Byte\n", TestFunction::HASH, ModeId::SHA224,
       HashId::SHA224},
      {"DSA FIPS 186-3", "Sign", "[Hash]\nM_Hash_SHA1\n", TestFunction::SIGN, ModeId::DSA,
       HashId::SHA1},
      {"ECDSA", "Key Generation", "[Hash]\nunknown\n", TestFunction::KEY_GENERATION, ModeId::ECDSA,
       HashId::NONE},
      {"RSASSA", "Verification", "[Hash]\nM_Hash_SHA512\n", TestFunction::VERIFICATION,
       ModeId::RSASSA, HashId::SHA512},
      {"ECDSA", "Public Key Validation", "[Characteristic]\nprime\n",
       TestFunction::PUBLIC_KEY_VALIDATION, ModeId::ECDSA, HashId::NONE},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(row.function);
    const Parsed parsed =
        parse("[Algorithm Name]\n" + std::string(row.algorithm) + "\n[Function Name]\n" +
              std::string(row.function) + "\n" + std::string(row.rest));
    EXPECT_EQ(parsed.result, 0) << parsed.console;
    EXPECT_EQ(parsed.config.testFunction, row.testFunction);
    EXPECT_EQ(parsed.config.mode, row.mode);
    EXPECT_EQ(parsed.config.hashId, row.hashId);
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

// fieldsOf returns what a value-list header fills in: function, mode, hash, key length, subgroup
// length, message length, count, flags and curve.
std::string fieldsOf(const TestConfig& config) {
  std::string fields;
  for (const int number : {static_cast<int>(config.testFunction), static_cast<int>(config.mode),
                           static_cast<int>(config.hashId), config.keyLength, config.subgroupLength,
                           config.messageLength, config.count, static_cast<int>(config.flags)}) {
    fields += std::to_string(number) + " ";
  }
  return fields + (config.curveName != nullptr ? config.curveName : "-");
}

TEST(ValueListHeader, FillsTheConfig) {
  EXPECT_EQ(fieldsOf(parse(kDrbg).config), "10 1 0 16 0 63 15 1 -");
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

  // A full disk: the header lines, then the echo.
  const Outcome full = runCommand({request, "/dev/full"});
  EXPECT_EQ(full.status, 0);
  EXPECT_EQ(full.console, "can't write /dev/full\ncan't write /dev/full\n");

  // A file size limit is no different.
  const Outcome limited = runCommand({request, response}, "ulimit -f 0; " RUNNER_BINARY);
  EXPECT_EQ(limited.status, 0);
  EXPECT_EQ(limited.console, "can't write " + response + "\ncan't write " + response + "\n");
}

}  // namespace
}  // namespace runner
