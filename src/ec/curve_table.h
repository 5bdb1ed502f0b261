#ifndef RUNNER_EC_CURVE_TABLE_H_
#define RUNNER_EC_CURVE_TABLE_H_

#include <gnutls/gnutls.h>

#include <array>
#include <cstddef>

// The prime curves of FIPS 186-4, appendix D.1.2: P-192, P-224, P-256, P-384 and P-521. A curve
// index is the index of a curve in this order, in all tables here.

namespace runner {

inline constexpr std::size_t kCurveCount = 5;

// CurveParams holds the domain parameters of one curve as text: p, n, a and h are decimal numbers,
// b, Gx and Gy lower-case hexadecimal digits. The coefficient a is "-3", not reduced modulo p.
struct CurveParams {
  const char* p;
  const char* a;
  const char* b;
  const char* Gx;
  const char* Gy;
  const char* n;
  const char* h;
  const char* name;  // "P-192"
};

extern const std::array<CurveParams, kCurveCount> curveTable;

// What OpenSSL calls the curves: the numbers for EC_GROUP_new_by_curve_name.
extern const std::array<int, kCurveCount> curveNids;

// What GnuTLS calls them.
extern const std::array<gnutls_ecc_curve_t, kCurveCount> gnutlsCurveIds;

}  // namespace runner

#endif  // RUNNER_EC_CURVE_TABLE_H_
