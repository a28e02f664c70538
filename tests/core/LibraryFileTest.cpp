#include "bench/SyntheticShots.h"
#include "core/FileOps.h"
#include "core/Library.h"
#include "support/ChildRun.h"
#include "support/HandmadePlist.h"
#include "support/PlistInterop.h"
#include "support/TempDir.h"

#include <algorithm>
#include <csignal>
#include <gtest/gtest.h>
#include <iostream>
#include <map>
#include <random>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

using namespace lumivale;
using namespace lumivale::test;
using namespace std::chrono;

namespace {

Date at(sys_days day, nanoseconds time) {
    return Date(day) + time;
}

Shot unreadShot(const std::string& path) {
    return Shot(path, 48213, at(sys_days(2024y / March / 5), 36672345ms),
                at(sys_days(2024y / March / 6), 1500ms));
}

// A shot with every field in use.
Shot readShot() {
    Shot shot("/home/me/Pictures/Écrans/Capture d’écran 😀.png", 1234567,
              at(sys_days(2023y / December / 31), 86399999ms),
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

// Three shots: one unread, one read with every field in use, one whose reading failed.
Library sampleLibrary() {
    Library library;
    library.put(unreadShot("/home/me/Pictures/Screenshots/Screenshot 2024-03-05.png"));
    library.put(readShot());
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

// The library file's keys and types, spelled out by hand for the shelves and kinds used here.
Entries lineEntries(const TextLine& line) {
    return {{"text", value(line.text)},
            {"x", value<double>(line.x)},
            {"y", value<double>(line.y)},
            {"w", value<double>(line.w)},
            {"h", value<double>(line.h)}};
}

Entries shotEntries(const Shot& shot) {
    const std::map<Shelf, const char*> shelves = {{Shelf::bills, "bills"},
                                                  {Shelf::tickets, "tickets"},
                                                  {Shelf::ids, "ids"},
                                                  {Shelf::other, "other"}};
    const std::map<SensitiveKind, const char*> kinds = {{SensitiveKind::cardNumber, "cardNumber"},
                                                        {SensitiveKind::taxID, "taxID"}};
    std::vector<Put> lines, barcodes, flags;
    for (const TextLine& line : shot.lines)
        lines.push_back(dict(lineEntries(line)));
    for (const std::string& barcode : shot.barcodes)
        barcodes.push_back(value(barcode));
    for (const SensitiveKind kind : shot.flags)
        flags.push_back(value(kinds.at(kind)));
    Entries entries = {{"path", value(shot.path)},
                       {"size", value(shot.size)},
                       {"created", value(shot.created)},
                       {"modified", value(shot.modified)},
                       {"pixelWidth", value(shot.pixelWidth)},
                       {"pixelHeight", value(shot.pixelHeight)},
                       {"lines", array(lines)},
                       {"barcodes", array(barcodes)},
                       {"guess", value(shelves.at(shot.guess))},
                       {"guessScore", value(shot.guessScore)},
                       {"flags", array(flags)},
                       {"failed", value(shot.failed)},
                       {"reader", value(shot.reader)},
                       {"folded", value(shot.folded)}};
    if (shot.manual) entries.emplace_back("manual", value(shelves.at(*shot.manual)));
    if (shot.readAt) entries.emplace_back("readAt", value(*shot.readAt));
    return entries;
}

Entries topEntries(const Library& library) {
    Entries shots;
    std::vector<Put> extra, skipped;
    for (const ShotPtr& shot : library.all())
        shots.emplace_back(shot->path, dict(shotEntries(*shot)));
    for (const std::string& folder : library.extraFolders)
        extra.push_back(value(folder));
    for (const std::string& folder : library.skippedFolders)
        skipped.push_back(value(folder));
    return {{"version", value(1)},
            {"shots", dict(shots)},
            {"extraFolders", array(extra)},
            {"skippedFolders", array(skipped)}};
}

TEST(LibraryFileTest, SavesAtomicallyAndLoadsEveryField) {
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
    const TempDir dir;
    const std::string file = dir.file("data/Lumivale/library.plist");
    ASSERT_TRUE(library.save(file)) << "the folder is made first";
    EXPECT_GT(std::filesystem::file_size(file), 1u << 20);
    expectSameLibrary(Library::load(file), library);

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

    if (!runsUnprivileged()) return;
    const std::string before = readFile(file);
    chmod(dir.file("data/Lumivale").c_str(), 0500);
    EXPECT_FALSE(Library().save(file)) << "the folder refuses";
    chmod(dir.file("data/Lumivale").c_str(), 0700);
    EXPECT_EQ(readFile(file), before) << "the file is as it was";
}

TEST(LibraryFileTest, OtherProgramsReadEveryKeyAndTypeAndWriteFilesThatLoad) {
    const TempDir dir;
    const Library library = sampleLibrary();
    const std::string ours = dir.file("library.plist"), xml = dir.file("library.xml");
    ASSERT_TRUE(library.save(ours));
    // plistutil parses the file and writes it as XML (binary to binary it only copies), for
    // plistlib to read; XML keeps dates in whole seconds.
    ASSERT_TRUE(runShell("plistutil -i '" + ours + "' -o '" + xml + "' -f xml"));
    const std::string byHand =
        writeFile(dir.file("byhand.plist"), fileOf(dict(topEntries(library))));
    expectSameLibrary(Library::load(byHand), library);
    const auto spelled = readWithPlistlib(byHand);
    ASSERT_TRUE(spelled);
    EXPECT_EQ(spelled->at("|shots|" + readShot().path + "|modified").value, "1704067200001000");
    for (const auto& [file, slack] : {std::pair<std::string, microseconds>{ours, 0us}, {xml, 1s}}) {
        const auto seen = readWithPlistlib(file);
        ASSERT_TRUE(seen);
        EXPECT_EQ(seen->size(), spelled->size());
        for (const auto& [at, leaf] : *spelled) {
            SCOPED_TRACE(file + at);
            ASSERT_TRUE(seen->count(at));
            expectSameLeaf(seen->at(at), leaf, slack);
        }
    }

    ASSERT_TRUE(rewriteWithPlistlib(ours, dir.file("python.plist")));
    ASSERT_NE(readFile(dir.file("python.plist")), readFile(ours));
    expectSameLibrary(Library::load(dir.file("python.plist")), library);
}

const Shot& sound() {
    static const Shot shot = readShot();
    return shot;
}

// The file of the one sound shot, with its top-level `key` set to `put`, or left out.
std::string topWith(const std::string& key, std::optional<Put> put) {
    Library library;
    library.put(sound());
    return fileOf(dict(with(topEntries(library), key, put)));
}
std::string shotWith(const std::string& key, std::optional<Put> put) {
    return topWith("shots", dict({{sound().path, dict(with(shotEntries(sound()), key, put))}}));
}
Put linesWith(const std::string& key, std::optional<Put> put) {
    return array({dict(with(lineEntries(sound().lines[0]), key, put))});
}

TEST(LibraryFileTest, LoadsOnlyWholeSoundFilesOfItsVersion) {
    const TempDir dir;
    const std::string whole = shotWith("", drop);
    std::mt19937 random(7);
    const auto noise = [&] { return static_cast<char>(random()); };
    std::string junk(4096, '\0'), scrambled = whole;
    std::ranges::generate(junk, noise);
    std::generate(scrambled.begin() + 8, scrambled.end() - 40, noise); // the trailer stays
    Entries twice = shotEntries(sound());
    twice.emplace_back("size", value(11));
    struct Case {
        std::string name, bytes;
        bool loads = false;
    };
    std::vector<Case> cases = {
        {"sound", whole, true},
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
        {"shots as an array", topWith("shots", array({dict(shotEntries(sound()))}))},
        {"a shot filed under another path",
         topWith("shots", dict({{"/elsewhere.png", dict(shotEntries(sound()))}}))},
        {"shots refer to the top", topWith("shots", Put{})},
        {"lines that hold themselves", shotWith("lines", array({Put{}}))},
        {"line with an extra key", shotWith("lines", linesWith("conf", value(0.9))), true},
        {"barcodes of numbers", shotWith("barcodes", array({value(4)}))},
        {"guess in capitals", shotWith("guess", value("Bills"))},
        {"unknown manual", shotWith("manual", value(""))},
        {"unknown flag", shotWith("flags", array({value("taxID"), value("pin")}))},
        {"an unknown key", shotWith("colour", value("red")), true},
        {"a key given twice", topWith("shots", dict({{sound().path, dict(twice)}}))},
    };
    // Every key of a shot but manual and readAt is required, and every key of a line; none may
    // hold a value of another type (a boolean, or an integer where a boolean belongs).
    for (const auto& [key, unused] : shotEntries(sound())) {
        cases.push_back({"no " + key, shotWith(key, drop), key == "manual" || key == "readAt"});
        cases.push_back(
            {key + " mistyped", shotWith(key, key == "failed" ? value(1) : value(true))});
    }
    for (const auto& [key, unused] : lineEntries(sound().lines[0])) {
        cases.push_back({"a line without " + key, shotWith("lines", linesWith(key, drop))});
        cases.push_back(
            {"line " + key + " mistyped", shotWith("lines", linesWith(key, value(true)))});
    }
    for (size_t cut = 0; cut < whole.size(); ++cut)
        cases.push_back({"cut to " + std::to_string(cut) + " bytes", whole.substr(0, cut)});
    for (size_t i = 0; i < cases.size(); ++i) {
        SCOPED_TRACE(cases[i].name);
        // A fresh name each time: truncating a file in place makes ext4 flush it to disk.
        const std::string file = writeFile(dir.file(std::to_string(i)), cases[i].bytes);
        EXPECT_EQ(Library::load(file).has_value(), cases[i].loads);
        std::filesystem::remove(file);
    }
    EXPECT_FALSE(Library::load(dir.file("missing.plist")));
    EXPECT_FALSE(Library::load(dir.str())) << "a folder";
    ASSERT_EQ(mkfifo(dir.file("pipe.plist").c_str(), 0600), 0);
    EXPECT_FALSE(Library::load(dir.file("pipe.plist"))) << "a pipe, without waiting for a writer";
}

// A process killed at any moment of a save leaves the library whole, the old one or the new one,
// and once the next start has tidied up, nothing but the library in its folder.
TEST(LibraryFileTest, ASaveKilledAtAnyMomentLeavesTheLibraryWhole) {
    // Two libraries that differ only in their folder lists: the shots are made once.
    const Library first = bench::syntheticLibrary(20000);
    Library second = first;
    second.extraFolders.push_back("/home/me/Phone");
    const TempDir dir;
    const std::string folder = dir.file("data"), file = folder + "/library.plist";
    ASSERT_TRUE(first.save(file));
    const std::optional<Library> firstSaved = Library::load(file); // dates to the microsecond
    const auto started = steady_clock::now();
    ASSERT_TRUE(second.save(file));
    const auto saveTime = steady_clock::now() - started;
    const std::optional<Library> secondSaved = Library::load(file);
    ASSERT_TRUE(firstSaved && secondSaved);
    const auto same = [](const Library& a, const Library& b) {
        return a.size() == b.size() && a.extraFolders == b.extraFolders &&
               std::all_of(a.all().begin(), a.all().end(), [&](const ShotPtr& shot) {
                   const Shot* other = b.find(shot->path);
                   return other && *other == *shot;
               });
    };
    std::mt19937 random(20000);
    int leftBeforeStart = 0;
    for (int kill = 0; kill < 30; ++kill) {
        SCOPED_TRACE(kill);
        const pid_t saver = fork();
        ASSERT_GE(saver, 0);
        if (saver == 0) {
            for (int i = 0;; ++i)
                (i % 2 ? first : second).save(file);
        }
        // Anywhere in the first save or two, the moments around the rename included.
        std::this_thread::sleep_for(duration_cast<microseconds>(
            saveTime * std::uniform_real_distribution<>(0.0, 2.0)(random)));
        ::kill(saver, SIGKILL);
        waitpid(saver, nullptr, 0);
        leftBeforeStart += namesIn(folder).size() > 1;
        removeLeftovers(folder);
        EXPECT_EQ(namesIn(folder), std::set<std::string>{"library.plist"});
        const auto loaded = Library::load(file);
        ASSERT_TRUE(loaded);
        EXPECT_TRUE(same(*loaded, *firstSaved) || same(*loaded, *secondSaved));
    }
    std::cout << "kills that left a named temporary file for the next start: " << leftBeforeStart
              << " of 30\n";
}

} // namespace
