#ifndef RUNNER_EC_CURVE_TABLE_H_
#define RUNNER_EC_CURVE_TABLE_H_

#include <span>
#include <string_view>

namespace runner {

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
  int opensslNid;    // the number for EC_GROUP_new_by_curve_name
  int gnutlsId;      // the gnutls_ecc_curve_t
};

// curveTable holds the prime curves of FIPS 186-4, appendix D.1.2: P-192, P-224, P-256, P-384 and
// P-521. A curve index is an index of this table.
extern const std::span<const CurveParams> curveTable;

// findCurveName returns the index of the curve with this name, -1 when there is none.
int findCurveName(std::string_view name);

}  // namespace runner

#endif  // RUNNER_EC_CURVE_TABLE_H_
