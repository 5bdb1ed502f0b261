#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <string>

#include "driver/test_config.h"
#include "support/run_request.h"

// Every example: the response (its date line aside), the console and the exit status of the built
// program, and the same answers through the other engine. They are published ones.

namespace {

const std::string kOwnLines = "# File: Response file\n#\n";

const char* const kCipherTests =
    "procKAT_Text finish normally\nprocKAT_Key finish normally\nprocKAT_GFSbox finish normally\n"
    "procKAT_KeySbox finish normally\nprocMMT finish normally\nprocMCT finish normally\n";

const char* const kHashTests =
    "procSMT finish normally\nprocSLMT finish normally\nprocPGMT finish normally\n";

const char* const kValueListDsa =
    "function    : Verification\nhash: 256\nrequest size : 128\nmessage num : 6\n"
    "procVerify finish normally\n";
const char* const kValueListEcdsa =
    "function    : Verification\nhash: 256\nrequest size : 128\nmessage num : 6\n"
    "curveid: 2\nprocVerify finish normally\n";

struct Example {
  const char* name;
  const char* console;
};

const Example kExamples[] = {
    {"aes-128-cbc-encryption", kCipherTests},
    {"aes-256-cbc-decryption", kCipherTests},
    {"aes-128-gcm-encryption", "procAEAD finish normally\n"},
    {"aes-256-gcm-decryption", "procAEAD finish normally\n"},
    {"dsa-2048-256-sha-256-verification", "procVerify finish normally\n"},
    {"dsa-2048-256-value-list", kValueListDsa},
    {"ecdsa-p-256-public-key-validation", "curveid: 2\nprocChkPublicKey finish normally\n"},
    {"ecdsa-p-256-sha-256-verification", "curveid: 2\nprocVerify finish normally\n"},
    {"ecdsa-p-256-value-list", kValueListEcdsa},
    {"rsa-2048-sha-256-verification", "procVerify finish normally\n"},
    {"sha-256-hash", kHashTests},
    {"hmac-sha-256-mac", kHashTests},
};

void expectAnswer(const Outcome& outcome, const std::string& answer) {
  EXPECT_EQ(outcome.response, answer);
}

TEST(Examples, GiveTheirPublishedAnswers) {
  for (const Example& row : kExamples) {
    SCOPED_TRACE(row.name);
    const Outcome outcome = runBinary(example(row.name, ".req"));
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.console, row.console);
    expectAnswer(outcome, kOwnLines + answerOf(row.name));
  }
}

TEST(Examples, GiveThemThroughOpensslToo) {
  for (const Example& row : kExamples) {
    SCOPED_TRACE(row.name);
    const Outcome outcome = runInProcess(example(row.name, ".req"), runner::CryptEngine::OPENSSL);
    EXPECT_TRUE(outcome.console.ends_with(lastLines(row.console, 1))) << outcome.console;
    expectAnswer(outcome, answerOf(row.name));
  }
}

TEST(Examples, FailWhenABitOfTheAnswerIsFlipped) {
  for (const Example& row : kExamples) {
    SCOPED_TRACE(row.name);
    const Outcome outcome = runInProcess(example(row.name, ".req"));
    std::string answer = answerOf(row.name);
    expectAnswer(outcome, answer);
    char& lastDigit = answer[answer.size() - 2];
    lastDigit = static_cast<char>(lastDigit ^ 1);
    EXPECT_NONFATAL_FAILURE(expectAnswer(outcome, answer), "outcome.response");
  }
}

}  // namespace
