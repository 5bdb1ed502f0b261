#include "support/case_file.h"

#include <fstream>
#include <optional>
#include <regex>
#include <set>
#include <stdexcept>
#include <utility>

namespace {

void require(bool condition, const std::string& message) {
  if (!condition) throw std::invalid_argument(message);
}

// splitAt returns what stands before and behind the first `mark`, nothing behind it if there is
// none.
std::pair<std::string, std::string> splitAt(const std::string& text, const std::string& mark) {
  const std::size_t at = text.find(mark);
  return {text.substr(0, at), at == std::string::npos ? "" : text.substr(at + mark.size())};
}

void applyEdit(std::string& text, const std::string& edit) {
  require((edit + " ").find(" -> ") != std::string::npos, "no edit: " + edit);
  const auto [from, to] = splitAt(edit, " ->");
  text = edited(text, expanded(from), expanded(to.substr(to.empty() ? 0 : 1)));
}

// illegalData words the messages for digits that do not convert.
std::string illegalData(const std::string& text) {
  std::istringstream words(text);
  std::string num, i, j, site, rest;
  std::getline(words >> num >> i >> j >> site >> std::ws, rest);
  return "\nillegal data!! (" + rest + ")\nnum=" + num + ", i=" + i + ", j=" + j +
         "\nerr happens!! (" + site + ")";
}

// columns returns the four texts that bars part, of which the last ones may be missing.
std::vector<std::string> columns(const std::string& text) {
  static const std::regex bar(" ?[|] ?");
  std::vector<std::string> result(std::sregex_token_iterator(text.begin(), text.end(), bar, -1),
                                  {});
  result.resize(4);
  return result;
}

// CaseReader holds what is known while the lines of a file are read.
class CaseReader {
 public:
  void readLine(const std::string& line) {
    const auto [kind, text] = splitAt(line, " ");
    if (line.empty() || kind == "#") return;
    const auto fields = columns(text);
    if (kind == "sound" || kind == "case") {
      beginCase(text, kind == "sound");
    } else if (kind == "part") {
      finishCase();
      part_ = fields;
    } else if (kind == "stops") {
      readRow(fields[0], fields[1], fields[2], fields[3]);
    } else if (kind == "illegal") {
      readRow(fields[0], fields[1], illegalData(fields[2]), fields[3]);
    } else if (kind == "missing") {
      const auto [site, key] = splitAt(fields[0], " ");
      readRow("without " + key, key + " -> [x]",
              "\"" + key + "\" is not found!!\nerr happens!! (" + site + ")",
              fields[1].empty() ? "before " + key : fields[1]);
    } else {
      require(open_.has_value(), "a line outside of a case");
      readLineOfCase(kind, text);
    }
  }

  // finishCase ends the case to which the last lines belong.
  void finishCase() {
    if (!open_) return;
    require(!open_->engines.empty(), "no engines: " + open_->name);
    require(!sound_ || open_->request != sound_->request || open_->engines != sound_->engines,
            "no other request than the sound one: " + open_->name);
    if (!sound_) sound_ = open_;
    cases.push_back(*std::exchange(open_, std::nullopt));
  }

  int number = 0;  // of the line
  std::vector<RequestCase> cases{};

 private:
  void beginCase(const std::string& name, bool isSound) {
    finishCase();
    require(!name.empty(), "a case without a name");
    if (isSound) sound_.reset();
    open_ = sound_.value_or(RequestCase{});
    open_->name = name;
    open_->line = number;
    open_->report.clear();
    own_.clear();
  }

  // readRow begins a case with the lines for which its row stands.
  void readRow(const std::string& name, const std::string& edit, const std::string& message,
               const std::string& cut) {
    require(!part_.empty(), "a row outside of a part");
    const std::string &console = part_[0], &next = part_[1], &engines = part_[2];
    beginCase(name, false);
    if (!engines.empty()) readLine("engines " + engines);
    readLine(edit.starts_with("both ") ? edit : "request " + edit);
    readLine("console " + console + "\n -> " + message + (message.empty() ? "" : "\n"));
    if (cut.empty()) return;
    const auto [where, mark] = splitAt(cut, " ");
    require(where == "before" || where == "after", "neither before nor after: " + cut);
    const std::string kept = mark.starts_with("first ") ? mark.substr(6) : mark;
    readLine("response " + mark + "..." + next + " -> " + (where == "after" ? kept : "") + next);
  }

  void readLineOfCase(const std::string& kind, const std::string& text) {
    // The first line of its own takes the place of what the case has from elsewhere.
    const auto add = [&](std::string& whole) {
      if (own_.insert(&whole).second) whole.clear();
      whole += expanded(text) + "\n";
    };
    if (kind == "engines") {
      require(text.find_first_not_of("0123 ") == std::string::npos, "unknown engine: " + text);
      open_->engines = text;
    } else if (kind == "check") {
      open_->report = expanded(text);
    } else if (kind == "example") {
      open_->request = example(text, ".req");
      open_->console = example(text, ".out");
      open_->response = answerOf(text);
    } else if (kind == "<" || kind == "<=" || kind == "=") {
      if (kind != "=") add(open_->request);
      if (kind != "<") add(open_->response);
    } else if (kind == ">") {
      add(open_->console);
    } else {
      require(kind == "both" || kind == "request" || kind == "response" || kind == "console",
              "no line of a case: " + kind);
      if (kind == "both" || kind == "request") applyEdit(open_->request, text);
      if (kind == "both" || kind == "response") applyEdit(open_->response, text);
      if (kind == "console") applyEdit(open_->console, text);
    }
  }

  std::optional<RequestCase> sound_;
  std::optional<RequestCase> open_;   // the case to which the next lines belong
  std::set<const std::string*> own_;  // the texts of which it has lines of its own
  std::vector<std::string> part_;     // the columns of the last part
};

}  // namespace

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

std::vector<RequestCase> readCaseFile(const std::string& path) {
  CaseReader reader;
  std::ifstream file(path);
  try {
    for (std::string line; std::getline(file, line);) {
      ++reader.number;
      reader.readLine(line);
    }
    reader.finishCase();
    require(!reader.cases.empty(), "no case");
    return reader.cases;
  } catch (const std::invalid_argument& error) {
    throw std::invalid_argument(path + ":" + std::to_string(reader.number) + ": " + error.what());
  }
}
