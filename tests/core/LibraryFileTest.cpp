#include "core/Library.h"
#include "support/ChildRun.h"
#include "support/HandmadePlist.h"
#include "support/PlistInterop.h"
#include "support/TempDir.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <sys/stat.h>

using namespace lumivale;
using namespace std::chrono;

namespace {

Date at(sys_days day, nanoseconds time) {
    return Date(day) + time;
}

Shot unreadShot(const std::string& path) {
    return Shot(path, 48213, at(sys_days(2024y / March / 5), 36672345ms),
                at(sys_days(2024y / March / 6), 1500ms));
}

// Three shots: one unread, one read with every field in use, one whose reading failed.
Library sampleLibrary() {
    Library library;
    library.put(unreadShot("/home/me/Pictures/Screenshots/Screenshot 2024-03-05.png"));
    Shot read("/home/me/Pictures/Écrans/Capture d’écran 😀.png", 1234567,
              at(sys_days(2023y / December / 31), 86399999ms),
              at(sys_days(2024y / January / 1), 1ms));
    read.pixelWidth = 1170;
    read.pixelHeight = 2532;
    read.setLines({{"Rechnung Nr. 4711 — Gesamt 1.234,56 €", 0.0625f, 0.875f, 0.5f, 0.03125f},
                   {"नमस्ते दुनिया 42", 0.1f, 0.2f, 0.3f, 0.4f},
                   {"ok 😀 👍🏽", 1.0f / 3, 0.7f, 0.01f, 0.02f},
                   {"", 0, 0, 0, 0}});
    read.barcodes = {"https://example.org/ticket?id=ü", "1234567890128"};
    read.guess = Shelf::bills;
    read.guessScore = 3.75;
    read.manual = Shelf::tickets;
    read.flags = {SensitiveKind::cardNumber, SensitiveKind::taxID};
    read.readAt = at(sys_days(2024y / February / 29), 43200123ms);
    read.reader = 3;
    library.put(read);
    Shot failed = unreadShot("/home/me/Desktop/Skärmavbild.heic");
    failed.failed = true;
    failed.readAt = at(sys_days(2024y / April / 1), 0ms);
    failed.guess = Shelf::ids;
    library.put(failed);
    library.extraFolders = {"/home/me/Téléchargements", "/media/usb"};
    library.skippedFolders = {"/home/me/Desktop"};
    return library;
}

void expectSameLibrary(const std::optional<Library>& got, const Library& want) {
    ASSERT_TRUE(got);
    EXPECT_EQ(got->extraFolders, want.extraFolders);
    EXPECT_EQ(got->skippedFolders, want.skippedFolders);
    ASSERT_EQ(got->size(), want.size());
    for (const ShotPtr& shot : want.all())
        EXPECT_EQ(got->find(shot->path) ? *got->find(shot->path) : Shot(), *shot) << shot->path;
}

TEST(LibraryFileTest, SavesAndLoadsEveryFieldTheSameWayEachTime) {
    // Thousands of shots more: several megabytes, so the file is written and read in many pieces,
    // and thousands of distinct numbers, which the writer shares through tables that grow.
    Library library = sampleLibrary();
    for (int i = 0; i < 6000; ++i) {
        Shot shot = unreadShot("/home/me/Pictures/Screen " + std::to_string(i) + ".png");
        shot.size = i * 1000003LL;
        shot.setLines({{"Überweisung " + std::to_string(i * 37) + " EUR an Zoë", i / 7.0f, 0.9f,
                        0.5f, 0.02f}});
        shot.readAt = shot.created + seconds(i);
        library.put(std::move(shot));
    }
    const test::TempDir dir;
    const std::string file = dir.file("data/Lumivale/library.plist");
    ASSERT_TRUE(library.save(file)) << "the folder is made first";
    EXPECT_GT(std::filesystem::file_size(file), 1u << 20);
    expectSameLibrary(Library::load(file), library);

    Library reordered;
    for (auto shot = library.all().rbegin(); shot != library.all().rend(); ++shot)
        reordered.add(*shot);
    reordered.extraFolders = library.extraFolders;
    reordered.skippedFolders = library.skippedFolders;
    ASSERT_TRUE(reordered.save(dir.file("again.plist")));
    EXPECT_EQ(test::readFile(dir.file("again.plist")), test::readFile(file)) << "same bytes";

    // File names are bytes and the file holds text: names differing only in bytes that are not
    // UTF-8 come back as one path.
    Library odd;
    for (const char* path : {"/home/me/caf\xe9.png", "/home/me/caf\xe8.png", "/home/me/ok.png"})
        odd.put(unreadShot(path));
    ASSERT_TRUE(odd.save(file));
    const auto loaded = Library::load(file);
    ASSERT_TRUE(loaded);
    EXPECT_EQ(loaded->size(), 2u);
    EXPECT_TRUE(loaded->find("/home/me/caf\uFFFD.png"));
    EXPECT_TRUE(loaded->find("/home/me/ok.png"));
}

// Checks that plistlib saw in the file the keys and types of the library file, and the library's
// text and dates to the microsecond.
void expectReadAlike(const std::map<std::string, test::Leaf>& seen, const Library& library) {
    EXPECT_EQ(seen.at("").value, "extraFolders,shots,skippedFolders,version");
    EXPECT_EQ(seen.at("|version").value, "1");
    EXPECT_EQ(seen.at("|extraFolders|0").value, test::hexOf(library.extraFolders[0]));
    const auto microsOf = [](Date d) {
        return std::to_string(duration_cast<microseconds>(d.time_since_epoch()).count());
    };
    for (const ShotPtr& shot : library.all()) {
        SCOPED_TRACE(shot->path);
        const std::string p = "|shots|" + shot->path + "|";
        std::string keys; // each key of the shot with its type
        for (const auto& [at, leaf] : seen)
            if (at.starts_with(p) && at.find('|', p.size()) == std::string::npos)
                keys += at.substr(p.size()) + ":" + leaf.type + " ";
        EXPECT_EQ(keys,
                  std::string("barcodes:array created:date failed:bool flags:array folded:str "
                              "guess:str guessScore:float lines:array ") +
                      (shot->manual ? "manual:str " : "") +
                      "modified:date path:str pixelHeight:int pixelWidth:int " +
                      (shot->readAt ? "readAt:date " : "") + "reader:int size:int ");
        EXPECT_EQ(seen.at(p + "created").value, microsOf(shot->created));
        EXPECT_EQ(seen.at(p + "modified").value, microsOf(shot->modified));
        if (shot->readAt) {
            EXPECT_EQ(seen.at(p + "readAt").value, microsOf(*shot->readAt));
        }
        EXPECT_EQ(seen.at(p + "folded").value, test::hexOf(shot->folded));
        for (size_t i = 0; i < shot->lines.size(); ++i) {
            const std::string line = p + "lines|" + std::to_string(i);
            EXPECT_EQ(seen.at(line).value, "h,text,w,x,y");
            EXPECT_EQ(seen.at(line + "|text").value, test::hexOf(shot->lines[i].text));
        }
    }
}

TEST(LibraryFileTest, aSaveTheFolderRefusesLeavesTheFileAsItWas) {
    if (!test::runsUnprivileged()) return;
    const test::TempDir dir;
    const std::string file = dir.file("data/Lumivale/library.plist");
    const Library library = sampleLibrary();
    ASSERT_TRUE(library.save(file));
    chmod(dir.file("data/Lumivale").c_str(), 0500);
    EXPECT_FALSE(Library().save(file));
    chmod(dir.file("data/Lumivale").c_str(), 0700);
    expectSameLibrary(Library::load(file), library);
}

TEST(LibraryFileTest, OtherProgramsReadEveryKeyAndTypeAndWriteFilesThatLoad) {
    const test::TempDir dir;
    const Library library = sampleLibrary();
    ASSERT_TRUE(library.save(dir.file("library.plist")));
    const auto leaves = test::readWithPlistlib(dir.file("library.plist"));
    ASSERT_TRUE(leaves);
    expectReadAlike(*leaves, library);

    // plistutil parses the file and writes it as XML (binary to binary it only copies), which
    // plistlib then reads: it must see the same, but for dates in whole seconds.
    ASSERT_TRUE(test::runShell("plistutil -i '" + dir.file("library.plist") + "' -o '" +
                               dir.file("library.xml") + "' -f xml"));
    const auto viaLibplist = test::readWithPlistlib(dir.file("library.xml"));
    ASSERT_TRUE(viaLibplist);
    ASSERT_EQ(viaLibplist->size(), leaves->size());
    for (const auto& [at, leaf] : *leaves) {
        SCOPED_TRACE(at);
        test::expectSameLeaf(viaLibplist->at(at), leaf, 1s);
    }

    ASSERT_TRUE(test::rewriteWithPlistlib(dir.file("library.plist"), dir.file("python.plist")));
    ASSERT_NE(test::readFile(dir.file("python.plist")), test::readFile(dir.file("library.plist")));
    expectSameLibrary(Library::load(dir.file("python.plist")), library);
}

using namespace test; // the hand-made files' builders

const std::string shotPath = "/home/me/Pictures/Capture.png";
const Date day = at(sys_days(2024y / May / 1), 1s);

Entries lineEntries() {
    return {{"text", value("Gesamt 12,50 €")},
            {"x", value(0.5)},
            {"y", value(0.25)},
            {"w", value(0.125)},
            {"h", value(1.0)}};
}

Entries shotEntries() {
    return {{"path", value(shotPath)},
            {"size", value(10)},
            {"created", value(day)},
            {"modified", value(day + 1s)},
            {"pixelWidth", value(2)},
            {"pixelHeight", value(3)},
            {"lines", array({dict(lineEntries())})},
            {"barcodes", array({value("QR")})},
            {"guess", value("bills")},
            {"guessScore", value(2.5)},
            {"manual", value("other")},
            {"flags", array({value("taxID")})},
            {"readAt", value(day + 2s)},
            {"failed", value(false)},
            {"reader", value(1)},
            {"folded", value("gesamt 12,50 €")}};
}

// The sound file with its top-level `key` set to `put`, or left out.
std::string topWith(const std::string& key, std::optional<Put> put) {
    return fileOf(dict(with({{"version", value(1)},
                             {"shots", dict({{shotPath, dict(shotEntries())}})},
                             {"extraFolders", array({value("/a")})},
                             {"skippedFolders", array({})}},
                            key, put)));
}
std::string libraryWith(Entries shot) {
    return topWith("shots", dict({{shotPath, dict(shot)}}));
}
std::string shotWith(const std::string& key, std::optional<Put> put) {
    return libraryWith(with(shotEntries(), key, put));
}
Put linesWith(const std::string& key, std::optional<Put> put) {
    return array({dict(with(lineEntries(), key, put))});
}

TEST(LibraryFileTest, LoadsOnlyWholeSoundFilesOfItsVersion) {
    const test::TempDir dir;
    const std::string sound = shotWith("", drop);
    const auto loaded = Library::load(test::writeFile(dir.file("sound.plist"), sound));
    ASSERT_TRUE(loaded && loaded->find(shotPath));
    // Each value under its own key, which a writer and reader that mix up the same two keys
    // would not show.
    Shot want(shotPath, 10, day, day + 1s);
    want.pixelWidth = 2;
    want.pixelHeight = 3;
    want.lines = {{"Gesamt 12,50 €", 0.5f, 0.25f, 0.125f, 1}};
    want.barcodes = {"QR"};
    want.guessScore = 2.5;
    want.guess = Shelf::bills;
    want.manual = Shelf::other;
    want.flags = {SensitiveKind::taxID};
    want.readAt = day + 2s;
    want.reader = 1;
    want.folded = "gesamt 12,50 €";
    want.indexSearchText();
    EXPECT_EQ(*loaded->find(shotPath), want);

    std::mt19937 random(7);
    const auto noise = [&] { return static_cast<char>(random()); };
    std::string junk(4096, '\0'), scrambled = sound;
    std::ranges::generate(junk, noise);
    std::generate(scrambled.begin() + 8, scrambled.end() - 40, noise); // the trailer stays
    Entries twice = shotEntries();
    twice.emplace_back("size", value(11));
    struct Case {
        std::string name, bytes;
        bool loads = false;
    };
    std::vector<Case> cases = {
        {"empty", ""},
        {"junk", junk},
        {"junk after the magic", "bplist00" + junk},
        {"scrambled objects", scrambled},
        {"an XML property list", "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict/></plist>"},
        {"version 2", topWith("version", value(2))},
        {"version as a string", topWith("version", value("1"))},
        {"no version", topWith("version", drop)},
        {"no skippedFolders", topWith("skippedFolders", drop)},
        {"a folder that is a number", topWith("skippedFolders", array({value(1)}))},
        {"top level an array", fileOf(array({value(1)}))},
        {"shots as an array", topWith("shots", array({dict(shotEntries())}))},
        {"a shot filed under another path",
         topWith("shots", dict({{"/elsewhere.png", dict(shotEntries())}}))},
        {"shots refer to the top", topWith("shots", Put{})},
        {"a shot that is the shots", topWith("shots", dict({{shotPath, Put{}}}))},
        {"lines that are the shot", shotWith("lines", Put{})},
        {"lines that hold themselves", shotWith("lines", array({Put{}}))},
        {"a line text that is the line", shotWith("lines", linesWith("text", Put{}))},
        {"path as a number", shotWith("path", value(1))},
        {"size as a real", shotWith("size", value(10.0))},
        {"created as a real", shotWith("created", value(1e9))},
        {"pixelWidth as a string", shotWith("pixelWidth", value("2"))},
        {"lines as a dictionary", shotWith("lines", dict(lineEntries()))},
        {"line text as a number", shotWith("lines", linesWith("text", value(3)))},
        {"line x as an integer", shotWith("lines", linesWith("x", value(0)))},
        {"line with an extra key", shotWith("lines", linesWith("conf", value(0.9))), true},
        {"barcodes of numbers", shotWith("barcodes", array({value(4)}))},
        {"guess in capitals", shotWith("guess", value("Bills"))},
        {"guessScore as an integer", shotWith("guessScore", value(2))},
        {"unknown manual", shotWith("manual", value(""))},
        {"unknown flag", shotWith("flags", array({value("taxID"), value("pin")}))},
        {"readAt as a string", shotWith("readAt", value("2024-05-01"))},
        {"failed as a number", shotWith("failed", value(0))},
        {"reader as a boolean", shotWith("reader", value(true))},
        {"an unknown key", shotWith("colour", value("red")), true},
        {"a key given twice", libraryWith(twice)},
    };
    // Every key of a shot but manual and readAt is required, and every key of a line.
    for (const auto& [key, unused] : shotEntries())
        cases.push_back({"no " + key, shotWith(key, drop), key == "manual" || key == "readAt"});
    for (const auto& [key, unused] : lineEntries())
        cases.push_back({"a line without " + key, shotWith("lines", linesWith(key, drop))});
    for (size_t cut = 0; cut < sound.size(); ++cut)
        cases.push_back({"cut to " + std::to_string(cut) + " bytes", sound.substr(0, cut)});
    for (size_t i = 0; i < cases.size(); ++i) {
        SCOPED_TRACE(cases[i].name);
        // A fresh name each time: truncating a file in place makes ext4 flush it to disk.
        const std::string file = test::writeFile(dir.file(std::to_string(i)), cases[i].bytes);
        EXPECT_EQ(Library::load(file).has_value(), cases[i].loads);
        std::filesystem::remove(file);
    }
    EXPECT_FALSE(Library::load(dir.file("missing.plist")));
    EXPECT_FALSE(Library::load(dir.str())) << "a folder";
    ASSERT_EQ(mkfifo(dir.file("pipe.plist").c_str(), 0600), 0);
    EXPECT_FALSE(Library::load(dir.file("pipe.plist"))) << "a pipe, without waiting for a writer";
}

} // namespace
