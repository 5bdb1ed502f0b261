#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "check/console_verdict.h"
#include "check/response_difference.h"
#include "support/run_request.h"

// The command `runner-check`: what it says of requests whose outcome is known, its exit statuses,
// and that neither an engine that aborts nor a wrong command line costs a request or a response.

namespace {

const std::string kHash = RUNNER_EXAMPLES "/sha-256-hash.req";
const std::string kRsa = RUNNER_EXAMPLES "/rsa-2048-sha-256-verification.req";
const std::string kAes = RUNNER_EXAMPLES "/aes-128-cbc-encryption.req";

// check runs the built program; both its outputs count as its console.
Outcome check(const std::vector<std::string>& arguments) {
  return runCommand(arguments, "2>&1 " RUNNER_CHECK_BINARY);
}

// reports returns all lines but the last, which has the counts.
std::string reports(const Outcome& outcome) {
  const std::string& console = outcome.console;
  return console.substr(0, console.size() - lastLines(console, 1).size());
}

TEST(Check, ConfirmsEveryExample) {
  const TempDir dir;
  std::vector<std::string> arguments = {"-d", dir.file("")};
  const auto names = filesIn(RUNNER_EXAMPLES, ".req");
  std::string expected;
  for (const std::string& name : names) {
    arguments.push_back(RUNNER_EXAMPLES "/" + name + ".req");
    const std::string console = exampleConsole(name);
    const char* const tests = console.find("KAT") != std::string::npos   ? "6 of 6"
                              : console.find("SMT") != std::string::npos ? "3 of 3"
                                                                         : "1 of 1";
    expected += arguments.back() + ": " + tests + " tests, confirmed by OpenSSL\n";
  }
  const Outcome outcome = check(arguments);
  EXPECT_EQ(outcome.status, 0);
  const std::string count = std::to_string(names.size());
  expected += count + " requests: " + count + " complete and confirmed, 0 not; GnuTLS ...\n";
  EXPECT_EQ(filled(expected, outcome.console), outcome.console);
  for (const std::string& name : names) {
    EXPECT_EQ(fromHere(readFile(dir.file(name + ".rsp")), "\n#\n"), "\n#\n" + answerOf(name));
  }
}

TEST(Check, SaysWhatIsWrongWithARequest) {
  const std::string aes = readFile(kAes);
  // The second signature of the DSA example verifies; zero bytes before r and s do not change them.
  const std::string dsa = example("dsa-2048-256-sha-256-verification", ".req");
  const std::string second = dsa.substr(dsa.find('\n', dsa.find("[Signatures]") + 13) + 1, 128);
  const std::string padded = "0000" + second.substr(0, 64) + "0000" + second.substr(64);
  const std::string drbg =
      "[AlgorithmName = CTR_DRBG no df]\n[UnderlyingAlgorithm = AES-128]\n"
      "[SecurityStrength = 128]\n[RequestedNumberOfBits = 512]\n[NumberOfTrials = 1]\n";
  const std::pair<std::string, std::string> cases[] = {
      {edited(aes, "KAT-Key]\n8", "KAT-Key]\nO"),
       "5 of 6 tests: procKAT_Key: err happens!! (2215)"},
      {edited(aes, "Outer-loop for MCT]\n", "Outer-loop for MCT]\n-"),
       "5 of 6 tests: procMCT: no completion line"},
      {edited(aes, "[Bitlength of Key]", ""), "header: request is inadequate!!"},
      {edited(aes, "CBC", "ECB"),
       "0 of 6 tests: GnuTLS: procKAT_Text: not supported!!; OpenSSL: 6 of 6 tests"},
      {edited(edited(aes, "KAT-Key]\n8", "KAT-Key]\nO"), "CBC", "ECB"),
       "0 of 6 tests: GnuTLS: procKAT_Text: not supported!!; OpenSSL: 5 of 6 tests: procKAT_Key: "
       "err happens!! (2215)"},
      {edited(dsa, second, padded), "1 of 1 tests, not confirmed: line 45: GnuTLS 0, OpenSSL 1"},
      {drbg, "no test"},
      {edited(drbg, "[NumberOf", "[NumberOfTrials = 12345678]\n[NumberOf"),
       "no test: [ERR]getStr: not enough buffer!!"},
  };
  const TempDir dir;
  const std::string path = dir.file("a.req");
  for (const auto& [request, report] : cases) {
    SCOPED_TRACE(report);
    writeFile(path, request);
    const Outcome outcome = check({path});
    EXPECT_EQ(outcome.status, report == "no test" ? 0 : 1);
    EXPECT_EQ(reports(outcome), path + ": " + report + "\n");
  }
}

TEST(Check, GoesOnAfterAnEngineThatAbortsAndAfterWhatIsNoFile) {
  const TempDir dir;
  const std::string none = dir.file("") + ": can't open: not a regular file\n";
  const std::string broken = withEngineCalls("gnutls_hash_init RSA_verify", "6");  // SIGABRT
  const Outcome outcome =
      runCommand({dir.file(""), kHash, kRsa, kAes}, "2>&1 " + broken + RUNNER_CHECK_BINARY);
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(reports(outcome), none + "runner-check: " + none + kHash + ": stopped by signal 6\n" +
                                  kRsa +
                                  ": 1 of 1 tests, not confirmed: OpenSSL: stopped by signal 6\n" +
                                  kAes + ": 6 of 6 tests, confirmed by OpenSSL\n");
  EXPECT_TRUE(outcome.console.find("\n4 requests: 1 complete and confirmed, 3 not; ") !=
              std::string::npos);
}

TEST(Check, RefusesWhatItCannotDoBeforeAnythingRuns) {
  const TempDir dir;
  const TempDir other;
  const std::string request = dir.file("a.req");
  const std::string sameName = other.file("a.txt");
  const std::string response = dir.file("a.rsp");
  for (const std::string& path : {request, sameName}) writeFile(path, readFile(kRsa));
  const std::string options[] = {dir.file("missing"), request, "/proc", ""};
  std::vector<std::vector<std::string>> commandLines = {
      {}, {"-x", request}, {"-d", dir.file(""), request, sameName}};
  for (const std::string& option : options) commandLines.push_back({"-d", option, request});
  for (const std::vector<std::string>& arguments : commandLines) {
    const Outcome outcome = check(arguments);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.console.find("tests"), std::string::npos) << outcome.console;
    EXPECT_EQ(readFile(response), "");
  }
  writeFile(response, readFile(kRsa));
  EXPECT_EQ(check({"-d", dir.file("."), response}).status, 2);
  EXPECT_EQ(readFile(response), readFile(kRsa));
}

