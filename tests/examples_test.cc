#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "driver/test_config.h"
#include "support/run_request.h"

// Every example: the response (its date line aside), the console and the exit status of the built
// program, and the same answers through the other engine. They are published ones.

namespace {

TEST(Examples, GiveTheirPublishedAnswers) {
  const auto names = filesIn(RUNNER_EXAMPLES, ".req");
  EXPECT_FALSE(names.empty());
  for (const std::string& name : names) {
    SCOPED_TRACE(name);
    const Outcome outcome = runBinary(example(name, ".req"));
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.console, exampleConsole(name));
    EXPECT_EQ(outcome.response, "# File: Response file\n#\n" + answerOf(name));
    const Outcome other = runInProcess(example(name, ".req"), runner::CryptEngine::OPENSSL);
    EXPECT_TRUE(other.console.ends_with(lastLines(exampleConsole(name), 1))) << other.console;
    EXPECT_EQ(other.response, answerOf(name));
  }
}

// valuesOf returns the lines of a request or response below each section key, and under each name.
std::map<std::string, std::vector<std::string_view>> valuesOf(std::string_view text) {
  std::map<std::string, std::vector<std::string_view>> values;
  std::string key;
  while (!text.empty()) {
    const std::string_view line = text.substr(0, text.find('\n'));
    const std::size_t equals = line.find(" = ");
    if (line.starts_with('[')) {
      key = line;
    } else {
      values[equals == std::string::npos ? key : std::string(line.substr(0, equals))].push_back(
          line);
    }
    text.remove_prefix(std::min(line.size() + 1, text.size()));
  }
  return values;
}

// withFlippedBit returns the request with the last bit of a value flipped, whose label is its key
// and its place among all values of that key, counted from 0 ("[Tag] 1", "Result 3").
std::string withFlippedBit(std::string request, const std::string& label) {
  const std::string digits = "0123456789ABCDEF0123456789abcdef";
  const std::size_t blank = label.rfind(' ');
  const auto place = std::stoul(label.substr(blank));
  const std::string_view value = valuesOf(request).at(label.substr(0, blank)).at(place);
  const auto offset = static_cast<std::size_t>(value.data() - request.data());
  char& last = request[offset + value.size() - 1];
  last = digits.at(digits.find(last) ^ 1);
  return request;
}

// differences returns the labels under which two responses are not equal, "[Tag] *" for all of
// several values.
std::set<std::string> differences(const std::string& one, const std::string& other) {
  const auto values = valuesOf(one), others = valuesOf(other);
  EXPECT_EQ(values.size(), others.size()) << one;
  std::set<std::string> labels;
  for (const auto& [key, lines] : values) {
    std::set<std::string> changed;
    EXPECT_EQ(lines.size(), others.at(key).size()) << key;
    for (std::size_t i = 0; i < lines.size(); ++i) {
      if (lines[i] != others.at(key).at(i)) changed.insert(key + " " + std::to_string(i));
    }
    if (lines.size() > 1 && changed.size() == lines.size()) changed = {key + " *"};
    labels.merge(changed);
  }
  return labels;
}

TEST(Examples, AnswerOtherwiseToOneOtherBit) {
  std::istringstream table(readFile(RUNNER_CASES "/flipped_bits.csv"));
  std::string row, name, value;
  int rows = 0;
  for (std::getline(table, row); std::getline(table, row); ++rows) {
    SCOPED_TRACE(row);
    std::istringstream columns(row);
    std::getline(std::getline(columns, name, ','), value, ',');
    std::set<std::string> expected = {value};
    const Outcome outcome = runInProcess(withFlippedBit(example(name, ".req"), value));
    for (std::string label; std::getline(columns, label, ',');) expected.insert(label);
    EXPECT_EQ(differences(outcome.response, answerOf(name)), expected);
  }
  EXPECT_GT(rows, 40);
}

}  // namespace
