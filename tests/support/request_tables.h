#ifndef RUNNER_TESTS_SUPPORT_REQUEST_TABLES_H_
#define RUNNER_TESTS_SUPPORT_REQUEST_TABLES_H_

#include <string>
#include <vector>

#include "driver/test_config.h"

// Failure is one edit of a sound request, what the program then prints, and where the response of
// the sound request is cut off.
struct Failure {
  std::string from;
  std::string to;
  std::string console;
  std::string cut;
};

// errAt is the line of a failure site.
std::string errAt(int site);

// missing is a request without the section `key`.
Failure missing(const std::string& key, int site);

// illegal is a value that stops being hexadecimal: `text` from there on, and where that is.
Failure illegal(const std::string& from, const std::string& to, const std::string& text,
                const std::string& place, int site);

// expectFailures runs the sound request, which prints `console` and gives `response`, and then each
// of its edits.
void expectFailures(const std::string& request, const std::string& response,
                    const std::string& console, const std::vector<Failure>& failures);

// Judgement is what an engine makes of a request: the console, and what follows "[Results]", or
// "none" when there is no such section.
struct Judgement {
  runner::CryptEngine engine;
  std::string request;
  std::string console;
  std::string results;
};

void expectJudgements(const std::vector<Judgement>& judgements);

#endif  // RUNNER_TESTS_SUPPORT_REQUEST_TABLES_H_
