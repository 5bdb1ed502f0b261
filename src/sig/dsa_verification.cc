#include "sig/dsa_verification.h"

#include <array>

#include "sig/dsa_engine.h"
#include "sig/key_records.h"
#include "sig/pubkey.h"
#include "text/buffer.h"
#include "text/diagnostics.h"
#include "text/record_list.h"
#include "text/sections.h"
#include "text/text_helpers.h"

namespace runner {
namespace {

constexpr KeyList kKeys{.section = "[Public Keys]",
                        .complaint = "lack of public key!!",
                        .sectionSite = 4205,
                        .sites = {.allocation = 4223, .value = 4224}};
constexpr KeyList kMessages{.section = "[Plaintexts]",
                            .complaint = "lack of planetext!!",
                            .sectionSite = 4231,
                            .sites = {.allocation = 4243, .value = 4244}};
constexpr KeyList kSignatures{.section = "[Signatures]",
                              .complaint = "lack of signature!!",
                              .sectionSite = 4253,
                              .sites = {.allocation = 4268, .value = 4269}};

struct DsaRequest {
  Buffer p;
  Buffer q;
  Buffer g;
  RecordList<KeyRecord> records;
};

int readParameter(TestFiles& files, int bits, Buffer& value) {
  return echoSized(files, nextValue(files), value, bytesForBits(bits),
                   {.allocation = 4169, .value = 4170});
}

int readDomainParameters(TestFiles& files, DsaRequest& request) {
  int pBits = 0;
  int qBits = 0;
  if (echoSection(files, "[Bitlength of p]", 4145) < 0) return -1;
  echoDecimal(files, pBits);
  if (echoSection(files, "[Bitlength of q]", 4154) < 0) return -1;
  echoDecimal(files, qBits);
  if (echoSection(files, "[PQG]", 4164) < 0) return -1;
  if (readParameter(files, pBits, request.p) < 0) return -1;
  if (readParameter(files, qBits, request.q) < 0) return -1;
  return readParameter(files, pBits, request.g);
}

int readRequest(const TestConfig& config, TestFiles& files, DsaRequest& request) {
  int bits = 0;
  int count = 0;
  if (readDomainParameters(files, request) < 0) return -1;
  writeHashName(files.response, config.hashId);
  if (echoSection(files, "[Bitlength of Plaintexts]", 4178) < 0) return -1;
  if (echoPositive(files, bits, nullptr) < 0) return -1;
  if (echoSection(files, "[Number of Plaintexts]", 4192) < 0) return -1;
  if (echoPositive(files, count, nullptr) < 0) return -1;
  if (readKeys(files, kKeys, 4216, count, request.records) < 0) return -1;
  if (readMessages(files, kMessages, bytesForBits(bits), request.records) < 0) return -1;
  return readSignatures(files, kSignatures, request.records);
}

int verifyRecord(const TestConfig& config, const DsaRequest& request, const KeyRecord& record) {
  OwnedPubKey key(nullptr, PubKeyDeleter(config));
  const DsaKeyValues values{.p = request.p.bytes(),
                            .q = request.q.bytes(),
                            .g = request.g.bytes(),
                            .y = record.key.bytes()};
  if (makeDsaKey(config.engine, key, values) < 0) return failAt(4281);
  const SignatureHalves halves = splitSignature(record);
  return verifyDsa(config, key.get(), record.message.bytes(), halves.r, halves.s);
}

int runTest(const TestConfig& config, TestFiles& files) {
  DsaRequest request;
  if (readRequest(config, files, request) < 0) return -1;
  writeLine(files.response, "[Results]");
  for (const KeyRecord& record : request.records) {
    const int result = verifyRecord(config, request, record);
    if (result < 0) return -1;
    writeDecimal(files.response, result);
  }
  return 0;
}

}  // namespace

int procVerifyDsa(const TestConfig& config, const char* requestPath, const char* responsePath) {
  std::array<char, kKeyLineCapacity> line{};
  TestFiles files{.line = line};
  if (openFiles(files, requestPath, responsePath) < 0) return -1;
  return closeFiles(files, responsePath, runTest(config, files));
}

}  // namespace runner
