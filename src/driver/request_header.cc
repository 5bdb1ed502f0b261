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

// The items of a header that count for completeness.
struct CountedItems {
  bool accepted = false;  // the algorithm goes with the function, or a mode of operation is there
  bool function = false;  // a known function, whether the algorithm goes with it or not
  bool modeOrFormat = false;
  bool keyLength = false;
  bool maxTextLength = false;
  bool hash = false;

  bool operator==(const CountedItems&) const = default;
};

// What a request must have, no less and no more.
struct Requirement {
  TestFunction function;
  CountedItems items;
};
constexpr CountedItems kCipherItems{
    .accepted = true, .function = true, .modeOrFormat = true, .keyLength = true};
constexpr CountedItems kSignatureItems{.accepted = true, .function = true, .hash = true};
constexpr CountedItems kAeadItems{
    .accepted = true, .function = true, .keyLength = true, .maxTextLength = true};
constexpr CountedItems kKeyItems{.accepted = true, .function = true};
constexpr CountedItems kHashItems{.accepted = true, .function = true, .modeOrFormat = true};
constexpr CountedItems kMacItems{
    .accepted = true, .function = true, .keyLength = true, .hash = true};
constexpr auto kRequirements = std::to_array<Requirement>({
    {TestFunction::ENCRYPTION, kCipherItems},
    {TestFunction::DECRYPTION, kCipherItems},
    {TestFunction::KEY_GENERATION, kSignatureItems},
    {TestFunction::PUBLIC_KEY_VALIDATION, kKeyItems},
    {TestFunction::SIGN, kSignatureItems},
    {TestFunction::VERIFICATION, kSignatureItems},
    {TestFunction::HASH, kHashItems},
    {TestFunction::MAC, kMacItems},
    {TestFunction::AEAD_ENCRYPTION, kAeadItems},
    {TestFunction::AEAD_DECRYPTION, kAeadItems},
});

struct FunctionName {
  std::string_view name;
  TestFunction function;
};
constexpr std::array<FunctionName, 8> kFunctionNames{{
    {"Encryption", TestFunction::ENCRYPTION},
    {"Decryption", TestFunction::DECRYPTION},
    {"Key Generation", TestFunction::KEY_GENERATION},
    {"Public Key Validation", TestFunction::PUBLIC_KEY_VALIDATION},
    {"Sign", TestFunction::SIGN},
    {"Verification", TestFunction::VERIFICATION},
    {"Hash", TestFunction::HASH},
    {"MAC", TestFunction::MAC},
}};

struct SignatureAlgorithm {
  std::string_view name;
  ModeId mode;
};
constexpr std::array<SignatureAlgorithm, 3> kSignatureAlgorithms{{
    {"DSA FIPS", ModeId::DSA},
    {"ECDSA", ModeId::ECDSA},
    {"RSASSA", ModeId::RSASSA},
}};

struct KeyLengthName {
  std::string_view bits;
  int bytes;
};
constexpr std::array<KeyLengthName, 6> kKeyLengths{{
    {"128", 16},
    {"256", 32},
    {"160", 20},
    {"192", 24},
    {"384", 48},
    {"512", 64},
}};

// What a line of the header begins.
enum class Item {
  DRBG_REQUEST,
  SIGNATURE_REQUEST,
  ALGORITHM_NAME,
  FUNCTION_NAME,
  MAC_KEY,
  MODE,
  DATA_FORMAT,
  HASH,
  CHARACTERISTIC,
  KEY_LENGTH,
  MAX_TEXT_LENGTH,
  ECHOED,  // read by no test, or by the tests themselves
};

