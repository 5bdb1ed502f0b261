#include "support/request_tables.h"

#include <gtest/gtest.h>

#include "support/run_request.h"

namespace {

std::string resultsOf(const std::string& response) {
  const std::string key = "[Results]\n";
  const std::size_t position = response.find(key);
  return position == std::string::npos ? "none" : response.substr(position + key.size());
}

}  // namespace

std::string errAt(int site) { return "err happens!! (" + std::to_string(site) + ")\n"; }

Failure missing(const std::string& key, int site) {
  return {key + "\n", "[x]\n", '"' + key + "\" is not found!!\n" + errAt(site), key};
}

Failure illegal(const std::string& from, const std::string& to, const std::string& text,
                const std::string& place, int site) {
  return {from, to, "\nillegal data!! (" + text + ")\n" + place + "\n" + errAt(site), from};
}

void expectFailures(const std::string& request, const std::string& response,
                    const std::string& console, const std::vector<Failure>& failures) {
  const Outcome sound = runInProcess(request);
  EXPECT_EQ(sound.console, console);
  EXPECT_EQ(sound.response, response);
  for (const Failure& row : failures) {
    SCOPED_TRACE(row.from + " -> " + row.to);
    const Outcome outcome = runInProcess(edited(request, row.from, row.to));
    EXPECT_EQ(outcome.console, row.console);
    EXPECT_EQ(outcome.response, response.substr(0, response.find(row.cut)));
  }
}

void expectJudgements(const std::vector<Judgement>& judgements) {
  for (const Judgement& row : judgements) {
    SCOPED_TRACE(row.request);
    const Outcome outcome = runInProcess(row.request, row.engine);
    EXPECT_EQ(outcome.console, row.console);
    EXPECT_EQ(resultsOf(outcome.response), row.results);
  }
}
