#include "ec/ecdsa_value_list.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <optional>
#include <string_view>

#include "ec/curve_state.h"
#include "ec/curve_table.h"
#include "ec/ec_key.h"
#include "ec/ec_steps.h"
#include "ec/ecdsa_engine.h"
#include "sig/pubkey.h"
#include "sig/signature_primitives.h"
#include "sig/value_list_records.h"
#include "text/buffer.h"
#include "text/diagnostics.h"

namespace runner {
namespace {

constexpr std::array groupMarks{"[P-", ",SHA-"};

// The longest value of a curve, that of P-521, in bytes.
constexpr std::size_t kMaxValueLength = 66;

struct Group {
  const TestConfig& config;
  Buffer line{};
  Buffer message{};
  RecordValue x{"Qx = ", config.keyLength, 4756};
  RecordValue y{"Qy = ", config.keyLength, 4757};
  RecordValue r{"R = ", config.keyLength, 4758};
  RecordValue s{"S = ", config.keyLength, 4759};
};

int allocateGroup(Group& group) {
  const std::size_t messageLength = bufferSize(group.config.messageLength);
  if (!group.line.allocate(2 * std::max(messageLength, kMaxValueLength) + 9)) {
    return mallocFailedAt(4754);
  }
  if (!group.message.allocate(messageLength)) return mallocFailedAt(4755);
  return allocateValues({&group.x, &group.y, &group.r, &group.s});
}

// nameCurve sets namedCurveId to the curve that the request names; an unknown name changes nothing.
void nameCurve(const TestConfig& config) {
  if (config.curveName == nullptr) return;
  const std::string_view name = std::string_view(config.curveName).substr(0, 5);
  for (std::size_t index = 0; index < curveTable.size(); ++index) {
    if (name != curveTable[index].name) continue;
    namedCurveId = static_cast<int>(index);
    std::printf("curveid: %d\n", namedCurveId);
    return;
  }
}

// scoreRefusedRecord returns the result of a record whose key could not be made; nothing when the
// test cannot go on.
std::optional<int> scoreRefusedRecord(CryptEngine engine, int number) {
  if (engine != CryptEngine::OPENSSL) {
    std::printf("COUNT%d: ", number);
    failAt(4823);
    return std::nullopt;
  }
  std::printf("    COUNT%d: %s\n", number, takeKeyComplaint());
  return kNotVerified;
}

// verifyRecord returns the result of the verification, -1 when none was possible; nothing when the
// test cannot go on.
std::optional<int> verifyRecord(const Group& group, int number) {
  const TestConfig& config = group.config;
  OwnedPubKey key(nullptr, PubKeyDeleter(config));
  if (namedCurveId < 0 ||
      importEcPoint(config.engine, key, group.x.bytes(), group.y.bytes(), namedCurveId) < 0) {
    return scoreRefusedRecord(config.engine, number);
  }
  return verifyEcdsa(config, key.get(), group.message.bytes(), group.r.bytes(), group.s.bytes());
}

int testRecord(TestFiles& files, Group& group, int number) {
  if (echoMessage(files, group.message.bytes(), {.line = 4778, .value = 4780}) < 0) return -1;
  if (echoValues(files, {&group.x, &group.y, &group.r, &group.s}, {.line = 4796, .value = 4799}) <
      0) {
    return -1;
  }
  if (curveLookupPending != 0) nameCurve(group.config);
  const auto result = verifyRecord(group, number);
  if (!result) return -1;
  curveLookupPending = 0;
  if (!nextNamedValue(files, "Result = ", 4836)) return -1;
  writeVerdict(files, *result);
  return 0;
}

int testGroup(const TestConfig& config, TestFiles& files) {
  Group group{.config = config};
  if (allocateGroup(group) < 0) return -1;
  files.line = group.line.text();
  curveLookupPending = 1;
  for (int number = 0;; ++number) {
    const int found = findRecord(files, number, config.count);
    if (found <= 0) return found;
    if (testRecord(files, group, number) < 0) return -1;
  }
}

}  // namespace

int procVerifyEcdsaRecords(const TestConfig& config, const char* requestPath,
                           const char* responsePath) {
  TestFiles files;
  if (openFiles(files, requestPath, responsePath) < 0) return -1;
  return closeFiles(files, responsePath, testGroups(config, files, groupMarks, testGroup));
}

}  // namespace runner
