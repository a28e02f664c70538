"""An independent reader and writer of locked files for the vault's tests: the magic, the sealed
header's length (4 bytes, big-endian), the sealed header (a binary property list), the sealed
body; each sealed part AES-256-GCM as nonce (12) || ciphertext || tag (16).
Usage: open KEYHEX FILE (prints "name=value" lines) | seal KEYHEX FILE PICTURE ID SHOTPATH LOCKEDAT
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


def seal(key, plain):
    nonce = os.urandom(12)
    return nonce + AESGCM(key).encrypt(nonce, plain, None)


def open_file(key, path):
    data = open(path, "rb").read()
    (h,) = struct.unpack(">I", data[17:21])
    boxes = data[21 : 21 + h], data[21 + h :]
    print(f"layout={data[:17] == MAGIC} {len(boxes[1])}")
    print("nonces=" + " ".join(box[:12].hex() for box in boxes))
    header, body = (AESGCM(key).decrypt(box[:12], box[12:], None) for box in boxes)
    header = plistlib.loads(header, fmt=plistlib.FMT_BINARY)
    print(f"header={','.join(header)}|{header['id']}|{seconds(header['lockedAt']):.6f}")
    shot = header["shot"]
    lines = ";".join(line["text"] for line in shot["lines"])
    print(f"shot={shot['path']}|{shot['size']}|{seconds(shot['modified']):.6f}|{shot['guess']}|"
          f"{','.join(sorted(shot['flags']))}|{lines}")
    print("body=" + body.hex())


def seal_file(key, out, picture, locked_id, shot_path, locked_at):
    picture_bytes = open(picture, "rb").read()
    when = EPOCH + datetime.timedelta(seconds=float(locked_at))
    day = datetime.timedelta(days=1)
    line = {"text": "Card 4111 1111 1111 1111", "x": 0.1, "y": 0.8, "w": 0.5, "h": 0.05}
    shot = {
        "path": shot_path, "size": len(picture_bytes), "created": when - 2 * day,
        "modified": when - day, "pixelWidth": 640, "pixelHeight": 480, "lines": [line],
        "barcodes": [], "guess": "bills", "guessScore": 2.5, "flags": ["cardNumber"],
        "readAt": when, "failed": False, "reader": 1, "folded": line["text"].lower(),
    }
    header = {"id": locked_id, "shot": shot, "lockedAt": when}
    sealed_header = seal(key, plistlib.dumps(header, fmt=plistlib.FMT_BINARY))
    os.makedirs(os.path.dirname(out), exist_ok=True)
    with open(out, "wb") as f:
        f.write(MAGIC + struct.pack(">I", len(sealed_header)) + sealed_header)
        f.write(seal(key, picture_bytes))


if __name__ == "__main__":
    command, key = sys.argv[1], bytes.fromhex(sys.argv[2])
    if command == "open":
        open_file(key, sys.argv[3])
    else:
        seal_file(key, *sys.argv[3:8])
