#ifndef RUNNER_SIG_PUBKEY_H_
#define RUNNER_SIG_PUBKEY_H_

#include <memory>

#include "driver/test_config.h"

// The public keys of the signature tests, objects of the engine that verifies with them, and what a
// verification yields.

namespace runner {

// The results of a verification or a validation; -1 means that none could be made.
inline constexpr int kVerified = 0;
inline constexpr int kNotVerified = 1;

// Verdict is what becomes of one record of a signature test.
enum class Verdict {
  PASS,
  FAIL,
  STOP,  // the test cannot go on; why has been printed, if there is anything to say
};

// verdictOf returns the verdict for the result of a verification: STOP when none could be made.
constexpr Verdict verdictOf(int result) {
  if (result < 0) return Verdict::STOP;
  return result == kVerified ? Verdict::PASS : Verdict::FAIL;
}

// PubKey is one handle to a public key of the engine, null when there is none. It does not record
// what it points to; that follows from the engine and the mode for which it was made:
//   GnuTLS            a gnutls_pubkey_t, whatever the mode
//   any other engine  an OpenSSL DSA, EC_KEY or RSA in the modes DSA, ECDSA and RSASSA
// The adapters convert it with the functions of sig_handles.h.
struct PubKeyObject;
using PubKey = PubKeyObject*;

// freePubKey releases `key`, which was made for this mode and engine. It does nothing for a null
// key, and nothing for a mode of OpenSSL that has no keys.
void freePubKey(const ModeId& mode, const CryptEngine& engine, PubKey key);

// PubKeyDeleter releases a key as what it was made: for this mode and engine.
struct PubKeyDeleter {
  ModeId mode = ModeId::RSASSA;
  CryptEngine engine = CryptEngine::GNUTLS;

  void operator()(PubKey key) const { freePubKey(mode, engine, key); }
};

// OwnedPubKey owns the key of one verification or validation. It starts empty and is filled by the
// operation that makes the key; that one knows the kind of the key, whatever the mode of the run.
using OwnedPubKey = std::unique_ptr<PubKeyObject, PubKeyDeleter>;

}  // namespace runner

#endif  // RUNNER_SIG_PUBKEY_H_
