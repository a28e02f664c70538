#include "core/Library.h"
#include "core/Plist.h"
#include "support/PlistInterop.h"
#include "support/TempDir.h"

#include <algorithm>
#include <functional>
#include <gtest/gtest.h>
#include <random>
#include <sys/stat.h>

using namespace lumivale;
using namespace std::chrono;
using plist::Ref;

namespace {

Date at(sys_days day, nanoseconds time) {
    return Date(day) + time;
}

int64_t microsOf(Date d) {
    return duration_cast<microseconds>(d.time_since_epoch()).count();
}

Shot unreadShot(const std::string& path) {
    Shot shot(path, 48213, at(sys_days(2024y / March / 5), 36672345ms),
              at(sys_days(2024y / March / 6), 1500ms));
    shot.refold();
    return shot;
}

Shot readShot(const std::string& path) {
    Shot shot(path, 1234567, at(sys_days(2023y / December / 31), 86399999ms),
              at(sys_days(2024y / January / 1), 1ms));
    shot.pixelWidth = 1170;
    shot.pixelHeight = 2532;
    shot.setLines({{"Rechnung Nr. 4711 — Gesamt 1.234,56 €", 0.0625f, 0.875f, 0.5f, 0.03125f},
                   {"नमस्ते दुनिया 42", 0.1f, 0.2f, 0.3f, 0.4f},
                   {"ok 😀 👍🏽", 1.0f / 3, 0.7f, 0.01f, 0.02f},
                   {"", 0, 0, 0, 0}});
    shot.barcodes = {"https://example.org/ticket?id=ü", "1234567890128"};
    shot.guess = Shelf::bills;
    shot.guessScore = 3.75;
    shot.manual = Shelf::tickets;
    shot.flags = {SensitiveKind::cardNumber, SensitiveKind::taxID};
    shot.readAt = at(sys_days(2024y / February / 29), 43200123ms);
    shot.reader = 3;
    return shot;
}

Shot failedShot(const std::string& path) {
    Shot shot = unreadShot(path);
    shot.failed = true;
    shot.readAt = at(sys_days(2024y / April / 1), 0ms);
    shot.guess = Shelf::ids;
    shot.reader = 3;
    return shot;
}

Library sampleLibrary() {
    Library library;
    library.put(unreadShot("/home/me/Pictures/Screenshots/Screenshot 2024-03-05.png"));
    library.put(readShot("/home/me/Pictures/Écrans/Capture d’écran 😀.png"));
    library.put(failedShot("/home/me/Desktop/Skärmavbild.heic"));
    library.extraFolders = {"/home/me/Téléchargements", "/media/usb"};
    library.skippedFolders = {"/home/me/Desktop"};
    return library;
}

void expectSameLibrary(const Library& got, const Library& want) {
    EXPECT_EQ(got.version, Library::currentVersion);
    EXPECT_EQ(got.extraFolders, want.extraFolders);
    EXPECT_EQ(got.skippedFolders, want.skippedFolders);
    ASSERT_EQ(got.shots.size(), want.shots.size());
    for (const auto& [path, shot] : want.shots) {
        SCOPED_TRACE(path);
        ASSERT_TRUE(got.find(path));
        EXPECT_EQ(*got.find(path), *shot);
    }
}

TEST(LibraryFileTest, SavesAndLoadsEveryField) {
    const test::TempDir dir;
    const std::string file = dir.file("data/Lumivale/library.plist");
    const Library library = sampleLibrary();
    ASSERT_TRUE(library.save(file)) << "the folder is made first";
    const auto loaded = Library::load(file);
    ASSERT_TRUE(loaded);
    expectSameLibrary(*loaded, library);

    ASSERT_TRUE(Library().save(file));
    const auto empty = Library::load(file);
    ASSERT_TRUE(empty);
    EXPECT_TRUE(empty->shots.empty());
    EXPECT_TRUE(empty->extraFolders.empty());
}

TEST(LibraryFileTest, ALargeLibraryComesBackWhole) {
    // Several megabytes and thousands of shots, so the file is written and read in many pieces.
    Library library;
    for (int i = 0; i < 6000; ++i) {
        Shot shot =
            unreadShot("/home/me/Pictures/Screenshots/Screen " + std::to_string(i) + ".png");
        shot.setLines(
            {{"Überweisung " + std::to_string(i * 37) + " EUR an Zoë", 0.1f, 0.9f, 0.5f, 0.02f},
             {"line two of shot " + std::to_string(i), 0.1f, 0.8f, 0.4f, 0.02f}});
        shot.readAt = shot.created + seconds(i);
        library.put(std::move(shot));
    }
    const test::TempDir dir;
    ASSERT_TRUE(library.save(dir.file("library.plist")));
    EXPECT_GT(std::filesystem::file_size(dir.file("library.plist")), 2u << 20);
    const auto loaded = Library::load(dir.file("library.plist"));
    ASSERT_TRUE(loaded);
    expectSameLibrary(*loaded, library);
}

TEST(LibraryFileTest, PathsThatAreNotUtf8AreKeptWithReplacementCharacters) {
    // Linux file names are bytes; the file holds text, so two names that differ only in bytes
    // that are not UTF-8 come back as one path.
    Library library;
    library.put(unreadShot("/home/me/caf\xe9.png"));
    library.put(unreadShot("/home/me/caf\xe8.png"));
    library.put(unreadShot("/home/me/ok.png"));
    const test::TempDir dir;
    ASSERT_TRUE(library.save(dir.file("library.plist")));
    const auto loaded = Library::load(dir.file("library.plist"));
    ASSERT_TRUE(loaded);
    EXPECT_EQ(loaded->shots.size(), 2u);
    ASSERT_TRUE(loaded->find("/home/me/caf\uFFFD.png"));
    EXPECT_EQ(loaded->find("/home/me/caf\uFFFD.png")->size, unreadShot("x").size);
    EXPECT_TRUE(loaded->find("/home/me/ok.png"));
}

TEST(LibraryFileTest, TheSameLibraryGivesTheSameBytes) {
    const test::TempDir dir;
    Library library = sampleLibrary();
    ASSERT_TRUE(library.save(dir.file("a.plist")));
    Library reordered;
    for (const ShotPtr& shot : library.all())
        reordered.shots.emplace(shot->path, shot);
    reordered.extraFolders = library.extraFolders;
    reordered.skippedFolders = library.skippedFolders;
    ASSERT_TRUE(reordered.save(dir.file("b.plist")));
    EXPECT_EQ(test::readFile(dir.file("a.plist")), test::readFile(dir.file("b.plist")));
}

// Checks that plistlib saw every key of `shot` with its type and value; dates within `slack`.
void expectShotLeaves(const std::map<std::string, test::Leaf>& leaves, const Shot& shot,
                      microseconds slack) {
    const std::string p = "|shots|" + shot.path;
    const auto leaf = [&](const std::string& key) {
        const auto it = leaves.find(p + key);
        return it == leaves.end() ? test::Leaf{"missing", ""} : it->second;
    };
    const auto expectLeaf = [&](const std::string& key, const std::string& type,
                                const std::string& value) {
        EXPECT_EQ(leaf(key).type, type) << key;
        EXPECT_EQ(leaf(key).value, value) << key;
    };
    const auto expectDate = [&](const std::string& key, Date d) {
        EXPECT_EQ(leaf(key).type, "date") << key;
        EXPECT_LE(std::abs(std::stoll(leaf(key).value) - microsOf(d)), slack.count()) << key;
    };
    const auto expectReal = [&](const std::string& key, double v) {
        EXPECT_EQ(leaf(key).type, "float") << key;
        EXPECT_EQ(std::strtod(leaf(key).value.c_str(), nullptr), v) << key;
    };

    std::string keys = "barcodes,created,failed,flags,folded,guess,guessScore,lines,";
    keys += shot.manual ? "manual," : "";
    keys += "modified,path,pixelHeight,pixelWidth,";
    keys += shot.readAt ? "readAt," : "";
    keys += "reader,size";
    expectLeaf("", "dict", keys);
    expectLeaf("|path", "str", test::hexOf(shot.path));
    expectLeaf("|size", "int", std::to_string(shot.size));
    expectDate("|created", shot.created);
    expectDate("|modified", shot.modified);
    expectLeaf("|pixelWidth", "int", std::to_string(shot.pixelWidth));
    expectLeaf("|pixelHeight", "int", std::to_string(shot.pixelHeight));
    expectLeaf("|lines", "array", std::to_string(shot.lines.size()));
    for (size_t i = 0; i < shot.lines.size(); ++i) {
        const std::string l = "|lines|" + std::to_string(i);
        expectLeaf(l, "dict", "h,text,w,x,y");
        expectLeaf(l + "|text", "str", test::hexOf(shot.lines[i].text));
        expectReal(l + "|x", shot.lines[i].x);
        expectReal(l + "|y", shot.lines[i].y);
        expectReal(l + "|w", shot.lines[i].w);
        expectReal(l + "|h", shot.lines[i].h);
    }
    expectLeaf("|barcodes", "array", std::to_string(shot.barcodes.size()));
    for (size_t i = 0; i < shot.barcodes.size(); ++i)
        expectLeaf("|barcodes|" + std::to_string(i), "str", test::hexOf(shot.barcodes[i]));
    expectLeaf("|guess", "str", test::hexOf(shelfId(shot.guess)));
    expectReal("|guessScore", shot.guessScore);
    if (shot.manual) expectLeaf("|manual", "str", test::hexOf(shelfId(*shot.manual)));
    expectLeaf("|flags", "array", std::to_string(shot.flags.size()));
    std::set<std::string> flags;
    for (size_t i = 0; i < shot.flags.size(); ++i)
        flags.insert(leaf("|flags|" + std::to_string(i)).value);
    std::set<std::string> wantFlags;
    for (SensitiveKind kind : shot.flags)
        wantFlags.insert(test::hexOf(sensitiveKindId(kind)));
    EXPECT_EQ(flags, wantFlags);
    if (shot.readAt) expectDate("|readAt", *shot.readAt);
    expectLeaf("|failed", "bool", shot.failed ? "true" : "false");
    expectLeaf("|reader", "int", std::to_string(shot.reader));
    expectLeaf("|folded", "str", test::hexOf(shot.folded));
}

void expectLibraryLeaves(const std::map<std::string, test::Leaf>& leaves, const Library& library,
                         microseconds slack) {
    EXPECT_EQ(leaves.at("").type, "dict");
    EXPECT_EQ(leaves.at("").value, "extraFolders,shots,skippedFolders,version");
    EXPECT_EQ(leaves.at("|version").type, "int");
    EXPECT_EQ(leaves.at("|version").value, "1");
    EXPECT_EQ(leaves.at("|shots").type, "dict");
    EXPECT_EQ(leaves.at("|extraFolders").value, std::to_string(library.extraFolders.size()));
    for (size_t i = 0; i < library.extraFolders.size(); ++i)
        EXPECT_EQ(leaves.at("|extraFolders|" + std::to_string(i)).value,
                  test::hexOf(library.extraFolders[i]));
    EXPECT_EQ(leaves.at("|skippedFolders").value, std::to_string(library.skippedFolders.size()));
    for (const auto& [path, shot] : library.shots) {
        SCOPED_TRACE(path);
        expectShotLeaves(leaves, *shot, slack);
    }
}

TEST(LibraryFileTest, PlistlibReadsEveryKeyAndType) {
    const test::TempDir dir;
    const Library library = sampleLibrary();
    ASSERT_TRUE(library.save(dir.file("library.plist")));
    const auto leaves = test::readWithPlistlib(dir.file("library.plist"));
    ASSERT_TRUE(leaves);
    expectLibraryLeaves(*leaves, library, 0us);
}

TEST(LibraryFileTest, LibplistReadsEveryKeyAndType) {
    const test::TempDir dir;
    const Library library = sampleLibrary();
    ASSERT_TRUE(library.save(dir.file("library.plist")));
    // plistutil parses the file and writes it as XML (given binary and asked for binary, it only
    // copies), which plistlib then reads. XML dates are whole seconds.
    ASSERT_TRUE(test::runShell("plistutil -i '" + dir.file("library.plist") + "' -o '" +
                               dir.file("library.xml") + "' -f xml"));
    EXPECT_NE(test::readFile(dir.file("library.xml")).find("<string>नमस्ते दुनिया 42</string>"),
              std::string::npos);
    const auto leaves = test::readWithPlistlib(dir.file("library.xml"));
    ASSERT_TRUE(leaves);
    expectLibraryLeaves(*leaves, library, 1s);
}

TEST(LibraryFileTest, LoadsWhatPlistlibWrites) {
    const char* script = R"(
import datetime, plistlib, sys
def shot(path, **more):
    s = {
        "path": path, "size": 123456,
        "created": datetime.datetime(2024, 3, 5, 4, 41, 12, 345000),
        "modified": datetime.datetime(2024, 3, 5, 4, 41, 13, 500000),
        "pixelWidth": 1170, "pixelHeight": 2532,
        "lines": [{"text": "Namaste नमस्ते 😀", "x": 0.25, "y": 0.5, "w": 0.125, "h": 0.0625},
                  {"text": "Total 1 299,00 €", "x": 0.0, "y": 1.0, "w": 1.0, "h": 0.5}],
        "barcodes": ["https://example.org/ü"], "guess": "chats", "guessScore": 4.5,
        "flags": ["passport", "bankAccount"], "failed": False, "reader": 2,
        "folded": "namaste नमस्ते 😀\ntotal 1 299,00 €\nécran.png",
    }
    s.update(more)
    return s
a, b = "/home/me/Pictures/Écran 1.png", "/home/me/plain.png"
library = {
    "version": 1,
    "shots": {
        a: shot(a, manual="code", readAt=datetime.datetime(2024, 3, 5, 5, 0, 0, 1000)),
        b: shot(b, guess="other", flags=[], lines=[], barcodes=[]),
    },
    "extraFolders": ["/home/me/Ünïcode"],
    "skippedFolders": [],
}
with open(sys.argv[1], "wb") as f:
    plistlib.dump(library, f, fmt=plistlib.FMT_BINARY)
)";
    const test::TempDir dir;
    ASSERT_TRUE(test::runPython(script, "'" + dir.file("library.plist") + "'"));
    const auto loaded = Library::load(dir.file("library.plist"));
    ASSERT_TRUE(loaded);

