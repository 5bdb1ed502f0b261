#include <gtest/gtest.h>

#include <string>

#include "check/child_run.h"
#include "check/console_verdict.h"
#include "check/response_difference.h"
#include "support/run_request.h"

// What `runner-check` makes of the console and of the responses of a run. What it says of requests
// stands with the cases and the commands.

namespace {

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
  const auto run = runner::runInChild([] { return std::printf("%4097d", 0) - 4090; });
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
  for (const auto engine : {runner::CryptEngine::GNUTLS, runner::CryptEngine::OPENSSL}) {
    const auto isSound = [&](const std::string& line) {
      const std::string console = line + "1\nprocVerify finish normally\n";
      return runner::judgeConsole(console, config, engine).fault.empty();
    };
    const auto expectSound = [&](const std::string& text, bool expected) {
      EXPECT_EQ(isSound(text), expected) << text;
      EXPECT_FALSE(isSound(text.substr(1)) || isSound(text.substr(0, text.size() - 1))) << text;
    };
    for (const std::string text :
         {"function    : ", "algorithm   : ", "key length  : ", "hash: ", "request size : ",
          "trial num : ", "message num : ", "curveid: "}) {
      expectSound(text, true);
    }
    for (const std::string text :
         {"KEY", "    COUNT", "  error:", "DSA_verify failed!!(", "ECDSA_verify failed!!(",
          "EC_KEY_set_public_key failed!!", "Unsupported format of a public key!!"}) {
      expectSound(text, engine == runner::CryptEngine::OPENSSL);
    }
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
      {own, own + "A\n", 80, "line 4: GnuTLS nothing, OpenSSL A"},
      {"1\n2\n", "1\n2\n", 80, "line 3: GnuTLS nothing, OpenSSL nothing"},
      {"1\n2\n", "1\n", 80, "line 2: GnuTLS 2, OpenSSL nothing"},
      {"1\n", "1\n2\n", 80, "line 2: GnuTLS nothing, OpenSSL 2"},
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
