#ifndef RUNNER_TESTS_SUPPORT_CASE_FILE_H_
#define RUNNER_TESTS_SUPPORT_CASE_FILE_H_

#include <string>
#include <vector>

// Edit replaces the first `from` of a text by `to`, as edited() does.
struct Edit {
  std::string from;
  std::string to;
};

// RequestCase is one paragraph of a case file: a sound request with its outcome, or what an edit of
// it leads to. tests/cases/README.md describes the format.
struct RequestCase {
  int line = 0;  // of the file, where the case begins
  std::string request;
  std::string console;
  std::string response;
  std::vector<Edit> requestEdits;
  std::vector<Edit> responseEdits;
  std::vector<int> engines;
  int allocation = 0;  // the one that fails, counted from 1; 0 if none does
};

// readCaseFile returns the paragraphs of a case file, of which the first is the sound request. A
// test fails at a line of an unknown kind.
std::vector<RequestCase> readCaseFile(const std::string& path);

#endif  // RUNNER_TESTS_SUPPORT_CASE_FILE_H_
