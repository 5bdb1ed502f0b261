#include "ec/public_key_validation.h"

#include <vector>

#include "ec/curve_state.h"
#include "ec/ec_key.h"
#include "ec/ec_steps.h"
#include "ec/point_check.h"
#include "text/sections.h"
#include "text/text_helpers.h"

namespace runner {
namespace {

constexpr DomainSites kDomainSites{
    .section = 3292, .value = {.allocation = 3315, .value = 3316}, .cofactorAllocation = 3308};

int readKey(TestFiles& files, EcDomain& domain) {
  const auto line = nextListLine(files, "lack of public key!!");
  if (!line) return -1;
  Buffer& key = domain.values[SLOT_Q];
  if (echoMeasured(files, *line, key, {.allocation = 3350, .value = 3351}) < 0) return -1;
  domain.params[SLOT_Q] = key.bytes();
  return 0;
}

// validateKey returns the result of the key in SLOT_Q, or -1 when the test cannot go on.
int validateKey(const TestConfig& config, const EcParams& params, int index) {
  OwnedPubKey key(nullptr, PubKeyDeleter(config));
  if (importEcPublicKey(config.engine, key, params) < 0) {
    return scoreRefusedKey(config.engine, index, 3372);
  }
  return checkPoint(config.engine, key.get());
}

int validateKeys(const TestConfig& config, TestFiles& files, EcDomain& domain, int count) {
  // Grows with the keys that are there, whatever number was announced.
  std::vector<int> results;
  curveLookupPending = 1;
  for (int index = 0; index < count; ++index) {
    if (readKey(files, domain) < 0) return -1;
    const int result = validateKey(config, domain.params, index);
    if (result < 0) return -1;
    results.push_back(result);
    curveLookupPending = 0;
  }
  writeLine(files.response, "[Results]");
  for (const int result : results) writeDecimal(files.response, result);
  return 0;
}

int runTest(const TestConfig& config, TestFiles& files) {
  EcDomain domain;
  int count = 0;
  if (readDomain(files, domain, kDomainSites) < 0) return -1;
  if (echoSection(files, "[Number of Keys]", 3325) < 0) return -1;
  if (echoPositive(files, count, nullptr) < 0) return -1;
  if (echoSection(files, "[Public Keys]", 3338) < 0) return -1;
  return validateKeys(config, files, domain, count);
}

}  // namespace

int procChkPublicKey(const TestConfig& config, const char* requestPath, const char* responsePath) {
  return runEcTest(runTest, config, requestPath, responsePath);
}

}  // namespace runner
