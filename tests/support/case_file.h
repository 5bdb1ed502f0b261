#ifndef RUNNER_TESTS_SUPPORT_CASE_FILE_H_
#define RUNNER_TESTS_SUPPORT_CASE_FILE_H_

#include <string>
#include <vector>

// RequestCase is a request with what the program makes of it: a sound request of a case file, or an
// edit of one, with the edits made. tests/cases/README.md describes the format.
struct RequestCase {
  std::string name{};
  int line = 0;  // of the file, where the case begins
  std::string request{};
  std::string console{};
  std::string response{};
  std::string engines{};  // their numbers, with blanks between them
  std::string report{};   // of `runner-check`, if it is asked
};

// expanded replaces what stands for other text: \n, \r and {COUNT*TEXT}. Throws
// std::invalid_argument for another escape.
std::string expanded(const std::string& text);

// columns returns the four texts that bars part, of which the last ones may be missing.
std::vector<std::string> columns(const std::string& text);

// readCaseFile returns the cases of the file with this path, of which the first is a sound request.
// Throws std::invalid_argument with file and line at the first line that is not in order.
std::vector<RequestCase> readCaseFile(const std::string& path);

#endif  // RUNNER_TESTS_SUPPORT_CASE_FILE_H_
