#include "sig/dsa_value_list.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>

#include "sig/dsa_engine.h"
#include "sig/pubkey.h"
#include "sig/value_list_records.h"
#include "text/buffer.h"
#include "text/diagnostics.h"
#include "text/sections.h"
#include "text/test_files.h"
#include "text/text_helpers.h"

namespace runner {
namespace {

constexpr std::array kGroupMarks{"[L=", ", N=", ", SHA-"};

// The values of the key and those of the signature share an allocation number.
constexpr int kKeyAllocation = 3998;
constexpr int kSignatureAllocation = 4001;

struct Group {
  const TestConfig& config;
  NamedValue p{"P = ", config.keyLength, kKeyAllocation};
  NamedValue q{"Q = ", config.subgroupLength, kKeyAllocation};
  NamedValue g{"G = ", config.keyLength, kKeyAllocation};
  NamedValue y{"Y = ", config.keyLength, kKeyAllocation};
  NamedValue r{"R = ", config.subgroupLength, kSignatureAllocation};
  NamedValue s{"S = ", config.subgroupLength, kSignatureAllocation};
  Buffer message{};
};

int allocateGroup(TestFiles& files, Group& group) {
  const std::size_t messageLength = sizeOf(group.config.messageLength);
  const std::size_t longest = std::max(messageLength, sizeOf(group.config.keyLength));
  if (allocateValues({&group.p, &group.q, &group.g, &group.y, &group.r, &group.s}) < 0) return -1;
  if (setLineCapacity(files, 2 * longest + 9, 4006) < 0) return -1;
  return group.message.allocate(messageLength) ? 0 : mallocFailedAt(4007);
}

int copyDomainParameters(TestFiles& files, Group& group) {
  for (NamedValue* const value : {&group.p, &group.q, &group.g}) {
    const auto digits = nextNamedValue(files, value->name, 4013);
    if (!digits) return -1;
    const auto length = static_cast<int>(measureHex(*digits));
    if (length != value->expected) {
      std::printf("[WARNING]unexpected data length!! data:%d, expected:%d\n", length,
                  value->expected);
    }
    if (copyDigits(files, *value, *digits, 4020) < 0) return -1;
  }
  return 0;
}

// startGroup makes room for the values of a group and copies its parameters.
int startGroup(TestFiles& files, Group& group) {
  return allocateGroup(files, group) < 0 ? -1 : copyDomainParameters(files, group);
}

// verifyRecord never stops for a verification that cannot be made: the record fails.
Verdict verifyRecord(const Group& group) {
  OwnedPubKey key;
  const DsaKeyValues values{
      .p = group.p.bytes(), .q = group.q.bytes(), .g = group.g.bytes(), .y = group.y.bytes()};
  if (makeDsaKey(group.config.engine, key, values) < 0) return verdictOf(failAt(4068));
  const int result =
      verifyDsa(group.config, key.get(), group.message.bytes(), group.r.bytes(), group.s.bytes());
  return result == kVerified ? Verdict::PASS : Verdict::FAIL;
}

int answerRecord(TestFiles& files, Group& group) {
  if (copyMessage(files, group.message.bytes(), {.line = 4042, .value = 4044}) < 0) return -1;
  if (copyValues(files, {&group.y, &group.r, &group.s}, {.line = 4059, .value = 4062}) < 0) {
    return -1;
  }
  const Verdict verdict = verifyRecord(group);
  if (verdict == Verdict::STOP) return -1;
  const auto line = nextLine(files);
  if (!line) return -1;
  if (!line->starts_with("Result = ")) return failWith("???");
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
        if (answerRecord(files, group) < 0) return -1;
        break;
      case Part::END:
        return cursor.hadGroup ? 0 : -1;
      case Part::WRONG:
        return -1;
    }
  }
}

}  // namespace

int procVerifyDsaRecords(const TestConfig& config, const char* requestPath,
                         const char* responsePath) {
  TestFiles files{requestPath, responsePath, kValueListLineCapacity};
  if (openFiles(files) < 0) return -1;
  return closeFiles(files, answerGroups(config, files));
}

}  // namespace runner
