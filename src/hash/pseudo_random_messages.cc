#include "hash/pseudo_random_messages.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <span>
#include <string_view>

#include "hash/hash_steps.h"
#include "text/buffer.h"
#include "text/diagnostics.h"
#include "text/sections.h"
#include "text/text_helpers.h"

namespace runner {
namespace {

constexpr std::size_t kLineCapacity = 512;
constexpr std::size_t kBitLengthCapacity = 32;
constexpr int kMaxSeedBits = 2047;

// Each step needs the three values before it, and room for its own.
constexpr std::size_t kParts = 3;
constexpr std::size_t kSlots = kParts + 1;

struct LoopCounts {
  int inner = 0;
  int outer = 0;
};

// Chain holds the values MD(i) of a pass in rotation: MD(i) stands in slot i % kSlots.
struct Chain {
  std::size_t digestLength = 0;
  std::size_t slotLength = 0;  // of the longest value, the digest or the first seed
  Buffer seed{};               // in the first seedLength bytes
  std::size_t seedLength = 0;
  Buffer slots{};
  std::array<std::size_t, kSlots> valueLengths{};
  Buffer message{};

  [[nodiscard]] std::uint8_t* slot(std::size_t i) { return &slots.data()[i % kSlots * slotLength]; }
  [[nodiscard]] std::size_t& valueLength(std::size_t i) { return valueLengths[i % kSlots]; }
};

int echoLoopCounts(TestFiles& files, LoopCounts& counts) {
  if (echoSection(files, "[Number of Inner-loop for PGMT]", 6239) < 0) return -1;
  echoDecimal(files, counts.inner);
  if (echoSection(files, "[Number of Outer-loop for PGMT]", 6246) < 0) return -1;
  echoDecimal(files, counts.outer);
  return counts.inner < 1 || counts.outer < 1 ? failWith("illegal number of loop!!") : 0;
}

int readSeedBits(TestFiles& files, int& bits) {
  if (enterSection(files, "[Bitlength of Initial Data for PGMT]", 6264) < 0) return -1;
  bits = nextDecimal(files);
  if (bits < 1) return failWith("illegal length!!");
  return bits > kMaxSeedBits ? failWith("unexpected long data!!") : 0;
}

// startChain converts and writes the seed of `bits` bits, and allocates what the chain needs.
int startChain(TestFiles& files, Chain& chain, std::string_view seedText, int bits) {
  chain.seedLength = static_cast<std::size_t>(bits) / 8;
  chain.slotLength = std::max(chain.digestLength, chain.seedLength);
  if (!chain.seed.allocate(chain.slotLength)) return mallocFailedAt(6296);
  const auto seed = chain.seed.bytes().first(chain.seedLength);
  if (hexToBin(seedText, seed) < 0) return failAt(6297);
  writeHex(files.response, seed);
  writeLine(files.response, "[Bitlength of Initial Data for PGMT]");
  writeDecimal(files.response, bits);
  if (!chain.slots.allocate(kSlots * chain.slotLength)) return mallocFailedAt(6305);
  if (!chain.message.allocate(kParts * chain.slotLength)) return mallocFailedAt(6306);
  return 0;
}

// joinParts copies the three values before MD(i) into the message and returns it.
std::span<const std::uint8_t> joinParts(Chain& chain, std::size_t i) {
  std::uint8_t* end = chain.message.data();
  for (std::size_t part = i - kParts; part < i; ++part) {
    std::memcpy(end, chain.slot(part), chain.valueLength(part));
    end += chain.valueLength(part);
  }
  return {chain.message.data(), end};
}

// runPass replaces the seed by the last value of the pass that begins with it.
int runPass(const TestConfig& config, Chain& chain, const Buffer& key, int innerCount) {
  for (std::size_t i = 0; i < kParts; ++i) {
    std::memcpy(chain.slot(i), chain.seed.data(), chain.seedLength);
    chain.valueLength(i) = chain.seedLength;
  }
  const std::size_t end = kParts + static_cast<std::size_t>(innerCount);
  for (std::size_t i = kParts; i < end; ++i) {
    if (computeDigest(config, joinParts(chain, i), chain.slot(i), key,
                      {.hash = 6329, .hmac = 6331}) < 0) {
      return -1;
    }
    chain.valueLength(i) = chain.digestLength;
  }
  std::memcpy(chain.seed.data(), chain.slot(end - 1), chain.digestLength);
  chain.seedLength = chain.digestLength;
  return 0;
}

int runPasses(const TestConfig& config, TestFiles& files, Chain& chain, const Buffer& key,
              LoopCounts counts) {
  TextWriter& response = files.response;
  writeLine(response, computesMac(config) ? "[MAC of PGMT]" : "[Hash Value of PGMT]");
  for (int pass = 0; pass < counts.outer; ++pass) {
    if (runPass(config, chain, key, counts.inner) < 0) return -1;
    writeHex(response, chain.seed.bytes().first(chain.seedLength));
  }
  return 0;
}

int runTest(const TestConfig& config, TestFiles& files) {
  Buffer key;
  LoopCounts counts;
  if (readMacKey(config, files, key, {.allocation = 6230, .section = 6232, .value = 6235}) < 0 ||
      echoLoopCounts(files, counts) < 0 ||
      echoSection(files, "[Initial Data for PGMT]", 6259) < 0) {
    return -1;
  }
  // The seed waits in its line until its length is known.
  const std::string_view seedText = files.request.readLine(files.line).value_or("");
  std::array<char, kBitLengthCapacity> bitsLine{};
  files.line = bitsLine;
  int bits = 0;
  if (readSeedBits(files, bits) < 0) return -1;
  const HashProperties* const hash = findHash(config.hashId);
  if (hash == nullptr) return -1;
  Chain chain{.digestLength = static_cast<std::size_t>(hash->digestLength)};
  if (startChain(files, chain, seedText, bits) < 0) return -1;
  return runPasses(config, files, chain, key, counts);
}

}  // namespace

int procPGMT(const TestConfig& config, const char* requestPath, const char* responsePath) {
  std::array<char, kLineCapacity> line{};
  TestFiles files{.line = line};
  if (openFiles(files, requestPath, responsePath) < 0) return -1;
  return closeFiles(files, responsePath, runTest(config, files));
}

}  // namespace runner
