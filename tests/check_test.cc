#include <gnutls/gnutls.h>
#include <gtest/gtest.h>
#include <openssl/crypto.h>

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "check/child_run.h"
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

// lastLine returns the line with the counts and the versions of the libraries.
std::string lastLine(const std::string& counts) {
  return counts + "; GnuTLS " + gnutls_check_version(nullptr) + ", OpenSSL " +
         OpenSSL_version(OPENSSL_VERSION_STRING) + "\n";
}

TEST(Check, ConfirmsEveryExample) {
  const TempDir dir;
  std::vector<std::string> arguments = {"-d", dir.file("")};
  const auto names = filesIn(RUNNER_EXAMPLES, ".req");
  std::string expected;
  for (const std::string& name : names) {
    arguments.push_back(RUNNER_EXAMPLES "/" + name + ".req");
    const std::string console = example(name, ".out");
    const std::string tests = console.find("KAT") != std::string::npos   ? "6"
                              : console.find("SMT") != std::string::npos ? "3"
                                                                         : "1";
    expected += arguments.back() + ": " + tests + " of " + tests + " tests, confirmed by OpenSSL\n";
  }
  const Outcome outcome = check(arguments);
  EXPECT_EQ(outcome.status, 0);
  const std::string count = std::to_string(names.size());
  EXPECT_EQ(outcome.console,
            expected + lastLine(count + " requests: " + count + " complete and confirmed, 0 not"));
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
  const std::string keys = example("ecdsa-p-256-public-key-validation", ".req");
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
      {edited(keys, "of Keys]\n8\n[Public Keys]\n04", "of Keys]\n1\n[Public Keys]\n02"),
       "0 of 1 tests: GnuTLS: procChkPublicKey: Unsupported format of a public key!!; OpenSSL: 1 "
       "of "
       "1 tests"},
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
    const bool isSound = report == "no test";
    EXPECT_EQ(outcome.status, isSound ? 0 : 1);
    EXPECT_EQ(outcome.console, path + ": " + report + "\n" +
                                   lastLine(std::string("1 request: 0 complete and confirmed, ") +
                                            (isSound ? "0 not, 1 without test" : "1 not")));
  }
}

TEST(Check, GoesOnAfterAnEngineThatEndsAndAfterWhatIsNoFile) {
  const TempDir dir;
  const std::string none = dir.file("") + ": can't open: not a regular file\n";
  const std::string missing = dir.file("x") + ": can't open: No such file or directory\n";
  const std::pair<std::string, std::string> ends[] = {{"6", "stopped by signal 6"},
                                                      {"3", "ended with exit status 3"}};
  for (const auto& [result, end] : ends) {
    const std::string broken = withEngineCalls("gnutls_hash_init RSA_verify", result);
    const Outcome outcome = runCommand({dir.file(""), dir.file("x"), kHash, kRsa, kAes},
                                       "2>&1 " + broken + RUNNER_CHECK_BINARY);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.console, none + "runner-check: " + none + missing +
                                   "runner-check: " + missing + kHash + ": " + end + "\n" + kRsa +
                                   ": 1 of 1 tests, not confirmed: OpenSSL: " + end + "\n" + kAes +
                                   ": 6 of 6 tests, confirmed by OpenSSL\n" +
                                   lastLine("5 requests: 1 complete and confirmed, 4 not"));
  }
}

