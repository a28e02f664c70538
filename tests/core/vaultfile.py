"""An independent reader and writer of locked files, for the vault's tests.

A locked file is the magic "LUMIVALE-VAULT-1\\n", the sealed header's length H (4 bytes,
big-endian), the sealed header, then the sealed body. Each sealed part is AES-256-GCM in the
combined form nonce (12) || ciphertext || tag (16). The header is a binary property list with
the keys "id", "shot", "lockedAt".

    vaultfile.py open KEYHEX FILE
        prints what it found, one "name=value" per line
    vaultfile.py seal KEYHEX FILE PICTURE ID SHOTPATH LOCKEDAT
        writes a locked file of PICTURE under that id, shot path and lock time (seconds
        since 1970)
"""

import datetime
import os
import plistlib
import struct
import sys

from cryptography.hazmat.primitives.ciphers.aead import AESGCM

MAGIC = b"LUMIVALE-VAULT-1\n"
EPOCH = datetime.datetime(1970, 1, 1)


def seconds(date):
    return (date - EPOCH).total_seconds()


def unseal(key, box):
    return AESGCM(key).decrypt(box[:12], box[12:], None)


def seal(key, plain):
    nonce = os.urandom(12)
    return nonce + AESGCM(key).encrypt(nonce, plain, None)


def open_file(key, path):
    data = open(path, "rb").read()
    print("magic=" + ("ok" if data[: len(MAGIC)] == MAGIC else "wrong"))
    (h,) = struct.unpack(">I", data[17:21])
    print(f"headerLength={h}")
    print(f"bodyLength={len(data) - 21 - h}")
    header_box, body_box = data[21 : 21 + h], data[21 + h :]
    print("nonces=" + header_box[:12].hex() + " " + body_box[:12].hex())
    header = plistlib.loads(unseal(key, header_box), fmt=plistlib.FMT_BINARY)
    print(f"header={','.join(header)}|{header['id']}|{seconds(header['lockedAt']):.6f}")
    shot = header["shot"]
    lines = ";".join(line["text"] for line in shot["lines"])
    print(f"shot={shot['path']}|{shot['size']}|{seconds(shot['modified']):.6f}|{shot['guess']}|"
          f"{','.join(sorted(shot['flags']))}|{lines}")
    print("body=" + unseal(key, body_box).hex())


def seal_file(key, out, picture, locked_id, shot_path, locked_at):
    picture_bytes = open(picture, "rb").read()
    when = EPOCH + datetime.timedelta(seconds=float(locked_at))
    shot = {
        "path": shot_path,
        "size": len(picture_bytes),
        "created": when - datetime.timedelta(days=2),
        "modified": when - datetime.timedelta(days=1),
        "pixelWidth": 640,
        "pixelHeight": 480,
        "lines": [{"text": "Card 4111 1111 1111 1111", "x": 0.1, "y": 0.8, "w": 0.5, "h": 0.05}],
        "barcodes": [],
        "guess": "bills",
        "guessScore": 2.5,
        "flags": ["cardNumber"],
        "readAt": when,
        "failed": False,
        "reader": 1,
        "folded": "card 4111 1111 1111 1111\nwritten-by-python.png",
    }
    header = plistlib.dumps(
        {"id": locked_id, "shot": shot, "lockedAt": when}, fmt=plistlib.FMT_BINARY
    )
    sealed_header = seal(key, header)
    with open(out, "wb") as f:
        f.write(MAGIC + struct.pack(">I", len(sealed_header)) + sealed_header)
        f.write(seal(key, picture_bytes))


if __name__ == "__main__":
    command, key = sys.argv[1], bytes.fromhex(sys.argv[2])
    if command == "open":
        open_file(key, sys.argv[3])
    else:
        seal_file(key, *sys.argv[3:8])
