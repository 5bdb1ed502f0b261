#include <cstdlib>

// Engines that stop the process: GnuTLS when it is to hash, OpenSSL when it is to verify an RSA
// signature. The linker gives these names to the wrapped functions; what they are called with does
// not matter.
// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
extern "C" {

[[gnu::used]] int __wrap_gnutls_hash_init() { std::abort(); }
[[gnu::used]] int __wrap_RSA_verify() { std::abort(); }
}
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
