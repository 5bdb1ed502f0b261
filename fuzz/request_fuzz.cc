#include <openssl/err.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "driver/dispatch.h"
#include "driver/request_header.h"
#include "driver/test_config.h"
#include "ec/curve_state.h"
#include "engine_differences.h"
#include "memory_file.h"
#include "request_caps.h"
#include "sig/openssl_error.h"

// A whole request, header and tests, through GnuTLS and through OpenSSL: each test that both
// complete has the same answers, and one that only one completes was refused by the other.

namespace {

using runner::CryptEngine;
using runner::TestConfig;
using runner::fuzz::Console;
using runner::fuzz::EngineRun;
using runner::fuzz::MemoryFile;

struct Files {
  Console console;
  MemoryFile request;
  MemoryFile response;
};

// A test and, where a request has several tests, the end of its section keys.
struct TestMark {
  std::string_view name;
  std::string_view keyEnd;
};
constexpr std::array kTestMarks{
    TestMark{"procKAT_Text", " for KAT-Text]"},
    TestMark{"procKAT_Key", " for KAT-Key]"},
    TestMark{"procKAT_GFSbox", " for KAT-GFSbox]"},
    TestMark{"procKAT_KeySbox", " for KAT-KeySbox]"},
    TestMark{"procMMT", " for MMT]"},
    TestMark{"procMCT", " for MCT]"},
    TestMark{"procSMT", " of SMT]"},
    TestMark{"procSLMT", " of SLMT]"},
    TestMark{"procPGMT", "PGMT]"},
    TestMark{"procAEAD", ""},
    TestMark{"procVerify", ""},
    TestMark{"procChkPublicKey", ""},
};

// resetProcess gives everything that outlives a run its value at the start of the program.
void resetProcess() {
  runner::curveLookupPending = 1;
  runner::curveId = -1;
  runner::namedCurveId = -1;
  runner::lastOpensslError = 0;
  ERR_clear_error();
}

EngineRun runThrough(Files& files, TestConfig config, CryptEngine engine) {
  resetProcess();
  files.response.assign("");
  config.engine = engine;
  runner::runTests(config, files.request.path(), files.response.path());
  return {.engine = engine, .console = files.console.take(), .response = files.response.content()};
}

bool completes(const EngineRun& run, const TestMark& test) {
  const std::string line = std::string(test.name) + " finish normally\n";
  const std::size_t at = run.console.find(line);
  return at == 0 || (at != std::string::npos && run.console[at - 1] == '\n');
}

// answersOf returns the sections that a test wrote. A test that is alone wrote the whole response.
std::string answersOf(const EngineRun& run, const TestMark& test) {
  if (test.keyEnd.empty()) return run.response;
  std::string answers;
  bool isOfTest = false;
  std::string_view rest = run.response;
  while (!rest.empty()) {
    const std::string_view line = rest.substr(0, rest.find('\n'));
    if (line.starts_with('[')) isOfTest = line.ends_with(test.keyEnd);
    if (isOfTest) answers.append(line).append("\n");
    rest.remove_prefix(std::min(line.size() + 1, rest.size()));
  }
  return answers;
}

// Which rows of its tables a request was completed with is no edge of the code: libFuzzer takes
// these counters as further features of an input.
constexpr std::size_t kRowCount = 16384;
__attribute__((section("__libfuzzer_extra_counters"))) std::array<std::uint8_t, kRowCount>
    rowCounters;

void countRows(const TestConfig& config, const TestMark& test, int completions) {
  const auto number = [](auto value) { return static_cast<std::size_t>(value); };
  std::size_t row = number(&test - kTestMarks.data());
  for (const std::size_t part :
       {number(completions), number(config.testFunction), number(config.mode),
        number(config.hashId), number(config.keyLength / 4), number(runner::curveId + 1),
        number(runner::namedCurveId + 1)}) {
    row = row * 31 + part;
  }
  rowCounters[row % kRowCount] = 1;
}

// reportAndAbort ends the process with what the two engines left behind.
[[noreturn]] void reportAndAbort(const TestMark& test, const char* what, const EngineRun& gnutls,
                                 const EngineRun& openssl) {
  std::fprintf(stderr, "%s: %s\n", std::string(test.name).c_str(), what);
  for (const EngineRun* const run : {&gnutls, &openssl}) {
    std::fprintf(stderr, "--- engine %d, console\n%s--- response\n%s",
                 static_cast<int>(run->engine), run->console.c_str(), run->response.c_str());
  }
  std::abort();
}

void compare(const TestConfig& config, const EngineRun& gnutls, const EngineRun& openssl) {
  for (const TestMark& test : kTestMarks) {
    const bool gnutlsCompletes = completes(gnutls, test);
    const bool opensslCompletes = completes(openssl, test);
    if (gnutlsCompletes || opensslCompletes) countRows(config, test, gnutlsCompletes ? 1 : 2);
    if (gnutlsCompletes != opensslCompletes) {
      if (!runner::fuzz::isKnownRefusal(config, gnutlsCompletes ? openssl : gnutls)) {
        reportAndAbort(test, "completed by one engine, not refused by the other", gnutls, openssl);
      }
    } else if (gnutlsCompletes && answersOf(gnutls, test) != answersOf(openssl, test)) {
      if (!runner::fuzz::mayDiffer(config, openssl.response)) {
        reportAndAbort(test, "the answers differ", gnutls, openssl);
      }
    }
  }
}

// runUnsupported takes the request through a whole run with an engine that has no back-end.
void runUnsupported(Files& files, std::size_t size) {
  constexpr int kFirst = static_cast<int>(CryptEngine::HDD);
  constexpr int kKinds = 3;  // two that have a name, and one beyond them
  resetProcess();
  const int engine = kFirst + static_cast<int>(size % kKinds);
  (void)runner::runRequest(files.request.path(), files.response.path(),
                           static_cast<CryptEngine>(engine));
  files.console.take();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static Files files;
  files.request.assign(runner::fuzz::capCounts({reinterpret_cast<const char*>(data), size}));
  // One in four: the two engines are what matters.
  constexpr std::size_t kUnsupportedShare = 4;
  if (size % kUnsupportedShare == 0) runUnsupported(files, size / kUnsupportedShare);
  TestConfig config;
  resetProcess();
  const int parsed =
      runner::parseRequestHeader(config, files.request.path(), files.response.path());
  files.console.take();
  if (parsed < 0) return 0;
  const EngineRun gnutls = runThrough(files, config, CryptEngine::GNUTLS);
  const EngineRun openssl = runThrough(files, config, CryptEngine::OPENSSL);
  compare(config, gnutls, openssl);
  return 0;
}
