#include "support/run_request.h"

#include <gnutls/gnutls.h>
#include <gtest/gtest.h>
#include <openssl/crypto.h>
#include <sys/wait.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <regex>
#include <sstream>
#include <stdexcept>

#include "driver/dispatch.h"

namespace {

// What stands for any text in an edit or a pattern.
constexpr std::string_view kGap = "...";
// What begins an edit of the first of several.
constexpr std::string_view kFirst = "first ";
// The size of the program's own three lines.
constexpr std::size_t kOwnSize = 57;

// withoutOwnLines cuts the program's own three lines off after a look at their form. Nothing is
// left of a response that ends within them.
std::string withoutOwnLines(const std::string& response) {
  static const std::regex form(
      "# Date: [A-Z][a-z]{2} [A-Z][a-z]{2} [ 123][0-9] [0-9:]{8} [0-9]{4}\n"
      "# File: Response file\n#\n");
  std::smatch lines;
  const auto atStart = std::regex_constants::match_continuous;
  if (std::regex_search(response, lines, form, atStart)) return lines.suffix();
  return response.size() < kOwnSize ? "" : response;
}

}  // namespace

TempDir::TempDir() {
  std::string path = (std::filesystem::temp_directory_path() / "runner-XXXXXX").string();
  if (mkdtemp(path.data()) == nullptr) std::abort();
  path_ = path;
}

TempDir::~TempDir() { std::filesystem::remove_all(path_); }

std::string readFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void writeFile(const std::string& path, std::string_view content) {
  std::ofstream(path, std::ios::binary) << content;
}

std::vector<std::string> filesIn(const std::string& folder, const std::string& extension) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.path().extension() == extension) names.push_back(entry.path().stem());
  }
  std::ranges::sort(names);
  return names;
}

Outcome runCommand(const std::vector<std::string>& arguments, const std::string& program) {
  std::string command = program;
  for (const std::string& argument : arguments) command += " '" + argument + "'";
  Outcome outcome;
  std::FILE* const pipe = popen(command.c_str(), "r");  // NOLINT(cert-env33-c): own command
  if (pipe == nullptr) std::abort();
  std::array<char, 4096> chunk{};
  while (const std::size_t count = std::fread(chunk.data(), 1, chunk.size(), pipe)) {
    outcome.console.append(chunk.data(), count);
  }
  const int status = pclose(pipe);
  outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return outcome;
}

Outcome runBinary(std::string_view request, const std::string& program) {
  const TempDir dir;
  writeFile(dir.file("request"), request);
  Outcome outcome = runCommand({dir.file("request"), dir.file("response")}, program);
  outcome.response = withoutOwnLines(readFile(dir.file("response")));
  return outcome;
}

std::string withEngineCalls(const std::string& calls, const std::string& results) {
  std::istringstream names(calls);
  std::string libraries;
  for (std::string name; names >> name;) libraries += name + ".so ";
  // AddressSanitizer wants to be the first library.
  return "ASAN_OPTIONS=$ASAN_OPTIONS:verify_asan_link_order=0 ENGINE_RETURNS='" + results +
         "' LD_LIBRARY_PATH='" RUNNER_ENGINE_CALLS "' LD_PRELOAD='" + libraries + "' ";
}

Outcome runInProcess(std::string_view request, runner::CryptEngine engine,
                     Disturbance* disturbedBy) {
  const TempDir dir;
  const std::string requestPath = dir.file("request");
  const std::string responsePath = dir.file("response");
  writeFile(requestPath, request);
  Outcome outcome;
  testing::internal::CaptureStdout();
  disturbance = disturbedBy;
  outcome.status = runner::runRequest(requestPath.c_str(), responsePath.c_str(), engine);
  disturbance = nullptr;
  outcome.console = testing::internal::GetCapturedStdout();
  outcome.response = withoutOwnLines(readFile(responsePath));
  return outcome;
}

std::string edited(std::string_view text, std::string_view from, std::string_view to) {
  const auto require = [from](bool condition, const char* message) {
    if (!condition) throw std::invalid_argument(message + (": " + std::string(from)));
  };
  const auto endOf = [&](std::string_view part, std::size_t start) {
    require(text.find(part, start) != std::string_view::npos, "not found");
    return text.find(part, start) + part.size();
  };
  const bool isFirst = from.starts_with(kFirst);
  const std::string_view pattern = from.substr(isFirst ? kFirst.size() : 0);
  const std::size_t gap = std::min(pattern.find(kGap), pattern.size());
  const std::string_view head = pattern.substr(0, gap);
  std::size_t end = endOf(head, 0);
  const std::size_t begin = end - head.size();
  require(isFirst || head.empty() || text.find(head, begin + 1) == std::string_view::npos,
          "found twice");
  if (gap < pattern.size()) {
    end = pattern.ends_with(kGap) ? text.size() : endOf(pattern.substr(gap + kGap.size()), end);
  }
  require(text.substr(begin, end - begin) != to, "without effect");
  return std::string(text).replace(begin, end - begin, to);
}

std::string filled(const std::string& pattern, const std::string& text) {
  const std::size_t gap = pattern.find(kGap);
  if (gap == std::string::npos) return pattern;
  const std::string tail = pattern.substr(gap + kGap.size());
  const std::size_t covered = gap + tail.size();
  const std::size_t length = text.size() < covered ? 0 : text.size() - covered;
  return pattern.substr(0, gap) + (length == 0 ? "" : text.substr(gap, length)) + tail;
}

std::string withVersions(std::string_view text) {
  static const std::string versions = std::string("GnuTLS ") + gnutls_check_version(nullptr) +
                                      ", OpenSSL " + OpenSSL_version(OPENSSL_VERSION_STRING);
  return std::regex_replace(std::string(text), std::regex("VERSIONS"), versions);
}

std::ptrdiff_t completions(const std::string& console) {
  static const std::regex line("finish normally\n");
  return std::distance(std::sregex_iterator(console.begin(), console.end(), line), {});
}

std::string lastLines(const std::string& text, int count) {
  std::size_t start = text.size();
  for (; count > 0 && start > 0; --count) {
    start = start < 2 ? 0 : text.rfind('\n', start - 2) + 1;
  }
  return text.substr(start);
}

std::string fromHere(const std::string& text, const std::string& start) {
  if (text.find(start) == std::string::npos) throw std::invalid_argument("not found: " + start);
  return text.substr(text.find(start));
}

std::string example(const std::string& name, const std::string& extension) {
  return readFile(RUNNER_EXAMPLES "/" + name + extension);
}

std::string answerOf(const std::string& name) {
  const std::string ownLines = "\n#\n";
  return fromHere(example(name, ".rsp"), ownLines).substr(ownLines.size());
}