struct HeaderKey {
  std::string_view text;
  Item item;
};
constexpr auto kHeaderKeys = std::to_array<HeaderKey>({
    {kDrbgRequestKey, Item::DRBG_REQUEST},
    {kSignatureRequestKey, Item::SIGNATURE_REQUEST},
    {"[Algorithm Name]", Item::ALGORITHM_NAME},
    {"[Function Name]", Item::FUNCTION_NAME},
    {"[Key]", Item::MAC_KEY},
    {"[Modes of Operation]", Item::MODE},
    {"[Data Format]", Item::DATA_FORMAT},
    {"[Hash]", Item::HASH},
    {"[Characteristic]", Item::CHARACTERISTIC},
    {"[Bitlength of Key]", Item::KEY_LENGTH},
    {"[Max BitLength of Plaintext]", Item::MAX_TEXT_LENGTH},
    {"[Max BitLength of Ciphertext]", Item::MAX_TEXT_LENGTH},
    {"[Block Cipher]", Item::ECHOED},
    {"[Min BitLength of IV]", Item::ECHOED},
    {"[Max BitLength of IV]", Item::ECHOED},
    {"[IV Generation]", Item::ECHOED},
    {"[Min BitLength of Plaintext]", Item::ECHOED},
    {"[Min BitLength of Ciphertext]", Item::ECHOED},
    {"[Min BitLength of AAD]", Item::ECHOED},
    {"[Max BitLength of AAD]", Item::ECHOED},
    {"[Bitlength of Tag]", Item::ECHOED},
});

// What a header line means for the scan.
enum class Step {
  NEXT,        // go on with the next line
  STOP,        // read no further, and see whether the header is complete
  REFUSE,      // the request is not supported, complete or not
  VALUE_LIST,  // the header has the value-list form
};

struct HeaderScan {
  TestConfig& config;
  TestFiles files;
  std::array<char, kAlgorithmNameCapacity> nameText{};
  std::string_view algorithmName{};  // in nameText
  CountedItems seen{};
  ValueListForm form = ValueListForm::DRBG;
};

Step stopWith(const char* message) {
  failWith(message);
  return Step::STOP;
}