    Shot a("/home/me/Pictures/Écran 1.png", 123456, at(sys_days(2024y / March / 5), 16872345ms),
           at(sys_days(2024y / March / 5), 16873500ms));
    a.pixelWidth = 1170;
    a.pixelHeight = 2532;
    a.lines = {{"Namaste नमस्ते 😀", 0.25f, 0.5f, 0.125f, 0.0625f},
               {"Total 1 299,00 €", 0, 1, 1, 0.5f}};
    a.barcodes = {"https://example.org/ü"};
    a.guess = Shelf::chats;
    a.guessScore = 4.5;
    a.flags = {SensitiveKind::passport, SensitiveKind::bankAccount};
    a.reader = 2;
    a.folded = "namaste नमस्ते 😀\ntotal 1 299,00 €\nécran.png";
    Shot b = a;
    b.path = "/home/me/plain.png";
    b.guess = Shelf::other;
    b.flags.clear();
    b.lines.clear();
    b.barcodes.clear();
    a.manual = Shelf::code;
    a.readAt = at(sys_days(2024y / March / 5), 18000001ms);

    Library want;
    want.put(a);
    want.put(b);
    want.extraFolders = {"/home/me/Ünïcode"};
    expectSameLibrary(*loaded, want);
}

// A hand-made library file, so tests can leave keys out, mistype them or point them anywhere.
// Every object goes through `note`, so the builder knows the number the next object will get.
struct Builder {
    plist::Writer writer;
    Ref newest = 0;
    Ref note(Ref r) {
        newest = std::max(newest, r);
        return r;
    }
};
// Writes one value; an empty Put stands for the container that holds it.
using Put = std::function<Ref(Builder&)>;
using Entries = std::vector<std::pair<std::string, Put>>;

