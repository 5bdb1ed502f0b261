#ifndef RUNNER_EC_EC_STEPS_H_
#define RUNNER_EC_EC_STEPS_H_

#include <array>

#include "driver/test_config.h"
#include "ec/ec_params.h"
#include "text/buffer.h"
#include "text/sections.h"
#include "text/test_files.h"

// What the EC test procedures have in common.

namespace runner {

// runEcTest opens the files, runs `test` with lines of at most 1023 characters, and closes the
// files. Returns the result of the test, -1 when a file fails. The curve lookup is pending
// afterwards.
int runEcTest(int (*test)(const TestConfig&, TestFiles&), const TestConfig& config,
              const char* requestPath, const char* responsePath);

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
int readDomain(TestFiles& files, EcDomain& domain, const DomainSites& sites);

// takeKeyComplaint returns what OpenSSL's refusal of a key means, by lastOpensslError, which it
// sets to 0: "illegal public key?", "bad signature?" or "something wrong?".
const char* takeKeyComplaint();

// scoreRefusedKey is the result of key `index`, which could not be imported. With OpenSSL the key
// is not valid: it prints "KEY%d: COMPLAINT" and returns 1. With any other engine the test cannot
// go on: it prints "KEY%d: err happens!! (SITE)" and returns -1.
int scoreRefusedKey(CryptEngine engine, int index, int site);

}  // namespace runner

#endif  // RUNNER_EC_EC_STEPS_H_
