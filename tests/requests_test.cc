#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>

#include "driver/test_config.h"
#include "support/case_file.h"
#include "support/run_request.h"

namespace {

// Every example: the response (its date line aside), the console and the exit status of both
// programs. The answers are published ones.

TEST(Examples, GiveTheirPublishedAnswers) {
  const TempDir dir;
  const auto names = filesIn(RUNNER_EXAMPLES, ".req");
  EXPECT_FALSE(names.empty());
  for (const std::string& name : names) {
    SCOPED_TRACE(name);
    const std::string request = RUNNER_EXAMPLES "/" + name + ".req",
                      console = example(name, ".out");
    const Outcome outcome = runCommand({request, dir.file("response")});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.console, console);
    const std::string tests = std::to_string(completions(console));
    const Outcome check = runCommand({"-d", dir.file(""), request}, RUNNER_CHECK_BINARY);
    EXPECT_EQ(check.status, 0);
    EXPECT_EQ(check.console,
              withVersions(request + ": " + tests + " of " + tests +
                           " tests, confirmed by OpenSSL\n1 request: 1 complete and confirmed, 0 "
                           "not; VERSIONS\n"));
    for (const std::string& response : {dir.file("response"), dir.file(name + ".rsp")}) {
      EXPECT_EQ(fromHere(readFile(response), "\n#\n"), "\n#\n" + answerOf(name));
    }
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
  for (const auto& [name, value, changed] : readTable<3>(RUNNER_CASES "/flipped_bits.csv", ',')) {
    SCOPED_TRACE(testing::Message() << name << " " << value);
    const std::string listed = "," + value + "," + changed + ",";
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
      const bool isListed = listed.find("," + label + ",") != std::string::npos ||
                            listed.find(all) != std::string::npos;
      EXPECT_EQ(line != before.at(label), isListed) << label;
    }
  }
}

// Every case of the files in tests/cases, each of which is a test: the console and the response of
// sound requests, and of their edits.

class CaseFile : public testing::TestWithParam<std::string> {};

// expectReport expects what `runner-check` reports of a case that is not sound or has no test.
void expectReport(const RequestCase& row) {
  const TempDir dir;
  writeFile(dir.file("a"), row.request);
  const Outcome outcome = runCommand({}, "cd " + dir.file("") + "; " RUNNER_CHECK_BINARY " a");
  const bool hasFault = row.report != "no test";
  EXPECT_EQ(outcome.status, hasFault ? 1 : 0);
  EXPECT_EQ(outcome.console,
            withVersions("a: " + row.report + "\n1 request: 0 complete and confirmed, " +
                         (hasFault ? "1 not" : "0 not, 1 without test") + "; VERSIONS\n"))
      << row.name;
}

TEST_P(CaseFile, HoldsWhatTheProgramDoes) {
  const std::string path = RUNNER_CASES "/" + GetParam() + ".txt";
  for (const RequestCase& row : readCaseFile(path)) {
    std::istringstream engines(row.engines);
    for (int engine = 0; engines >> engine;) {
      const testing::ScopedTrace trace(path.c_str(), row.line,
                                       row.name + ", engine " + std::to_string(engine));
      const Outcome outcome = runInProcess(row.request, static_cast<runner::CryptEngine>(engine));
      EXPECT_EQ(outcome.console, filled(row.console, outcome.console));
      EXPECT_EQ(outcome.response, filled(row.response, outcome.response));
    }
    if (!row.report.empty()) expectReport(row);
  }
}

TEST(CaseFiles, AreReadStrictly) {
  const std::string sound = "sound one\nengines 0\n<= ab\n<= abc\n> done\n\n";
  const struct {
    const char* lines;
    const char* error;
  } rows[] = {
      {"case\nboth c -> d\n", ":7: a case without a name"},
      {"case two\n", ":7: no other request than the sound one: two"},
      {"case two\nengines 4\n", ":8: unknown engine: 4"},
      {"case two\nboth c -> \\t\n", ":8: unknown escape: \\t"},
      {"case two\nboth ab -> x\n", ":8: found twice: ab"},
      {"case two\nboth d -> x\n", ":8: not found: d"},
      {"case two\nboth c -> c\n", ":8: without effect: c"},
      {"case two\nall c -> d\n", ":8: no line of a case: all"},
      {"case two\nexample none\n", ":8: not found: \n#\n"},
      {"missing 1 abc\n", ":7: a row outside of a part"},
  };
  const TempDir dir;
  for (const auto& row : rows) {
    writeFile(dir.file("cases"), sound + row.lines);
    std::string told;
    try {
      readCaseFile(dir.file("cases"));
    } catch (const std::invalid_argument& error) {
      told = error.what();
    }
    EXPECT_EQ(told, dir.file("cases") + row.error);
  }
  for (const char* const pattern : {"...\n2\n", "2\n...\n", "1\n2\n...\n2\n3\n", "", "1\n2\n"}) {
    EXPECT_NE(filled(pattern, "1\n2\n3\n"), "1\n2\n3\n");
  }
}

INSTANTIATE_TEST_SUITE_P(Cases, CaseFile, testing::ValuesIn(filesIn(RUNNER_CASES, ".txt")),
                         [](const auto& file) { return file.param; });

}  // namespace
