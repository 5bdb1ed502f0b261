#include "ec/ecdsa_value_list.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <string_view>

#include "ec/curve_state.h"
#include "ec/curve_table.h"
#include "ec/ec_key.h"
#include "ec/ec_steps.h"
#include "ec/ecdsa_engine.h"
#include "sig/pubkey.h"
#include "sig/value_list_records.h"
#include "text/buffer.h"
#include "text/diagnostics.h"
#include "text/sections.h"
#include "text/test_files.h"

namespace runner {
namespace {

constexpr std::array kGroupMarks{"[P-", ",SHA-"};

// The longest value of a curve, that of P-521, in bytes.
constexpr std::size_t kMaxValueLength = 66;

constexpr RefusalText kRefusalText{.indent = "    ", .label = "COUNT", .site = 4823};

struct Group {
  const TestConfig& config;
  Buffer message{};
  NamedValue x{"Qx = ", config.keyLength, 4756};
  NamedValue y{"Qy = ", config.keyLength, 4757};
  NamedValue r{"R = ", config.keyLength, 4758};
  NamedValue s{"S = ", config.keyLength, 4759};
};

int startGroup(TestFiles& files, Group& group) {
  const std::size_t messageLength = sizeOf(group.config.messageLength);
  if (setLineCapacity(files, 2 * std::max(messageLength, kMaxValueLength) + 9, 4754) < 0) return -1;
  if (!group.message.allocate(messageLength)) return mallocFailedAt(4755);
  curveLookupPending = 1;
  return allocateValues({&group.x, &group.y, &group.r, &group.s});
}

// nameCurve sets namedCurveId to the curve that the request names; an unknown name changes nothing.
void nameCurve(const TestConfig& config) {
  if (config.curveName == nullptr) return;
  const int index = findCurveName(std::string_view(config.curveName).substr(0, 5));
  if (index < 0) return;
  namedCurveId = index;
  std::printf("curveid: %d\n", namedCurveId);
}

// verifyRecord does not stop for a verification that cannot be made: the record fails.
Verdict verifyRecord(const Group& group, int number) {
  const TestConfig& config = group.config;
  OwnedPubKey key;
  if (namedCurveId < 0 ||
      importEcPoint(config.engine, key, group.x.bytes(), group.y.bytes(), namedCurveId) < 0) {
    return scoreRefusedKey(config.engine, number, kRefusalText);
  }
  const int result =
      verifyEcdsa(config, key.get(), group.message.bytes(), group.r.bytes(), group.s.bytes());
  return result == kVerified ? Verdict::PASS : Verdict::FAIL;
}

int answerRecord(TestFiles& files, Group& group, int number) {
  if (copyMessage(files, group.message.bytes(), {.line = 4778, .value = 4780}) < 0) return -1;
  if (copyValues(files, {&group.x, &group.y, &group.r, &group.s}, {.line = 4796, .value = 4799}) <
      0) {
    return -1;
  }
  if (curveLookupPending != 0) nameCurve(group.config);
  const Verdict verdict = verifyRecord(group, number);
  if (verdict == Verdict::STOP) return -1;
  curveLookupPending = 0;
  if (!nextNamedValue(files, "Result = ", 4836)) return -1;
  writeResultLetter(files, verdict);
  return 0;
}

int answerGroups(const TestConfig& config, TestFiles& files) {
  Group group{.config = config};
  RecordCursor cursor{.marks = kGroupMarks, .count = config.count};
  while (true) {
    switch (nextPart(files, cursor)) {
      case Part::GROUP:
        if (startGroup(files, group) < 0) return -1;
        break;
      case Part::RECORD:
        if (answerRecord(files, group, cursor.number) < 0) return -1;
        break;
      case Part::END:
        return cursor.hadGroup ? 0 : -1;
      case Part::WRONG:
        return -1;
    }
  }
}

}  // namespace

int procVerifyEcdsaRecords(const TestConfig& config, const char* requestPath,
                           const char* responsePath) {
  TestFiles files{requestPath, responsePath, kValueListLineCapacity};
  if (openFiles(files) < 0) return -1;
  return closeFiles(files, answerGroups(config, files));
}

}  // namespace runner
