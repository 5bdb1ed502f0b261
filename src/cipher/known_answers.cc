#include "cipher/known_answers.h"

#include <array>
#include <cstdio>
#include <optional>
#include <span>
#include <string_view>

#include "cipher/aes_steps.h"
#include "text/diagnostics.h"
#include "text/record_list.h"
#include "text/sections.h"
#include "text/text_helpers.h"

namespace runner {
namespace {

constexpr Block kZeroBlock{};
constexpr std::array<std::uint8_t, kMaxAesKeyLength> kZeroKey{};

struct KatEntry {
  RecordPtr<KatEntry> next;
  std::array<std::uint8_t, kMaxAesKeyLength> key;
  Block input;
  BlockWithPadding output;
};

// The section keys of a test, formatted with its variant.
struct KatKeys {
  using Text = std::array<char, 64>;
  Text key{};
  Text iv{};
  Text input{};   // what the engine is given
  Text output{};  // what it returns
};

KatKeys formatKeys(const TestConfig& config, const char* variant) {
  KatKeys keys;
  const auto format = [variant](KatKeys::Text& text, const char* role) {
    std::snprintf(text.data(), text.size(), "[%s for KAT-%s]", role, variant);
  };
  format(keys.key, "Key");
  format(keys.iv, "IV");
  format(keys.input, isEncryption(config) ? "Plaintext" : "Ciphertext");
  format(keys.output, isEncryption(config) ? "Ciphertext" : "Plaintext");
  return keys;
}

struct KnownAnswers {
  const TestConfig& config;
  TestFiles& files;
  KatKeys keys;
  RecordList<KatEntry> entries{};
  std::string_view lastLine{};  // of the first list, or the one that ended it
};

std::size_t keySize(const KnownAnswers& test) { return sizeOf(test.config.keyLength); }

std::span<std::uint8_t> keyOf(const KnownAnswers& test, KatEntry& entry) {
  return std::span(entry.key).first(keySize(test));
}

// nextEntryLine reads the next line of a list; nothing at the section line or the end of the file
// that ends it.
std::optional<std::string_view> nextEntryLine(KnownAnswers& test) {
  const auto line = nextLine(test.files);
  test.lastLine = line.value_or("");
  return line && !line->starts_with('[') ? line : std::nullopt;
}

int compute(const KnownAnswers& test, KatEntry& entry, CipherSites sites) {
  return computeCipher(test.config, entry.input.data(), kBlockLength, entry.key.data(),
                       kZeroBlock.data(), entry.output.data(), sites);
}

void writeKeySection(const KnownAnswers& test) {
  TextWriter& response = test.files.response;
  writeLine(response, test.keys.key.data());
  for (const KatEntry& entry : test.entries) {
    writeHex(response, std::span(entry.key).first(keySize(test)));
  }
}

void writeInputSection(const KnownAnswers& test) {
  TextWriter& response = test.files.response;
  writeLine(response, test.keys.input.data());
  for (const KatEntry& entry : test.entries) writeBlockHex(response, entry.input);
}

void writeIvSection(const KnownAnswers& test) {
  if (!isCbc(test.config)) return;
  writeLine(test.files.response, test.keys.iv.data());
  writeBlockHex(test.files.response, kZeroBlock);
}

void writeOutputSection(const KnownAnswers& test) {
  TextWriter& response = test.files.response;
  writeLine(response, test.keys.output.data());
  for (const KatEntry& entry : test.entries) {
    writeBlockHex(response, std::span(entry.output).first<kBlockLength>());
  }
}

int runVarText(KnownAnswers& test) {
  if (enterSection(test.files, test.keys.input.data(), 2087) < 0) return -1;
  int result = 0;
  while (const auto line = nextEntryLine(test)) {
    KatEntry* const entry = test.entries.append();
    if (entry == nullptr) return mallocFailedAt(2097);
    if (hexToBlock(*line, entry->input) < 0) return failAt(2103);
    // The key of a new entry is the zero key.
    result = compute(test, *entry, {.encryption = 2106, .decryption = 2108});
    if (result < 0) return result;
  }
  writeLine(test.files.response, test.keys.key.data());
  writeHex(test.files.response, std::span(kZeroKey).first(keySize(test)));
  writeInputSection(test);
  writeIvSection(test);
  writeOutputSection(test);
  return result;
}

// readFirstList reads the keys (encryption) or the blocks (decryption) up to the end of the list or
// the first line that does not convert, whose entry stays in the list. Returns false when there was
// no memory for an entry, which ends the list too.
bool readFirstList(KnownAnswers& test) {
  const bool encrypts = isEncryption(test.config);
  while (const auto line = nextEntryLine(test)) {
    KatEntry* const entry = test.entries.append();
    if (entry == nullptr) {
      mallocFailedAt(2208);
      return false;
    }
    const int result =
        encrypts ? hexToBin(*line, keyOf(test, *entry)) : hexToBlock(*line, entry->input);
    if (result < 0) {
      failAt(encrypts ? 2215 : 2217);
      break;
    }
  }
  return true;
}

// readKeysOfBlocks reads one key for each block. Entries left without a key keep the zero key.
void readKeysOfBlocks(KnownAnswers& test) {
  for (KatEntry& entry : test.entries) {
    const auto line = nextLine(test.files);
    if (!line) {
      failWith("unexpected EOF!!");
      return;
    }
    if (line->starts_with('[')) {
      failWith("unexpected end of key data!!");
      return;
    }
    if (hexToBin(*line, keyOf(test, entry)) < 0) {
      failAt(2241);
      return;
    }
  }
}

// enterKeySection goes to the keys, which follow at once when their section line ended the first
// list.
int enterKeySection(KnownAnswers& test) {
  const char* const key = test.keys.key.data();
  if (test.lastLine.starts_with(key)) return 0;
  return enterSection(test.files, key, 2225);
}

// computeEntries returns the result of the last engine call, or the negative one that failed.
int computeEntries(KnownAnswers& test) {
  int result = 0;
  for (KatEntry& entry : test.entries) {
    result = compute(test, entry, {.encryption = 2253, .decryption = 2255});
    if (result < 0) return result;
  }
  return result;
}

// encryptUnderKeys writes the plaintext, which is the zero block, once for all keys.
int encryptUnderKeys(KnownAnswers& test) {
  const int result = computeEntries(test);
  if (result < 0) return result;
  writeLine(test.files.response, test.keys.input.data());
  writeBlockHex(test.files.response, kZeroBlock);
  writeIvSection(test);
  writeKeySection(test);
  writeOutputSection(test);
  return result;
}

// decryptUnderKeys writes the section keys alone when there are no blocks.
int decryptUnderKeys(KnownAnswers& test) {
  if (enterKeySection(test) < 0) return -1;
  readKeysOfBlocks(test);
  const int result = computeEntries(test);
  if (result < 0) return result;
  writeInputSection(test);
  if (!test.entries.empty()) {
    writeIvSection(test);
  } else if (isCbc(test.config)) {
    writeLine(test.files.response, test.keys.iv.data());
  }
  writeKeySection(test);
  writeOutputSection(test);
  return result;
}

int runVarKey(KnownAnswers& test) {
  const bool encrypts = isEncryption(test.config);
  const char* const listKey = encrypts ? test.keys.key.data() : test.keys.input.data();
  if (enterSection(test.files, listKey, 2202) < 0) return -1;
  const bool hadMemory = readFirstList(test);
  if (!encrypts) return decryptUnderKeys(test);
  return hadMemory || !test.entries.empty() ? encryptUnderKeys(test) : -1;
}

}  // namespace

int procKAT_VarText(const TestConfig& config, const char* requestPath, const char* responsePath,
                    const char* variant) {
  TestFiles files{requestPath, responsePath, kAesLineCapacity};
  if (openAesFiles(files, config) < 0) return -1;
  KnownAnswers test{.config = config, .files = files, .keys = formatKeys(config, variant)};
  return closeFiles(files, runVarText(test));
}

int procKAT_VarKey(const TestConfig& config, const char* requestPath, const char* responsePath,
                   const char* variant) {
  TestFiles files{requestPath, responsePath, kAesLineCapacity};
  if (openAesFiles(files, config) < 0) return -1;
  KnownAnswers test{.config = config, .files = files, .keys = formatKeys(config, variant)};
  return closeFiles(files, runVarKey(test));
}

}  // namespace runner
