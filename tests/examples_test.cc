#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <string>
#include <string_view>

#include "driver/test_config.h"
#include "support/run_request.h"

// Every example: the response (its date line aside), the console and the exit status of the built
// program. The answers are published ones.

namespace {

TEST(Examples, GiveTheirPublishedAnswers) {
  const auto names = filesIn(RUNNER_EXAMPLES, ".req");
  EXPECT_FALSE(names.empty());
  for (const std::string& name : names) {
    SCOPED_TRACE(name);
    const Outcome outcome = runBinary(example(name, ".req"));
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.console, exampleConsole(name));
    EXPECT_EQ(outcome.response, answerOf(name));
  }
}

// valuesOf returns the values of a request or response, each under its section key or name and its
// place among all that have the same, counted from 0 ("[Tag] 1", "Result 3").
std::map<std::string, std::string_view> valuesOf(std::string_view text) {
  std::map<std::string, std::string_view> values;
  std::map<std::string, int> counts;
  std::string key;
  for (std::size_t end = 0; (end = text.find('\n')) != std::string::npos;
       text.remove_prefix(end + 1)) {
    const std::string_view line = text.substr(0, end);
    const std::size_t equals = line.find(" = ");
    const std::string name(equals == std::string::npos ? key : line.substr(0, equals));
    if (line.starts_with('[')) {
      key = line;
    } else {
      values[name + " " + std::to_string(counts[name]++)] = line;
    }
  }
  return values;
}

TEST(Examples, AnswerOtherwiseToOneOtherBit) {
  const std::string digits = "0123456789ABCDEF0123456789abcdef";
  std::istringstream table(readFile(RUNNER_CASES "/flipped_bits.csv"));
  std::string row, name, value;
  for (std::getline(table, row); std::getline(table, row);) {
    SCOPED_TRACE(row);
    std::istringstream columns(row + ",");
    std::getline(std::getline(columns, name, ','), value, ',');
    std::string request = example(name, ".req");
    const std::string_view flipped = valuesOf(request).at(value);
    char& last = request[static_cast<std::size_t>(&flipped.back() - request.data())];
    last = digits.at(digits.find(last) ^ 1);
    const Outcome outcome = runInProcess(request);
    const std::string answer = answerOf(name);
    const auto before = valuesOf(answer), after = valuesOf(outcome.response);
    EXPECT_EQ(after.size(), before.size());
    for (const auto& [label, line] : after) {
      const std::string all = "," + label.substr(0, label.rfind(' ')) + " *,";
      const bool isListed = columns.str().find("," + label + ",") != std::string::npos ||
                            columns.str().find(all) != std::string::npos;
      EXPECT_EQ(line != before.at(label), isListed) << label;
    }
  }
}

}  // namespace
