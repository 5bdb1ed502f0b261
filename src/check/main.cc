#include <getopt.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "check/library_versions.h"
#include "check/request_check.h"
#include "check/response_difference.h"
#include "check/response_names.h"
#include "driver/process.h"

// The command `runner-check [-d DIRECTORY] REQUEST...`. Exit status: 0 when all requests are
// complete and confirmed, 1 when one is not, 2 for wrong usage, a request that cannot be opened or
// a report that cannot be written.

namespace {

constexpr int kAllConfirmed = 0;
constexpr int kNotAllConfirmed = 1;
constexpr int kTrouble = 2;

constexpr const char* kUsage = "usage: runner-check [-d DIRECTORY] REQUEST...\n";
constexpr const char* kHelp =
    "Run each REQUEST through GnuTLS, judge whether all of its tests completed, and compare\n"
    "the response with OpenSSL's.\n\n"
    "  -d, --directory=DIRECTORY  keep the responses, as DIRECTORY/NAME.rsp\n"
    "  -h, --help                 show this text\n"
    "  -V, --version              show the version\n\n"
    "Exit status: 0 all complete and confirmed; 1 something is not; 2 wrong usage or a request\n"
    "that cannot be opened.\n";

// How many requests had each result, by CheckResult.
using Counts = std::array<std::size_t, 4>;

std::size_t& countOf(Counts& counts, runner::CheckResult result) {
  return counts[static_cast<std::size_t>(result)];
}

int complain(const std::string& what) {
  std::fprintf(stderr, "runner-check: %s\n", runner::printable(what).c_str());
  return kTrouble;
}

// showProgress replaces the progress line, which stands on standard error if that is a terminal;
// an empty text takes it away.
void showProgress(const std::string& text) {
  constexpr int kWidth = 79;
  static const bool isShown = isatty(STDERR_FILENO) == 1;
  if (!isShown) return;
  std::fflush(stdout);
  std::fprintf(stderr, "\r%*s\r%.*s", kWidth, "", kWidth, text.c_str());
  std::fflush(stderr);
}

Counts checkAll(const std::vector<std::string>& requests,
                const std::optional<std::string>& directory) {
  std::error_code error;
  std::string scratch = std::filesystem::temp_directory_path(error).string();
  if (error) scratch = "/tmp";
  Counts counts{};
  for (std::size_t i = 0; i < requests.size() && std::ferror(stdout) == 0; ++i) {
    const std::string& request = requests[i];
    showProgress(runner::printable("[" + std::to_string(i + 1) + "/" +
                                   std::to_string(requests.size()) + "] " + request));
    const std::string response = directory ? runner::responsePathOf(request, *directory) : "";
    const auto report = runner::checkRequest(request, response, scratch);
    showProgress("");
    const std::string line = request + ": " + report.text;
    std::printf("%s\n", runner::printable(line).c_str());
    if (report.result == runner::CheckResult::CANNOT_OPEN) complain(line);
    ++countOf(counts, report.result);
  }
  return counts;
}

// reportCounts prints the last line and returns the exit status.
int reportCounts(Counts counts, std::size_t total) {
  const std::size_t confirmed = countOf(counts, runner::CheckResult::CONFIRMED);
  const std::size_t withoutTest = countOf(counts, runner::CheckResult::NO_TEST);
  std::printf("%zu %s: %zu complete and confirmed, %zu not", total,
              total == 1 ? "request" : "requests", confirmed, total - confirmed - withoutTest);
  if (withoutTest > 0) std::printf(", %zu without test", withoutTest);
  std::printf("; %s\n", runner::libraryVersions().c_str());
  if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
    return complain("can't write to standard output");
  }
  if (countOf(counts, runner::CheckResult::CANNOT_OPEN) > 0) return kTrouble;
  return confirmed + withoutTest == total ? kAllConfirmed : kNotAllConfirmed;
}

// What the command line asks for.
struct CommandLine {
  std::vector<std::string> requests;
  std::optional<std::string> directory;
};

// readCommandLine returns the exit status when the program has nothing more to do.
std::optional<int> readCommandLine(int argc, char** argv, CommandLine& commandLine) {
  constexpr std::array<option, 4> kOptions{{{"directory", required_argument, nullptr, 'd'},
                                            {"help", no_argument, nullptr, 'h'},
                                            {"version", no_argument, nullptr, 'V'},
                                            {nullptr, 0, nullptr, 0}}};
  int letter = 0;
  while ((letter = getopt_long(argc, argv, "d:hV", kOptions.data(), nullptr)) != -1) {
    switch (letter) {
      case 'd':
        commandLine.directory = optarg;
        break;
      case 'h':
        std::printf("%s%s", kUsage, kHelp);
        return kAllConfirmed;
      case 'V':
        std::printf("runner-check %s; %s\n", RUNNER_VERSION, runner::libraryVersions().c_str());
        return kAllConfirmed;
      default:
        std::fputs(kUsage, stderr);
        return kTrouble;
    }
  }
  commandLine.requests.assign(argv + optind, argv + argc);
  if (!commandLine.requests.empty()) return std::nullopt;
  std::fputs(kUsage, stderr);
  return kTrouble;
}

}  // namespace

int main(int argc, char** argv) {
  if (!runner::prepareProcess()) return 2;
  CommandLine commandLine;
  const auto status = readCommandLine(argc, argv, commandLine);
  if (status) return *status;
  const auto& [requests, directory] = commandLine;
  if (directory) {
    const std::string fault = runner::findNameFault(requests, *directory);
    if (!fault.empty()) return complain(fault);
  }
  return reportCounts(checkAll(requests, directory), requests.size());
}
