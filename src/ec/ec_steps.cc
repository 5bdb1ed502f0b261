#include "ec/ec_steps.h"

#include <algorithm>
#include <cstdio>
#include <string_view>
#include <utility>

#include "sig/openssl_error.h"
#include "text/diagnostics.h"
#include "text/hex_digits.h"
#include "text/text_helpers.h"

namespace runner {
namespace {

int echoCofactor(TestFiles& files, Buffer& text, int allocationSite) {
  const std::string_view line = nextValue(files);
  const std::string_view digits = line.substr(0, countHexDigits(line));
  if (!text.allocate(digits.size())) return mallocFailedAt(allocationSite);
  std::ranges::copy(digits, text.text().begin());
  writeLine(files.response, digits);
  return 0;
}

// takeKeyComplaint returns what the refusal of a key means, by lastOpensslError, and clears that.
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

}  // namespace

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

Verdict scoreRefusedKey(CryptEngine engine, int number, const RefusalText& text) {
  switch (engine) {
    case CryptEngine::OPENSSL:
      std::printf("%s%s%d: %s\n", text.indent, text.label, number, takeKeyComplaint());
      return Verdict::FAIL;
    default:  // a key that any other engine refuses ends the test
      std::printf("%s%d: ", text.label, number);
      return verdictOf(failAt(text.site));
  }
}

}  // namespace runner
