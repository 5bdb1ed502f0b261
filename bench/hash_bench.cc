#include <benchmark/benchmark.h>
#include <gnutls/crypto.h>
#include <gnutls/gnutls.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "driver/test_config.h"
#include "hash/pseudo_random_messages.h"
#include "hash/short_and_long_messages.h"
#include "side_by_side.h"

// Hash tests beside the GnuTLS calls that they cannot do without.

namespace {

// bareDigest is what one digest costs, with a handle of its own.
void bareDigest(gnutls_digest_algorithm_t digest, const std::vector<std::uint8_t>& data,
                std::size_t length) {
  std::array<std::uint8_t, runner::kMaxDigestLength> out{};
  gnutls_hash_hd_t handle = nullptr;
  if (gnutls_hash_init(&handle, digest) < 0) return;
  gnutls_hash(handle, data.data(), length);
  gnutls_hash_output(handle, out.data());
  gnutls_hash_deinit(handle, nullptr);
  benchmark::DoNotOptimize(out);
}

runner::TestConfig hashConfig(runner::HashId hashId) {
  return {.testFunction = runner::TestFunction::HASH, .hashId = hashId};
}

// The chained test, 100 passes of 1000 steps.
void chainedDigests(benchmark::State& state, runner::HashId hashId,
                    gnutls_digest_algorithm_t digest) {
  constexpr int kSteps = 100'000;
  const auto length = static_cast<std::size_t>(runner::findHash(hashId)->digestLength);
  const std::string bits = std::to_string(8 * length);
  const WorkFiles files(
      "[Number of Inner-loop for PGMT]\n1000\n[Number of Outer-loop for PGMT]\n100\n"
      "[Initial Data for PGMT]\n" +
      std::string(2 * length, '5') + "\n[Bitlength of Initial Data for PGMT]\n" + bits + "\n");
  const std::vector<std::uint8_t> data(3 * length, 0x55);
  const auto bare = [&] {
    for (int step = 0; step < kSteps; ++step) bareDigest(digest, data, data.size());
  };
  const auto whole = [&] {
    if (runner::procPGMT(hashConfig(hashId), files.request(), files.response()) != 0) {
      giveUp("the test failed");
    }
  };
  compare(
      state, [&] { files.removeOutputs(); }, bare, whole);
}
BENCHMARK_CAPTURE(chainedDigests, SHA256, runner::HashId::SHA256, GNUTLS_DIG_SHA256)
    ->Name("SHA-256 chain, 1000 x 100")
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->MinTime(2);
BENCHMARK_CAPTURE(chainedDigests, SHA512, runner::HashId::SHA512, GNUTLS_DIG_SHA512)
    ->Name("SHA-512 chain, 1000 x 100")
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->MinTime(2);

// The long message test with 42 MB in 64 messages, beside copying its request and the digests.
void longMessages(benchmark::State& state) {
  constexpr std::size_t kMessages = 64;
  constexpr std::size_t kBound = 20'001;
  const auto length = [](std::size_t j) { return kMessages + j * (kBound - 1); };
  std::string request = "[Upperbound of SLMT]\n" + std::to_string(kBound) + "\n[Data of SLMT]\n";
  for (std::size_t j = 1; j <= kMessages; ++j) {
    request.append(2 * length(j), 'C').push_back('\n');
  }
  const WorkFiles files(request);
  const std::vector<std::uint8_t> data(length(kMessages), 0xCC);
  const auto bare = [&] {
    files.copyRequest();
    for (std::size_t j = 1; j <= kMessages; ++j) bareDigest(GNUTLS_DIG_SHA256, data, length(j));
  };
  const auto whole = [&] {
    if (runner::procSLMT(hashConfig(runner::HashId::SHA256), files.request(), files.response()) !=
        0) {
      giveUp("the test failed");
    }
  };
  compare(
      state, [&] { files.removeOutputs(); }, bare, whole);
}
BENCHMARK(longMessages)
    ->Name("SHA-256, 64 long messages, 83 MB of text")
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->MinTime(3);

}  // namespace
