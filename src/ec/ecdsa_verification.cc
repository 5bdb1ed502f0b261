#include "ec/ecdsa_verification.h"

#include "ec/curve_state.h"
#include "ec/ec_key.h"
#include "ec/ec_steps.h"
#include "ec/ecdsa_engine.h"
#include "sig/key_records.h"
#include "sig/pubkey.h"
#include "text/record_list.h"
#include "text/test_files.h"
#include "text/text_helpers.h"

namespace runner {
namespace {

constexpr DomainSites kDomainSites{
    .section = 4931, .value = {.allocation = 4954, .value = 4955}, .cofactorAllocation = 4947};
constexpr RecordSites kRecordSites{.messageBits = 4966,
                                   .count = 4980,
                                   .record = 5004,
                                   .keys = {.section = 4993, .line = {5010, 5011}},
                                   .messages = {.section = 5018, .line = {5030, 5031}},
                                   .signatures = {.section = 5040, .line = {5054, 5055}}};
constexpr RefusalText kRefusalText{.indent = "", .label = "KEY", .site = 5088};

Verdict verifyRecord(const TestConfig& config, EcParams& params, const KeyRecord& record,
                     int index) {
  OwnedPubKey key;
  params[SLOT_Q] = record.key.bytes();
  if (importEcPublicKey(config.engine, key, params) < 0) {
    return scoreRefusedKey(config.engine, index, kRefusalText);
  }
  const SignatureHalves halves = splitSignature(record);
  return verdictOf(verifyEcdsa(config, key.get(), record.message.bytes(), halves.r, halves.s));
}

int verifySignatures(const TestConfig& config, TestFiles& files) {
  EcDomain domain;
  RecordList<KeyRecord> records;
  if (readDomain(files, domain, kDomainSites) < 0) return -1;
  if (readRecords(files, config.hashId, kRecordSites, records) < 0) return -1;
  writeLine(files.response, "[Results]");
  curveLookupPending = 1;
  int index = 0;
  for (const KeyRecord& record : records) {
    const Verdict verdict = verifyRecord(config, domain.params, record, index++);
    curveLookupPending = 0;
    if (writeResultNumber(files, verdict) < 0) return -1;
  }
  return 0;
}

}  // namespace

int procVerifyEcdsa(const TestConfig& config, const char* requestPath, const char* responsePath) {
  TestFiles files{requestPath, responsePath, kKeyLineCapacity};
  if (openFiles(files) < 0) return -1;
  const int result = verifySignatures(config, files);
  curveLookupPending = 1;
  return closeFiles(files, result);
}

}  // namespace runner