TEST(Check, TellsWhatItIsAsked) {
  const Outcome help = check({"-h"}), version = check({"--version"});
  EXPECT_TRUE(help.console.starts_with("usage: runner-check [-d DIRECTORY] REQUEST...\nRun each"));
  EXPECT_EQ(filled("runner-check ...", version.console), version.console);
  EXPECT_EQ(help.status + version.status, 0);
  const Outcome unwritten = runCommand({kRsa}, "2>&1 >/dev/full " RUNNER_CHECK_BINARY);
  EXPECT_EQ(unwritten.status, 2);
  EXPECT_EQ(unwritten.console, "runner-check: can't write to standard output\n");
  EXPECT_EQ(runCommand({kRsa}, "TMPDIR=/none " RUNNER_CHECK_BINARY).status, 0);
  const Outcome withoutScratch = runCommand({kRsa}, "TMPDIR=/proc " RUNNER_CHECK_BINARY);
  EXPECT_EQ(withoutScratch.status, 2);
  EXPECT_EQ(reports(withoutScratch), kRsa + ": can't make a temporary file in /proc\n");
}

TEST(Check, TakesNoOtherLineForASoundOne) {
  const std::string smt = "procSMT finish normally\n";
  const std::string slmt = "procSLMT finish normally\n";
  const std::string pgmt = "procPGMT finish normally\n";
  const struct {
    std::string text;
    std::size_t sound;
    std::string fault;
  } cases[] = {
      {smt + pgmt, 2, "procSLMT: no completion line"},
      {smt + smt + slmt + pgmt, 2, "procSLMT: procSMT finish normally"},
      {slmt + smt + pgmt, 1, "procSMT: no completion line"},
      {smt + slmt + pgmt + "x\n", 3, "x"},
      {smt + slmt + pgmt.substr(1), 2, "procPGMT: rocPGMT finish normally"},
      {"curveid: 2\n" + smt + slmt + pgmt, 2, "procSMT: curveid: 2"},
      {"hash: 1\n" + smt + slmt + pgmt, 2, "procSMT: hash: 1"},
      {"\nillegal data!! (z\n)\nnum=1, i=0, j=0\nerr happens!! (1)\n" + slmt + pgmt, 2,
       "procSMT: err happens!! (1)"},
      {"a\nerr happens!! (1)\nb\n" + slmt + pgmt, 1, "procSMT: a"},
      {"a\nerr happens!! (1)\nb\nerr happens!! (2)\n" + pgmt, 1, "procSMT: a"},
  };
  runner::TestConfig config;
  config.testFunction = runner::TestFunction::HASH;
  for (const auto& row : cases) {
    SCOPED_TRACE(row.text);
    const auto verdict = runner::judgeConsole(row.text, config, runner::CryptEngine::GNUTLS);
    EXPECT_EQ(verdict.sound, row.sound);
    EXPECT_EQ(verdict.fault, row.fault);
  }
  EXPECT_EQ(runner::headerFault(""), "no line");
  EXPECT_EQ(runner::headerFault("hash: 256\n\nx\n"), "x");
}

TEST(Check, ShowsThePlaceWhereLongLinesDiffer) {
  const std::string zeros(500, '0');
  const std::string start = "line 7: GnuTLS ";
  const auto describe = [&](const std::string& text, const std::string& otherText) {
    return runner::describeDifference({7, text, otherText}, 65);
  };
  EXPECT_EQ(describe("A" + zeros, "B" + zeros),
            start + "A0000000000000000..., OpenSSL B0000000000000000...");
  EXPECT_EQ(describe(zeros + "A", zeros + "B"), start + "...A, OpenSSL ...B");
  EXPECT_EQ(describe(zeros + "A" + zeros, zeros), start + "...A0000000000000..., OpenSSL ...");
  EXPECT_EQ(runner::describeDifference({7, "A", std::nullopt}, 65), start + "A, OpenSSL nothing");
  const TempDir dir;
  writeFile(dir.file("a"), "1\n2\n3\nA\n");
  writeFile(dir.file("b"), "1\n2\n3\nA");
  const auto difference = runner::findDifference(dir.file("a"), dir.file("b"));
  EXPECT_EQ(runner::describeDifference(difference.value(), 80),
            "line 4: GnuTLS A, OpenSSL A(no newline)");
  EXPECT_EQ(runner::printable("a\x1b[2J\n\xc3\xa9"), "a?[2J?\xc3\xa9");
}

}  // namespace
