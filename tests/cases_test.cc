#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "support/case_file.h"
#include "support/failing_allocator.h"
#include "support/run_request.h"

// Every case of the files in tests/cases, each of which is a test: the console and the response of
// a sound request, and of its edits.

namespace {

std::vector<std::string> caseFiles() {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(RUNNER_CASES)) {
    if (entry.path().extension() == ".txt") names.push_back(entry.path().stem());
  }
  std::ranges::sort(names);
  return names;
}

std::string applied(std::string text, const std::vector<Edit>& edits) {
  for (const Edit& edit : edits) text = edited(text, edit.from, edit.to);
  return text;
}

void expectOutcome(const RequestCase& sound, const RequestCase& row, int engine) {
  SCOPED_TRACE("engine " + std::to_string(engine));
  const std::string request = applied(sound.request, row.requestEdits);
  const std::string& response = row.response.empty() ? sound.response : row.response;
  const FailingAllocator failing(row.allocation - 1);
  const Outcome outcome = runInProcess(request, static_cast<runner::CryptEngine>(engine));
  EXPECT_EQ(outcome.console, filled(row.console, outcome.console));
  EXPECT_EQ(outcome.response, filled(applied(response, row.responseEdits), outcome.response));
}

class CaseFile : public testing::TestWithParam<std::string> {};

TEST_P(CaseFile, HoldsWhatTheProgramDoes) {
  const std::string path = RUNNER_CASES "/" + GetParam() + ".txt";
  const std::vector<RequestCase> cases = readCaseFile(path);
  ASSERT_GT(cases.size(), 1U) << "no cases in " << path;
  const RequestCase& sound = cases.front();
  for (const RequestCase& row : cases) {
    const testing::ScopedTrace trace(path.c_str(), row.line, "the case that begins here");
    for (const int engine : row.engines.empty() ? sound.engines : row.engines) {
      expectOutcome(sound, row, engine);
    }
  }
}

TEST(Patterns, MatchWhatTheyName) {
  EXPECT_EQ(edited("abcabc", "b...c", "-"), "a-abc");
  EXPECT_EQ(edited("abcabc", "b...", "-"), "a-");
  EXPECT_NONFATAL_FAILURE(edited("abc", "b...d", ""), "nothing to edit");
  const std::string text = "1\n2\n3\n";
  for (const char* const pattern : {"1\n2\n3\n", "...\n3\n", "1\n...\n", "1\n...\n3\n"}) {
    EXPECT_EQ(filled(pattern, text), text);
  }
  for (const char* const pattern : {"...\n2\n", "2\n...\n", "1\n2\n...\n2\n3\n", "", "1\n2\n"}) {
    EXPECT_NE(filled(pattern, text), text);
  }
}

INSTANTIATE_TEST_SUITE_P(Cases, CaseFile, testing::ValuesIn(caseFiles()),
                         [](const auto& file) { return file.param; });

}  // namespace
