#include "driver/value_list_header.h"

#include <array>
#include <cstddef>
#include <cstdio>
#include <optional>
#include <span>
#include <string_view>

#include "ec/curve_table.h"
#include "text/diagnostics.h"
#include "text/test_files.h"
#include "text/text_helpers.h"
#include "text/text_stream.h"

namespace runner {
namespace {

constexpr std::size_t kLineCapacity = 48;
constexpr std::size_t kValueCapacity = 8;

// What a header line can say. A form needs every item that its lines can have.
enum class Item : unsigned {
  DRBG,
  VERIFICATION,
  CIPHER,
  STRENGTH,
  CURVE,
  PARAMETER_SET,
  MODULUS_LENGTH,
  SUBGROUP_LENGTH,
  HASH,
  HASH_AND_DIGEST_LENGTH,
};

constexpr unsigned bitOf(Item item) { return 1U << static_cast<unsigned>(item); }

// With a "?", `text` is a pattern for getStr, and the item's number is the value found. Without
// one, the line begins with `text`, and `number` is the item's number, if it has one.
struct ItemLine {
  Item item;
  std::string_view text;
  int number = 0;
};

constexpr std::array<ItemLine, 5> kDrbgLines{{
    {Item::DRBG, kDrbgRequestKey},
    {Item::CIPHER, "[UnderlyingAlgorithm = AES-256]", 256},
    {Item::CIPHER, "[UnderlyingAlgorithm = AES-128]", 128},
    {Item::STRENGTH, "[SecurityStrength = 256]", 256},
    {Item::STRENGTH, "[SecurityStrength = 128]", 128},
}};

constexpr std::array<ItemLine, 3> kEcdsaLines{{
    {Item::VERIFICATION, kSignatureRequestKey},
    {Item::CURVE, "Curve = P-?"},
    {Item::HASH_AND_DIGEST_LENGTH, "HashAlgorithm = SHA-?"},
}};

constexpr std::array<ItemLine, 5> kFfcLines{{
    {Item::VERIFICATION, kSignatureRequestKey},
    {Item::PARAMETER_SET, "[FFCDomainParameterSizeSet = "},
    {Item::MODULUS_LENGTH, "[L = ?"},
    {Item::SUBGROUP_LENGTH, "[N = ?"},
    {Item::HASH, "HashAlgorithm = SHA-?"},
}};

// The lines of a form: those of its items, in the order in which each line is tried, and the two
// that come after them.
struct Form {
  std::span<const ItemLine> items;
  const char* messageLength;
  const char* count;
  const char* countName;
};

// By ValueListForm.
constexpr std::array<Form, 3> kForms{{
    {kDrbgLines, "RequestedNumberOfBits = ?", "NumberOfTrials = ?", "trial num"},
    {kEcdsaLines, "BitLengthOfMessage = ?", "NumberOfMessages = ?", "message num"},
    {kFfcLines, "BitLengthOfMessage = ?", "NumberOfMessages = ?", "message num"},
}};

static_assert(kForms.size() == static_cast<std::size_t>(ValueListForm::FFC) + 1);

std::optional<int> findNumber(std::string_view line, std::string_view pattern) {
  std::array<char, kValueCapacity> value{};
  if (getStr(line, pattern, value) == 0) return std::nullopt;
  return decimal(value.data());
}

// findItem returns the number of the item if `line` has it.
std::optional<int> findItem(std::string_view line, const ItemLine& row) {
  if (row.text.ends_with('?')) return findNumber(line, row.text);
  if (!line.starts_with(row.text)) return std::nullopt;
  return row.number;
}

bool setCurve(TestConfig& config, int number) {
  config.mode = ModeId::ECDSA;
  for (const CurveParams& curve : curveTable) {
    if (decimal(std::string_view(curve.name).substr(2)) != number) continue;
    config.curveName = curve.name;
    return true;
  }
  failWith("Unsupported curve!!");
  return false;
}

const HashProperties* setHash(TestConfig& config, int number) {
  std::printf("hash: %d\n", number);
  for (const HashProperties& hash : kHashTable) {
    if (hash.number != number) continue;
    config.hashId = hash.id;
    return &hash;
  }
  failWith("Unsupported hash algorithm!!");
  return nullptr;
}

// setItem takes over an item and reports it. Returns false when its number is not supported; the
// item then counts as missing.
bool setItem(TestConfig& config, Item item, int number) {
  switch (item) {
    case Item::DRBG:
      config.testFunction = TestFunction::DRBG;
      std::printf("function    : DRBG\n");
      return true;
    case Item::VERIFICATION:
      config.testFunction = TestFunction::VERIFICATION;
      std::printf("function    : Verification\n");
      return true;
    case Item::CIPHER:
      config.mode = ModeId::ECB;
      std::printf("algorithm   : AES-%d\n", number);
      return true;
    case Item::STRENGTH:
      config.keyLength = number / 8;
      std::printf("key length  : %d\n", number);
      return true;
    case Item::CURVE:
      return setCurve(config, number);
    case Item::PARAMETER_SET:
      config.mode = ModeId::DSA;
      return true;
    case Item::MODULUS_LENGTH:
      config.keyLength = number / 8;
      return true;
    case Item::SUBGROUP_LENGTH:
      config.subgroupLength = number / 8;
      return true;
    case Item::HASH:
      return setHash(config, number) != nullptr;
    case Item::HASH_AND_DIGEST_LENGTH: {
      const HashProperties* const hash = setHash(config, number);
      if (hash != nullptr) config.keyLength = hash->digestLength;
      return hash != nullptr;
    }
  }
  return false;
}

// readItems reads lines until all items have been seen. Returns false when the file ends first.
bool readItems(TestConfig& config, TextReader& request, std::span<const ItemLine> rows) {
  unsigned missing = 0;
  for (const ItemLine& row : rows) missing |= bitOf(row.item);
  while (missing != 0) {
    const auto line = request.readLine(kLineCapacity);
    if (!line) return false;
    for (const ItemLine& row : rows) {
      const auto number = findItem(*line, row);
      if (!number) continue;
      if (setItem(config, row.item, *number)) {
        missing &= ~bitOf(row.item);
      } else {
        missing |= bitOf(row.item);
      }
    }
  }
  return true;
}

// scanForNumber reads lines until one has the value of `pattern`; nothing when the file ends first.
std::optional<int> scanForNumber(TextReader& request, const char* pattern) {
  while (const auto line = request.readLine(kLineCapacity)) {
    if (const auto number = findNumber(*line, pattern)) return number;
  }
  return std::nullopt;
}

// readHeader returns false when the file ends before the header is complete.
bool readHeader(TestConfig& config, TextReader& request, const Form& form) {
  if (!readItems(config, request, form.items)) return false;
  const auto bits = scanForNumber(request, form.messageLength);
  if (!bits) return false;
  config.messageLength = *bits / 8;
  std::printf("request size : %d\n", config.messageLength);
  const auto count = scanForNumber(request, form.count);
  if (!count) return false;
  config.count = *count;
  std::printf("%s : %d\n", form.countName, config.count);
  return true;
}

}  // namespace

int parseValueListHeader(TestConfig& config, const char* requestPath, ValueListForm form) {
  TextReader request;
  if (!request.open(requestPath)) return failOpening(requestPath);
  const bool complete = readHeader(config, request, kForms[static_cast<std::size_t>(form)]);
  if (closeRead(request, requestPath) < 0) return -1;
  return complete ? 0 : failWith("request is inadequate!!");
}

}  // namespace runner
