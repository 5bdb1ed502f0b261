#include "sig/dsa_value_list_test.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <utility>

#include "driver/buffer.h"
#include "driver/diagnostics.h"
#include "driver/sections.h"
#include "driver/text_helpers.h"
#include "sig/dsa_engine.h"
#include "sig/pubkey.h"
#include "sig/value_list_records.h"

namespace runner {
namespace {

constexpr std::array groupMarks{"[L=", ", N=", ", SHA-"};

struct Group {
  RecordValue p;
  RecordValue q;
  RecordValue g;
  RecordValue y;
  RecordValue r;
  RecordValue s;
  Buffer line;
  Buffer message;
};

// The allocations of the key's and of the signature's values have one number each.
constexpr int kKeyAllocation = 3998;
constexpr int kSignatureAllocation = 4001;

struct ValueLine {
  const char* name;
  RecordValue Group::*value;
  int TestConfig::*length;  // the expected one
  int allocation;
};

constexpr std::array<ValueLine, 3> domainLines{{
    {"P = ", &Group::p, &TestConfig::keyLength, kKeyAllocation},
    {"Q = ", &Group::q, &TestConfig::subgroupLength, kKeyAllocation},
    {"G = ", &Group::g, &TestConfig::keyLength, kKeyAllocation},
}};

constexpr std::array<ValueLine, 3> recordLines{{
    {"Y = ", &Group::y, &TestConfig::keyLength, kKeyAllocation},
    {"R = ", &Group::r, &TestConfig::subgroupLength, kSignatureAllocation},
    {"S = ", &Group::s, &TestConfig::subgroupLength, kSignatureAllocation},
}};

int allocateValue(const TestConfig& config, Group& group, const ValueLine& row) {
  const bool allocated = (group.*row.value).storage.allocate(sizeOf(config.*row.length));
  return allocated ? 0 : mallocFailedAt(row.allocation);
}

int allocateGroup(const TestConfig& config, Group& group) {
  for (const ValueLine& row : domainLines) {
    if (allocateValue(config, group, row) < 0) return -1;
  }
  for (const ValueLine& row : recordLines) {
    if (allocateValue(config, group, row) < 0) return -1;
  }
  const std::size_t longest = std::max(sizeOf(config.messageLength), sizeOf(config.keyLength));
  if (!group.line.allocate(2 * longest + 9)) return mallocFailedAt(4006);
  if (!group.message.allocate(sizeOf(config.messageLength))) return mallocFailedAt(4007);
  return 0;
}

int readDomainParameters(const TestConfig& config, TestFiles& files, Group& group) {
  for (const ValueLine& row : domainLines) {
    const auto digits = nextNamedValue(files, row.name, 4013);
    if (!digits) return -1;
    const auto length = static_cast<int>(measureHex(*digits));
    const int expected = config.*row.length;
    if (length != expected) {
      std::printf("[WARNING]unexpected data length!! data:%d, expected:%d\n", length, expected);
    }
    if (echoRecordValue(files, row.name, *digits, group.*row.value, row.allocation, 4020) < 0) {
      return -1;
    }
  }
  return 0;
}

int readRecord(TestFiles& files, Group& group) {
  if (echoMessage(files, group.message.bytes(), {.line = 4042, .value = 4044}) < 0) return -1;
  for (const ValueLine& row : recordLines) {
    const auto digits = nextNamedValue(files, row.name, 4059);
    if (!digits) return -1;
    if (echoRecordValue(files, row.name, *digits, group.*row.value, row.allocation, 4062) < 0) {
      return -1;
    }
  }
  return 0;
}

int testRecord(const TestConfig& config, TestFiles& files, Group& group) {
  if (readRecord(files, group) < 0) return -1;
  OwnedPubKey key(nullptr, PubKeyDeleter(config));
  const DsaKeyValues values{
      .p = group.p.bytes(), .q = group.q.bytes(), .g = group.g.bytes(), .y = group.y.bytes()};
  if (makeDsaKey(config.engine, key, values) < 0) return failAt(4068);
  const int result =
      verifyDsa(config, key.get(), group.message.bytes(), group.r.bytes(), group.s.bytes());
  const auto line = nextLine(files);
  if (!line) return -1;
  if (!line->starts_with("Result = ")) return failWith("???");
  writeVerdict(files, result);
  return 0;
}

int testGroup(const TestConfig& config, TestFiles& files) {
  Group group;
  if (allocateGroup(config, group) < 0) return -1;
  files.line = group.line.text();
  if (readDomainParameters(config, files, group) < 0) return -1;
  int number = 0;
  do {
    const int found = findRecord(files, number);
    if (found <= 0) return found;
    if (testRecord(config, files, group) < 0) return -1;
    ++number;
  } while (number != config.count);
  return 0;
}

int runTest(const TestConfig& config, TestFiles& files) {
  int result = -1;
  while (findGroup(files, groupMarks)) {
    result = testGroup(config, files);
    if (result < 0) break;
  }
  return result;
}

}  // namespace

int procVerifyDsaRecords(const TestConfig& config, const char* requestPath,
                         const char* responsePath) {
  TestFiles files;
  if (openFiles(files, requestPath, responsePath) < 0) return -1;
  return closeFiles(files, responsePath, runTest(config, files));
}

}  // namespace runner
