#include "cipher/gcm_cases.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "cipher/aead_engine.h"
#include "text/buffer.h"
#include "text/diagnostics.h"
#include "text/sections.h"
#include "text/text_helpers.h"

namespace runner {
namespace {

constexpr std::size_t kIvCapacity = 32;
constexpr std::size_t kAadCapacity = 32;
constexpr std::size_t kMinLineCapacity = 512;

bool isAeadEncryption(const TestConfig& config) {
  return config.testFunction == TestFunction::AEAD_ENCRYPTION;
}

int allocateParams(const TestConfig& config, AeadParams& params) {
  const std::size_t textLength = sizeOf(config.maxTextLength);
  const std::size_t keyRoom = std::max(sizeOf(config.keyLength), kMinKeyRoom);
  if (!params.key.allocate(keyRoom)) return mallocFailedAt(6576);
  if (!params.input.allocate(textLength)) return mallocFailedAt(6577);
  if (!params.iv.allocate(kIvCapacity)) return mallocFailedAt(6578);
  if (!params.aad.allocate(kAadCapacity)) return mallocFailedAt(6579);
  if (!params.output.allocate(textLength)) return mallocFailedAt(6580);
  if (!params.tag.allocate(kTagLength)) return mallocFailedAt(6581);
  return 0;
}

void writeValue(TestFiles& files, std::string_view key, std::span<const std::uint8_t> value) {
  writeLine(files.response, key);
  writeHex(files.response, value);
}

// readSection finds the section `key` and reads its value, which has the length of `value`.
int readSection(TestFiles& files, std::string_view key, std::span<std::uint8_t> value,
                SectionSites sites) {
  if (enterSection(files, key, sites.section) < 0) return -1;
  return readHex(files, value, sites.value);
}

// readMeasured reads the next line as hexadecimal text of as many bytes as it has digits for, into
// `value`, and stores their number in `length`. A value without room is refused.
int readMeasured(TestFiles& files, Buffer& value, int& length, int site) {
  const std::string_view text = nextValue(files);
  auto size = hexLineToBin(text, value.bytes());
  if (!size) {
    size = measureHex(text);
    if (*size > value.size()) {
      failWith("unexpected long data!!");
      return failAt(site);
    }
    if (hexToBin(text, value.bytes().first(*size)) < 0) return failAt(site);
  }
  length = static_cast<int>(*size);
  return 0;
}

// echoMeasuredSection finds the section `key`, reads its value with readMeasured, and writes both.
int echoMeasuredSection(TestFiles& files, std::string_view key, Buffer& value, int& length,
                        SectionSites sites) {
  if (enterSection(files, key, sites.section) < 0 ||
      readMeasured(files, value, length, sites.value) < 0) {
    return -1;
  }
  writeValue(files, key, value.bytes().first(sizeOf(length)));
  return 0;
}

int readCase(const TestConfig& config, TestFiles& files, AeadParams& params) {
  const std::string_view textKey = isAeadEncryption(config) ? "[Plaintext]" : "[Ciphertext]";
  const auto key = params.key.bytes().first(sizeOf(config.keyLength));
  if (readSection(files, "[Key]", key, {.section = 6587, .value = 6589}) < 0) return -1;
  writeValue(files, "[Key]", key);
  if (echoMeasuredSection(files, "[IV]", params.iv, params.ivLength,
                          {.section = 6595, .value = 6599}) < 0 ||
      echoMeasuredSection(files, textKey, params.input, params.inputLength,
                          {.section = 6605, .value = 6609}) < 0 ||
      echoMeasuredSection(files, "[AAD]", params.aad, params.aadLength,
                          {.section = 6615, .value = 6619}) < 0) {
    return -1;
  }
  params.tagValid = 0;
  params.outputLength = 0;
  if (isAeadEncryption(config)) return 0;
  return readSection(files, "[Tag]", params.tag.bytes(), {.section = 6630, .value = 6632});
}

int computeCase(const TestConfig& config, AeadParams& params) {
  const bool encrypts = isAeadEncryption(config);
  const int result = encrypts ? execAeadEncrypt(config, params) : execAeadDecrypt(config, params);
  if (result < 0) failAt(encrypts ? 6626 : 6634);
  return result;
}

void writeResult(const TestConfig& config, TestFiles& files, const AeadParams& params) {
  const bool encrypts = isAeadEncryption(config);
  const std::string_view outputKey = encrypts ? "[Ciphertext]" : "[Plaintext]";
  if (encrypts || params.tagValid > 0) {
    writeValue(files, outputKey, params.output.bytes().first(sizeOf(params.outputLength)));
  } else {
    writeLine(files.response, outputKey);
    writeLine(files.response, "INVALID");
  }
  writeValue(files, "[Tag]", params.tag.bytes());
}

// runCases returns the result of the last engine call.
int runCases(const TestConfig& config, TestFiles& files, AeadParams& params, int count) {
  int result = 0;
  for (int i = 0; i < count; ++i) {
    if (readCase(config, files, params) < 0) return -1;
    result = computeCase(config, params);
    if (result < 0) return result;
    writeResult(config, files, params);
  }
  return result;
}

int runAead(const TestConfig& config, TestFiles& files) {
  const std::string_view countKey =
      isAeadEncryption(config) ? "[Number of Plaintexts]" : "[Number of Ciphertexts]";
  // One character more than the longest text needs: a text that is too long is seen to be so.
  const std::size_t capacity = std::max(2 * sizeOf(config.maxTextLength) + 2, kMinLineCapacity);
  if (setLineCapacity(files, capacity, 6560) < 0) return -1;
  int count = 0;
  if (echoCount(files, countKey, count, 6565) < 0) return -1;
  AeadParams params;
  if (allocateParams(config, params) < 0) return -1;
  return runCases(config, files, params, count);
}

}  // namespace

int procAEAD(const TestConfig& config, const char* requestPath, const char* responsePath) {
  TestFiles files{requestPath, responsePath, kMinLineCapacity};
  if (openFiles(files) < 0) return -1;
  return closeFiles(files, runAead(config, files));
}

}  // namespace runner
