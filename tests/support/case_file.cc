#include "support/case_file.h"

#include <algorithm>
#include <fstream>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <utility>

#include "support/run_request.h"

namespace {

void require(bool condition, const std::string& message) {
  if (!condition) throw std::invalid_argument(message);
}

// expanded replaces what stands for other text: \n, \r and {COUNT*TEXT}.
std::string expanded(const std::string& text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\\') {
      const std::string escape = text.substr(i++, 2);
      require(escape == "\\n" || escape == "\\r", "unknown escape: " + escape);
      result += escape == "\\n" ? '\n' : '\r';
    } else if (text[i] == '{') {
      const std::size_t star = text.find('*', i);
      const std::size_t end = text.find('}', i);
      require(star < end && end != std::string::npos, "no {COUNT*TEXT}: " + text.substr(i));
      const std::string repeated = expanded(text.substr(star + 1, end - star - 1));
      for (int count = std::stoi(text.substr(i + 1)); count > 0; --count) result += repeated;
      i = end;
    } else {
      result += text[i];
    }
  }
  return result;
}

std::pair<std::string, std::string> splitAt(const std::string& text, const std::string& mark) {
  const std::size_t at = text.find(mark);
  require(at != std::string::npos, "no \"" + mark + "\": " + text);
  return {text.substr(0, at), text.substr(at + mark.size())};
}

void applyEdit(std::string& text, const std::string& edit) {
  const auto [from, to] = splitAt(edit + " ", " -> ");
  text = edited(text, expanded(from), expanded(to.substr(0, to.empty() ? 0 : to.size() - 1)));
}

std::vector<int> toEngines(const std::string& text) {
  std::vector<int> engines;
  std::istringstream words(text);
  for (std::string word; words >> word; engines.push_back(word[0] - '0')) {
    require(word.size() == 1 && word >= "0" && word <= "3", "unknown engine: " + word);
  }
  require(!engines.empty(), "no engine");
  return engines;
}

// illegalData words the messages for digits that do not convert.
std::string illegalData(const std::string& text) {
  std::istringstream words(text);
  std::string num, i, j, site, rest;
  require(static_cast<bool>(words >> num >> i >> j >> site), "no NUM I J SITE: " + text);
  std::getline(words >> std::ws, rest);
  return "\\nillegal data!! (" + rest + ")\\nnum=" + num + ", i=" + i + ", j=" + j +
         "\\nerr happens!! (" + site + ")";
}

// CaseReader holds what is known while the lines of a file are read.
class CaseReader {
 public:
  void readLine(const std::string& line) {
    ++number;
    if (line.empty() || line.starts_with('#')) return;
    const auto [kind, rest] = splitAt(line + " ", " ");
    const std::string text = rest.substr(0, rest.empty() ? 0 : rest.size() - 1);
    const auto fields = columns(text);
    if (kind == "sound" || kind == "case") {
      finishCase();
      if (kind == "sound") sound_.reset();
      require(sound_ || kind == "sound", "no sound request before this case");
      beginCase(text, sound_.value_or(RequestCase{}));
    } else if (kind == "part") {
      finishCase();
      require(sound_.has_value(), "a part of no sound request");
      part_ = *sound_;
      partConsole_ = expanded(fields[0]) + "\n";
      partEnd_ = expanded(fields[1]);
    } else if (kind == "missing") {
      const auto [site, key] = splitAt(fields[0], " ");
      addRow("without " + key, key + " -> [x]",
             "\"" + key + "\" is not found!!\\nerr happens!! (" + site + ")",
             fields[1].empty() ? "before " + key : fields[1]);
    } else if (kind == "stops") {
      addRow(fields[0], fields[1], fields[2], fields[3]);
    } else if (kind == "illegal") {
      addRow(fields[0], fields[1], illegalData(fields[2]), fields[3]);
    } else if (kind == "engines") {
      require(open_ || part_, "a line outside of a case");
      (open_ ? open_ : part_)->engines = toEngines(text);
    } else {
      readLineOfCase(kind, text);
    }
  }

  // finishCase ends the case to which the last lines belong.
  void finishCase() {
    if (!open_) return;
    const int next = std::exchange(number, open_->line);
    require(!open_->engines.empty(), "no engines: " + open_->name);
    require(!sound_ || open_->request != sound_->request || open_->engines != sound_->engines,
            "no other request than the sound one: " + open_->name);
    if (!sound_) sound_ = open_;
    cases.push_back(*std::exchange(open_, std::nullopt));
    number = next;
  }

