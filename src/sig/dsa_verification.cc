#include "sig/dsa_verification.h"

#include "sig/dsa_engine.h"
#include "sig/key_records.h"
#include "sig/pubkey.h"
#include "text/buffer.h"
#include "text/diagnostics.h"
#include "text/record_list.h"
#include "text/sections.h"
#include "text/test_files.h"
#include "text/text_helpers.h"

namespace runner {
namespace {

constexpr RecordSites kRecordSites{.messageBits = 4178,
                                   .count = 4192,
                                   .record = 4216,
                                   .keys = {.section = 4205, .line = {4223, 4224}},
                                   .messages = {.section = 4231, .line = {4243, 4244}},
                                   .signatures = {.section = 4253, .line = {4268, 4269}}};

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
  if (echoSection(files, "[Bitlength of p]", 4145) < 0) return -1;
  const int pBits = echoDecimal(files);
  if (echoSection(files, "[Bitlength of q]", 4154) < 0) return -1;
  const int qBits = echoDecimal(files);
  if (echoSection(files, "[PQG]", 4164) < 0) return -1;
  if (readParameter(files, pBits, request.p) < 0) return -1;
  if (readParameter(files, qBits, request.q) < 0) return -1;
  return readParameter(files, pBits, request.g);
}

Verdict verifyRecord(const TestConfig& config, const DsaRequest& request, const KeyRecord& record) {
  OwnedPubKey key;
  const DsaKeyValues values{.p = request.p.bytes(),
                            .q = request.q.bytes(),
                            .g = request.g.bytes(),
                            .y = record.key.bytes()};
  if (makeDsaKey(config.engine, key, values) < 0) return verdictOf(failAt(4281));
  const SignatureHalves halves = splitSignature(record);
  return verdictOf(verifyDsa(config, key.get(), record.message.bytes(), halves.r, halves.s));
}

int verifySignatures(const TestConfig& config, TestFiles& files) {
  DsaRequest request;
  if (readDomainParameters(files, request) < 0) return -1;
  if (readRecords(files, config.hashId, kRecordSites, request.records) < 0) return -1;
  writeLine(files.response, "[Results]");
  for (const KeyRecord& record : request.records) {
    if (writeResultNumber(files, verifyRecord(config, request, record)) < 0) return -1;
  }
  return 0;
}

}  // namespace

int procVerifyDsa(const TestConfig& config, const char* requestPath, const char* responsePath) {
  TestFiles files{requestPath, responsePath, kKeyLineCapacity};
  if (openFiles(files) < 0) return -1;
  return closeFiles(files, verifySignatures(config, files));
}

}  // namespace runner
