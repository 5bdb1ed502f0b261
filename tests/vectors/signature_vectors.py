#!/usr/bin/env python3
"""Prints the rows of signatures.txt: keys and signatures of one message with every hash, computed
from the definitions (FIPS 186-4 for DSA and ECDSA, RFC 8017 for RSASSA-PKCS1-v1_5)."""

import hashlib
import pathlib

MESSAGE = bytes.fromhex("0123456789")
HASHES = ["1", "224", "256", "384", "512"]

# FIPS 186-4, appendix D.1.2: p, b, the base point and its order; a is -3.
CURVES = {
    192: (
        2**192 - 2**64 - 1,
        "64210519E59C80E70FA7E9AB72243049FEB8DEECC146B9B1",
        "188DA80EB03090F67CBF20EB43A18800F4FF0AFD82FF1012",
        "07192B95FFC8DA78631011ED6B24CDD573F977A11E794811",
        "FFFFFFFFFFFFFFFFFFFFFFFF99DEF836146BC9B1B4D22831",
    ),
    224: (
        2**224 - 2**96 + 1,
        "B4050A850C04B3ABF54132565044B0B7D7BFD8BA270B39432355FFB4",
        "B70E0CBD6BB4BF7F321390B94A03C1D356C21122343280D6115C1D21",
        "BD376388B5F723FB4C22DFE6CD4375A05A07476444D5819985007E34",
        "FFFFFFFFFFFFFFFFFFFFFFFFFFFF16A2E0B8F03E13DD29455C5C2A3D",
    ),
    256: (
        2**256 - 2**224 + 2**192 + 2**96 - 1,
        "5AC635D8AA3A93E7B3EBBD55769886BC651D06B0CC53B0F63BCE3C3E27D2604B",
        "6B17D1F2E12C4247F8BCE6E563A440F277037D812DEB33A0F4A13945D898C296",
        "4FE342E2FE1A7F9B8EE7EB4A7C0F9E162BCE33576B315ECECBB6406837BF51F5",
        "FFFFFFFF00000000FFFFFFFFFFFFFFFFBCE6FAADA7179E84F3B9CAC2FC632551",
    ),
    384: (
        2**384 - 2**128 - 2**96 + 2**32 - 1,
        "B3312FA7E23EE7E4988E056BE3F82D19181D9C6EFE8141120314088F5013875A"
        "C656398D8A2ED19D2A85C8EDD3EC2AEF",
        "AA87CA22BE8B05378EB1C71EF320AD746E1D3B628BA79B9859F741E082542A38"
        "5502F25DBF55296C3A545E3872760AB7",
        "3617DE4A96262C6F5D9E98BF9292DC29F8F41DBD289A147CE9DA3113B5F0B8C0"
        "0A60B1CE1D7E819D7A431D7C90EA0E5F",
        "FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFC7634D81F4372DDF"
        "581A0DB248B0A77AECEC196ACCC52973",
    ),
    521: (
        2**521 - 1,
        "0051953EB9618E1C9A1F929A21A0B68540EEA2DA725B99B315F3B8B489918EF1"
        "09E156193951EC7E937B1652C0BD3BB1BF073573DF883D2C34F1EF451FD46B50"
        "3F00",
        "00C6858E06B70404E9CD9E3ECB662395B4429C648139053FB521F828AF606B4D"
        "3DBAA14B5E77EFE75928FE1DC127A2FFA8DE3348B3C1856A429BF97E7E31C2E5"
        "BD66",
        "011839296A789A3BC0045C8A5FB42C7D1BD998F54449579B446817AFBD17273E"
        "662C97EE72995EF42640C550B9013FAD0761353C7086A272C24088BE94769FD1"
        "6650",
        "01FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF"
        "FFFA51868783BF2F966B7FCC0148F709A5D03BB5C9B8899C47AEBB6FB71E9138"
        "6409",
    ),
}

# The beginnings of DER's DigestInfo, RFC 8017, section 9.2.
DIGEST_INFO = {
    "1": "3021300906052B0E03021A05000414",
    "224": "302D300D06096086480165030402040500041C",
    "256": "3031300D060960864801650304020105000420",
    "384": "3041300D060960864801650304020205000430",
    "512": "3051300D060960864801650304020305000440",
}


