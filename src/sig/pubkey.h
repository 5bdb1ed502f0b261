#ifndef RUNNER_SIG_PUBKEY_H_
#define RUNNER_SIG_PUBKEY_H_

#include <memory>

#include "driver/test_config.h"

// The public keys of the signature tests, objects of the engine that verifies with them.

namespace runner {

// PubKey is one handle to a public key of the engine, null when there is none. It does not record
// what it points to; that follows from the run's engine and mode:
//   GnuTLS            a gnutls_pubkey_t, whatever the mode
//   any other engine  an OpenSSL DSA, EC_KEY or RSA in the modes DSA, ECDSA and RSASSA
// The adapters convert it with the functions of sig_handles.h.
struct PubKeyObject;
using PubKey = PubKeyObject*;

// freePubKey releases `key`, which was made for this mode and engine. It does nothing for a null
// key, and nothing for a mode of OpenSSL that has no keys.
void freePubKey(const ModeId& mode, const CryptEngine& engine, PubKey key);

// PubKeyDeleter releases the keys that are made for the run of `config`.
class PubKeyDeleter {
 public:
  explicit PubKeyDeleter(const TestConfig& config) : mode_(config.mode), engine_(config.engine) {}
  void operator()(PubKey key) const { freePubKey(mode_, engine_, key); }

 private:
  ModeId mode_;
  CryptEngine engine_;
};

// OwnedPubKey owns the key of one verification or validation. It starts as
// `OwnedPubKey key(nullptr, PubKeyDeleter(config))` and is filled by the operation that makes keys
// of its kind; the key is released when it goes out of scope or is filled again.
using OwnedPubKey = std::unique_ptr<PubKeyObject, PubKeyDeleter>;

}  // namespace runner

#endif  // RUNNER_SIG_PUBKEY_H_
