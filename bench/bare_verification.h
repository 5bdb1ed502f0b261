#ifndef RUNNER_BENCH_BARE_VERIFICATION_H_
#define RUNNER_BENCH_BARE_VERIFICATION_H_

#include <benchmark/benchmark.h>
#include <gnutls/abstract.h>

#include <cstdint>
#include <functional>
#include <vector>

// lent lends bytes to GnuTLS.
inline gnutls_datum_t lent(std::vector<std::uint8_t>& bytes) {
  return {bytes.data(), static_cast<unsigned>(bytes.size())};
}

// verifyBare is what one signature costs the engine: a key, which `import` fills, the verification
// of `signature` over `message`, and the release of the key.
inline void verifyBare(std::vector<std::uint8_t>& message, std::vector<std::uint8_t>& signature,
                       gnutls_sign_algorithm_t algorithm,
                       const std::function<void(gnutls_pubkey_t)>& import) {
  const gnutls_datum_t messageDatum = lent(message);
  const gnutls_datum_t signatureDatum = lent(signature);
  gnutls_pubkey_t key = nullptr;
  gnutls_pubkey_init(&key);
  import(key);
  benchmark::DoNotOptimize(
      gnutls_pubkey_verify_data2(key, algorithm, 0, &messageDatum, &signatureDatum));
  gnutls_pubkey_deinit(key);
}

#endif  // RUNNER_BENCH_BARE_VERIFICATION_H_