TEST(Check, DoesWhatItsCommandLineAsks) {
  const TempDir dir;
  const std::string rsa = readFile(kRsa);
  for (const char* const folder : {"out", "sub"}) {
    std::filesystem::create_directory(dir.file(folder));
  }
  for (const char* const name : {"a.req", "b.rsp", "sub/a.txt"}) writeFile(dir.file(name), rsa);
  const std::string usage = "usage: runner-check [-d DIRECTORY] REQUEST...\n";
  const std::string help = "usage: ...\nthat cannot be opened.\n";
  const std::string version = lastLine("runner-check ..."), cannot = "can't write to ";
  const std::string oneOf = ": 1 of 1 tests, confirmed by OpenSSL";
  const std::string done = oneOf + "\n" + lastLine("1 request: 1 complete and confirmed, 0 not");
  const std::string noScratch = "a.req: can't make a temporary file in /proc\n";
  const std::string blanks = "\r" + std::string(79, ' ') + "\r", us = "runner-check: ";
  const struct {
    std::string command;
    int status;
    std::string console;  // as a pattern
  } rows[] = {
      {"./check", 2, usage},
      {"./check -x a.req", 2, "./check: invalid option -- 'x'\n" + usage},
      {"./check -h", 0, help},
      {"./check --help", 0, help},
      {"./check -V", 0, version},
      {"./check --version", 0, version},
      {"./check -d '' a.req", 2, us + "the name of the directory is empty\n"},
      {"./check -d no a.req", 2, us + cannot + "no: No such file or directory\n"},
      {"./check -d a.req a.req", 2, us + cannot + "a.req: Not a directory\n"},
      {"./check -d /proc a.req", 2, us + cannot + "/proc: ...\n"},
      {"./check -d out a.req sub/a.txt", 2, us + "out/a.rsp would answer a.req and sub/a.txt\n"},
      {"./check -d . b.rsp", 2, us + "the response to b.rsp would overwrite b.rsp\n"},
      {"./check --directory sub a.req", 0, "a.req" + done},
      {"./check --directory=sub a.req", 0, "a.req" + done},
      {"./check -d sub a.req b.rsp >/dev/full", 2, us + cannot + "standard output\n"},
      {"TMPDIR=out ./check a.req", 0, "a.req" + done},
      {"TMPDIR=/none ./check a.req", 0, "a.req" + done},
      {"TMPDIR=/proc ./check a.req", 2,
       noScratch + us + noScratch + lastLine("1 request: 0 complete and confirmed, 1 not")},
      {"script -qc './check a.req' /dev/null", 0,
       blanks + "[1/1] a.req" + blanks + "a.req" + oneOf + "\r\n..."},
  };
  for (const auto& row : rows) {
    const Outcome outcome =
        runCommand({}, "exec 2>&1; cd " + dir.file("") +
                           "; ln -sf " RUNNER_CHECK_BINARY " check; " + row.command);
    EXPECT_EQ(outcome.status, row.status) << row.command;
    EXPECT_EQ(outcome.console, filled(row.console, outcome.console));
  }
  EXPECT_EQ(readFile(dir.file("b.rsp")), rsa);
  EXPECT_TRUE(std::filesystem::is_empty(dir.file("out")));
  EXPECT_EQ(filesIn(dir.file("sub"), ".rsp"), std::vector<std::string>{"a"});
  EXPECT_TRUE(readFile(dir.file("sub/a.rsp")).ends_with(answerOf("rsa-2048-sha-256-verification")));
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
      {"malloc err!! (1)\nb\n" + slmt + pgmt, 1, "procSMT: malloc err!! (1)"},
      {"rr happens!! (1)\nerr happens!! 1\nalloc err!! (1)\nmalloc err! (1)\nb\n" + slmt + pgmt, 2,
       "procSMT: rr happens!! (1)"},
      {"illegal data!! z\nb\n" + slmt + pgmt, 2, "procSMT: illegal data!! z"},
      {"num\nb\n" + slmt + pgmt, 2, "procSMT: num"},
      {"num=1\n" + slmt + pgmt, 2, "procSMT: num=1"},
      {"procSMT finish NORMALLY\n" + slmt + pgmt, 2, "procSMT: procSMT finish NORMALLY"},
      {"a\n" + smt + slmt, 1, "procSMT: a"},
  };
  runner::TestConfig config;
  config.testFunction = runner::TestFunction::HASH;
  for (const auto& row : cases) {
    SCOPED_TRACE(row.text);
    const auto verdict = runner::judgeConsole(row.text, config, runner::CryptEngine::GNUTLS);
    EXPECT_EQ(verdict.sound, row.sound);
    EXPECT_EQ(verdict.fault, row.fault);
  }
  const auto print = [] { return std::printf("%4097d", 0) - 4090; };
  const runner::ChildRun run = runner::runInChild(print);
  EXPECT_EQ(run.console, std::string(4096, ' ') + "0");
  EXPECT_EQ(run.status, 7);
  EXPECT_EQ(runner::headerFault(""), "no line");
  EXPECT_EQ(runner::headerFault("hash: 256\n\nx\n"), "x");
}

