#include "driver/request_header.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <string_view>

#include "driver/value_list_header.h"
#include "text/diagnostics.h"
#include "text/sections.h"
#include "text/test_files.h"
#include "text/text_helpers.h"

namespace runner {
namespace {

constexpr std::size_t kLineCapacity = 128;
constexpr std::size_t kAlgorithmNameCapacity = 32;

// The header items that count for completeness. A mode of operation stands in for an accepted
// function as well.
constexpr unsigned kSeenFunction = 0x002;
constexpr unsigned kSeenAlgorithm = 0x004;
constexpr unsigned kSeenModeOrFormat = 0x008;
constexpr unsigned kSeenKeyLength = 0x010;
constexpr unsigned kSeenMaxTextLength = 0x080;
constexpr unsigned kSeenHash = 0x100;

// The items that a request must have, and no others, by TestFunction.
constexpr unsigned kFunctionItems = kSeenFunction | kSeenAlgorithm;
constexpr unsigned kCipherItems = kFunctionItems | kSeenModeOrFormat | kSeenKeyLength;
constexpr unsigned kSignatureItems = kFunctionItems | kSeenHash;
constexpr unsigned kAeadItems = kFunctionItems | kSeenKeyLength | kSeenMaxTextLength;
constexpr std::array<unsigned, 10> requiredItems{
    kCipherItems,                                 // ENCRYPTION
    kCipherItems,                                 // DECRYPTION
    kSignatureItems,                              // KEY_GENERATION
    kFunctionItems,                               // PUBLIC_KEY_VALIDATION
    kSignatureItems,                              // SIGN
    kSignatureItems,                              // VERIFICATION
    kFunctionItems | kSeenModeOrFormat,           // HASH
    kFunctionItems | kSeenKeyLength | kSeenHash,  // MAC
    kAeadItems,                                   // AEAD_ENCRYPTION
    kAeadItems,                                   // AEAD_DECRYPTION
};

struct FunctionName {
  const char* name;
  TestFunction function;
};
constexpr std::array<FunctionName, 8> functionNames{{
    {"Encryption", TestFunction::ENCRYPTION},
    {"Decryption", TestFunction::DECRYPTION},
    {"Key Generation", TestFunction::KEY_GENERATION},
    {"Public Key Validation", TestFunction::PUBLIC_KEY_VALIDATION},
    {"Sign", TestFunction::SIGN},
    {"Verification", TestFunction::VERIFICATION},
    {"Hash", TestFunction::HASH},
    {"MAC", TestFunction::MAC},
}};

struct KeyLengthName {
  const char* bits;
  int bytes;
};
constexpr std::array<KeyLengthName, 6> keyLengths{{
    {"128", 16},
    {"256", 32},
    {"160", 20},
    {"192", 24},
    {"384", 48},
    {"512", 64},
}};

constexpr std::array passThroughKeys{
    "[Block Cipher]",         "[Min BitLength of IV]",        "[Max BitLength of IV]",
    "[IV Generation]",        "[Min BitLength of Plaintext]", "[Min BitLength of Ciphertext]",
    "[Min BitLength of AAD]", "[Max BitLength of AAD]",       "[Bitlength of Tag]",
};

// What a header line means for the scan.
enum class Step {
  NEXT,        // go on with the next line
  STOP,        // read no further, and see whether the header is complete
  REFUSE,      // the request is not supported, complete or not
  VALUE_LIST,  // the header has the value-list form
};

struct HeaderScan {
  TestConfig& config;
  TestFiles files{};
  std::array<char, kLineCapacity> line{};
  std::array<char, kAlgorithmNameCapacity> algorithmName{};
  unsigned seenMask = 0;
  ValueListForm form = ValueListForm::DRBG;
};

Step stopWith(const char* message) {
  failWith(message);
  return Step::STOP;
}

// echoValue writes `key` and the value line as read, which it returns.
std::string_view echoValue(HeaderScan& scan, const char* key) {
  writeLine(scan.files.response, key);
  const std::string_view value = nextValue(scan.files);
  writeText(scan.files.response, value);
  return value;
}

// acceptAlgorithm sets the mode and the hash that the algorithm name stands for. Returns false when
// the name does not go with the function.
bool acceptAlgorithm(TestConfig& config, std::string_view name) {
  switch (config.testFunction) {
    case TestFunction::ENCRYPTION:
    case TestFunction::DECRYPTION:
      return name.starts_with("AES");
    case TestFunction::KEY_GENERATION:
    case TestFunction::SIGN:
    case TestFunction::VERIFICATION:
      if (name.starts_with("DSA FIPS")) {
        config.mode = ModeId::DSA;
      } else if (name.starts_with("ECDSA")) {
        config.mode = ModeId::ECDSA;
      } else if (name.starts_with("RSASSA")) {
        config.mode = ModeId::RSASSA;
      } else {
        return false;
      }
      return true;
    case TestFunction::PUBLIC_KEY_VALIDATION:
      if (!name.starts_with("ECDSA")) return false;
      config.mode = ModeId::ECDSA;
      return true;
    case TestFunction::HASH:
      for (const HashProperties& hash : hashTable) {
        if (!name.starts_with(hash.algorithmName)) continue;
        config.hashId = hash.id;
        config.mode = static_cast<ModeId>(hash.id);
        return true;
      }
      return false;
    case TestFunction::MAC:
      if (!name.starts_with("HMAC")) return false;
      config.mode = ModeId::HMAC;
      return true;
    case TestFunction::AEAD_ENCRYPTION:
    case TestFunction::AEAD_DECRYPTION:
      return true;  // the name made it this function
    case TestFunction::DRBG:
      break;
  }
  return false;
}

// setFunction sets the function that `value` names; "Encryption" and "Decryption" are those of GCM
// when the algorithm is. Returns false for an unknown function.
bool setFunction(TestConfig& config, std::string_view value, std::string_view algorithmName) {
  for (const FunctionName& row : functionNames) {
    if (!value.starts_with(row.name)) continue;
    config.testFunction = row.function;
    if (algorithmName.starts_with("GCM/GMAC")) {
      if (row.function == TestFunction::ENCRYPTION) {
        config.testFunction = TestFunction::AEAD_ENCRYPTION;
      } else if (row.function == TestFunction::DECRYPTION) {
        config.testFunction = TestFunction::AEAD_DECRYPTION;
      }
    }
    return true;
  }
  return false;
}

Step echoOnly(HeaderScan& scan, const char* key) {
  echoValue(scan, key);
  return Step::NEXT;
}

Step readAlgorithmName(HeaderScan& scan) {
  writeLine(scan.files.response, "[Algorithm Name]");
  const auto name = scan.files.request.readLine(scan.algorithmName);
  writeText(scan.files.response, name.value_or(""));
  return Step::NEXT;
}

Step readFunction(HeaderScan& scan) {
  const std::string_view name = scan.algorithmName.data();
  if (!setFunction(scan.config, echoValue(scan, "[Function Name]"), name)) {
    return stopWith("unexpected function name!!");
  }
  scan.seenMask |= kSeenAlgorithm;
  if (!acceptAlgorithm(scan.config, name)) return stopWith("unexpected algorithm name!!");
  scan.seenMask |= kSeenFunction;
  return Step::NEXT;
}

Step readMode(HeaderScan& scan) {
  const std::string_view value = echoValue(scan, "[Modes of Operation]");
  if (value.starts_with("CBC")) {
    scan.config.mode = ModeId::CBC;
  } else if (value.starts_with("ECB")) {
    scan.config.mode = ModeId::ECB;
  } else {
    return stopWith("unexpected operation mode name!!");
  }
  scan.seenMask |= kSeenFunction | kSeenModeOrFormat;
  return Step::NEXT;
}

Step readDataFormat(HeaderScan& scan) {
  if (!echoValue(scan, "[Data Format]").starts_with("M_Hash_Byte")) {
    return stopWith("unknown data format!!");
  }
  scan.seenMask |= kSeenModeOrFormat;
  return Step::NEXT;
}

// Only a MAC request shows the section here; the signature tests write the hash themselves.
Step readHash(HeaderScan& scan) {
  const bool echoed = scan.config.testFunction == TestFunction::MAC;
  const std::string_view value = echoed ? echoValue(scan, "[Hash]") : nextValue(scan.files);
  for (const HashProperties& hash : hashTable) {
    if (value.starts_with(hash.name)) scan.config.hashId = hash.id;
  }
  scan.seenMask |= kSeenHash;
  return Step::NEXT;
}

Step readCharacteristic(HeaderScan& scan) {
  writeLine(scan.files.response, "[Characteristic]");
  const std::string_view value = nextValue(scan.files);
  if (!value.starts_with('p')) {
    std::printf("unsupported characteristic(%.*s)!!\n", static_cast<int>(value.size()),
                value.data());
    return Step::REFUSE;
  }
  writeText(scan.files.response, value);
  return Step::NEXT;
}

Step readKeyLength(HeaderScan& scan) {
  const std::string_view value = echoValue(scan, "[Bitlength of Key]");
  for (const KeyLengthName& row : keyLengths) {
    if (!value.starts_with(row.bits)) continue;
    scan.config.keyLength = row.bytes;
    scan.seenMask |= kSeenKeyLength;
    return Step::NEXT;
  }
  return stopWith("unexpected key length!!");
}

Step readMaxTextLength(HeaderScan& scan, std::string_view keyLine) {
  writeText(scan.files.response, keyLine);
  int bits = 0;
  echoDecimal(scan.files, bits);
  scan.config.maxTextLength = static_cast<int>((std::int64_t{bits} + 7) / 8);
  scan.seenMask |= kSeenMaxTextLength;
  return Step::NEXT;
}

Step enterValueList(HeaderScan& scan, ValueListForm form) {
  scan.config.flags |= FLAG_VALUE_LIST;
  scan.form = form;
  return Step::VALUE_LIST;
}

Step readSection(HeaderScan& scan, std::string_view line) {
  if (line.starts_with(kDrbgRequestKey)) return enterValueList(scan, ValueListForm::DRBG);
  if (line.starts_with(kSignatureRequestKey)) {
    const bool hasCurve = nextValue(scan.files).starts_with("[Curve = ");
    return enterValueList(scan, hasCurve ? ValueListForm::ECDSA : ValueListForm::FFC);
  }
  if (line.starts_with("[Algorithm Name]")) return readAlgorithmName(scan);
  if (line.starts_with("[Function Name]")) return readFunction(scan);
  if (line.starts_with("[Key]") && scan.config.testFunction == TestFunction::MAC) {
    return echoOnly(scan, "[Key]");
  }
  if (line.starts_with("[Modes of Operation]")) return readMode(scan);
  if (line.starts_with("[Data Format]")) return readDataFormat(scan);
  if (line.starts_with("[Hash]")) return readHash(scan);
  if (line.starts_with("[Characteristic]")) return readCharacteristic(scan);
  if (line.starts_with("[Bitlength of Key]")) return readKeyLength(scan);
  if (line.starts_with("[Max BitLength of Plaintext]") ||
      line.starts_with("[Max BitLength of Ciphertext]")) {
    return readMaxTextLength(scan, line);
  }
  for (const char* const key : passThroughKeys) {
    if (line.starts_with(key)) return echoOnly(scan, key);
  }
  return Step::NEXT;
}

Step scanSections(HeaderScan& scan) {
  Step step = Step::NEXT;
  while (step == Step::NEXT) {
    const auto line = nextLine(scan.files);
    if (!line) break;
    // All keys are in brackets, and most lines of a large request are not.
    if (line->starts_with('[')) step = readSection(scan, *line);
  }
  return step;
}

bool isComplete(const HeaderScan& scan) {
  const auto function = static_cast<std::size_t>(scan.config.testFunction);
  return function < requiredItems.size() && scan.seenMask == requiredItems[function];
}

}  // namespace

int parseRequestHeader(TestConfig& config, const char* requestPath, const char* responsePath) {
  HeaderScan scan{.config = config};
  scan.files.line = scan.line;
  if (openFiles(scan.files, requestPath, responsePath) < 0) return -1;
  const Step end = scanSections(scan);
  closeFiles(scan.files, responsePath, 0);
  if (end == Step::REFUSE) return -1;
  if (end == Step::VALUE_LIST) return parseValueListHeader(config, requestPath, scan.form);
  return isComplete(scan) ? 0 : failWith("request is inadequate!!");
}

}  // namespace runner
