#ifndef RUNNER_TESTS_SUPPORT_CASE_FILE_H_
#define RUNNER_TESTS_SUPPORT_CASE_FILE_H_

#include <array>
#include <sstream>
#include <string>
#include <vector>

#include "support/run_request.h"

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

// readCaseFile returns the cases of the file with this path, of which the first is a sound request.
// Throws std::invalid_argument with file and line at the first line that is not in order.
std::vector<RequestCase> readCaseFile(const std::string& path);

// readTable returns the rows of the table with this path, without its heading. The last of the N
// columns has all the rest of its line. Throws std::invalid_argument if there is no row.
template <std::size_t N>
std::vector<std::array<std::string, N>> readTable(const std::string& path, char separator) {
  std::istringstream lines(fromHere(readFile(path), "\n"));
  std::vector<std::array<std::string, N>> rows;
  std::string line;
  for (std::getline(lines, line); std::getline(lines, line);) {
    std::istringstream columns(line);
    for (std::string& column : rows.emplace_back()) {
      std::getline(columns, column, &column == &rows.back().back() ? '\n' : separator);
    }
  }
  return rows;
}

#endif  // RUNNER_TESTS_SUPPORT_CASE_FILE_H_
