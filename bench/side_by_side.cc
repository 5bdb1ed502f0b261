#include "side_by_side.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <vector>

#include "text/text_stream.h"

namespace {

// SilentConsole discards what this process writes to standard output.
class SilentConsole {
 public:
  SilentConsole() : console_(dup(STDOUT_FILENO)) { redirect(open("/dev/null", O_WRONLY)); }
  ~SilentConsole() { redirect(console_); }
  SilentConsole(const SilentConsole&) = delete;
  SilentConsole& operator=(const SilentConsole&) = delete;

 private:
  static void redirect(int target) {
    std::fflush(stdout);
    dup2(target, STDOUT_FILENO);
    close(target);
  }

  int console_;
};

double secondsOf(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

}  // namespace

WorkFiles::WorkFiles(std::string_view request) {
  std::string path = (std::filesystem::temp_directory_path() / "runner-bench-XXXXXX").string();
  if (mkdtemp(path.data()) == nullptr) std::abort();
  directory_ = path;
  request_ = directory_ / "request";
  response_ = directory_ / "response";
  copy_ = directory_ / "copy";
  std::ofstream(request_, std::ios::binary) << request;
}

WorkFiles::~WorkFiles() { std::filesystem::remove_all(directory_); }

void WorkFiles::copyRequest() const {
  std::filesystem::copy_file(request_, copy_, std::filesystem::copy_options::overwrite_existing);
}

void WorkFiles::copyRequestByLines(std::size_t longest) const {
  const runner::FileHandle request(std::fopen(request_.c_str(), "r"));
  const runner::FileHandle copy(std::fopen(copy_.c_str(), "w"));
  if (!request || !copy) std::abort();
  std::vector<char> line(longest + 2);
  while (std::fgets(line.data(), static_cast<int>(line.size()), request.get()) != nullptr) {
    std::fputs(line.data(), copy.get());
  }
}

void WorkFiles::removeOutputs() const {
  std::filesystem::remove(response_);
  std::filesystem::remove(copy_);
}

void giveUp(const char* why) { throw std::runtime_error(why); }

void compare(benchmark::State& state, const std::function<void()>& prepare,
             const std::function<void()>& bare, const std::function<void()>& whole) {
  const SilentConsole silence;
  std::vector<double> bareSeconds;
  std::vector<double> wholeSeconds;
  for (auto iteration : state) {
    (void)iteration;
    prepare();
    bareSeconds.push_back(secondsOf(bare));
    prepare();
    wholeSeconds.push_back(secondsOf(whole));
    state.SetIterationTime(wholeSeconds.back());
  }
  const double bareMedian = median(bareSeconds);
  const double wholeMedian = median(wholeSeconds);
  state.counters["bare"] = bareMedian * 1e3;
  state.counters["whole"] = wholeMedian * 1e3;
  state.counters["ratio"] = wholeMedian / bareMedian;
}