Put str(std::string s) {
    return [s](Builder& b) { return b.note(b.writer.string(s)); };
}
Put integer(int64_t v) {
    return [v](Builder& b) { return b.note(b.writer.integer(v)); };
}
Put real(double v) {
    return [v](Builder& b) { return b.note(b.writer.real(v)); };
}
Put date(Date v) {
    return [v](Builder& b) { return b.note(b.writer.date(v)); };
}
Put boolean(bool v) {
    return [v](Builder& b) { return b.note(b.writer.boolean(v)); };
}
Put data() {
    return [](Builder& b) { return b.note(b.writer.data(std::vector<uint8_t>{1, 2})); };
}

Put array(std::vector<Put> items) {
    return [items](Builder& b) {
        std::vector<Ref> refs;
        for (const Put& item : items)
            refs.push_back(item ? item(b) : 0);
        const Ref self = b.newest + 1;
        for (size_t i = 0; i < items.size(); ++i)
            if (!items[i]) refs[i] = self;
        EXPECT_EQ(b.note(b.writer.array(refs)), self);
        return self;
    };
}

Put dict(Entries entries) {
    return [entries](Builder& b) {
        std::vector<std::pair<Ref, Ref>> refs;
        for (const auto& [key, value] : entries)
            refs.emplace_back(0, value ? value(b) : 0);
        for (size_t i = 0; i < entries.size(); ++i)
            refs[i].first = b.note(b.writer.key(entries[i].first));
        const Ref self = b.newest + 1;
        for (size_t i = 0; i < entries.size(); ++i)
            if (!entries[i].second) refs[i].second = self;
        EXPECT_EQ(b.note(b.writer.dict(refs)), self);
        return self;
    };
}

