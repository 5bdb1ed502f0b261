#include <gnutls/crypto.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "cipher/gcm_cases.h"
#include "side_by_side.h"

// AES-GCM requests beside the copying of the request file and the bare engine calls.

namespace {

// How the request is copied.
enum class Copying { KERNEL, LINES };

constexpr unsigned kKeyLength = 16;
constexpr unsigned kIvLength = 12;
constexpr std::size_t kAadLength = 20;
constexpr std::size_t kTagLength = 16;

struct Workload {
  int cases;
  std::size_t textLength;
};

std::string makeRequest(const Workload& load) {
  const std::string text(2 * load.textLength, '5');
  std::string request = "[Number of Plaintexts]\n" + std::to_string(load.cases) + "\n";
  for (int i = 0; i < load.cases; ++i) {
    request += "[Key]\n" + std::string(std::size_t{2} * kKeyLength, 'A') + "\n[IV]\n" +
               std::string(std::size_t{2} * kIvLength, 'B') + "\n[Plaintext]\n" + text +
               "\n[AAD]\n" + std::string(2 * kAadLength, 'C') + "\n";
  }
  return request;
}

// callEngine makes the five calls that each case costs.
void callEngine(const Workload& load) {
  std::vector<unsigned char> key(kKeyLength, 0xAA);
  std::vector<unsigned char> iv(kIvLength, 0xBB);
  const std::vector<unsigned char> aad(kAadLength, 0xCC);
  const std::vector<unsigned char> input(load.textLength, 0x55);
  std::vector<unsigned char> output(load.textLength);
  std::vector<unsigned char> tag(kTagLength);
  for (int i = 0; i < load.cases; ++i) {
    const gnutls_datum_t keyDatum{key.data(), kKeyLength};
    const gnutls_datum_t ivDatum{iv.data(), kIvLength};
    gnutls_cipher_hd_t handle = nullptr;
    if (gnutls_cipher_init(&handle, GNUTLS_CIPHER_AES_128_GCM, &keyDatum, &ivDatum) < 0) return;
    gnutls_cipher_add_auth(handle, aad.data(), aad.size());
    gnutls_cipher_encrypt2(handle, input.data(), input.size(), output.data(), output.size());
    gnutls_cipher_tag(handle, tag.data(), tag.size());
    gnutls_cipher_deinit(handle);
  }
}

void runGcm(benchmark::State& state, Workload load, Copying copying) {
  const WorkFiles files(makeRequest(load));
  const runner::TestConfig config{.testFunction = runner::TestFunction::AEAD_ENCRYPTION,
                                  .keyLength = kKeyLength,
                                  .maxTextLength = static_cast<int>(load.textLength)};
  compare(
      state, [&] { files.removeOutputs(); },
      [&] {
        if (copying == Copying::KERNEL) {
          files.copyRequest();
        } else {
          files.copyRequestByLines(2 * load.textLength);
        }
        callEngine(load);
      },
      [&] {
        if (runner::procAEAD(config, files.request(), files.response()) < 0) {
          giveUp("procAEAD failed");
        }
      });
}
BENCHMARK_CAPTURE(runGcm, shortInKernel, Workload{20'000, 51}, Copying::KERNEL)
    ->Name("AES-GCM, 20,000 cases of 51 bytes, copied in the kernel")
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(61);
BENCHMARK_CAPTURE(runGcm, shortByLines, Workload{20'000, 51}, Copying::LINES)
    ->Name("AES-GCM, 20,000 cases of 51 bytes, copied by lines")
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(61);
BENCHMARK_CAPTURE(runGcm, longInKernel, Workload{20, 8'000'000}, Copying::KERNEL)
    ->Name("AES-GCM, 20 cases of 8 MB, copied in the kernel")
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(9);
BENCHMARK_CAPTURE(runGcm, longByLines, Workload{20, 8'000'000}, Copying::LINES)
    ->Name("AES-GCM, 20 cases of 8 MB, copied by lines")
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(9);

}  // namespace
