#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "support/case_file.h"
#include "support/failing_allocator.h"
#include "support/run_request.h"

// Every allocation of a request fails in turn. Whichever it is, the fault is told, by the number of
// its place or as a file that cannot be opened or read; the test that it hit writes nothing that it
// would not have written otherwise and has no completion line; and the other tests are not
// disturbed.

namespace {

using Lines = std::vector<std::string>;

Lines linesOf(const std::string& text) {
  Lines lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

// isThinned tells whether `part` is `whole` with lines left out.
bool isThinned(const Lines& part, const Lines& whole) {
  auto next = whole.begin();
  return std::ranges::all_of(part, [&](const std::string& line) {
    next = std::find(next, whole.end(), line);
    return next != whole.end() && next++ != whole.end();
  });
}

// finishedTests returns the names of the tests that have a completion line, as section keys end.
std::set<std::string> finishedTests(const Lines& console) {
  std::set<std::string> names;
  for (const std::string& line : console) {
    static const std::regex completion("proc(\\w+) finish normally");
    std::smatch match;
    if (!std::regex_match(line, match, completion)) continue;
    std::string name = match[1];
    std::ranges::replace(name, '_', '-');
    names.insert(" " + name + "]");
  }
  return names;
}

// sectionsOf returns the sections of a response whose keys have this end.
Lines sectionsOf(const Lines& response, const std::string& end) {
  bool isInside = false;
  Lines lines;
  std::ranges::copy_if(response, std::back_inserter(lines), [&](const std::string& line) {
    if (line.starts_with('[')) isInside = line.ends_with(end);
    return isInside;
  });
  return lines;
}

// Row is a request and the numbers of its allocations. After `survived` its test goes on.
struct Row {
  const char* name;  // of a case file or an example
  std::set<int> numbers;
  int survived = 0;
};

constexpr int kUnopened = 0;
constexpr int kUnread = -1;

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

void expectOnlyLoss(const Outcome& outcome, const Outcome& whole, int fault, int survived) {
  const bool isSurvived = fault > 0 && fault == survived;
  const Lines console = linesOf(outcome.console), wholeConsole = linesOf(whole.console);
  Lines left = linesOf(outcome.response), answers = linesOf(whole.response);
  // A signature that cannot be encoded counts as one that is not good.
  if (isSurvived) std::ranges::replace(answers, "Result = P", std::string("Result = F"));
  if (isSurvived) std::ranges::replace(left, "Result = P", std::string("Result = F"));
  // A file that cannot be read ends early for its test, which may say so and write what it has.
  if (fault != kUnread) {
    EXPECT_TRUE(isThinned(console, wholeConsole)) << outcome.console;
    EXPECT_TRUE(isThinned(left, answers)) << outcome.response;
  }
  const auto finished = finishedTests(console);
  const std::size_t losses = outcome.status < 0 ? finishedTests(wholeConsole).size() : 1;
  EXPECT_EQ(finished.size() + (isSurvived ? 0 : losses), finishedTests(wholeConsole).size());
  if (isSurvived) return;
  for (const std::string& name : finished) {
    EXPECT_EQ(sectionsOf(left, name), sectionsOf(answers, name)) << name;
  }
}

// failEach lets one allocation after the other fail and returns how often each number was told.
std::map<int, int> failEach(const std::string& request, const Row& row) {
  std::map<int, int> numbers;
  const Outcome whole = runInProcess(request);
  for (int i = 0;; ++i) {
    SCOPED_TRACE(std::string(row.name) + ", allocation " + std::to_string(i));
    const FailingAllocator failing(i);
    Outcome outcome = runInProcess(request);
    if (!failing.hasFailed()) return numbers;
    const int fault = faultOf(outcome.console);
    expectOnlyLoss(outcome, whole, fault, row.survived);
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
