#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>
#include <vector>

#include "text/text_helpers.h"
#include "text/text_stream.h"

// The two conversions of hexadecimal text on a long value; bytes_per_second counts the text.

namespace {

constexpr std::size_t kBytes = 16'000'000;

void hexToBin(benchmark::State& state) {
  const std::string text(2 * kBytes, 'C');
  std::vector<std::uint8_t> bytes(kBytes);
  for (auto iteration : state) {
    (void)iteration;
    if (runner::hexToBin(text, bytes) != 0) state.SkipWithError("not converted");
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}
BENCHMARK(hexToBin);

void writeHex(benchmark::State& state) {
  const std::vector<std::uint8_t> bytes(kBytes, 0xC5);
  runner::TextWriter stream;
  if (!stream.create("/dev/null")) state.SkipWithError("no stream");
  for (auto iteration : state) {
    (void)iteration;
    runner::writeHex(stream, bytes);
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(2 * kBytes));
}
BENCHMARK(writeHex);

}  // namespace
