#ifndef RUNNER_SIG_OPENSSL_ERROR_H_
#define RUNNER_SIG_OPENSSL_ERROR_H_

namespace runner {

// The two codes that the EC tests ask for, in the layout of library, function and reason that
// OpenSSL had before 3.0.
inline constexpr unsigned long kPointIsNotOnCurve = 0x100B106B;
inline constexpr unsigned long kBadSignature = 0x2A066064;

// lastOpensslError is the code of the last EC key that could not be made, or of the last DSA or
// ECDSA verification that failed with an error, through OpenSSL; 0 when there was none. The EC
// tests word their diagnostics by it and reset it. Set it with recordOpensslError.
extern unsigned long lastOpensslError;

// recordOpensslError stores `code`, as ERR_get_error returned it, in lastOpensslError: the two
// errors above under those codes, every other one unchanged.
void recordOpensslError(unsigned long code);

// reportVerifyError takes the next code from OpenSSL's error queue (0 when it is empty), records
// it, and prints "NAME failed!!(TEXT)" with the name of the operation and the library's text.
void reportVerifyError(const char* operation);

}  // namespace runner

#endif  // RUNNER_SIG_OPENSSL_ERROR_H_