// echoValue writes `key` and the value line as read, which it returns.
std::string_view echoValue(HeaderScan& scan, std::string_view key) {
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
      for (const SignatureAlgorithm& row : kSignatureAlgorithms) {
        if (!name.starts_with(row.name)) continue;
        config.mode = row.mode;
        return true;
      }
      return false;
    case TestFunction::PUBLIC_KEY_VALIDATION:
      if (!name.starts_with("ECDSA")) return false;
      config.mode = ModeId::ECDSA;
      return true;
    case TestFunction::HASH:
      for (const HashProperties& hash : kHashTable) {
        if (!name.starts_with(hash.algorithmName)) continue;
        config.hashId = hash.id;
        config.mode = hash.mode;
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
  for (const FunctionName& row : kFunctionNames) {
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

Step echoOnly(HeaderScan& scan, std::string_view key) {
  echoValue(scan, key);
  return Step::NEXT;
}

Step readAlgorithmName(HeaderScan& scan, std::string_view key) {
  writeLine(scan.files.response, key);
  const auto name = scan.files.request.readLine(kAlgorithmNameCapacity).value_or("");
  scan.algorithmName = {scan.nameText.data(), name.copy(scan.nameText.data(), name.size())};
  writeText(scan.files.response, name);
  return Step::NEXT;
}

Step readFunction(HeaderScan& scan, std::string_view key) {
  if (!setFunction(scan.config, echoValue(scan, key), scan.algorithmName)) {
    return stopWith("unexpected function name!!");
  }
  scan.seen.function = true;
  if (!acceptAlgorithm(scan.config, scan.algorithmName)) {
    return stopWith("unexpected algorithm name!!");
  }
  scan.seen.accepted = true;
  return Step::NEXT;
}

// A mode of operation counts as the function as well.
Step readMode(HeaderScan& scan, std::string_view key) {
  const std::string_view value = echoValue(scan, key);
  if (value.starts_with("CBC")) {
    scan.config.mode = ModeId::CBC;
  } else if (value.starts_with("ECB")) {
    scan.config.mode = ModeId::ECB;
  } else {
    return stopWith("unexpected operation mode name!!");
  }
  scan.seen.accepted = true;
  scan.seen.modeOrFormat = true;
  return Step::NEXT;
}

Step readDataFormat(HeaderScan& scan, std::string_view key) {
  if (!echoValue(scan, key).starts_with("M_Hash_Byte")) return stopWith("unknown data format!!");
  scan.seen.modeOrFormat = true;
  return Step::NEXT;
}

// Only a MAC request shows the section here; the signature tests write the hash themselves.
Step readHash(HeaderScan& scan, std::string_view key) {
  const bool echoed = scan.config.testFunction == TestFunction::MAC;
  const std::string_view value = echoed ? echoValue(scan, key) : nextValue(scan.files);
  for (const HashProperties& hash : kHashTable) {
    if (!value.starts_with(hash.name)) continue;
    scan.config.hashId = hash.id;
    break;
  }
  scan.seen.hash = true;
  return Step::NEXT;
}

Step readCharacteristic(HeaderScan& scan, std::string_view key) {
  writeLine(scan.files.response, key);
  const std::string_view value = nextValue(scan.files);
  if (!value.starts_with('p')) {
    std::printf("unsupported characteristic(%.*s)!!\n", static_cast<int>(value.size()),
                value.data());
    return Step::REFUSE;
  }
  writeText(scan.files.response, value);
  return Step::NEXT;
}

Step readKeyLength(HeaderScan& scan, std::string_view key) {
  const std::string_view value = echoValue(scan, key);
  for (const KeyLengthName& row : kKeyLengths) {
    if (!value.starts_with(row.bits)) continue;
    scan.config.keyLength = row.bytes;
    scan.seen.keyLength = true;
    return Step::NEXT;
  }
  return stopWith("unexpected key length!!");
}

Step readMaxTextLength(HeaderScan& scan, std::string_view keyLine) {
  writeText(scan.files.response, keyLine);
  const int bits = echoDecimal(scan.files);
  scan.config.maxTextLength = static_cast<int>((std::int64_t{bits} + 7) / 8);
  scan.seen.maxTextLength = true;
  return Step::NEXT;
}

Step enterValueList(HeaderScan& scan, ValueListForm form) {
  scan.config.flags |= FLAG_VALUE_LIST;
  scan.form = form;
  return Step::VALUE_LIST;
}

Step enterSignatureList(HeaderScan& scan) {
  const bool hasCurve = nextValue(scan.files).starts_with("[Curve = ");
  return enterValueList(scan, hasCurve ? ValueListForm::ECDSA : ValueListForm::FFC);
}

Step readSection(HeaderScan& scan, const HeaderKey& key, std::string_view line) {
  switch (key.item) {
    case Item::DRBG_REQUEST:
      return enterValueList(scan, ValueListForm::DRBG);
    case Item::SIGNATURE_REQUEST:
      return enterSignatureList(scan);
    case Item::ALGORITHM_NAME:
      return readAlgorithmName(scan, key.text);
    case Item::FUNCTION_NAME:
      return readFunction(scan, key.text);
    case Item::MAC_KEY:
      return scan.config.testFunction == TestFunction::MAC ? echoOnly(scan, key.text) : Step::NEXT;
    case Item::MODE:
      return readMode(scan, key.text);
    case Item::DATA_FORMAT:
      return readDataFormat(scan, key.text);
    case Item::HASH:
      return readHash(scan, key.text);
    case Item::CHARACTERISTIC:
      return readCharacteristic(scan, key.text);
    case Item::KEY_LENGTH:
      return readKeyLength(scan, key.text);
    case Item::MAX_TEXT_LENGTH:
      return readMaxTextLength(scan, line);
    case Item::ECHOED:
      return echoOnly(scan, key.text);
  }
  return Step::NEXT;
}

// readKeyed reads the section that `line` begins; any other line is skipped.
Step readKeyed(HeaderScan& scan, std::string_view line) {
  for (const HeaderKey& key : kHeaderKeys) {
    if (line.starts_with(key.text)) return readSection(scan, key, line);
  }
  return Step::NEXT;
}

Step scanSections(HeaderScan& scan) {
  Step step = Step::NEXT;
  while (step == Step::NEXT) {
    const auto line = nextLine(scan.files);
    if (!line) break;
    // All keys are in brackets, and most lines of a large request are not.
    if (line->starts_with('[')) step = readKeyed(scan, *line);
  }
  return step;
}

bool isComplete(const HeaderScan& scan) {
  for (const Requirement& row : kRequirements) {
    if (row.function == scan.config.testFunction) return scan.seen == row.items;
  }
  return false;
}

}  // namespace

int parseRequestHeader(TestConfig& config, const char* requestPath, const char* responsePath) {
  HeaderScan scan{.config = config, .files{requestPath, responsePath, kLineCapacity}};
  if (openFiles(scan.files) < 0) return -1;
  const Step end = scanSections(scan);
  if (closeFiles(scan.files, 0) < 0 || end == Step::REFUSE) return -1;
  if (end == Step::VALUE_LIST) return parseValueListHeader(config, requestPath, scan.form);
  return isComplete(scan) ? 0 : failWith("request is inadequate!!");
}

}  // namespace runner
