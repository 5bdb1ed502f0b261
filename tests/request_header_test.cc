#include "driver/request_header.h"

#include <gtest/gtest.h>

#include <string>

#include "support/run_request.h"

namespace runner {
namespace {

constexpr std::string_view kAesHeader =
    "# comment\n[Algorithm Name]\nAES\n\n[Function Name]\nEncryption\n[Modes of Operation]\nCBC\n"
    "[Bitlength of Key]\n128\n";

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
  const Parsed aes = parse(std::string(kAesHeader) + "[Key for KAT-Key]\n00\n");
  EXPECT_EQ(aes.result, 0);
  EXPECT_EQ(aes.console, "");
  EXPECT_EQ(aes.response,
            "[Algorithm Name]\nAES\n[Function Name]\nEncryption\n[Modes of Operation]\nCBC\n"
            "[Bitlength of Key]\n128\n");
  EXPECT_EQ(aes.config.keyLength, 16);

  // Key lines are echoed in their own form, save those of the maximum lengths, which stand as read.
  const Parsed gcm = parse(
      "[Algorithm Name]\nGCM/GMAC AES\n[Function Name] x\nDecryption\n[Bitlength of Key]\n256\n"
      "[Min BitLength of IV] y\n96\n[Max BitLength of Plaintext]\n  +0129z\n"
      "[Max BitLength of Ciphertext] z\n-9");
  EXPECT_EQ(gcm.result, 0);
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

TEST(RequestHeader, RefusesWithItsReason) {
  struct Case {
    std::string_view from;
    std::string_view to;
    std::string_view console;
    std::string_view tail;  // last line of the response
  };
  const char* const kInadequate = "request is inadequate!!\n";
  const Case cases[] = {
      {"Encryption", "encryption", "unexpected function name!!\nrequest is inadequate!!\n",
       "encryption\n"},
      {"AES\n", "DES\n", "unexpected algorithm name!!\nrequest is inadequate!!\n", "Encryption\n"},
      {"[Algorithm Name]\nAES\n", "", "unexpected algorithm name!!\nrequest is inadequate!!\n",
       "Encryption\n"},
      {"CBC", "CTR", "unexpected operation mode name!!\nrequest is inadequate!!\n", "CTR\n"},
      {"128", "129", "unexpected key length!!\nrequest is inadequate!!\n", "129\n"},
      {"128\n", "", "unexpected key length!!\nrequest is inadequate!!\n", "[Bitlength of Key]\n"},
      {"# comment\n", "[Data Format]\nbits\n", "unknown data format!!\nrequest is inadequate!!\n",
       "bits\n"},
      {"# comment\n", "[Characteristic]\nx\n", "unsupported characteristic(x\n)!!\n",
       "[Characteristic]\n"},
      {"# comment\n", "[Hash]\nM_Hash_SHA256\n", kInadequate, "128\n"},
      {"[Modes of Operation]\n", "", kInadequate, "128\n"},
      // The name is cut at 31 characters; the rest of its line is skipped as a line of its own.
      {"AES\n", "A name that is much longer than a name may be\n",
       "unexpected algorithm name!!\nrequest is inadequate!!\n", "Encryption\n"},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(row.to);
    const Parsed parsed = parse(edited(kAesHeader, row.from, row.to));
    EXPECT_EQ(parsed.result, -1);
    EXPECT_EQ(parsed.console, row.console);
    EXPECT_EQ(lastLines(parsed.response, 1), row.tail);
  }
}

// The 127th character of a long line ends a piece; the next piece is a line of its own.
TEST(RequestHeader, SeesALongLineAsSeveral) {
  const std::string padding(127, 'x');
  const Parsed parsed = parse(padding + std::string(kAesHeader.substr(10)));
  EXPECT_EQ(parsed.result, 0) << parsed.console;
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
}

}  // namespace
}  // namespace runner
