#include "ec/public_key_validation.h"

#include "ec/curve_state.h"
#include "ec/ec_key.h"
#include "ec/ec_steps.h"
#include "ec/point_check.h"
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

constexpr DomainSites kDomainSites{
    .section = 3292, .value = {.allocation = 3315, .value = 3316}, .cofactorAllocation = 3308};

constexpr RefusalText kRefusalText{.indent = "", .label = "KEY", .site = 3372};

// KeyVerdict is what is kept of a key: the results are written when all keys have been seen.
struct KeyVerdict {
  RecordPtr<KeyVerdict> next;
  Verdict verdict;
};

// readKey reads and writes the next key and puts it into SLOT_Q. Returns its record; null when the
// test cannot go on.
KeyVerdict* readKey(TestFiles& files, EcDomain& domain, RecordList<KeyVerdict>& verdicts) {
  constexpr ValueSites kSites{.allocation = 3350, .value = 3351};
  const auto line = nextListLine(files, "lack of public key!!");
  if (!line) return nullptr;
  KeyVerdict* const record = verdicts.append();
  if (record == nullptr) {
    mallocFailedAt(kSites.allocation);
    return nullptr;
  }
  Buffer& key = domain.values[SLOT_Q];
  if (echoMeasured(files, *line, key, kSites) < 0) return nullptr;
  domain.params[SLOT_Q] = key.bytes();
  return record;
}

Verdict validateKey(const TestConfig& config, const EcParams& params, int index) {
  OwnedPubKey key;
  if (importEcPublicKey(config.engine, key, params) < 0) {
    return scoreRefusedKey(config.engine, index, kRefusalText);
  }
  return verdictOf(checkPoint(config.engine, key.get()));
}

int validateKeys(const TestConfig& config, TestFiles& files, EcDomain& domain, int count) {
  RecordList<KeyVerdict> verdicts;
  curveLookupPending = 1;
  for (int index = 0; index < count; ++index) {
    KeyVerdict* const result = readKey(files, domain, verdicts);
    if (result == nullptr) return -1;
    result->verdict = validateKey(config, domain.params, index);
    if (result->verdict == Verdict::STOP) return -1;
    curveLookupPending = 0;
  }
  writeLine(files.response, "[Results]");
  for (const KeyVerdict& result : verdicts) {
    if (writeResultNumber(files, result.verdict) < 0) return -1;
  }
  return 0;
}

int validateList(const TestConfig& config, TestFiles& files) {
  EcDomain domain;
  int count = 0;
  if (readDomain(files, domain, kDomainSites) < 0) return -1;
  if (echoCount(files, "[Number of Keys]", count, 3325) < 0) return -1;
  if (echoSection(files, "[Public Keys]", 3338) < 0) return -1;
  return validateKeys(config, files, domain, count);
}

}  // namespace

int procChkPublicKey(const TestConfig& config, const char* requestPath, const char* responsePath) {
  TestFiles files{requestPath, responsePath, kKeyLineCapacity};
  if (openFiles(files) < 0) return -1;
  const int result = validateList(config, files);
  curveLookupPending = 1;
  return closeFiles(files, result);
}

}  // namespace runner
