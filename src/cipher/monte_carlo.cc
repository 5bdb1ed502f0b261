#include "cipher/monte_carlo.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>

#include "cipher/aes_steps.h"
#include "text/buffer.h"
#include "text/diagnostics.h"
#include "text/sections.h"
#include "text/text_helpers.h"

namespace runner {
namespace {

struct MonteCarlo {
  int innerCount = 0;
  int outerCount = 0;
  std::array<std::uint8_t, kMaxAesKeyLength> key{};
  Block iv{};
  Buffer text;       // the block handed to the engine
  Buffer output;     // its result, with room for padding
  Block previous{};  // the result of the step before
};

std::span<std::uint8_t, kBlockLength> blockOf(Buffer& buffer) {
  return buffer.bytes().first<kBlockLength>();
}

void copyBlock(std::span<const std::uint8_t, kBlockLength> from,
               std::span<std::uint8_t, kBlockLength> to) {
  std::copy_n(from.data(), kBlockLength, to.data());
}

void xorBlock(std::span<const std::uint8_t, kBlockLength> from,
              std::span<std::uint8_t, kBlockLength> to) {
  for (std::size_t i = 0; i < kBlockLength; ++i) to[i] ^= from[i];
}

int readParameters(const TestConfig& config, TestFiles& files, MonteCarlo& state) {
  const auto key = std::span(state.key).first(sizeOf(config.keyLength));
  const char* const textKey =
      isEncryption(config) ? "[Initial Plaintext for MCT]" : "[Initial Ciphertext for MCT]";
  if (echoCount(files, "[Number of Inner-loop for MCT]", state.innerCount, 2449) < 0 ||
      echoCount(files, "[Number of Outer-loop for MCT]", state.outerCount, 2461) < 0 ||
      echoHexSection(files, "[Initial Key for MCT]", key, {.section = 2473, .value = 2476}) < 0 ||
      echoHexSection(files, textKey, blockOf(state.text), {.section = 2481, .value = 2484}) < 0) {
    return -1;
  }
  if (!isCbc(config)) return 0;
  return echoHexSection(files, "[Initial IV for MCT]", state.iv, {.section = 2490, .value = 2493});
}

// chain derives the next text and IV from the output of step `step` of an iteration.
void chain(const TestConfig& config, MonteCarlo& state, int step) {
  const auto text = blockOf(state.text);
  const auto output = blockOf(state.output);
  if (!isCbc(config)) {
    copyBlock(output, text);
  } else if (isEncryption(config)) {
    copyBlock(state.iv, text);
    copyBlock(output, state.iv);
  } else {
    Block input{};
    copyBlock(text, input);
    copyBlock(step == 0 ? state.iv : state.previous, text);
    copyBlock(input, state.iv);
  }
}

// runInnerLoop runs the engine calls of one outer iteration.
int runInnerLoop(const TestConfig& config, MonteCarlo& state) {
  const auto output = blockOf(state.output);
  int result = 0;
  for (int step = 0; step < state.innerCount; ++step) {
    copyBlock(output, state.previous);
    result =
        computeCipher(config, state.text.data(), kBlockLength, state.key.data(), state.iv.data(),
                      output.data(), {.encryption = 2504, .decryption = 2514});
    if (result < 0) return result;
    chain(config, state, step);
  }
  return result;
}

// updateKey derives the key of the next iteration: the last two outputs change a 32-byte key when
// the iteration had at least two steps; otherwise the last one changes the first 16 bytes.
void updateKey(const TestConfig& config, MonteCarlo& state) {
  const std::span key(state.key);
  const bool takesTwo = sizeOf(config.keyLength) == kMaxAesKeyLength && state.innerCount > 1;
  if (takesTwo) xorBlock(state.previous, key.first<kBlockLength>());
  xorBlock(blockOf(state.output), takesTwo ? key.last<kBlockLength>() : key.first<kBlockLength>());
}

int runOuterLoop(const TestConfig& config, TestFiles& files, MonteCarlo& state) {
  int result = 0;
  for (int iteration = 0; iteration < state.outerCount; ++iteration) {
    result = runInnerLoop(config, state);
    if (result < 0) return result;
    writeBlockHex(files.response, blockOf(state.output));
    updateKey(config, state);
    if (!isEncryption(config)) copyBlock(blockOf(state.output), state.iv);
  }
  return result;
}

int runMonteCarlo(const TestConfig& config, TestFiles& files) {
  MonteCarlo state;
  if (!state.text.allocate(kBlockLength)) return mallocFailedAt(2444);
  if (!state.output.allocate(2 * kBlockLength)) return mallocFailedAt(2445);
  if (readParameters(config, files, state) < 0) return -1;
  writeLine(files.response, isEncryption(config) ? "[Ciphertext for MCT]" : "[Plaintext for MCT]");
  return runOuterLoop(config, files, state);
}

}  // namespace

int procMCT(const TestConfig& config, const char* requestPath, const char* responsePath) {
  TestFiles files{requestPath, responsePath, kAesLineCapacity};
  if (openAesFiles(files, config) < 0) return -1;
  return closeFiles(files, runMonteCarlo(config, files));
}

}  // namespace runner
