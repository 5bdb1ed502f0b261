#include <gtest/gtest.h>

#include <string>

#include "support/run_request.h"

// Every example through the built program: the response (its date line aside), the console and the
// exit status. The expected answers are published ones.

namespace {

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

TEST(Examples, GiveTheirPublishedAnswers) {
  for (const Example& row : kExamples) {
    SCOPED_TRACE(row.name);
    const Outcome outcome = runBinary(example(row.name, ".req"));
    const std::string expected = example(row.name, ".rsp");
    ASSERT_FALSE(expected.empty());
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.console, row.console);
    EXPECT_EQ(outcome.response, expected.substr(expected.find('\n') + 1));
  }
}

}  // namespace
