#include "ec/curve_table.h"

#include <gnutls/gnutls.h>
#include <openssl/obj_mac.h>

#include <algorithm>
#include <array>

namespace runner {
namespace {

constexpr auto kCurves = std::to_array<CurveParams>({
    {
        .p = "6277101735386680763835789423207666416083908700390324961279",
        .a = "-3",
        .b = "64210519e59c80e70fa7e9ab72243049feb8deecc146b9b1",
        .Gx = "188da80eb03090f67cbf20eb43a18800f4ff0afd82ff1012",
        .Gy = "07192b95ffc8da78631011ed6b24cdd573f977a11e794811",
        .n = "6277101735386680763835789423176059013767194773182842284081",
        .h = "1",
        .name = "P-192",
        .opensslNid = NID_X9_62_prime192v1,
        .gnutlsId = GNUTLS_ECC_CURVE_SECP192R1,
    },
    {
        .p = "26959946667150639794667015087019630673557916260026308143510066298881",
        .a = "-3",
        .b = "b4050a850c04b3abf54132565044b0b7d7bfd8ba270b39432355ffb4",
        .Gx = "b70e0cbd6bb4bf7f321390b94a03c1d356c21122343280d6115c1d21",
        .Gy = "bd376388b5f723fb4c22dfe6cd4375a05a07476444d5819985007e34",
        .n = "26959946667150639794667015087019625940457807714424391721682722368061",
        .h = "1",
        .name = "P-224",
        .opensslNid = NID_secp224r1,
        .gnutlsId = GNUTLS_ECC_CURVE_SECP224R1,
    },
    {
        .p = "115792089210356248762697446949407573530086143415290314195533631308867097853951",
        .a = "-3",
        .b = "5ac635d8aa3a93e7b3ebbd55769886bc651d06b0cc53b0f63bce3c3e27d2604b",
        .Gx = "6b17d1f2e12c4247f8bce6e563a440f277037d812deb33a0f4a13945d898c296",
        .Gy = "4fe342e2fe1a7f9b8ee7eb4a7c0f9e162bce33576b315ececbb6406837bf51f5",
        .n = "115792089210356248762697446949407573529996955224135760342422259061068512044369",
        .h = "1",
        .name = "P-256",
        .opensslNid = NID_X9_62_prime256v1,
        .gnutlsId = GNUTLS_ECC_CURVE_SECP256R1,
    },
    {
        .p = "394020061963944792122790401001436138050797392704654466679482934042457217714968703290"
             "47266088258938001861606973112319",
        .a = "-3",
        .b = "b3312fa7e23ee7e4988e056be3f82d19181d9c6efe8141120314088f5013875ac656398d8a2ed19d2a85"
             "c8edd3ec2aef",
        .Gx = "aa87ca22be8b05378eb1c71ef320ad746e1d3b628ba79b9859f741e082542a385502f25dbf55296c3a54"
              "5e3872760ab7",
        .Gy = "3617de4a96262c6f5d9e98bf9292dc29f8f41dbd289a147ce9da3113b5f0b8c00a60b1ce1d7e819d7a43"
              "1d7c90ea0e5f",
        .n = "394020061963944792122790401001436138050797392704654466679469052796276593991132635693"
             "98956308152294913554433653942643",
        .h = "1",
        .name = "P-384",
        .opensslNid = NID_secp384r1,
        .gnutlsId = GNUTLS_ECC_CURVE_SECP384R1,
    },
    {
        .p = "686479766013060971498190079908139321726943530014330540939446345918554318339765605212"
             "2559640661454554977296311391480858037121987999716643812574028291115057151",
        .a = "-3",
        .b = "051953eb9618e1c9a1f929a21a0b68540eea2da725b99b315f3b8b489918ef109e156193951ec7e937b1"
             "652c0bd3bb1bf073573df883d2c34f1ef451fd46b503f00",
        .Gx = "c6858e06b70404e9cd9e3ecb662395b4429c648139053fb521f828af606b4d3dbaa14b5e77efe75928fe"
              "1dc127a2ffa8de3348b3c1856a429bf97e7e31c2e5bd66",
        .Gy = "11839296a789a3bc0045c8a5fb42c7d1bd998f54449579b446817afbd17273e662c97ee72995ef42640c"
              "550b9013fad0761353c7086a272c24088be94769fd16650",
        .n = "686479766013060971498190079908139321726943530014330540939446345918554318339765539424"
             "5057746333217197532963996371363321113864768612440380340372808892707005449",
        .h = "1",
        .name = "P-521",
        .opensslNid = NID_secp521r1,
        .gnutlsId = GNUTLS_ECC_CURVE_SECP521R1,
    },
});

}  // namespace

constinit const std::span<const CurveParams> curveTable = kCurves;

int findCurveName(std::string_view name) {
  const auto found = std::ranges::find(kCurves, name, &CurveParams::name);
  return found == kCurves.end() ? -1 : static_cast<int>(found - kCurves.begin());
}

}  // namespace runner
