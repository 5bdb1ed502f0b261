#include "check/console_verdict.h"

#include <algorithm>
#include <array>
#include <optional>
#include <span>
#include <vector>

namespace runner {
namespace {

using Lines = std::vector<std::string_view>;

constexpr std::array<std::string_view, 6> kCipherTests{
    "procKAT_Text", "procKAT_Key", "procKAT_GFSbox", "procKAT_KeySbox", "procMMT", "procMCT"};
constexpr std::array<std::string_view, 3> kHashTests{"procSMT", "procSLMT", "procPGMT"};
constexpr std::array<std::string_view, 1> kAeadTests{"procAEAD"};
constexpr std::array<std::string_view, 1> kKeyTests{"procChkPublicKey"};
constexpr std::array<std::string_view, 1> kSignatureTests{"procVerify"};

// testsOf returns the tests that a request with this header runs, in their order.
std::span<const std::string_view> testsOf(const TestConfig& config) {
  switch (config.testFunction) {
    case TestFunction::ENCRYPTION:
    case TestFunction::DECRYPTION:
      return kCipherTests;
    case TestFunction::AEAD_ENCRYPTION:
    case TestFunction::AEAD_DECRYPTION:
      return kAeadTests;
    case TestFunction::HASH:
    case TestFunction::MAC:
      return kHashTests;
    case TestFunction::PUBLIC_KEY_VALIDATION:
      return kKeyTests;
    case TestFunction::VERIFICATION:
      return kSignatureTests;
    case TestFunction::KEY_GENERATION:
    case TestFunction::SIGN:
    case TestFunction::DRBG:
      break;
  }
  return {};
}

constexpr std::array<std::string_view, 7> kHeaderItems{
    "function    : ",  "algorithm   : ", "key length  : ", "hash: ",
    "request size : ", "trial num : ",   "message num : "};

// What OpenSSL's back-ends print of a key or a signature that they score as not valid.
constexpr std::array<std::string_view, 7> kOpensslRefusals{"KEY",
                                                           "    COUNT",
                                                           "  error:",
                                                           "EC_KEY_set_public_key failed!!",
                                                           "Unsupported format of a public key!!",
                                                           "DSA_verify failed!!(",
                                                           "ECDSA_verify failed!!("};

bool beginsWithOneOf(std::string_view line, std::span<const std::string_view> texts) {
  return std::ranges::any_of(texts, [&](auto text) { return line.starts_with(text); });
}

// isSoundLine tells the lines that a sound run may have beside its completion lines.
bool isSoundLine(std::string_view line, const TestConfig& config, CryptEngine engine) {
  if ((config.flags & FLAG_VALUE_LIST) != 0 && beginsWithOneOf(line, kHeaderItems)) return true;
  if (engine == CryptEngine::OPENSSL && beginsWithOneOf(line, kOpensslRefusals)) return true;
  // The number of a known curve has no sign.
  return config.mode == ModeId::ECDSA && line.starts_with("curveid: ") &&
         !line.starts_with("curveid: -");
}

bool isNumbered(std::string_view line) {
  return line.find("err happens!! (") != std::string_view::npos || line.starts_with("malloc err!!");
}

// isExcerpt tells the lines that show what is not hexadecimal; a numbered line follows them.
bool isExcerpt(std::string_view line) {
  return line.empty() || line == ")" || line.starts_with("illegal data!! (") ||
         line.starts_with("num=");
}

Lines splitLines(std::string_view text) {
  Lines lines;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    lines.push_back(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return lines;
}

// firstTelling returns the line that is shown of several; they are not none.
std::string_view firstTelling(const Lines& lines) {
  const auto found = std::ranges::find_if_not(lines, isExcerpt);
  return found == lines.end() ? lines.front() : *found;
}

std::string faultOf(std::string_view test, const Lines& lines) {
  const std::string_view shown = lines.empty() ? "no completion line" : firstTelling(lines);
  return std::string(test).append(": ").append(shown);
}

// findCompleted returns the test from `next` on that `line` reports as completed.
std::optional<std::size_t> findCompleted(std::string_view line,
                                         std::span<const std::string_view> tests,
                                         std::size_t next) {
  constexpr std::string_view kFinished = " finish normally";
  if (!line.ends_with(kFinished)) return std::nullopt;
  line.remove_suffix(kFinished.size());
  const auto found =
      std::find(tests.begin() + static_cast<std::ptrdiff_t>(next), tests.end(), line);
  if (found == tests.end()) return std::nullopt;
  return static_cast<std::size_t>(found - tests.begin());
}

// isSound judges the test whose completion line follows `lines`, where the lines of `missing`
// tests that did not complete stand too: a test that fails ends with its failure number.
bool isSound(const Lines& lines, std::size_t missing) {
  for (const std::string_view line : lines) {
    if (missing == 0) return false;
    if (isNumbered(line)) --missing;
  }
  return true;
}

}  // namespace

ConsoleVerdict judgeConsole(std::string_view console, const TestConfig& config,
                            CryptEngine engine) {
  const std::span<const std::string_view> tests = testsOf(config);
  ConsoleVerdict verdict;
  verdict.total = tests.size();
  std::size_t next = 0;
  Lines others;  // since the last completion line
  for (const std::string_view line : splitLines(console)) {
    if (isSoundLine(line, config, engine)) continue;
    const auto completed = findCompleted(line, tests, next);
    if (!completed) {
      others.push_back(line);
      continue;
    }
    const std::size_t missing = *completed - next;
    if (verdict.fault.empty() && (missing > 0 || !others.empty())) {
      verdict.fault = faultOf(tests[next], others);
    }
    if (isSound(others, missing)) ++verdict.sound;
    others.clear();
    next = *completed + 1;
  }
  if (!verdict.fault.empty()) return verdict;
  if (next < verdict.total) {
    verdict.fault = faultOf(tests[next], others);
  } else if (!others.empty()) {
    verdict.fault = firstTelling(others);
  }
  return verdict;
}

std::string headerFault(std::string_view console) {
  for (const std::string_view line : splitLines(console)) {
    if (!line.empty() && !beginsWithOneOf(line, kHeaderItems)) return std::string(line);
  }
  return "no line";
}

}  // namespace runner
