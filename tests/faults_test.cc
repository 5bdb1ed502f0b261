#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>

#include "support/case_file.h"
#include "support/failing_calls.h"
#include "support/run_request.h"
#include "text/text_stream.h"

namespace runner {
namespace {

// Each allocation, open, read, write and close of a request fails in turn. Whichever it is, the
// fault is told in the place of a completion line, by the number of its place or as a file that
// cannot be opened, read or written; the test that it hit writes nothing that it would not have
// written otherwise; and the other tests are not disturbed.

// A request and the numbers of its allocations, negative where the test goes on without the memory.
struct Row {
  std::string name;  // of a case file or an example
  std::size_t most;  // that a call moves
  std::set<int> numbers;
};

const Row kEcdsaRecords{
    "ecdsa-p-256-value-list", 2000, {4754, 4755, 4756, 4757, 4758, 4759, -4589}};
const Row kDsaRecords{"dsa-2048-256-value-list", 2000, {3998, 4001, 4006, 4007, -4589}};

std::string requestOf(const Row& row) {
  const std::string request = example(row.name, ".req");
  if (request.empty()) return readCaseFile(RUNNER_CASES "/" + row.name + ".txt")[0].request;
  // A Monte Carlo chain of whole length would take long.
  return row.name.find("-cbc-") == std::string::npos ? request
                                                     : edited(request, "\n1000\n", "\n2\n");
}

// A run that is disturbed, or with a number of INT_MAX none.
struct Run : Outcome {
  Run(const std::string& request, const Fault& fault, int number, std::size_t most)
      : by{.fault = fault, .callsLeft = number, .most = most} {
    static_cast<Outcome&>(*this) = runInProcess(request, CryptEngine::GNUTLS, &by);
  }
  Disturbance by;
};

// lacksOneEnd tells whether a response lacks nothing but the end of what one step wrote.
bool lacksOneEnd(const std::string& response, const Run& whole) {
  return std::ranges::any_of(whole.by.ends, [&](std::size_t end) {
    const std::string rest = whole.response.substr(end - whole.by.ends.front());
    return response.ends_with(rest) &&
           whole.response.starts_with(response.substr(0, response.size() - rest.size()));
  });
}

// isCut tells whether a response has its beginning and its end, and between them no more than one
// passage, of domain parameters that are read to the end, or their empty lines.
bool isCut(const std::string& response, const std::string& whole) {
  const auto front = std::ranges::mismatch(response, whole).in1;
  const auto back =
      std::mismatch(response.rbegin(), response.rend(), whole.rbegin(), whole.rend()).first;
  const std::string left(front, std::max(front, back.base()));
  return response.size() <= whole.size() && (whole.find(left) != std::string::npos ||
                                             left.find_first_not_of('\n') == std::string::npos);
}

bool hasNoOtherLine(const std::string& response, const std::string& whole) {
  const std::string known = "\n" + whole;
  std::istringstream lines(response);
  for (std::string line; std::getline(lines, line);) {
    if (known.find("\n" + line + "\n") == std::string::npos) return false;
  }
  return true;
}

// expectFault expects that a run tells of its fault and has lost nothing but what the fault hit.
// Returns the number that it tells, negative where the test goes on, 0 for a file.
int expectFault(const Run& run, const Run& whole, const Row& row) {
  static const std::regex line(
      "malloc err!! \\((\\d+)\\)\n(?:encoding signature\\(rs\\) failed!!\n)?|"
      "can't (open .*|read .*/request|write .*/response)\n");
  std::smatch told;
  EXPECT_TRUE(std::regex_search(run.console, told, line)) << run.console;
  const int number = told[1].matched ? std::stoi(told[1]) : 0;
  const bool isRead = told[2].str().starts_with("read");
  const bool isWritten = told[2].str().starts_with("write");
  const Call call = run.by.fault.call;
  EXPECT_EQ(isWritten, call == Call::WRITE || call == Call::CLOSE) << run.console;
  EXPECT_TRUE(isRead || call != Call::READ) << run.console;

  const std::string before = told.prefix(), after = told.suffix();
  const auto lost = completions(whole.console) - completions(before + after);
  // The test goes on without this memory. The program's own lines can be lost in whole.
  const bool isSurvived =
      call == Call::ALLOCATE && lost == 0 && (number != 0 || run.response == whole.response);
  // A test whose request ends early may say so.
  EXPECT_TRUE(whole.console.starts_with(before) || isRead) << run.console;
  EXPECT_TRUE(whole.console.ends_with(after)) << run.console;
  EXPECT_TRUE(isSurvived || lost == (run.status < 0 ? completions(whole.console) : 1))
      << run.console;
  // What the last call has read is answered, be it cut.
  if (isRead && row.most < kStreamBlockSize) return number;
  EXPECT_TRUE(isWritten    ? lacksOneEnd(run.response, whole)
              : isSurvived ? hasNoOtherLine(run.response, whole.response)
                           : isCut(run.response, whole.response))
      << run.response;
  return isSurvived ? -number : number;
}

// failEach lets one call after the other go wrong and returns how often each number was told.
std::map<int, int> failEach(const std::string& request, const Row& row, const Fault& fault) {
  std::map<int, int> numbers;
  const bool isReal = fault.call == Call::ALLOCATE || (fault.error != 0 && fault.error != EINTR);
  int harmless = 0;
  const Run whole(request, fault, INT_MAX, row.most);
  for (int number = 1;; ++number) {
    SCOPED_TRACE(testing::Message()
                 << row.name << ", call " << static_cast<int>(fault.call) << " no. " << number
                 << ", error " << fault.error << " after " << fault.moved);
    const Run run(request, fault, number, row.most);
    if (run.by.callsLeft > 0) {
      // An error behind the end of a file, or when all has been moved, does no harm.
      EXPECT_LE(isReal ? harmless : 0, fault.moved == 0 ? 1 : 6);
      return numbers;
    }
    const bool isHarmless = run.console == whole.console && run.response == whole.response;
    if (isHarmless && fault.call != Call::ALLOCATE) {
      ++harmless;
      continue;
    }
    EXPECT_TRUE(isReal);
    ++numbers[expectFault(run, whole, row)];
  }
}

TEST(Faults, AreToldOrHarmless) {
  const Row rows[] = {
      {"aes_encryption", 700, {2097, 2208, 2380, 2444, 2445}},
      {"aes-128-cbc-encryption", 700, {2097, 2208, -2208, 2380, 2444, 2445}},
      {"aes-256-cbc-decryption", 700, {2097, -2208, 2380, 2444, 2445}},
      {"gcm_encryption", 50, {6560, 6576, 6577, 6578, 6579, 6580, 6581}},
      {"aes-256-gcm-decryption", kStreamBlockSize, {6560, 6576, 6577, 6578, 6579, 6580, 6581}},
      {"hmac_messages",
       7000,
       {6004, 6006, 6021, 6031, 6120, 6122, 6151, 6160, 6230, 6296, 6305, 6306}},
      {"sha-256-hash", kStreamBlockSize, {6004, 6021, 6031, 6120, 6151, 6160, 6296, 6305, 6306}},
      {"rsa_verification", 500, {5561, 5600, 5607, 5630, 5666}},
      {"dsa_verification", 500, {4169, 4216, 4223, 4243, 4268, 4589}},
      {"ecdsa_verification", 500, {4947, 4954, 5004, 5010, 5030, 5054, 4589}},
      {"public_keys", 200, {3308, 3315, 3350}},
      kEcdsaRecords,
      kDsaRecords,
  };
  const Fault faults[] = {
      {Call::READ, EIO},     {Call::READ, EIO, 100},     {Call::READ, EINTR},
      {Call::READ, 0, 100},  {Call::READ, EINTR, 100},   {Call::WRITE, ENOSPC},
      {Call::WRITE, EINTR},  {Call::WRITE, EDQUOT, 100}, {Call::CLOSE, EIO},
      {Call::WRITE, 0, 100}, {Call::WRITE, EINTR, 100},  {Call::OPEN, EMFILE},
  };
  for (const Row& row : rows) {
    const std::string request = requestOf(row);
    for (const Fault& fault : faults) failEach(request, row, fault);
    std::set<int> told;
    for (const auto& [number, count] : failEach(request, row, {Call::ALLOCATE}))
      told.insert(number);
    told.erase(0);
    EXPECT_EQ(told, row.numbers) << row.name;
  }
}

TEST(Faults, OfAValueThatGrowsHaveItsNumber) {
  const auto expectOneMore = [](const Row& row, const char* from, const char* to, int number) {
    const std::string request = requestOf(row);
    auto expected = failEach(request, row, {Call::ALLOCATE});
    ++expected[number];
    EXPECT_EQ(failEach(edited(request, from, to), row, {Call::ALLOCATE}), expected);
  };
  expectOneMore(kEcdsaRecords, "Qy = e1", "Qy = 00e1", 4757);
  expectOneMore(kDsaRecords, "R = 59", "R = 0059", 4001);
}

// The calls of the engines fail in turn: the program names the call, or has the number of its
// place. What OpenSSL fails in is seen through `runner-check`.

TEST(EngineCalls, AreToldWhenTheyFail) {
  const auto rows = readTable<4>(RUNNER_CASES "/engine_calls.csv", ',');
  for (const auto& [calls, results, name, told] : rows) {
    SCOPED_TRACE(calls + ": " + told);
    const std::string request = RUNNER_EXAMPLES "/" + name + ".req";
    const std::string command = withEngineCalls(calls, results);
    const bool isGnutls = calls.starts_with("gnutls");
    const Outcome outcome = isGnutls ? runCommand({request, "/dev/null"}, command + RUNNER_BINARY)
                                     : runCommand({request}, command + RUNNER_CHECK_BINARY);
    EXPECT_EQ(outcome.status, isGnutls ? 0 : 1);
    // The last line of `runner-check` has the counts.
    const std::string& console = outcome.console;
    const std::string end = (isGnutls ? "" : ": ") + expanded(told) + "\n";
    const std::string counts = isGnutls ? "" : lastLines(console, 1);
    EXPECT_TRUE(console.ends_with(end + counts)) << console;
  }
}

}  // namespace
}  // namespace runner
