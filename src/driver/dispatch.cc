#include "driver/dispatch.h"

#include <sys/stat.h>

#include <array>
#include <cstdio>
#include <ctime>

#include "cipher/gcm_cases.h"
#include "cipher/known_answers.h"
#include "cipher/monte_carlo.h"
#include "cipher/multi_block_message.h"
#include "driver/request_header.h"
#include "ec/ecdsa_value_list.h"
#include "ec/ecdsa_verification.h"
#include "ec/public_key_validation.h"
#include "hash/pseudo_random_messages.h"
#include "hash/short_and_long_messages.h"
#include "sig/dsa_value_list.h"
#include "sig/dsa_verification.h"
#include "sig/rsa_verification.h"
#include "text/diagnostics.h"
#include "text/test_files.h"
#include "text/text_helpers.h"

namespace runner {
namespace {

bool isSameFile(const char* path, const char* otherPath) {
  struct stat file {};
  struct stat other {};
  return stat(path, &file) == 0 && stat(otherPath, &other) == 0 && file.st_dev == other.st_dev &&
         file.st_ino == other.st_ino;
}

// startResponse writes the three lines that begin a response. Returns 0, also when the response
// cannot be created, and -1 when they could not be written; either is told.
int startResponse(const char* responsePath) {
  TextWriter response;
  if (!response.create(responsePath)) {
    failOpening(responsePath);
    return 0;
  }
  const std::time_t now = std::time(nullptr);
  std::array<char, 32> date{};
  std::strftime(date.data(), date.size(), "%a %b %e %H:%M:%S %Y", std::localtime(&now));
  writeText(response, "# Date: ");
  writeLine(response, date.data());
  writeText(response, "# File: Response file\n#\n");
  return closeWritten(response, responsePath);
}

void reportFinished(const char* name) { std::printf("%s finish normally\n", name); }

// The cipher tests succeed with any result that is not negative.
void reportCipherTest(const char* name, int result) {
  if (result >= 0) reportFinished(name);
}

// All other tests succeed with 0 only.
void reportTest(const char* name, int result) {
  if (result == 0) reportFinished(name);
}

void runCipherTests(const TestConfig& config, const char* requestPath, const char* responsePath) {
  reportCipherTest("procKAT_Text", procKAT_VarText(config, requestPath, responsePath, "Text"));
  reportCipherTest("procKAT_Key", procKAT_VarKey(config, requestPath, responsePath, "Key"));
  reportCipherTest("procKAT_GFSbox", procKAT_VarText(config, requestPath, responsePath, "GFSbox"));
  reportCipherTest("procKAT_KeySbox", procKAT_VarKey(config, requestPath, responsePath, "KeySbox"));
  reportCipherTest("procMMT", procMMT(config, requestPath, responsePath));
  reportCipherTest("procMCT", procMCT(config, requestPath, responsePath));
}

void runHashTests(const TestConfig& config, const char* requestPath, const char* responsePath) {
  reportTest("procSMT", procSMT(config, requestPath, responsePath));
  reportTest("procSLMT", procSLMT(config, requestPath, responsePath));
  reportTest("procPGMT", procPGMT(config, requestPath, responsePath));
}

void runVerification(const TestConfig& config, const char* requestPath, const char* responsePath) {
  const bool isValueList = (config.flags & FLAG_VALUE_LIST) != 0;
  switch (config.mode) {
    case ModeId::DSA:
      reportTest("procVerify", isValueList ? procVerifyDsaRecords(config, requestPath, responsePath)
                                           : procVerifyDsa(config, requestPath, responsePath));
      break;
    case ModeId::ECDSA:
      reportTest("procVerify", isValueList
                                   ? procVerifyEcdsaRecords(config, requestPath, responsePath)
                                   : procVerifyEcdsa(config, requestPath, responsePath));
      break;
    case ModeId::RSASSA:
      reportTest("procVerify", procVerifyRsa(config, requestPath, responsePath));
      break;
    default:  // no other algorithm has signatures
      break;
  }
}

}  // namespace

int runRequest(const char* requestPath, const char* responsePath, CryptEngine engine) {
  if (isSameFile(requestPath, responsePath)) return failOpening(responsePath);
  TestConfig config;
  if (startResponse(responsePath) < 0) return -1;
  if (parseRequestHeader(config, requestPath, responsePath) < 0) return -1;
  config.engine = engine;
  runTests(config, requestPath, responsePath);
  return 0;
}

void runTests(const TestConfig& config, const char* requestPath, const char* responsePath) {
  switch (config.testFunction) {
    case TestFunction::ENCRYPTION:
    case TestFunction::DECRYPTION:
      runCipherTests(config, requestPath, responsePath);
      break;
    case TestFunction::AEAD_ENCRYPTION:
    case TestFunction::AEAD_DECRYPTION:
      reportCipherTest("procAEAD", procAEAD(config, requestPath, responsePath));
      break;
    case TestFunction::PUBLIC_KEY_VALIDATION:
      reportTest("procChkPublicKey", procChkPublicKey(config, requestPath, responsePath));
      break;
    case TestFunction::VERIFICATION:
      runVerification(config, requestPath, responsePath);
      break;
    case TestFunction::HASH:
    case TestFunction::MAC:
      runHashTests(config, requestPath, responsePath);
      break;
    case TestFunction::KEY_GENERATION:
    case TestFunction::SIGN:
    case TestFunction::DRBG:
      break;
  }
}

}  // namespace runner
