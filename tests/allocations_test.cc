#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "support/case_file.h"
#include "support/run_request.h"

// Every allocation of a request fails in turn. Whichever it is, the fault is told, by the number of
// its place or as a file that cannot be opened or read; the test that it hit writes nothing that it
// would not have written otherwise and has no completion line; and the other tests are not
// disturbed.

namespace {

// The aligned allocator of this process fails once, after so many further allocations.
constexpr int kNever = -1;
int successesLeft = kNever;

}  // namespace

// The linker gives these names to the wrapped function and to the real one.
// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
extern "C" {

void* __real_aligned_alloc(std::size_t alignment, std::size_t size);

void* __wrap_aligned_alloc(std::size_t alignment, std::size_t size) {
  if (successesLeft >= 0 && successesLeft-- == 0) return nullptr;
  return __real_aligned_alloc(alignment, size);
}
}
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)

namespace {

using Lines = std::vector<std::string>;

Lines linesOf(const std::string& text) {
  Lines lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

// isCut tells whether `part` is `whole` without one passage, of which at most `kept` lines are
// left.
bool isCut(const Lines& part, const Lines& whole, std::size_t kept) {
  const auto front = std::ranges::mismatch(part, whole).in1;
  const auto back = std::mismatch(part.rbegin(), part.rend(), whole.rbegin(), whole.rend()).first;
  const Lines left(front, std::max(front, back.base()));
  const auto isKnown = [&](const auto& line) { return std::ranges::count(whole, line) > 0; };
  return part.size() <= whole.size() && left.size() <= kept && std::ranges::all_of(left, isKnown);
}

std::ptrdiff_t finishedTests(const Lines& console) {
  return std::ranges::count_if(
      console, [](const std::string& line) { return line.ends_with(" finish normally"); });
}

// Row is a request and the numbers of its allocations. After `survived` its test goes on.
struct Row {
  const char* name;  // of a case file or an example
  std::set<int> numbers;
  int survived = 0;
};

constexpr int kUnopened = -1;
constexpr int kUnread = -2;

// faultOf returns the number of the allocation that a console tells of, or that a file could not be
// opened or read, and takes from the console what is said of it.
int faultOf(std::string& console) {
  static const std::regex fault("(malloc err!! \\((\\d+)\\)|can't (open|read) .*)\n");
  std::smatch match;
  EXPECT_TRUE(std::regex_search(console, match, fault)) << console;
  const int number = match[2].matched     ? std::stoi(match[2])
                     : match[3] == "open" ? kUnopened
                                          : kUnread;
  const std::string consequence = number == 4589 ? "encoding signature(rs) failed!!\n" : "";
  console = edited(console, match[0].str() + consequence, "");
  return number;
}

void expectOnlyLoss(const Outcome& outcome, const Outcome& whole, bool isUnread, bool isSurvived) {
  const Lines console = linesOf(outcome.console), wholeConsole = linesOf(whole.console);
  const auto expected = finishedTests(wholeConsole) - (isSurvived ? 0 : 1);
  EXPECT_EQ(finishedTests(console), outcome.status < 0 ? 0 : expected);
  // A file that cannot be read ends early for its test, which may say so and write what it has.
  if (isUnread) return;
  EXPECT_TRUE(isCut(console, wholeConsole, 0)) << outcome.console;
  // Domain parameters are read to the end, as is all of a test that goes on.
  const std::size_t kept = isSurvived ? 20 : 5;
  EXPECT_TRUE(isCut(linesOf(outcome.response), linesOf(whole.response), kept)) << outcome.response;
}

// failEach lets one allocation after the other fail and returns how often each number was told.
std::map<int, int> failEach(const std::string& request, const Row& row) {
  std::map<int, int> numbers;
  const Outcome whole = runInProcess(request);
  for (int i = 0;; ++i) {
    SCOPED_TRACE(std::string(row.name) + ", allocation " + std::to_string(i));
    successesLeft = i;
    Outcome outcome = runInProcess(request);
    if (std::exchange(successesLeft, kNever) != kNever) return numbers;
    const int fault = faultOf(outcome.console);
    expectOnlyLoss(outcome, whole, fault == kUnread, fault == row.survived);
    if (fault > 0) ++numbers[fault];
  }
}

std::string requestOf(const Row& row) {
  const std::string request = example(row.name, ".req");
  return request.empty()
             ? readCaseFile(RUNNER_CASES "/" + std::string(row.name) + ".txt").at(0).request
             : request;
}

const Row kEcdsaRecords = {
    "ecdsa-p-256-value-list", {4754, 4755, 4756, 4757, 4758, 4759, 4589}, 4589};
const Row kDsaRecords = {"dsa-2048-256-value-list", {3998, 4001, 4006, 4007, 4589}, 4589};

TEST(Allocations, AreToldWhenTheyFail) {
  const Row rows[] = {
      {"aes_encryption", {2097, 2208, 2380, 2444, 2445}},
      {"aes-256-cbc-decryption", {2097, 2208, 2380, 2444, 2445}, 2208},
      {"gcm_encryption", {6560, 6576, 6577, 6578, 6579, 6580, 6581}},
      {"gcm_decryption", {6560, 6576, 6577, 6578, 6579, 6580, 6581}},
      {"hmac_messages", {6004, 6006, 6021, 6031, 6120, 6122, 6151, 6160, 6230, 6296, 6305, 6306}},
      {"sha-256-hash", {6004, 6021, 6031, 6120, 6151, 6160, 6296, 6305, 6306}},
      {"rsa_verification", {5561, 5600, 5607, 5630, 5666}},
      {"dsa_verification", {4169, 4216, 4223, 4243, 4268, 4589}},
      {"ecdsa_verification", {4947, 4954, 5004, 5010, 5030, 5054, 4589}},
      {"public_keys", {3308, 3315, 3350}},
      kEcdsaRecords,
      kDsaRecords,
  };
  for (const Row& row : rows) {
    std::set<int> told;
    for (const auto& [number, count] : failEach(requestOf(row), row)) told.insert(number);
    EXPECT_EQ(told, row.numbers) << row.name;
  }
}

TEST(Allocations, OfAValueThatGrowsHaveItsNumber) {
  const struct {
    const Row& request;
    const char* from;
    const char* to;
    int number;
  } rows[] = {
      {kEcdsaRecords, "Qy = e1", "Qy = 00e1", 4757},
      {kDsaRecords, "R = 59", "R = 0059", 4001},
  };
  for (const auto& row : rows) {
    const std::string request = requestOf(row.request);
    const auto before = failEach(request, row.request);
    auto expected = before;
    ++expected[row.number];
    EXPECT_EQ(failEach(edited(request, row.from, row.to), row.request), expected) << row.number;
  }
}

}  // namespace
