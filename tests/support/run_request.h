#ifndef RUNNER_TESTS_SUPPORT_RUN_REQUEST_H_
#define RUNNER_TESTS_SUPPORT_RUN_REQUEST_H_

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "driver/test_config.h"
#include "support/failing_calls.h"

// TempDir is a new empty directory, removed with all that is in it at the end of its life.
class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  [[nodiscard]] std::string file(const std::string& name) const { return (path_ / name).string(); }

 private:
  std::filesystem::path path_;
};

std::string readFile(const std::string& path);
void writeFile(const std::string& path, std::string_view content);

// filesIn returns the names, without it, of the files in a folder that have this extension.
std::vector<std::string> filesIn(const std::string& folder, const std::string& extension);

// What a run leaves behind.
struct Outcome {
  int status = 0;        // exit status of the command; of a run in this process its result
  std::string console;   // standard output
  std::string response;  // without the program's own three lines
};

// runCommand runs a program, the built one if none is named, with these arguments and returns its
// exit status and console.
Outcome runCommand(const std::vector<std::string>& arguments,
                   const std::string& program = RUNNER_BINARY);

// runBinary runs a program on a request with this text.
Outcome runBinary(std::string_view request, const std::string& program);

// withEngineCalls returns what stands before a command so that these functions of the engines, with
// blanks between them, give these results, see engine_call.cc.
std::string withEngineCalls(const std::string& calls, const std::string& results);

// runInProcess runs the request through `engine` in this process, disturbed or not.
Outcome runInProcess(std::string_view request,
                     runner::CryptEngine engine = runner::CryptEngine::GNUTLS,
                     Disturbance* disturbedBy = nullptr);

// edited returns `text` with the one occurrence of `from` replaced. "..." in `from` stands for any
// text, at its end for all the rest; "first FROM" means the first of several. Throws
// std::invalid_argument when `from` is not there, or twice, or when nothing changes.
std::string edited(std::string_view text, std::string_view from, std::string_view to);

// filled returns `pattern` with its "..." replaced by what `text` has in that place; `text` begins
// and ends like the pattern if, and only if, it is equal to the result.
std::string filled(const std::string& pattern, const std::string& text);

// withVersions returns `text` with the versions of the engines in place of "VERSIONS".
std::string withVersions(std::string_view text);

// completions returns how many tests have finished.
std::ptrdiff_t completions(const std::string& console);

// lastLines returns the last `count` lines of `text`.
std::string lastLines(const std::string& text, int count);

// fromHere returns the rest of `text` from `start` on, which must be in it.
std::string fromHere(const std::string& text, const std::string& start);

// example returns the content of the example file with this name and extension: ".req", ".rsp", or
// ".out" for the console.
std::string example(const std::string& name, const std::string& extension);

// answerOf returns the expected response to an example without the program's own three lines.
std::string answerOf(const std::string& name);

#endif  // RUNNER_TESTS_SUPPORT_RUN_REQUEST_H_
