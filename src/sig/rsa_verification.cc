#include "sig/rsa_verification.h"

#include <array>

#include "sig/key_records.h"
#include "sig/pubkey.h"
#include "sig/rsa_engine.h"
#include "text/buffer.h"
#include "text/diagnostics.h"
#include "text/record_list.h"
#include "text/sections.h"
#include "text/text_helpers.h"

namespace runner {
namespace {

constexpr KeyList kExponents{.section = "[e]",
                             .complaint = "lack of exp!!",
                             .sectionSite = 5589,
                             .sites = {.allocation = 5607, .value = 5608}};
constexpr KeyList kSignatures{.section = "[Signatures]",
                              .complaint = "lack of signature!!",
                              .sectionSite = 5615,
                              .sites = {.allocation = 5630, .value = 5631}};
// A message that is missing is one that does not convert.
constexpr KeyList kMessages{.section = "[Plaintexts]",
                            .complaint = nullptr,
                            .sectionSite = 5654,
                            .sites = {.allocation = 5666, .value = 5667}};

struct RsaRequest {
  Buffer modulus;
  RecordList<KeyRecord> records;
};

int readModulus(const TestConfig& config, TestFiles& files, Buffer& modulus) {
  int bits = 0;
  if (echoSection(files, "[Bitlength of Modulus]", 5551) < 0) return -1;
  echoDecimal(files, bits);
  if (!modulus.allocate(bytesForBits(bits))) return mallocFailedAt(5561);
  writeHashName(files.response, config.hashId);
  return echoHexSection(files, "[n]", modulus.bytes(), {.section = 5567, .value = 5571});
}

int readRequest(const TestConfig& config, TestFiles& files, RsaRequest& request) {
  int count = 0;
  int bits = 0;
  if (readModulus(config, files, request.modulus) < 0) return -1;
  if (echoSection(files, "[Number of Signatures]", 5576) < 0) return -1;
  if (echoPositive(files, count, nullptr) < 0) return -1;
  if (readKeys(files, kExponents, 5600, count, request.records) < 0) return -1;
  if (readSignatures(files, kSignatures, request.records) < 0) return -1;
  if (echoSection(files, "[Bitlength of Plaintexts]", 5640) < 0) return -1;
  if (echoPositive(files, bits, nullptr) < 0) return -1;
  return readMessages(files, kMessages, bytesForBits(bits), request.records);
}

int verifyRecord(const TestConfig& config, const Buffer& modulus, const KeyRecord& record) {
  OwnedPubKey key(nullptr, PubKeyDeleter(config));
  if (makeRsaKey(config.engine, key, modulus.bytes(), record.key.bytes()) < 0) return failAt(5682);
  return verifyRsa(config, key.get(), record.message.bytes(), record.signature.bytes());
}

int runTest(const TestConfig& config, TestFiles& files) {
  RsaRequest request;
  if (readRequest(config, files, request) < 0) return -1;
  writeLine(files.response, "[Results]");
  for (const KeyRecord& record : request.records) {
    const int result = verifyRecord(config, request.modulus, record);
    if (result < 0) return -1;
    writeDecimal(files.response, result);
  }
  return 0;
}

}  // namespace

int procVerifyRsa(const TestConfig& config, const char* requestPath, const char* responsePath) {
  std::array<char, kKeyLineCapacity> line{};
  TestFiles files{.line = line};
  if (openFiles(files, requestPath, responsePath) < 0) return -1;
  return closeFiles(files, responsePath, runTest(config, files));
}

}  // namespace runner
