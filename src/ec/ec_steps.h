#ifndef RUNNER_EC_EC_STEPS_H_
#define RUNNER_EC_EC_STEPS_H_

#include <array>

#include "driver/test_config.h"
#include "ec/ec_params.h"
#include "sig/pubkey.h"
#include "text/buffer.h"
#include "text/sections.h"
#include "text/test_files.h"

// What the EC test procedures have in common.

namespace runner {

// EcDomain holds the domain parameters of a test.
struct EcDomain {
  std::array<Buffer, SLOT_COUNT> values;
  EcParams params;  // the values; the test puts each of its keys into SLOT_Q
};

// The failure numbers of the section "[Domain Parameter]".
struct DomainSites {
  int section;
  ValueSites value;  // of p, a, b, G and n
  int cofactorAllocation;
};

// readDomain finds "[Domain Parameter]", reads and writes the section: p, a, b, G and n in
// hexadecimal, each as long as its digits say, then h, of which the hexadecimal digits at the start
// of the line are kept as text. A value that cannot be converted prints its failure and the next
// ones are read all the same. Returns 0 when all six stand in `domain`, otherwise -1.
[[nodiscard]] int readDomain(TestFiles& files, EcDomain& domain, const DomainSites& sites);

// How a test names a record whose key could not be made ("KEY3: ").
struct RefusalText {
  const char* indent;  // before the line of a record that fails
  const char* label;   // before the number of the record
  int site;            // the failure number of a record that ends the test
};

// scoreRefusedKey is the verdict on record `number`, whose key could not be made. With OpenSSL the
// record fails, after a line like "KEY3: illegal public key?": lastOpensslError, which is set to 0,
// words it, the others are "bad signature?" and "something wrong?". With any other engine the test
// cannot go on, after a line like "KEY3: err happens!! (SITE)".
[[nodiscard]] Verdict scoreRefusedKey(CryptEngine engine, int number, const RefusalText& text);

}  // namespace runner

#endif  // RUNNER_EC_EC_STEPS_H_
