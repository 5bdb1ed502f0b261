#include "ec/curve_lookup.h"

#include <openssl/bn.h>

#include <algorithm>
#include <array>
#include <utility>

#include "ec/curve_table.h"
#include "sig/sig_handles.h"
#include "text/diagnostics.h"
#include "text/owner.h"
#include "text/text_helpers.h"

namespace runner {
namespace {

using NumberContext = Owner<BN_CTX, BN_CTX_free>;

struct DomainNumbers {
  std::array<BigNumber, 6> numbers;  // p, a, b, Gx, Gy and n
  int cofactor;
};

BigNumber fromDecimal(const char* digits) {
  BIGNUM* number = nullptr;
  BN_dec2bn(&number, digits);
  return BigNumber(number);
}

BigNumber fromHex(const char* digits) {
  BIGNUM* number = nullptr;
  BN_hex2bn(&number, digits);
  return BigNumber(number);
}

// reduced returns `number` modulo `modulus`, never negative; null when there is no memory.
BigNumber reduced(BigNumber number, const BigNumber& modulus) {
  const NumberContext context(BN_CTX_new());
  if (!number || !modulus || !context) return {};
  if (BN_nnmod(number.get(), number.get(), modulus.get(), context.get()) != 1) return {};
  return number;
}

DomainNumbers curveNumbers(const CurveParams& curve) {
  BigNumber p = fromDecimal(curve.p);
  BigNumber a = reduced(fromDecimal(curve.a), p);
  return {{std::move(p), std::move(a), fromHex(curve.b), fromHex(curve.Gx), fromHex(curve.Gy),
           fromDecimal(curve.n)},
          decimal(curve.h)};
}

DomainNumbers requestNumbers(const EcParams& params, const EcPoint& base) {
  const auto cofactor = params[SLOT_H];
  return {{bigNumber(params[SLOT_P]), bigNumber(params[SLOT_A]), bigNumber(params[SLOT_B]),
           bigNumber(base.x), bigNumber(base.y), bigNumber(params[SLOT_N])},
          decimal({reinterpret_cast<const char*>(cofactor.data()), cofactor.size()})};
}

bool isSameNumber(const BigNumber& number, const BigNumber& other) {
  return number && other && BN_cmp(number.get(), other.get()) == 0;
}

bool isSameDomain(const DomainNumbers& domain, const DomainNumbers& other) {
  return domain.cofactor == other.cofactor &&
         std::ranges::equal(domain.numbers, other.numbers, isSameNumber);
}

}  // namespace

int findCurve(const EcParams& params) {
  const auto base = splitPoint(params[SLOT_G]);
  if (!base) return failWith("Unsupported format of G!!");
  const DomainNumbers request = requestNumbers(params, *base);
  for (std::size_t index = 0; index < curveTable.size(); ++index) {
    if (isSameDomain(request, curveNumbers(curveTable[index]))) return static_cast<int>(index);
  }
  return -1;
}

}  // namespace runner
