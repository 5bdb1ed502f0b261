#include "cipher/multi_block_message.h"

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

// The largest number of blocks whose buffer size fits 32 bits.
constexpr int kMaxBlocks = 33554431;

// computeMessage reads the message of `length` bytes, computes and writes the result.
int computeMessage(const TestConfig& config, TestFiles& files, int length, const std::uint8_t* key,
                   const std::uint8_t* iv) {
  const std::size_t size = sizeOf(length);
  const std::size_t lineCapacity = 2 * size + 1;
  Buffer buffer;
  if (!files.request.reserve(lineCapacity) || !buffer.allocate(size + size + kBlockLength)) {
    return mallocFailedAt(2380);
  }
  files.lineCapacity = lineCapacity;
  const auto message = buffer.bytes().first(size);
  const auto output = buffer.bytes().subspan(size);
  if (echoHex(files, message, 2385) < 0) return -1;
  const int result = computeCipher(config, message.data(), length, key, iv, output.data(),
                                   {.encryption = 2390, .decryption = 2392});
  if (result < 0) return result;
  writeLine(files.response, isEncryption(config) ? "[Ciphertext for MMT]" : "[Plaintext for MMT]");
  writeHex(files.response, output.first(size));
  return result;
}

int runMessage(const TestConfig& config, TestFiles& files) {
  int blocks = 0;
  std::array<std::uint8_t, kMaxAesKeyLength> keyBytes{};
  const auto key = std::span(keyBytes).first(sizeOf(config.keyLength));
  Block iv{};
  const char* const inputKey =
      isEncryption(config) ? "[Plaintext for MMT]" : "[Ciphertext for MMT]";
  if (echoCount(files, "[Number of Blocks for MMT]", blocks, 2346, "illegal blknum!!", kMaxBlocks) <
      0) {
    return -1;
  }
  if (echoHexSection(files, "[Key for MMT]", key, {.section = 2360, .value = 2363}) < 0) return -1;
  if (isCbc(config) &&
      echoHexSection(files, "[IV for MMT]", iv, {.section = 2369, .value = 2372}) < 0) {
    return -1;
  }
  if (echoSection(files, inputKey, 2378) < 0) return -1;
  return computeMessage(config, files, blocks * static_cast<int>(kBlockLength), keyBytes.data(),
                        iv.data());
}

}  // namespace

int procMMT(const TestConfig& config, const char* requestPath, const char* responsePath) {
  TestFiles files{requestPath, responsePath, kAesLineCapacity};
  if (openAesFiles(files, config) < 0) return -1;
  return closeFiles(files, runMessage(config, files));
}

}  // namespace runner