const std::string shotPath = "/home/me/Pictures/Capture.png";

Entries lineEntries() {
    return {{"text", str("Gesamt 12,50 €")},
            {"x", real(0.5)},
            {"y", real(0.25)},
            {"w", real(0.125)},
            {"h", real(1)}};
}

Entries shotEntries() {
    const Date d = at(sys_days(2024y / May / 1), 1s);
    return {{"path", str(shotPath)},
            {"size", integer(10)},
            {"created", date(d)},
            {"modified", date(d)},
            {"pixelWidth", integer(2)},
            {"pixelHeight", integer(3)},
            {"lines", array({dict(lineEntries())})},
            {"barcodes", array({str("QR")})},
            {"guess", str("bills")},
            {"guessScore", real(2.5)},
            {"manual", str("other")},
            {"flags", array({str("taxID")})},
            {"readAt", date(d)},
            {"failed", boolean(false)},
            {"reader", integer(1)},
            {"folded", str("gesamt 12,50 €")}};
}

Entries libraryEntries(Put shots) {
    return {{"version", integer(1)},
            {"shots", shots},
            {"extraFolders", array({str("/a")})},
            {"skippedFolders", array({})}};
}

Entries libraryWith(Entries shot) {
    return libraryEntries(dict({{shotPath, dict(shot)}}));
}

