#!/usr/bin/env python3
"""Prints the values of aes.txt that are not published as lists: Monte Carlo chains (AESAVS, section
6.4) and AES-GCM with an IV of 32 bytes. The AES is PyCryptodome's (Debian: python3-pycryptodome)."""

from Cryptodome.Cipher import AES

IV = bytes.fromhex("000102030405060708090A0B0C0D0E0F")
TEXT = bytes.fromhex("6BC1BEE22E409F96E93D7E117393172A")
KEYS = {
    128: "2B7E151628AED2A6ABF7158809CF4F3C",
    256: "603DEB1015CA71BE2B73AEF0857D77811F352C073B6108D72D9810A30914DFF4",
}
GCM_KEY = "FEFFE9928665731C6D6A8F9467308308"
GCM_IV = "9313225DF88406E555909C5AFF5269AA6A7A9538534F7DA1E4C303D2A318A728"
GCM_TEXT = (
    "D9313225F88406E5A55909C5AFF5269A86A7A9531534F7DA2E4C303D8A318A72"
    "1C3C0C95956809532FCF0E2449A6B525B16AEDF5AA0DE657BA637B39"
)
GCM_AAD = "FEEDFACEDEADBEEFFEEDFACEDEADBEEFABADDAD2"


def xor(a, b):
    return bytes(x ^ y for x, y in zip(a, b))


def monte_carlo(mode, function, key, inner=1000, outer=2):
    """Returns the last output of each outer iteration."""
    iv, text, results = IV, TEXT, []
    for _ in range(outer):
        aes = AES.new(key, AES.MODE_ECB)
        outputs, chained = [], iv
        for j in range(inner):
            if mode == "ECB":
                output = aes.encrypt(text) if function == "Encryption" else aes.decrypt(text)
                next_text = output
            else:
                if function == "Encryption":
                    output = chained = aes.encrypt(xor(text, chained))
                else:
                    output, chained = xor(aes.decrypt(text), chained), text
                next_text = outputs[j - 1] if j > 0 else iv
            outputs.append(output)
            text = next_text
        results.append(outputs[-1])
        iv = outputs[-1]
        key = xor(key, (outputs[-2] + outputs[-1])[-len(key):])
    return results


for mode in "CBC", "ECB":
    for bits, key in KEYS.items():
        for function in "Encryption", "Decryption":
            chain = monte_carlo(mode, function, bytes.fromhex(key))
            print(f"mct {mode} {bits} {function}:", *(block.hex().upper() for block in chain))
for bits in KEYS:
    aead = AES.new(bytes.fromhex(GCM_KEY * (bits // 128)), AES.MODE_GCM, bytes.fromhex(GCM_IV))
    aead.update(bytes.fromhex(GCM_AAD))
    answer, tag = aead.encrypt_and_digest(bytes.fromhex(GCM_TEXT))
    print(f"gcm 32 {bits}:", answer.hex().upper(), tag.hex().upper())
