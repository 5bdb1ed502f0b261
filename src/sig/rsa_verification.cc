#include "sig/rsa_verification.h"

#include "sig/key_records.h"
#include "sig/pubkey.h"
#include "sig/rsa_engine.h"
#include "text/buffer.h"
#include "text/diagnostics.h"
#include "text/record_list.h"
#include "text/sections.h"
#include "text/test_files.h"
#include "text/text_helpers.h"

namespace runner {
namespace {

constexpr ListSection kExponents{
    .key = "[e]", .complaint = "lack of exp!!", .sites = {.section = 5589, .line = {5607, 5608}}};
constexpr ListSection kSignatures{.key = "[Signatures]",
                                  .complaint = "lack of signature!!",
                                  .sites = {.section = 5615, .line = {5630, 5631}}};
// A message that is missing is one that does not convert.
constexpr ListSection kMessages{
    .key = "[Plaintexts]", .complaint = nullptr, .sites = {.section = 5654, .line = {5666, 5667}}};

struct RsaRequest {
  Buffer modulus;
  RecordList<KeyRecord> records;
};

int readModulus(const TestConfig& config, TestFiles& files, Buffer& modulus) {
  if (echoSection(files, "[Bitlength of Modulus]", 5551) < 0) return -1;
  const int bits = echoDecimal(files);
  if (!modulus.allocate(bytesForBits(bits))) return mallocFailedAt(5561);
  writeHashName(files.response, config.hashId);
  return echoHexSection(files, "[n]", modulus.bytes(), {.section = 5567, .value = 5571});
}

int readRequest(const TestConfig& config, TestFiles& files, RsaRequest& request) {
  int count = 0;
  int bits = 0;
  if (readModulus(config, files, request.modulus) < 0) return -1;
  if (echoCount(files, "[Number of Signatures]", count, 5576) < 0) return -1;
  if (readKeys(files, kExponents, 5600, count, request.records) < 0) return -1;
  if (readSignatures(files, kSignatures, request.records) < 0) return -1;
  if (echoCount(files, "[Bitlength of Plaintexts]", bits, 5640) < 0) return -1;
  return readMessages(files, kMessages, bytesForBits(bits), request.records);
}

Verdict verifyRecord(const TestConfig& config, const Buffer& modulus, const KeyRecord& record) {
  OwnedPubKey key;
  if (makeRsaKey(config.engine, key, modulus.bytes(), record.key.bytes()) < 0) {
    return verdictOf(failAt(5682));
  }
  return verdictOf(verifyRsa(config, key.get(), record.message.bytes(), record.signature.bytes()));
}

int verifySignatures(const TestConfig& config, TestFiles& files) {
  RsaRequest request;
  if (readRequest(config, files, request) < 0) return -1;
  writeLine(files.response, "[Results]");
  for (const KeyRecord& record : request.records) {
    if (writeResultNumber(files, verifyRecord(config, request.modulus, record)) < 0) return -1;
  }
  return 0;
}

}  // namespace

int procVerifyRsa(const TestConfig& config, const char* requestPath, const char* responsePath) {
  TestFiles files{requestPath, responsePath, kKeyLineCapacity};
  if (openFiles(files) < 0) return -1;
  return closeFiles(files, verifySignatures(config, files));
}

}  // namespace runner
