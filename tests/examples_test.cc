#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "driver/test_config.h"
#include "support/run_request.h"

// Every example: the response (its date line aside), the console and the exit status of the built
// program, and the same answers through the other engine. They are published ones.

namespace {

const std::string kOwnLines = "# File: Response file\n#\n";

std::vector<std::string> examples() {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(RUNNER_EXAMPLES)) {
    if (entry.path().extension() == ".req") names.push_back(entry.path().stem());
  }
  std::ranges::sort(names);
  return names;
}

TEST(Examples, GiveTheirPublishedAnswers) {
  EXPECT_FALSE(examples().empty());
  for (const std::string& name : examples()) {
    SCOPED_TRACE(name);
    const Outcome outcome = runBinary(example(name, ".req"));
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.console, exampleConsole(name));
    EXPECT_EQ(outcome.response, kOwnLines + answerOf(name));
  }
}

TEST(Examples, GiveThemThroughOpensslToo) {
  for (const std::string& name : examples()) {
    SCOPED_TRACE(name);
    const Outcome outcome = runInProcess(example(name, ".req"), runner::CryptEngine::OPENSSL);
    EXPECT_TRUE(outcome.console.ends_with(lastLines(exampleConsole(name), 1))) << outcome.console;
    EXPECT_EQ(outcome.response, answerOf(name));
  }
}

struct Line {
  std::string label;
  std::string text;
  std::size_t end;  // of it, in the whole text
};

// labelledLines gives each value of a request or response a label: its section key or name, and its
// place among all values under it, counted from 0 ("[Tag] 1", "Result 3").
std::vector<Line> labelledLines(const std::string& text) {
  std::vector<Line> lines;
  std::map<std::string, int> counts;
  std::istringstream stream(text);
  std::string key;
  std::size_t end = 0;
  for (std::string line; std::getline(stream, line); ++end) {
    end += line.size();
    const bool isKey = line.starts_with('[');
    if (isKey) key = line;
    const std::size_t equals = isKey ? std::string::npos : line.find(" = ");
    const std::string name = equals == std::string::npos ? key : line.substr(0, equals);
    if (!isKey) lines.push_back({name + " " + std::to_string(counts[name]++), line, end});
  }
  return lines;
}

// withFlippedBit returns the request with the last bit of the value `label` flipped.
std::string withFlippedBit(std::string request, const std::string& label) {
  const std::string digits = "0123456789ABCDEF0123456789abcdef";
  const auto lines = labelledLines(request);
  const auto line = std::ranges::find(lines, label, &Line::label);
  char& last = request.at(line == lines.end() ? request.size() : line->end - 1);
  last = digits.at(digits.find(last) ^ 1);
  return request;
}

// differences returns the labels under which two responses are not equal.
std::set<std::string> differences(const std::string& one, const std::string& other) {
  const auto lines = labelledLines(one), others = labelledLines(other);
  EXPECT_EQ(lines.size(), others.size()) << one;
  std::set<std::string> labels;
  for (std::size_t i = 0; i < std::min(lines.size(), others.size()); ++i) {
    if (lines[i].text != others[i].text) labels.insert(lines[i].label);
  }
  return labels;
}

// labelsOf reads labels that commas part; "[Tag] *" names all of that key in the answer.
std::set<std::string> labelsOf(const std::string& text, const std::string& answer) {
  std::set<std::string> labels;
  std::istringstream stream(text);
  for (std::string label; std::getline(stream, label, ',');) {
    const bool isAll = label.ends_with('*');
    for (const Line& line : labelledLines(isAll ? answer : "")) {
      if (line.label.starts_with(label.substr(0, label.size() - 1))) labels.insert(line.label);
    }
    if (!isAll) labels.insert(label);
  }
  return labels;
}

TEST(Examples, AnswerOtherwiseToOneOtherBit) {
  std::istringstream table(readFile(RUNNER_CASES "/flipped_bits.csv"));
  std::string name, value, answers;
  std::getline(table, name);
  int rows = 0;
  while (std::getline(table, name, ',') && std::getline(table, value, ',') &&
         std::getline(table, answers)) {
    SCOPED_TRACE(name + ", " + value);
    const std::string answer = answerOf(name);
    const Outcome outcome = runInProcess(withFlippedBit(example(name, ".req"), value));
    EXPECT_EQ(differences(outcome.response, answer), labelsOf(value + "," + answers, answer));
    ++rows;
  }
  EXPECT_GT(rows, 40);
}

}  // namespace
