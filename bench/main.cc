#include <benchmark/benchmark.h>

#include <cstdio>
#include <stdexcept>
#include <string>
#include <vector>

// Prints the workloads under the names that they have in the README.

namespace {

class TableReporter : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context&) override {
    std::printf("| Workload | Beside, ms | Test, ms | Ratio |\n| --- | --- | --- | --- |\n");
    return true;
  }

  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      std::string name = run.run_name.function_name;
      if (!run.run_name.args.empty()) name += ", " + run.run_name.args;
      std::printf("| %s | %.1f | %.1f | %.2f |\n", name.c_str(), run.counters.at("bare").value,
                  run.counters.at("whole").value, run.counters.at("ratio").value);
      std::fflush(stdout);
    }
  }
};

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  TableReporter reporter;
  try {
    benchmark::RunSpecifiedBenchmarks(&reporter);
  } catch (const std::runtime_error& error) {
    std::fprintf(stderr, "runner_bench: %s\n", error.what());
    return 1;
  }
}
