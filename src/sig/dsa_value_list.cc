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
#include "text/text_helpers.h"

namespace runner {
namespace {

constexpr std::array groupMarks{"[L=", ", N=", ", SHA-"};

// The values of the key and those of the signature share an allocation number.
constexpr int kKeyAllocation = 3998;
constexpr int kSignatureAllocation = 4001;

struct Group {
  const TestConfig& config;
  RecordValue p{"P = ", config.keyLength, kKeyAllocation};
  RecordValue q{"Q = ", config.subgroupLength, kKeyAllocation};
  RecordValue g{"G = ", config.keyLength, kKeyAllocation};
  RecordValue y{"Y = ", config.keyLength, kKeyAllocation};
  RecordValue r{"R = ", config.subgroupLength, kSignatureAllocation};
  RecordValue s{"S = ", config.subgroupLength, kSignatureAllocation};
  Buffer line{};
  Buffer message{};
};

int allocateGroup(Group& group) {
  const std::size_t messageLength = bufferSize(group.config.messageLength);
  const std::size_t longest = std::max(messageLength, bufferSize(group.config.keyLength));
  if (allocateValues({&group.p, &group.q, &group.g, &group.y, &group.r, &group.s}) < 0) return -1;
  if (!group.line.allocate(2 * longest + 9)) return mallocFailedAt(4006);
  return group.message.allocate(messageLength) ? 0 : mallocFailedAt(4007);
}

int readDomainParameters(TestFiles& files, Group& group) {
  for (RecordValue* const value : {&group.p, &group.q, &group.g}) {
    const auto digits = nextNamedValue(files, value->name, 4013);
    if (!digits) return -1;
    const auto length = static_cast<int>(measureHex(*digits));
    if (length != value->expected) {
      std::printf("[WARNING]unexpected data length!! data:%d, expected:%d\n", length,
                  value->expected);
    }
    if (echoValue(files, *value, *digits, 4020) < 0) return -1;
  }
  return 0;
}

int testRecord(TestFiles& files, Group& group) {
  if (echoMessage(files, group.message.bytes(), {.line = 4042, .value = 4044}) < 0) return -1;
  if (echoValues(files, {&group.y, &group.r, &group.s}, {.line = 4059, .value = 4062}) < 0) {
    return -1;
  }
  OwnedPubKey key(nullptr, PubKeyDeleter(group.config));
  const DsaKeyValues values{
      .p = group.p.bytes(), .q = group.q.bytes(), .g = group.g.bytes(), .y = group.y.bytes()};
  if (makeDsaKey(group.config.engine, key, values) < 0) return failAt(4068);
  const int result =
      verifyDsa(group.config, key.get(), group.message.bytes(), group.r.bytes(), group.s.bytes());
  const auto line = nextLine(files);
  if (!line) return -1;
  if (!line->starts_with("Result = ")) return failWith("???");
  writeVerdict(files, result);
  return 0;
}

int testGroup(const TestConfig& config, TestFiles& files) {
  Group group{.config = config};
  if (allocateGroup(group) < 0) return -1;
  files.line = group.line.text();
  if (readDomainParameters(files, group) < 0) return -1;
  for (int number = 0;; ++number) {
    const int found = findRecord(files, number, config.count);
    if (found <= 0) return found;
    if (testRecord(files, group) < 0) return -1;
  }
}

}  // namespace

int procVerifyDsaRecords(const TestConfig& config, const char* requestPath,
                         const char* responsePath) {
  TestFiles files;
  if (openFiles(files, requestPath, responsePath) < 0) return -1;
  return closeFiles(files, responsePath, testGroups(config, files, groupMarks, testGroup));
}

}  // namespace runner