std::string fileOf(const Entries& top) {
    Builder b;
    return b.writer.finish(dict(top)(b));
}

Entries without(Entries entries, const std::string& key) {
    std::erase_if(entries, [&](const auto& e) { return e.first == key; });
    return entries;
}

Entries with(Entries entries, const std::string& key, Put value) {
    for (auto& e : entries)
        if (e.first == key) e.second = value;
    if (std::none_of(entries.begin(), entries.end(), [&](const auto& e) { return e.first == key; }))
        entries.emplace_back(key, value);
    return entries;
}

std::optional<Library> loadBytes(const std::string& bytes) {
    const test::TempDir dir;
    return Library::load(test::writeFile(dir.file("library.plist"), bytes));
}

TEST(LibraryFileTest, HandMadeLibraryLoads) {
    const auto loaded = loadBytes(fileOf(libraryWith(shotEntries())));
    ASSERT_TRUE(loaded);
    const Shot* shot = loaded->find(shotPath);
    ASSERT_TRUE(shot);
    EXPECT_EQ(shot->lines, (std::vector<TextLine>{{"Gesamt 12,50 €", 0.5f, 0.25f, 0.125f, 1}}));
    EXPECT_EQ(shot->manual, Shelf::other);
    EXPECT_EQ(shot->flags, SensitiveKinds{SensitiveKind::taxID});
    EXPECT_EQ(loaded->extraFolders, std::vector<std::string>{"/a"});
}