// What a run may print besides its completion lines, in whole: what reports a value-list header and
// the curve, and through OpenSSL alone that a key or a signature is scored as not valid.
TEST(Check, KnowsTheLinesOfASoundRun) {
  const runner::TestConfig config{.testFunction = runner::TestFunction::VERIFICATION,
                                  .mode = runner::ModeId::ECDSA,
                                  .flags = runner::FLAG_VALUE_LIST};
  const std::vector<std::string> ofAll = {
      "function    : ",  "algorithm   : ", "key length  : ", "hash: ",
      "request size : ", "trial num : ",   "message num : ", "curveid: "};
  const std::vector<std::string> ofOpenssl = {"KEY",
                                              "    COUNT",
                                              "  error:",
                                              "EC_KEY_set_public_key failed!!",
                                              "Unsupported format of a public key!!",
                                              "DSA_verify failed!!(",
                                              "ECDSA_verify failed!!("};
  for (const auto engine : {runner::CryptEngine::GNUTLS, runner::CryptEngine::OPENSSL}) {
    const auto isSound = [&](const std::string& line) {
      const std::string console = line + "1\nprocVerify finish normally\n";
      return runner::judgeConsole(console, config, engine).fault.empty();
    };
    const auto expectSound = [&](const std::string& text, bool expected) {
      EXPECT_EQ(isSound(text), expected) << text;
      EXPECT_FALSE(isSound(text.substr(1)) || isSound(text.substr(0, text.size() - 1))) << text;
    };
    for (const auto& text : ofAll) expectSound(text, true);
    for (const auto& text : ofOpenssl) expectSound(text, engine == runner::CryptEngine::OPENSSL);
    EXPECT_FALSE(isSound("curveid: -"));
  }
}

// The first three lines of a response are the program's own. What does not fit is cut, and the
// place of the difference stays.
TEST(Check, ShowsThePlaceWhereResponsesDiffer) {
  const std::string digits = "0123456789012345678", own = "1\n2\n3\n";
  const auto placed = [&](std::size_t place, std::size_t size) {
    return own + digits.substr(0, place) + "x" + digits.substr(place + 1, size - place - 1) + "\n";
  };
  const auto plain = [&](std::size_t size) { return own + digits.substr(0, size) + "\n"; };
  const struct {
    std::string first, second;
    std::size_t width;
    std::string shown;
  } cases[] = {
      {own, own, 80, "no difference"},
      {own + "x\n", "a\nb\nc\nx\n", 80, "no difference"},
      {own + "A\n", own + "A", 80, "line 4: GnuTLS A, OpenSSL A(no newline)"},
      {own + "A\n", own, 80, "line 4: GnuTLS A, OpenSSL nothing"},
      {own, own + "A\n", 80, "line 4: GnuTLS nothing, OpenSSL A"},
      {"1\n2\n", "1\n2\n", 80, "line 3: GnuTLS nothing, OpenSSL nothing"},
      {"1\n2\n", "1\n", 80, "line 2: GnuTLS 2, OpenSSL nothing"},
      {plain(12), placed(11, 12), 10, "line 4: GnuTLS 012345678901, OpenSSL 01234567890x"},
      {plain(13), placed(8, 13), 10, "line 4: GnuTLS 012345678..., OpenSSL 01234567x..."},
      {plain(18), placed(9, 18), 10, "line 4: GnuTLS ...901234567, OpenSSL ...x01234567"},
      {plain(19), placed(9, 19), 10, "line 4: GnuTLS ...901234..., OpenSSL ...x01234..."},
      {plain(19), placed(9, 19), 51, "line 4: GnuTLS 0123456789..., OpenSSL 012345678x..."},
  };
  const TempDir dir;
  for (const auto& row : cases) {
    writeFile(dir.file("first"), row.first);
    writeFile(dir.file("second"), row.second);
    const auto difference = runner::findDifference(dir.file("first"), dir.file("second"));
    EXPECT_EQ(difference ? runner::describeDifference(*difference, row.width) : "no difference",
              row.shown);
  }
  EXPECT_EQ(runner::printable("a\x1b[2J\n~\x7f\x80"), "a?[2J?~?\x80");
}

}  // namespace
