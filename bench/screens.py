#!/usr/bin/env python3
"""Checks of a screenshot set that its scorer (score.py, beside the manifest) leaves out.

    screens.py titles MANIFEST READ.jsonl
        Of the screenshots that hold text, how many got a title made of words on the screen,
        from the JSON Lines of `lumivale read --json`; and how many got a title of icon glyphs
        (none of its words on the screen).
    screens.py search MANIFEST LUMIVALE
        Scans the set's folder with `lumivale scan` in a temporary home, then searches each of
        the set's search terms with `lumivale search --json`: how often the term's screenshot
        (or a copy of it) comes first, and how often it is found at all.

Text is folded as the scorer folds it, so case and accents never matter.
"""
import json
import os
import re
import subprocess
import sys
import tempfile
import unicodedata


def load_scorer(manifest):
    sys.path.insert(0, os.path.dirname(os.path.abspath(manifest)))
    import score  # noqa: E402  (the set's own scorer, for its folding)
    return score


def entries(manifest):
    with open(manifest, encoding="utf-8") as fh:
        return json.load(fh)


def pct(a, b):
    return "%.1f%%" % (100.0 * a / b if b else 0.0)


def titles(manifest, jsonl):
    # Folded as the scorer folds, but digits stay apart: a title's "10 43" is the clock 10:43.
    def tokens(s):
        s = "".join(c for c in unicodedata.normalize("NFKD", s) if not unicodedata.combining(c))
        return re.findall(r"\w+", s.casefold())
    read = {}
    with open(jsonl, encoding="utf-8") as fh:
        for line in fh:
            if line.strip():
                o = json.loads(line)
                read[os.path.basename(o["path"])] = o
    with_text = on_screen = glyphs = 0
    wrong = []
    for e in entries(manifest):
        if e.get("failed") or not e["text"].strip():
            continue
        with_text += 1
        title = (read.get(e["file"]) or {}).get("title") or ""
        screen = set(tokens(e["text"]))
        words = tokens(title)
        # A title cut short ends in "…": its last word may be the start of a screen word.
        cut = title.endswith("\u2026")
        seen = [w in screen or (cut and i == len(words) - 1 and any(s.startswith(w) for s in screen))
                for i, w in enumerate(words)]
        if words and all(seen):
            on_screen += 1
            continue
        if not any(seen):
            glyphs += 1
        wrong.append("  %s: %r" % (e["file"], title or None))
    print("titles of on-screen words  %s  (%d/%d screenshots with text)" % (pct(on_screen, with_text), on_screen, with_text))
    print("titles of icon glyphs      %d  (no word of the title on the screen)" % glyphs)
    if wrong:
        print("titles with a word not on the screen (or none):")
        print("\n".join(wrong))


def search(manifest, lumivale):
    score = load_scorer(manifest)
    folder = os.path.dirname(os.path.abspath(manifest))
    with tempfile.TemporaryDirectory() as home:
        env = dict(os.environ, HOME=home, XDG_CONFIG_HOME=os.path.join(home, ".config"),
                   XDG_DATA_HOME=os.path.join(home, ".local/share"),
                   LUMIVALE_DATA_DIR=os.path.join(home, "data"))
        run = lambda *args: subprocess.run([lumivale, *args], env=env, stdout=subprocess.PIPE,
                                           stderr=subprocess.DEVNULL, text=True)
        run("folders", "add", folder)
        run("scan")
        # A screenshot and its copies in other formats are one screen.
        same = {}
        for e in entries(manifest):
            original = e.get("copy_of") or e["file"]
            same.setdefault(original, set()).add(e["file"])
        terms = first = found = 0
        missed = []
        for e in entries(manifest):
            screen = same[e.get("copy_of") or e["file"]]
            for term in e.get("search", []):
                terms += 1
                out = run("search", "--json", term).stdout
                names = [os.path.basename(json.loads(l)["path"]) for l in out.splitlines() if l.strip()]
                if names and names[0] in screen:
                    first += 1
                if screen & set(names):
                    found += 1
                else:
                    missed.append("  %s: %r" % (e["file"], term))
                if names and names[0] not in screen and screen & set(names):
                    missed.append("  %s: %r found, but %s first" % (e["file"], term, names[0]))
    print("search, screenshot first   %s  (%d/%d terms)" % (pct(first, terms), first, terms))
    print("search, screenshot found   %s  (%d/%d terms)" % (pct(found, terms), found, terms))
    if missed:
        print("terms not found, or found after another screenshot:")
        print("\n".join(missed))


if __name__ == "__main__":
    if len(sys.argv) != 4 or sys.argv[1] not in ("titles", "search"):
        print(__doc__, file=sys.stderr)
        sys.exit(2)
    {"titles": titles, "search": search}[sys.argv[1]](sys.argv[2], sys.argv[3])
