#include "hash/short_and_long_messages.h"

#include <climits>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "hash/hash_steps.h"
#include "text/buffer.h"
#include "text/diagnostics.h"
#include "text/sections.h"
#include "text/text_helpers.h"

namespace runner {
namespace {

constexpr std::size_t kParameterCapacity = 128;

// What a message line may hold beyond its digits.
constexpr std::size_t kLineSlack = 7;

// What tells the two tests apart, besides the lengths of their messages.
struct MessageList {
  const char* dataKey;
  const char* hashKey;
  const char* macKey;
  int resultsAllocation;
  MacKeySites key;
  int dataSection;
  int lineAllocation;
  ValueSites message;
  DigestSites digest;
};

constexpr MessageList kShortMessages{
    .dataKey = "[Data of SMT]",
    .hashKey = "[Hash Value of SMT]",
    .macKey = "[MAC of SMT]",
    .resultsAllocation = 6004,
    .key = {.allocation = 6006, .section = 6009, .value = 6012},
    .dataSection = 6016,
    .lineAllocation = 6021,
    .message = {.allocation = 6031, .value = 6032},
    .digest = {.hash = 6038, .hmac = 6040},
};

constexpr MessageList kLongMessages{
    .dataKey = "[Data of SLMT]",
    .hashKey = "[Hash Value of SLMT]",
    .macKey = "[MAC of SLMT]",
    .resultsAllocation = 6120,
    .key = {.allocation = 6122, .section = 6124, .value = 6127},
    .dataSection = 6144,
    .lineAllocation = 6151,
    .message = {.allocation = 6160, .value = 6161},
    .digest = {.hash = 6165, .hmac = 6167},
};

// The messages of a test in bytes: the first one is `first` long, each other `step` longer than the
// one before.
struct MessageLengths {
  std::size_t count;
  std::size_t first;
  std::size_t step;

  [[nodiscard]] std::size_t at(std::size_t index) const { return first + index * step; }
};

struct MessageRun {
  const MessageList& test;
  const TestConfig& config;
  TestFiles& files;
  const HashProperties& hash;
  Buffer results{};
  Buffer key{};
  Buffer message{};
};

std::size_t blockLength(const HashProperties& hash) {
  return static_cast<std::size_t>(hash.blockBits) / 8;
}

constexpr std::size_t lineCapacity(std::size_t messageLength) {
  return 2 * messageLength + kLineSlack + 1;
}

std::span<std::uint8_t> resultSlot(MessageRun& run, std::size_t index) {
  const auto length = static_cast<std::size_t>(run.hash.digestLength);
  return run.results.bytes().subspan(index * length, length);
}

// echoMessage reads and writes a message of `length` bytes. The room for it grows with the messages
// that are really there: an upper bound that they do not keep costs no memory.
int echoMessage(MessageRun& run, std::size_t length) {
  if (setLineCapacity(run.files, lineCapacity(length), run.test.lineAllocation) < 0) return -1;
  const std::string_view line = nextValue(run.files);
  if (line.starts_with('[')) return failWith("lack of input message!!");
  if (!run.message.grow(length)) return mallocFailedAt(run.test.message.allocation);
  const auto message = run.message.bytes().first(length);
  if (hexToBin(line, message) < 0) return failAt(run.test.message.value);
  writeHex(run.files.response, message);
  return 0;
}

void writeResults(MessageRun& run, std::size_t count) {
  TextWriter& response = run.files.response;
  writeLine(response, computesMac(run.config) ? run.test.macKey : run.test.hashKey);
  for (std::size_t index = 0; index < count; ++index) writeHex(response, resultSlot(run, index));
}

int runMessages(MessageRun& run, const MessageLengths& lengths) {
  if (echoSection(run.files, run.test.dataKey, run.test.dataSection) < 0) return -1;
  for (std::size_t index = 0; index < lengths.count; ++index) {
    const std::size_t length = lengths.at(index);
    if (echoMessage(run, length) < 0 ||
        computeDigest(run.config, run.message.bytes().first(length), resultSlot(run, index).data(),
                      run.key, run.test.digest) < 0) {
      return -1;
    }
  }
  writeResults(run, lengths.count);
  return 0;
}

// prepare allocates the results of `count` messages and reads the key.
int prepare(MessageRun& run, std::size_t count) {
  if (!run.results.allocate(count * static_cast<std::size_t>(run.hash.digestLength))) {
    return mallocFailedAt(run.test.resultsAllocation);
  }
  return readMacKey(run.config, run.files, run.key, run.test.key);
}

int runShortMessages(MessageRun& run) {
  const std::size_t count = blockLength(run.hash) + 1;
  if (prepare(run, count) < 0) return -1;
  return runMessages(run, {.count = count, .first = 0, .step = 1});
}

int runLongMessages(MessageRun& run) {
  const std::size_t count = blockLength(run.hash);
  if (prepare(run, count) < 0) return -1;
  // The longest message has count x bound bytes, and the limit of its line must fit an int.
  const int most = (INT_MAX - static_cast<int>(kLineSlack)) / (2 * static_cast<int>(count));
  int bound = 0;
  if (echoCount(run.files, "[Upperbound of SLMT]", bound, 6131, "illegal bound!!", most) < 0) {
    return -1;
  }
  const std::size_t step = static_cast<std::size_t>(bound) - 1;
  return runMessages(run, {.count = count, .first = count + step, .step = step});
}

}  // namespace

int procSMT(const TestConfig& config, const char* requestPath, const char* responsePath) {
  TestFiles files{requestPath, responsePath, kParameterCapacity};
  if (openFiles(files) < 0) return -1;
  const HashProperties* const hash = findHash(config.hashId);
  if (hash == nullptr) return closeFiles(files, -1);
  MessageRun run{.test = kShortMessages, .config = config, .files = files, .hash = *hash};
  return closeFiles(files, runShortMessages(run));
}

int procSLMT(const TestConfig& config, const char* requestPath, const char* responsePath) {
  TestFiles files{requestPath, responsePath, kParameterCapacity};
  if (openFiles(files) < 0) return -1;
  const HashProperties* const hash = findHash(config.hashId);
  if (hash == nullptr) return closeFiles(files, -1);
  MessageRun run{.test = kLongMessages, .config = config, .files = files, .hash = *hash};
  return closeFiles(files, runLongMessages(run));
}

}  // namespace runner