TEST(LibraryFileTest, EveryShotKeyButManualAndReadAtIsRequired) {
    for (const auto& [key, value] : shotEntries()) {
        SCOPED_TRACE(key);
        const auto loaded = loadBytes(fileOf(libraryWith(without(shotEntries(), key))));
        const bool optional = key == "manual" || key == "readAt";
        ASSERT_EQ(loaded.has_value(), optional);
        if (optional) {
            EXPECT_FALSE(key == "manual" ? loaded->find(shotPath)->manual.has_value()
                                         : loaded->find(shotPath)->readAt.has_value());
        }
    }
    for (const auto& [key, value] : lineEntries()) {
        SCOPED_TRACE("line key " + key);
        EXPECT_FALSE(loadBytes(fileOf(libraryWith(
            with(shotEntries(), "lines", array({dict(without(lineEntries(), key))}))))));
    }
}

TEST(LibraryFileTest, ShotValuesAreChecked) {
    const struct {
        const char* name;
        Entries shot;
        bool loads;
    } cases[] = {
        {"path as a number", with(shotEntries(), "path", integer(1)), false},
        {"size as a string", with(shotEntries(), "size", str("10")), false},
        {"size as a real", with(shotEntries(), "size", real(10)), false},
        {"created as a real", with(shotEntries(), "created", real(1e9)), false},
        {"modified as a number", with(shotEntries(), "modified", integer(5)), false},
        {"pixelWidth as a real", with(shotEntries(), "pixelWidth", real(2)), false},
        {"lines as a dictionary", with(shotEntries(), "lines", dict(lineEntries())), false},
        {"lines of strings", with(shotEntries(), "lines", array({str("a line")})), false},
        {"line text as a number",
         with(shotEntries(), "lines", array({dict(with(lineEntries(), "text", integer(3)))})),
         false},
        {"line x as an integer",
         with(shotEntries(), "lines", array({dict(with(lineEntries(), "x", integer(0)))})), false},
        {"line with an extra key",
         with(shotEntries(), "lines", array({dict(with(lineEntries(), "conf", real(0.9)))})), true},
        {"barcodes of numbers", with(shotEntries(), "barcodes", array({integer(4)})), false},
        {"unknown guess", with(shotEntries(), "guess", str("pets")), false},
        {"guess in capitals", with(shotEntries(), "guess", str("Bills")), false},
        {"guess as a number", with(shotEntries(), "guess", integer(1)), false},
        {"guessScore as an integer", with(shotEntries(), "guessScore", integer(2)), false},
        {"unknown manual", with(shotEntries(), "manual", str("")), false},
        {"flags as a string", with(shotEntries(), "flags", str("taxID")), false},
        {"unknown flag", with(shotEntries(), "flags", array({str("taxID"), str("pin")})), false},
        {"repeated flag", with(shotEntries(), "flags", array({str("taxID"), str("taxID")})), true},
        {"readAt as a string", with(shotEntries(), "readAt", str("2024-05-01")), false},
        {"failed as a number", with(shotEntries(), "failed", integer(0)), false},
        {"reader as a boolean", with(shotEntries(), "reader", boolean(true)), false},
        {"folded as data", with(shotEntries(), "folded", data()), false},
        {"an unknown key", with(shotEntries(), "colour", str("red")), true},
        {"a key given twice",
         [] {
             Entries e = shotEntries();
             e.emplace_back("size", integer(11));
             return e;
         }(),
         false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(loadBytes(fileOf(libraryWith(c.shot))).has_value(), c.loads);
    }
}

TEST(LibraryFileTest, DamagedFilesLoadAsNothing) {
    std::mt19937 random(7);
    std::string junk(4096, '\0');
    for (char& c : junk)
        c = static_cast<char>(random());
    const std::string sound = fileOf(libraryWith(shotEntries()));
    ASSERT_TRUE(loadBytes(sound));
    std::string scrambled = sound;
    for (size_t i = 8; i < sound.size() - 40; ++i)
        scrambled[i] = static_cast<char>(random());

    const struct {
        const char* name;
        std::string bytes;
    } cases[] = {
        {"empty", ""},
        {"junk", junk},
        {"junk after the magic", "bplist00" + junk},
        {"scrambled objects", scrambled},
        {"an XML property list", "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict/></plist>"},
        {"version 2", fileOf(with(libraryWith(shotEntries()), "version", integer(2)))},
        {"version 0", fileOf(with(libraryWith(shotEntries()), "version", integer(0)))},
        {"version as a string", fileOf(with(libraryWith(shotEntries()), "version", str("1")))},
        {"version as a real", fileOf(with(libraryWith(shotEntries()), "version", real(1)))},
        {"no version", fileOf(without(libraryWith(shotEntries()), "version"))},
        {"no shots", fileOf(without(libraryWith(shotEntries()), "shots"))},
        {"no extraFolders", fileOf(without(libraryWith(shotEntries()), "extraFolders"))},
        {"no skippedFolders", fileOf(without(libraryWith(shotEntries()), "skippedFolders"))},
        {"shots as an array", fileOf(libraryEntries(array({dict(shotEntries())})))},
        {"a folder that is a number",
         fileOf(with(libraryWith(shotEntries()), "skippedFolders", array({integer(1)})))},
        {"top level an array",
         [] {
             Builder b;
             return b.writer.finish(array({integer(1)})(b));
         }()},
        {"a shot filed under another path",
         fileOf(libraryEntries(dict({{"/elsewhere.png", dict(shotEntries())}})))},
        {"shots refer to the top", fileOf(with(libraryWith(shotEntries()), "shots", nullptr))},
        {"a shot that is the shots", fileOf(libraryEntries(dict({{shotPath, nullptr}})))},
        {"lines that are the shot", fileOf(libraryWith(with(shotEntries(), "lines", nullptr)))},
        {"lines that hold themselves",
         fileOf(libraryWith(with(shotEntries(), "lines", array({nullptr}))))},
        {"a line text that is the line",
         fileOf(libraryWith(
             with(shotEntries(), "lines", array({dict(with(lineEntries(), "text", nullptr))}))))},
        {"folders that hold themselves",
         fileOf(with(libraryWith(shotEntries()), "extraFolders", array({nullptr})))},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_FALSE(loadBytes(c.bytes));
    }

    const test::TempDir dir;
    EXPECT_FALSE(Library::load(dir.file("missing.plist")));
    EXPECT_FALSE(Library::load(dir.str())) << "a folder";
    ASSERT_EQ(mkfifo(dir.file("pipe.plist").c_str(), 0600), 0);
    EXPECT_FALSE(Library::load(dir.file("pipe.plist"))) << "a pipe, without waiting for a writer";
    if (!test::runningAsRoot()) {
        const std::string locked = test::writeFile(dir.file("locked.plist"), sound);
        chmod(locked.c_str(), 0);
        EXPECT_FALSE(Library::load(locked));
    }
}

TEST(LibraryFileTest, TruncatedFilesLoadAsNothing) {
    const test::TempDir dir;
    const std::string file = dir.file("library.plist");
    ASSERT_TRUE(sampleLibrary().save(file));
    const std::string whole = test::readFile(file);
    for (size_t cut = 0; cut < whole.size(); ++cut) {
        SCOPED_TRACE(cut);
        // A fresh name each time: truncating a file in place makes ext4 flush it to disk.
        const std::string part =
            test::writeFile(dir.file("cut-" + std::to_string(cut)), whole.substr(0, cut));
        ASSERT_FALSE(Library::load(part));
        std::filesystem::remove(part);
    }
    test::writeFile(file, whole);
    EXPECT_TRUE(Library::load(file));
}

// Overwrites big-endian bytes of `file` at `at`, counted from the end when negative.
void patch(std::string& file, long at, uint64_t value, size_t n) {
    const size_t start = at < 0 ? file.size() + at : static_cast<size_t>(at);
    for (size_t i = 0; i < n; ++i)
        file[start + i] = static_cast<char>(value >> (8 * (n - 1 - i)));
}

uint64_t bigEndian(const std::string& file, size_t at, size_t n) {
    uint64_t v = 0;
    for (size_t i = 0; i < n; ++i)
        v = (v << 8) | static_cast<unsigned char>(file[at + i]);
    return v;
}

TEST(LibraryFileTest, BadOffsetsRefsAndCountsLoadAsNothing) {
    const test::TempDir dir;
    ASSERT_TRUE(sampleLibrary().save(dir.file("library.plist")));
    const std::string sound = test::readFile(dir.file("library.plist"));
    const size_t offsetSize = static_cast<unsigned char>(sound[sound.size() - 26]);
    const uint64_t count = bigEndian(sound, sound.size() - 24, 8);
    const uint64_t tableStart = bigEndian(sound, sound.size() - 8, 8);
    // The top dictionary is the last object: a marker and four key and four value refs.
    const size_t top = tableStart - 33;
    ASSERT_EQ(static_cast<unsigned char>(sound[top]), 0xD4);

    const struct {
        const char* name;
        std::function<void(std::string&)> damage;
    } cases[] = {
        {"object count beyond the table", [&](std::string& f) { patch(f, -24, count + 1, 8); }},
        {"huge object count", [&](std::string& f) { patch(f, -24, uint64_t{1} << 40, 8); }},
        {"root beyond the objects", [&](std::string& f) { patch(f, -16, count, 8); }},
        {"table start beyond the file", [&](std::string& f) { patch(f, -8, f.size(), 8); }},
        {"offsets into the header",
         [&](std::string& f) {
             for (uint64_t i = 0; i < count; ++i)
                 patch(f, tableStart + i * offsetSize, 3, offsetSize);
         }},
        {"root offset into the offset table",
         [&](std::string& f) {
             patch(f, tableStart + (count - 1) * offsetSize, tableStart, offsetSize);
         }},
        {"a ref beyond the objects", [&](std::string& f) { patch(f, top + 1 + 16, count, 4); }},
        {"the largest ref", [&](std::string& f) { patch(f, top + 1 + 16, 0xFFFFFFFF, 4); }},
        {"a key ref to a number",
         [&](std::string& f) { patch(f, top + 1, bigEndian(f, top + 1 + 16, 4), 4); }},
        {"more entries than the object holds",
         [&](std::string& f) { f[top] = static_cast<char>(0xD9); }},
        {"a long count that is not an integer",
         [&](std::string& f) { f[top] = static_cast<char>(0xDF); }},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        std::string damaged = sound;
        c.damage(damaged);
        EXPECT_FALSE(loadBytes(damaged));
    }
}

TEST(LibraryFileTest, ASaveReplacesADamagedFile) {
    const test::TempDir dir;
    const std::string file = test::writeFile(
        dir.file("library.plist"), fileOf(with(libraryWith(shotEntries()), "version", integer(2))));
    ASSERT_FALSE(Library::load(file));
    const Library library = sampleLibrary();
    ASSERT_TRUE(library.save(file));
    const auto loaded = Library::load(file);
    ASSERT_TRUE(loaded);
    expectSameLibrary(*loaded, library);
}

TEST(LibraryFileTest, AFailedSaveLeavesTheFileAlone) {
    if (test::runningAsRoot()) GTEST_SKIP() << "permissions do not hold for root";
    const test::TempDir dir;
    const std::string file = dir.file("library.plist");
    ASSERT_TRUE(sampleLibrary().save(file));
    const std::string before = test::readFile(file);
    chmod(dir.str().c_str(), 0500);
    EXPECT_FALSE(Library().save(file));
    chmod(dir.str().c_str(), 0700);
    EXPECT_EQ(test::readFile(file), before);
}

} // namespace
