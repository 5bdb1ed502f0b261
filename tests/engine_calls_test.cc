#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "support/run_request.h"

// The calls of the engines fail in turn: the program names the call, or has the number of its
// place. What OpenSSL fails in is seen through `runner-check`.

namespace {

TEST(EngineCalls, AreToldWhenTheyFail) {
  std::istringstream table(readFile(RUNNER_CASES "/engine_calls.csv"));
  std::string row, calls, results, name, told;
  for (std::getline(table, row); std::getline(table, row);) {
    SCOPED_TRACE(row);
    std::istringstream columns(row);
    for (std::string* column : {&calls, &results, &name}) std::getline(columns, *column, ',');
    std::getline(columns, told);
    const std::string request = RUNNER_EXAMPLES "/" + name + ".req";
    const std::string command = withEngineCalls(calls, results);
    const bool isGnutls = calls.starts_with("gnutls");
    const Outcome outcome = isGnutls ? runCommand({request, "/dev/null"}, command + RUNNER_BINARY)
                                     : runCommand({request}, command + RUNNER_CHECK_BINARY);
    EXPECT_EQ(outcome.status, isGnutls ? 0 : 1);
    const std::string line = (isGnutls ? "\n" : ": ") + told + "\n";
    EXPECT_NE(("\n" + outcome.console).find(line), std::string::npos) << outcome.console;
  }
}

}  // namespace
