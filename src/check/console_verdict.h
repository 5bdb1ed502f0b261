#ifndef RUNNER_CHECK_CONSOLE_VERDICT_H_
#define RUNNER_CHECK_CONSOLE_VERDICT_H_

#include <cstddef>
#include <string>
#include <string_view>

#include "driver/test_config.h"

namespace runner {

// ConsoleVerdict is what the console of a run shows. The run is complete when all of its tests are
// sound and `fault` is empty.
struct ConsoleVerdict {
  std::size_t sound = 0;  // tests with their completion line, in its place, and no other line
  std::size_t total = 0;
  std::string fault;  // "TEST: " and the first line that a sound run does not have; see below
};

// judgeConsole compares the console of a run whose header is `config` with what a sound one has:
// one line a test, "TEST finish normally", in the order of the tests, and the lines that report the
// items of a value-list header and the curve. Any other line belongs to the first test that has not
// completed where it stands, and counts against it. When that test does not complete, its failure
// number ends its lines, and what follows counts against the test that completes next. `fault`
// passes over lines that show a part of the request, as long as another one follows; of a test that
// failed silently it says "no completion line".
//
// A key or a signature that OpenSSL refuses is scored as not valid, which is an answer: the lines
// that report it are no fault of a run through that engine.
ConsoleVerdict judgeConsole(std::string_view console, const TestConfig& config, CryptEngine engine);

// headerFault returns the first line of `console` that does not report a header item.
std::string headerFault(std::string_view console);

}  // namespace runner

#endif  // RUNNER_CHECK_CONSOLE_VERDICT_H_
