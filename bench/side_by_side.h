#ifndef RUNNER_BENCH_SIDE_BY_SIDE_H_
#define RUNNER_BENCH_SIDE_BY_SIDE_H_

#include <benchmark/benchmark.h>

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

// WorkFiles are the request and the response of a benchmark, in a directory of their own that goes
// with them.
class WorkFiles {
 public:
  explicit WorkFiles(std::string_view request);
  ~WorkFiles();
  WorkFiles(const WorkFiles&) = delete;
  WorkFiles& operator=(const WorkFiles&) = delete;

  [[nodiscard]] const char* request() const { return request_.c_str(); }
  [[nodiscard]] const char* response() const { return response_.c_str(); }
  [[nodiscard]] const char* copy() const { return copy_.c_str(); }

  // copyRequest copies the request to a new file, as a measure of what the files cost: the kernel
  // does it, which is the least that it can cost.
  void copyRequest() const;

  // copyRequestByLines does so with the line functions of the C library. No line is longer than
  // `longest` characters.
  void copyRequestByLines(std::size_t longest) const;

  // removeOutputs removes the response and the copy.
  void removeOutputs() const;

 private:
  std::filesystem::path directory_;
  std::string request_;
  std::string response_;
  std::string copy_;
};

// giveUp ends the run when a workload does not do its work; the program says why.
[[noreturn]] void giveUp(const char* why);

// compare runs `bare` and `whole` by turns and reports the time of `whole`, the median of each in
// milliseconds as the counters "whole" and "bare", and their quotient as the counter "ratio".
// `prepare` runs before each of them and is not measured. Standard output is discarded meanwhile.
void compare(benchmark::State& state, const std::function<void()>& prepare,
             const std::function<void()>& bare, const std::function<void()>& whole);

#endif  // RUNNER_BENCH_SIDE_BY_SIDE_H_
