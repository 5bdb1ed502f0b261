#include "ec/ecdsa_verification.h"

#include "ec/curve_state.h"
#include "ec/ec_key.h"
#include "ec/ec_steps.h"
#include "ec/ecdsa_engine.h"
#include "sig/key_records.h"
#include "text/record_list.h"
#include "text/sections.h"
#include "text/text_helpers.h"

namespace runner {
namespace {

constexpr DomainSites kDomainSites{
    .section = 4931, .value = {.allocation = 4954, .value = 4955}, .cofactorAllocation = 4947};
constexpr KeyList kKeys{.section = "[Public Keys]",
                        .complaint = "lack of public key!!",
                        .sectionSite = 4993,
                        .sites = {.allocation = 5010, .value = 5011}};
constexpr KeyList kMessages{.section = "[Plaintexts]",
                            .complaint = "lack of planetext!!",
                            .sectionSite = 5018,
                            .sites = {.allocation = 5030, .value = 5031}};
constexpr KeyList kSignatures{.section = "[Signatures]",
                              .complaint = "lack of signature!!",
                              .sectionSite = 5040,
                              .sites = {.allocation = 5054, .value = 5055}};

// verifyRecord returns the result of the record, or -1 when the test cannot go on.
int verifyRecord(const TestConfig& config, EcParams& params, const KeyRecord& record, int index) {
  OwnedPubKey key(nullptr, PubKeyDeleter(config));
  params[SLOT_Q] = record.key.bytes();
  if (importEcPublicKey(config.engine, key, params) < 0) {
    return scoreRefusedKey(config.engine, index, 5088);
  }
  const SignatureHalves halves = splitSignature(record);
  return verifyEcdsa(config, key.get(), record.message.bytes(), halves.r, halves.s);
}

int verifyRecords(const TestConfig& config, TestFiles& files, EcParams& params,
                  const RecordList<KeyRecord>& records) {
  writeLine(files.response, "[Results]");
  curveLookupPending = 1;
  int index = 0;
  for (const KeyRecord& record : records) {
    const int result = verifyRecord(config, params, record, index++);
    curveLookupPending = 0;
    if (result < 0) return -1;
    writeDecimal(files.response, result);
  }
  return 0;
}

int runTest(const TestConfig& config, TestFiles& files) {
  EcDomain domain;
  RecordList<KeyRecord> records;
  int bits = 0;
  int count = 0;
  if (readDomain(files, domain, kDomainSites) < 0) return -1;
  writeHashName(files.response, config.hashId);
  if (echoSection(files, "[Bitlength of Plaintexts]", 4966) < 0) return -1;
  if (echoPositive(files, bits, nullptr) < 0) return -1;
  if (echoSection(files, "[Number of Plaintexts]", 4980) < 0) return -1;
  if (echoPositive(files, count, nullptr) < 0) return -1;
  if (readKeys(files, kKeys, 5004, count, records) < 0) return -1;
  if (readMessages(files, kMessages, bytesForBits(bits), records) < 0) return -1;
  if (readSignatures(files, kSignatures, records) < 0) return -1;
  return verifyRecords(config, files, domain.params, records);
}

}  // namespace

int procVerifyEcdsa(const TestConfig& config, const char* requestPath, const char* responsePath) {
  return runEcTest(runTest, config, requestPath, responsePath);
}

}  // namespace runner