  int number = 0;  // of the line
  std::vector<RequestCase> cases{};

 private:
  // columns returns what stands between the bars of `text`, without a blank on either side of them,
  // and no text for the columns that it lacks.
  static std::vector<std::string> columns(const std::string& text) {
    std::vector<std::string> result;
    std::istringstream stream(text);
    for (std::string column; std::getline(stream, column, '|'); result.push_back(column)) {
      if (!result.empty() && column.starts_with(' ')) column.erase(0, 1);
      if (!stream.eof() && column.ends_with(' ')) column.pop_back();
    }
    result.resize(std::max<std::size_t>(result.size(), 4));
    return result;
  }

  void beginCase(const std::string& name, const RequestCase& origin) {
    require(!name.empty(), "a case without a name");
    require(std::ranges::find(cases, name, &RequestCase::name) == cases.end(),
            "a second case with this name: " + name);
    part_.reset();
    open_ = origin;
    open_->name = name;
    open_->line = number;
    hasRequest_ = hasConsole_ = hasResponse_ = false;
  }

  void addRow(const std::string& name, const std::string& edit, const std::string& message,
              const std::string& cut) {
    finishCase();
    require(part_.has_value(), "a row outside of a part");
    const RequestCase origin = *part_;
    beginCase(name, origin);
    const bool isBoth = edit.starts_with("both ");
    readLineOfCase(isBoth ? "both" : "request", isBoth ? splitAt(edit, " ").second : edit);
    open_->console =
        edited(open_->console, partConsole_, message.empty() ? "" : expanded(message) + "\n");
    if (!cut.empty()) {
      const auto [where, mark] = splitAt(expanded(cut), " ");
      require(where == "before" || where == "after", "neither before nor after: " + cut);
      const std::string first = mark.starts_with("first ") ? mark.substr(6) : mark;
      open_->response = edited(open_->response, mark + "..." + partEnd_,
                               (where == "after" ? first : "") + partEnd_);
    }
    finishCase();
    part_ = origin;
  }

  void readLineOfCase(const std::string& kind, const std::string& text) {
    require(open_.has_value(), "a line outside of a case");
    // The first line of its own takes the place of what the case has from elsewhere.
    const auto add = [&](std::string& whole, bool& isOwn) {
      whole = (isOwn ? whole : "") + expanded(text) + "\n";
      isOwn = true;
    };
    if (kind == "example" || kind == "like") {
      const RequestCase origin = kind == "like"
                                     ? readCaseFile(RUNNER_CASES "/" + text + ".txt").at(0)
                                     : RequestCase{.request = example(text, ".req"),
                                                   .console = exampleConsole(text),
                                                   .response = answerOf(text),
                                                   .engines = open_->engines};
      open_->request = origin.request;
      open_->console = origin.console;
      open_->response = origin.response;
      open_->engines = origin.engines;
    } else if (kind == "<" || kind == "<=" || kind == "=") {
      if (kind != "=") add(open_->request, hasRequest_);
      if (kind != "<") add(open_->response, hasResponse_);
    } else if (kind == ">") {
      add(open_->console, hasConsole_);
    } else {
      require(kind == "both" || kind == "request" || kind == "response" || kind == "console",
              "no line of a case: " + kind);
      if (kind == "both" || kind == "request") applyEdit(open_->request, text);
      if (kind == "both" || kind == "response") applyEdit(open_->response, text);
      if (kind == "console") applyEdit(open_->console, text);
    }
  }

  std::optional<RequestCase> sound_;
  std::optional<RequestCase> open_;  // the case to which the next lines belong
  bool hasRequest_ = false;          // of its own, as the next ones
  bool hasConsole_ = false;
  bool hasResponse_ = false;
  std::optional<RequestCase> part_;  // what the rows of a part begin with
  std::string partConsole_;
  std::string partEnd_;
};

}  // namespace

std::vector<RequestCase> readCaseFile(const std::string& path) {
  CaseReader reader;
  std::ifstream file(path);
  try {
    for (std::string line; std::getline(file, line);) reader.readLine(line);
    reader.finishCase();
    require(!reader.cases.empty(), "no case");
    return reader.cases;
  } catch (const std::invalid_argument& error) {
    throw std::invalid_argument(path + ":" + std::to_string(reader.number) + ": " + error.what());
  }
}
