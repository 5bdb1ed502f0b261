#include "ec/ec_steps.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string_view>
#include <utility>

#include "ec/curve_state.h"
#include "sig/key_records.h"
#include "sig/openssl_error.h"
#include "text/diagnostics.h"
#include "text/hex_digits.h"
#include "text/text_helpers.h"

namespace runner {
namespace {

int echoCofactor(TestFiles& files, Buffer& text, int allocationSite) {
  const std::string_view line = nextValue(files);
  const std::string_view digits = line.substr(0, countHexDigits(line));
  if (!text.allocate(digits.size() + 1)) return mallocFailedAt(allocationSite);
  std::ranges::copy(digits, text.text().begin());
  writeLine(files.response, digits);
  return 0;
}

}  // namespace

int runEcTest(int (*test)(const TestConfig&, TestFiles&), const TestConfig& config,
              const char* requestPath, const char* responsePath) {
  std::array<char, kKeyLineCapacity> line{};
  TestFiles files{.line = line};
  if (openFiles(files, requestPath, responsePath) < 0) return -1;
  const int result = test(config, files);
  curveLookupPending = 1;
  return closeFiles(files, responsePath, result);
}

int readDomain(TestFiles& files, EcDomain& domain, const DomainSites& sites) {
  if (echoSection(files, "[Domain Parameter]", sites.section) < 0) return -1;
  int result = 0;
  for (const EcParamSlot slot : {SLOT_P, SLOT_A, SLOT_B, SLOT_G, SLOT_N}) {
    Buffer& value = domain.values[slot];
    if (echoMeasured(files, nextValue(files), value, sites.value) < 0) result = -1;
    domain.params[slot] = value.bytes();
  }
  Buffer& cofactor = domain.values[SLOT_H];
  if (echoCofactor(files, cofactor, sites.cofactorAllocation) < 0) return -1;
  domain.params[SLOT_H] = cofactor.bytes();
  return result;
}

const char* takeKeyComplaint() {
  switch (std::exchange(lastOpensslError, 0)) {
    case kPointIsNotOnCurve:
      return "illegal public key?";
    case kBadSignature:
      return "bad signature?";
    default:
      return "something wrong?";
  }
}

int scoreRefusedKey(CryptEngine engine, int index, int site) {
  if (engine != CryptEngine::OPENSSL) {
    std::printf("KEY%d: ", index);
    return failAt(site);
  }
  std::printf("KEY%d: %s\n", index, takeKeyComplaint());
  return 1;
}

}  // namespace runner
