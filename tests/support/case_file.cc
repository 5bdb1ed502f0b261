#include "support/case_file.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "support/run_request.h"

namespace {

// expanded replaces what stands for other text: \n, \r and {COUNT*TEXT}.
std::string expanded(const std::string& text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\\') {
      result += text[++i] == 'n' ? '\n' : '\r';
    } else if (text[i] == '{') {
      const std::size_t star = text.find('*', i);
      const std::size_t end = text.find('}', i);
      const std::string repeated = text.substr(star + 1, end - star - 1);
      for (int count = std::stoi(text.substr(i + 1)); count > 0; --count) result += repeated;
      i = end;
    } else {
      result += text[i];
    }
  }
  return result;
}

Edit toEdit(const std::string& text) {
  const std::string arrow = " ->";
  const std::size_t from = text.find(arrow);
  if (from == std::string::npos) ADD_FAILURE() << "no edit: " << text;
  const std::size_t to = std::min(text.size(), from + arrow.size() + 1);
  return {expanded(text.substr(0, from)), expanded(text.substr(to))};
}

void addLine(RequestCase& row, const std::string& line) {
  const std::size_t space = line.find(' ');
  const std::string kind = line.substr(0, space);
  const std::string text = space == std::string::npos ? "" : line.substr(space + 1);
  if (kind == "<") {
    row.request += expanded(text) + "\n";
  } else if (kind == ">") {
    row.console += expanded(text) + "\n";
  } else if (kind == "=") {
    row.response += expanded(text) + "\n";
  } else if (kind == "request") {
    row.requestEdits.push_back(toEdit(text));
  } else if (kind == "both") {
    row.requestEdits.push_back(toEdit(text));
    row.responseEdits.push_back(toEdit(text));
  } else if (kind == "response") {
    row.responseEdits.push_back(toEdit(text));
  } else if (kind == "engines") {
    std::istringstream numbers(text);
    for (int number = 0; numbers >> number;) row.engines.push_back(number);
  } else if (kind == "allocation") {
    row.allocation = std::stoi(text);
  } else if (kind == "example") {
    row.request = example(text, ".req");
    row.response = answerOf(text);
  } else {
    ADD_FAILURE() << "no line of a case: " << line;
  }
}

}  // namespace

std::vector<RequestCase> readCaseFile(const std::string& path) {
  std::vector<RequestCase> cases;
  std::ifstream file(path);
  bool inside = false;
  int number = 0;
  for (std::string line; std::getline(file, line);) {
    ++number;
    if (line.starts_with('#')) continue;
    if (!line.empty() && !inside) cases.emplace_back().line = number;
    inside = !line.empty();
    if (inside) addLine(cases.back(), line);
  }
  return cases;
}