def row(**values):
    print(" ".join(f"{name} {value}" for name, value in values.items()))


def text(number, length):
    return number.to_bytes(length, "big").hex().upper()


def number_of(seed, bits):
    """Returns a number of that many bits, the same one for the same seed."""
    return int.from_bytes(hashlib.shake_256(seed.encode()).digest(bits // 8), "big") | 1 << bits - 1


def add(one, other, p):
    """Adds two points, of which neither is the other's negative."""
    if one is None or other is None:
        return one or other
    if one == other:
        slope = (3 * one[0] ** 2 - 3) * pow(2 * one[1], -1, p)
    else:
        slope = (other[1] - one[1]) * pow(other[0] - one[0], -1, p)
    x = (slope**2 - one[0] - other[0]) % p
    return x, (slope * (one[0] - x) - one[1]) % p


def multiply(factor, point, p):
    result = None
    for bit in f"{factor:b}":
        result = add(result, result, p)
        if bit == "1":
            result = add(result, point, p)
    return result


def sign_pair(name, private, order, first_of):
    """Prints r and s with every hash; `first_of` returns r for the secret number of a signature.
    Neither begins with a zero byte: OpenSSL's DSA refuses one in front."""
    length = (order.bit_length() + 7) // 8
    for name_of_hash in HASHES:
        digest = hashlib.new("sha" + name_of_hash, MESSAGE).digest()
        excess = max(0, 8 * len(digest) - order.bit_length())
        z = int.from_bytes(digest, "big") >> excess
        least, tries, r, s = 1 << 8 * length - 8, 0, 0, 0
        while min(r, s) < least:
            k = number_of(f"{name} {name_of_hash} {tries}", order.bit_length() // 8 * 8) % order
            r = first_of(k) % order
            s = pow(k, -1, order) * (z + r * private) % order
            tries += 1
        row(hash=name_of_hash, r=text(r, length), s=text(s, length))


def print_curve(index, bits):
    p, *others = CURVES[bits]
    b, base_x, base_y, order = (int(number, 16) for number in others)
    length = (bits + 7) // 8
    base = base_x, base_y
    private = number_of(f"P-{bits}", bits // 8 * 8) % order
    x, y = (text(number, length) for number in multiply(private, base, p))
    row(algorithm="ecdsa", curve=bits, id=index, p=text(p, length), a=text(p - 3, length), b=text(b, length),
        base="04" + text(base_x, length) + text(base_y, length), order=text(order, length),
        x=x, y=y, key="04" + x + y)
    sign_pair(f"P-{bits}", private, order, lambda k: multiply(k, base, p)[0])


def print_dsa():
    """With the domain parameters of the example."""
    root = pathlib.Path(__file__).resolve().parents[2]
    example = (root / "examples/dsa-2048-256-sha-256-verification.req").read_text().split()
    p, q, g = example[example.index("[PQG]") + 1 :][:3]
    modulus, order, generator = (int(number, 16) for number in (p, q, g))
    private = number_of("DSA", 256) % order
    y = text(pow(generator, private, modulus), 256)
    row(algorithm="dsa", p=p, q=q, g=g, y=y, key=y)
    sign_pair("DSA", private, order, lambda k: pow(generator, k, modulus))


def next_prime(number):
    """Returns a prime of which 65537 does not divide the predecessor."""
    number |= 1
    while number % 65537 == 1 or any(pow(base, number - 1, number) != 1 for base in (2, 3, 5)):
        number += 2
    return number


def print_rsa():
    primes = [next_prime(number_of(seed, 512) | 1 << 510) for seed in ("RSA p", "RSA q")]
    n = primes[0] * primes[1]
    private = pow(65537, -1, (primes[0] - 1) * (primes[1] - 1))
    row(algorithm="rsa", n=text(n, 128))
    for name in HASHES:
        encoded = DIGEST_INFO[name] + hashlib.new("sha" + name, MESSAGE).hexdigest()
        padded = "0001" + "FF" * (125 - len(encoded) // 2) + "00" + encoded
        row(hash=name, signature=text(pow(int(padded, 16), private, n), 128))


print("""# Keys with their domain parameters, and below each one its signatures of the message 0123456789, as
# names and values: the output of signature_vectors.py.
""")
for at, size in enumerate(CURVES):
    print_curve(at, size)
print_dsa()
print_rsa()
