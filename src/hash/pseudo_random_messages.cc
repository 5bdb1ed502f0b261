#include "hash/pseudo_random_messages.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <numeric>
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

// A step computes the digest of the three values before its own.
constexpr std::size_t kParts = 3;

struct LoopCounts {
  int inner = 0;
  int outer = 0;
};

// Chain holds the last three values, one behind the other: the message of the next step.
struct Chain {
  std::size_t digestLength = 0;
  Buffer seed{};
  std::size_t seedLength = 0;  // bytes of the seed in use
  Buffer message{};
  std::array<std::size_t, kParts> partLengths{};
  Buffer value{};  // the value of the last step
};

int echoLoopCounts(TestFiles& files, LoopCounts& counts) {
  if (echoSection(files, "[Number of Inner-loop for PGMT]", 6239) < 0) return -1;
  counts.inner = echoDecimal(files);
  if (echoSection(files, "[Number of Outer-loop for PGMT]", 6246) < 0) return -1;
  counts.outer = echoDecimal(files);
  return counts.inner < 1 || counts.outer < 1 ? failWith("illegal number of loop!!") : 0;
}

int readSeedBits(TestFiles& files, int& bits) {
  if (enterSection(files, "[Bitlength of Initial Data for PGMT]", 6264) < 0) return -1;
  files.lineCapacity = kBitLengthCapacity;
  bits = decimal(nextValue(files));
  if (bits < 1) return failWith("illegal length!!");
  return bits > kMaxSeedBits ? failWith("unexpected long data!!") : 0;
}

// startChain converts and writes the seed of `bits` bits, and allocates what the chain needs.
int startChain(TestFiles& files, Chain& chain, std::string_view seedText, int bits) {
  chain.seedLength = static_cast<std::size_t>(bits) / 8;
  const std::size_t longest = std::max(chain.digestLength, chain.seedLength);
  if (!chain.seed.allocate(longest)) return mallocFailedAt(6296);
  const auto seed = chain.seed.bytes().first(chain.seedLength);
  if (hexToBin(seedText, seed) < 0) return failAt(6297);
  writeHex(files.response, seed);
  writeLine(files.response, "[Bitlength of Initial Data for PGMT]");
  writeDecimal(files.response, bits);
  if (!chain.value.allocate(longest)) return mallocFailedAt(6305);
  if (!chain.message.allocate(kParts * longest)) return mallocFailedAt(6306);
  return 0;
}

std::size_t messageLength(const Chain& chain) {
  return std::accumulate(chain.partLengths.begin(), chain.partLengths.end(), std::size_t{0});
}

// slide drops the first part of the message and puts the last value behind the others.
void slide(Chain& chain) {
  const auto parts = chain.message.bytes();
  const std::size_t kept = messageLength(chain) - chain.partLengths.front();
  std::memmove(parts.data(), &parts[chain.partLengths.front()], kept);
  std::memcpy(&parts[kept], chain.value.data(), chain.digestLength);
  // Not of std::ranges: clang 14 does not compile that one with the library of g++ 12.
  std::rotate(chain.partLengths.begin(), chain.partLengths.begin() + 1, chain.partLengths.end());
  chain.partLengths.back() = chain.digestLength;
}

// runPass replaces the seed by the last value of the pass that begins with it.
int runPass(const TestConfig& config, Chain& chain, const Buffer& key, int innerCount) {
  const auto seed = chain.seed.bytes().first(chain.seedLength);
  for (std::size_t part = 0; part < kParts; ++part) {
    std::ranges::copy(seed, chain.message.bytes().subspan(part * seed.size()).begin());
  }
  chain.partLengths.fill(seed.size());
  for (int step = 0; step < innerCount; ++step) {
    if (step > 0) slide(chain);
    if (computeDigest(config, chain.message.bytes().first(messageLength(chain)), chain.value.data(),
                      key, {.hash = 6329, .hmac = 6331}) < 0) {
      return -1;
    }
  }
  std::memcpy(chain.seed.data(), chain.value.data(), chain.digestLength);
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

int runChainTest(const TestConfig& config, TestFiles& files) {
  Buffer key;
  LoopCounts counts;
  if (readMacKey(config, files, key, {.allocation = 6230, .section = 6232, .value = 6235}) < 0 ||
      echoLoopCounts(files, counts) < 0 ||
      echoSection(files, "[Initial Data for PGMT]", 6259) < 0) {
    return -1;
  }
  // The seed is kept as text until its length is known.
  std::array<char, kLineCapacity> seedLine;
  const std::size_t seedSize = nextValue(files).copy(seedLine.data(), seedLine.size());
  int bits = 0;
  if (readSeedBits(files, bits) < 0) return -1;
  const HashProperties* const hash = findHash(config.hashId);
  if (hash == nullptr) return -1;
  Chain chain{.digestLength = static_cast<std::size_t>(hash->digestLength)};
  if (startChain(files, chain, {seedLine.data(), seedSize}, bits) < 0) return -1;
  return runPasses(config, files, chain, key, counts);
}

}  // namespace

int procPGMT(const TestConfig& config, const char* requestPath, const char* responsePath) {
  TestFiles files{requestPath, responsePath, kLineCapacity};
  if (openFiles(files) < 0) return -1;
  return closeFiles(files, runChainTest(config, files));
}

}  // namespace runner
