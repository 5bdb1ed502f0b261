#include <benchmark/benchmark.h>
#include <gnutls/crypto.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "cipher/monte_carlo.h"
#include "cipher/multi_block_message.h"
#include "driver/test_config.h"
#include "side_by_side.h"
#include "text/text_stream.h"

// procMCT and procMMT beside the GnuTLS calls that they cannot do without.

namespace {

using Cipher = int (*)(gnutls_cipher_hd_t, const void*, std::size_t, void*, std::size_t);

struct BareCipher {
  explicit BareCipher(const runner::TestConfig& config)
      : algorithm(config.keyLength == 32 ? GNUTLS_CIPHER_AES_256_CBC : GNUTLS_CIPHER_AES_128_CBC),
        compute(config.testFunction == runner::TestFunction::ENCRYPTION ? gnutls_cipher_encrypt2
                                                                        : gnutls_cipher_decrypt2),
        key(static_cast<std::size_t>(config.keyLength)) {}

  void run(const std::uint8_t* in, std::size_t length, std::uint8_t* out) {
    const gnutls_datum_t keyDatum{key.data(), static_cast<unsigned>(key.size())};
    const gnutls_datum_t ivDatum{iv.data(), static_cast<unsigned>(iv.size())};
    gnutls_cipher_hd_t handle = nullptr;
    gnutls_cipher_init(&handle, algorithm, &keyDatum, &ivDatum);
    compute(handle, in, length, out, length);
    gnutls_cipher_deinit(handle);
  }

  gnutls_cipher_algorithm_t algorithm;
  Cipher compute;
  std::vector<unsigned char> key;
  std::array<unsigned char, 16> iv{};
};

runner::TestConfig configOf(bool encrypts, int keyLength) {
  runner::TestConfig config;
  config.testFunction =
      encrypts ? runner::TestFunction::ENCRYPTION : runner::TestFunction::DECRYPTION;
  config.keyLength = keyLength;
  return config;
}

std::string textName(bool encrypts) { return encrypts ? "Plaintext" : "Ciphertext"; }

// 1000 inner and 100 outer iterations; the arguments are the key length in bytes and 1 for
// encryption.
void monteCarlo(benchmark::State& state) {
  const bool encrypts = state.range(1) == 1;
  const runner::TestConfig config = configOf(encrypts, static_cast<int>(state.range(0)));
  const std::string block(32, '0');
  const WorkFiles files(
      "[Number of Inner-loop for MCT]\n1000\n[Number of Outer-loop for MCT]\n100\n"
      "[Initial Key for MCT]\n" +
      std::string(2 * static_cast<std::size_t>(config.keyLength), '0') + "\n[Initial " +
      textName(encrypts) + " for MCT]\n" + block + "\n[Initial IV for MCT]\n" + block + "\n");
  BareCipher cipher(config);
  std::array<std::uint8_t, 16> text{};
  compare(
      state, [&] { files.removeOutputs(); },
      [&] {
        for (int i = 0; i < 100'000; ++i) cipher.run(text.data(), text.size(), text.data());
      },
      [&] {
        if (runner::procMCT(config, files.request(), files.response()) < 0) {
          giveUp("procMCT failed");
        }
      });
}
BENCHMARK(monteCarlo)
    ->Name("AES Monte Carlo, 1000 x 100")
    ->ArgNames({"key bytes", "encryption"})
    ->ArgsProduct({{16, 32}, {0, 1}})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(31);

// One message of 1,000,000 blocks. The bare work reads the line, makes the engine call and writes
// the two lines.
void multiBlockMessage(benchmark::State& state) {
  constexpr std::size_t kBlocks = 1'000'000;
  const bool encrypts = state.range(1) == 1;
  const runner::TestConfig config = configOf(encrypts, static_cast<int>(state.range(0)));
  const std::string block(32, '0');
  const std::string digits(32 * kBlocks, 'A');
  const WorkFiles files(
      "[Number of Blocks for MMT]\n" + std::to_string(kBlocks) + "\n[Key for MMT]\n" +
      std::string(2 * static_cast<std::size_t>(config.keyLength), '0') + "\n[IV for MMT]\n" +
      block + "\n[" + textName(encrypts) + " for MMT]\n" + digits + "\n");
  BareCipher cipher(config);
  compare(
      state, [&] { files.removeOutputs(); },
      [&] {
        std::vector<char> line(digits.size() + 1);
        const runner::FileHandle request(std::fopen(files.request(), "r"));
        // The message stands on the eighth line.
        for (int number = 0; number < 8; ++number) {
          if (std::fgets(line.data(), static_cast<int>(line.size()), request.get()) == nullptr) {
            std::abort();
          }
        }
        std::vector<std::uint8_t> message(16 * kBlocks, 0xAA);
        cipher.run(message.data(), message.size(), message.data());
        const runner::FileHandle response(std::fopen(files.response(), "a"));
        std::fwrite(line.data(), 1, digits.size(), response.get());
        std::fwrite(line.data(), 1, digits.size(), response.get());
      },
      [&] {
        if (runner::procMMT(config, files.request(), files.response()) < 0) {
          giveUp("procMMT failed");
        }
      });
}
BENCHMARK(multiBlockMessage)
    ->Name("AES message of 1,000,000 blocks")
    ->ArgNames({"key bytes", "encryption"})
    ->Args({16, 1})
    ->Args({32, 0})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(15);

}  // namespace
