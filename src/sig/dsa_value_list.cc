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

int startGroup(TestFiles& files, Group& group) {
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
    if (storeDigits(*value, *digits, 4020) < 0) return -1;
    writeNamedValue(files, value->name, value->bytes());
  }
  return 0;
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

int answerGroup(const TestConfig& config, TestFiles& files) {
  Group group{.config = config};
  if (startGroup(files, group) < 0 || copyDomainParameters(files, group) < 0) return -1;
  int number = 0;
  RecordSearch search = findRecord(files, number, config.count);
  while (search == RecordSearch::FOUND) {
    if (answerRecord(files, group) < 0) return -1;
    search = findRecord(files, ++number, config.count);
  }
  return search == RecordSearch::ENDED ? 0 : -1;
}

int answerGroups(const TestConfig& config, TestFiles& files) {
  int result = -1;  // without a group
  while (findGroup(files, kGroupMarks)) {
    result = answerGroup(config, files);
    if (result < 0) break;
  }
  return result;
}

}  // namespace

int procVerifyDsaRecords(const TestConfig& config, const char* requestPath,
                         const char* responsePath) {
  TestFiles files{requestPath, responsePath, kValueListLineCapacity};
  if (openFiles(files) < 0) return -1;
  return closeFiles(files, answerGroups(config, files));
}

}  // namespace runner
