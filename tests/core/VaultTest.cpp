// The locked area: its file format, checked against an independent AES-GCM and property-list
// implementation (Python's cryptography and plistlib), broken and foreign files, and locking and
// restoring real files.
#include "core/Vault.h"
#include "core/Uuid.h"

#include "core/Plist.h"
#include "core/ShotCodec.h"
#include "core/VaultKeySource.h"
#include "support/TempDir.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <sys/stat.h>

namespace lumivale {
namespace {

namespace fs = std::filesystem;
using test::readFile;
using test::TempDir;
using test::writeFile;

std::string sourceDir() {
    const char* dir = std::getenv("LUMIVALE_SOURCE_DIR");
    return dir ? dir : LUMIVALE_TEST_SOURCE_DIR;
}

// Every byte value, so that no text handling can pass unnoticed.
std::string pictureBytes(size_t length = 1000) {
    std::string bytes(length, '\0');
    for (size_t i = 0; i < length; ++i)
        bytes[i] = static_cast<char>((i * 7 + 3) & 0xff);
    return bytes;
}

Date at(double secondsSince1970) {
    return dateFromSeconds(secondsSince1970);
}

// A read, private shot of the picture at `path`.
Shot shotAt(const std::string& path, const std::string& bytes) {
    Shot shot(path, static_cast<int64_t>(bytes.size()), at(1614830767.25), at(1614834367.5));
    shot.pixelWidth = 1170;
    shot.pixelHeight = 2532;
    shot.setLines({{"Visa 4111 1111 1111 1111", 0.1f, 0.7f, 0.6f, 0.04f},
                   {"Café Übersee", 0.1f, 0.6f, 0.3f, 0.04f}});
    shot.guess = Shelf::bills;
    shot.guessScore = 3.5;
    shot.flags = {SensitiveKind::cardNumber};
    shot.readAt = at(1614900000.0);
    shot.reader = 1;
    return shot;
}

std::string hex(std::string_view bytes) {
    static constexpr char digits[] = "0123456789abcdef";
    std::string out;
    for (const unsigned char c : bytes) {
        out += digits[c >> 4];
        out += digits[c & 0xf];
    }
    return out;
}

std::string hex(const VaultKey& key) {
    return hex({reinterpret_cast<const char*>(key.bytes().data()), key.bytes().size()});
}

// Runs the independent implementation; its "name=value" lines.
std::map<std::string, std::string> python(const std::string& arguments) {
    const std::string command =
        "/usr/bin/python3 " + sourceDir() + "/tests/core/vaultfile.py " + arguments + " 2>&1";
    std::map<std::string, std::string> fields;
    FILE* pipe = popen(command.c_str(), "r");
    if (!pipe) return fields;
    std::string output;
    char buffer[4096];
    size_t n;
    while ((n = fread(buffer, 1, sizeof buffer, pipe)) > 0)
        output.append(buffer, n);
    fields["exit"] = std::to_string(pclose(pipe));
    fields["output"] = output;
    std::istringstream lines(output);
    for (std::string line; std::getline(lines, line);)
        if (const auto eq = line.find('='); eq != std::string::npos)
            fields[line.substr(0, eq)] = line.substr(eq + 1);
    return fields;
}

// Every entry of a folder, by name.
std::vector<std::string> entries(const std::string& folder) {
    std::vector<std::string> names;
    std::error_code ec;
    for (const auto& entry : fs::directory_iterator(folder, ec))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

int64_t nanoseconds(const timespec& t) {
    return int64_t(t.tv_sec) * 1'000'000'000 + t.tv_nsec;
}

// A write that changes the last byte of what it is given: a disk that damages data.
ssize_t damagingWrite(int fd, const void* data, size_t length) {
    std::string copy(static_cast<const char*>(data), length);
    copy.back() ^= 0x01;
    return ::write(fd, copy.data(), copy.size());
}

ssize_t fullDiskWrite(int, const void*, size_t) {
    errno = ENOSPC;
    return -1;
}

class VaultTest : public ::testing::Test {
public:
    TempDir home;
    const std::string pictures = home.file("Pictures");
    const std::string lockedFolder = home.file("data/Locked");
    const Vault vault{lockedFolder};
    const VaultKey key = VaultKey::random();

    // A picture on disk and its shot.
    Shot picture(const std::string& name, const std::string& bytes = pictureBytes()) {
        return shotAt(writeFile(pictures + "/" + name, bytes), bytes);
    }

    LockedShot locked(const std::string& name, Date now = at(1700000000.0)) {
        auto result = vault.lock(picture(name), key, now);
        EXPECT_TRUE(result) << (result ? "" : result.error().description());
        return result ? result.value() : LockedShot{};
    }
};

TEST_F(VaultTest, aLockedFileOpensWithAnIndependentImplementation) {
    const std::string bytes = pictureBytes(4096);
    const Shot shot = picture("Screenshot 2021-03-04 at 05.06.07.png", bytes);
    const auto result = vault.lock(shot, key, at(1700000000.5));
    ASSERT_TRUE(result) << result.error();
    const LockedShot& locked = result.value();

    EXPECT_TRUE(std::regex_match(
        locked.id,
        std::regex("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}")))
        << locked.id;
    EXPECT_EQ(entries(lockedFolder), std::vector<std::string>{locked.id + ".lvlock"});

    const std::string file = vault.pathOf(locked.id);
    auto found = python("open " + hex(key) + " '" + file + "'");
    ASSERT_EQ(found["exit"], "0") << found["output"];
    EXPECT_EQ(found["magic"], "ok");
    const std::string raw = readFile(file);
    EXPECT_EQ(std::stoul(found["headerLength"]) + 21 + std::stoul(found["bodyLength"]), raw.size());
    // Combined boxes: nonce, ciphertext as long as the plaintext, tag.
    EXPECT_EQ(std::stoul(found["bodyLength"]), 12 + bytes.size() + 16);
    EXPECT_EQ(found["keys"], "id,shot,lockedAt");
    EXPECT_EQ(found["id"], locked.id);
    EXPECT_EQ(found["lockedAt"], "1700000000.500000");
    EXPECT_EQ(found["shot.path"], shot.path);
    EXPECT_EQ(found["shot.size"], "4096");
    EXPECT_EQ(found["shot.modified"], "1614834367.500000");
    EXPECT_EQ(found["shot.guess"], "bills");
    EXPECT_EQ(found["shot.flags"], "cardNumber");
    EXPECT_EQ(found["shot.lines"], "Visa 4111 1111 1111 1111|Café Übersee");
    EXPECT_EQ(found["body"], hex(bytes));
    // The original stays; nothing but the locked file was written.
    EXPECT_EQ(readFile(shot.path), bytes);
    EXPECT_EQ(entries(home.file("data")), std::vector<std::string>{"Locked"});
}

TEST_F(VaultTest, aFileSealedByAnIndependentWriterOpens) {
    const std::string bytes = pictureBytes(777);
    const std::string source = writeFile(home.file("source.png"), bytes);
    const std::string id = "0C6F3B7A-1D2E-4F50-8A9B-0123456789AB";
    fs::create_directories(lockedFolder);
    auto sealed = python("seal " + hex(key) + " '" + vault.pathOf(id) + "' '" + source + "' " + id +
                         " /home/me/Pictures/written-by-python.png 1700000123.25");
    ASSERT_EQ(sealed["exit"], "0") << sealed["output"];

    const auto header = vault.header(vault.pathOf(id), key);
    ASSERT_TRUE(header) << header.error();
    EXPECT_EQ(header->id, id);
    EXPECT_NEAR(secondsSince1970(header->lockedAt), 1700000123.25, 1e-6);
    EXPECT_EQ(header->shot.path, "/home/me/Pictures/written-by-python.png");
    EXPECT_EQ(header->shot.size, 777);
    EXPECT_EQ(header->shot.guess, Shelf::bills);
    EXPECT_EQ(header->shot.flags, SensitiveKinds{SensitiveKind::cardNumber});
    ASSERT_EQ(header->shot.lines.size(), 1u);
    EXPECT_EQ(header->shot.lines[0].text, "Card 4111 1111 1111 1111");

    const auto image = vault.image(id, key);
    ASSERT_TRUE(image) << image.error();
    EXPECT_EQ(image.value(), bytes);
    const auto listing = vault.list(key);
    ASSERT_EQ(listing.items.size(), 1u);
    EXPECT_EQ(listing.items[0], header.value());
}

TEST_F(VaultTest, everySealHasItsOwnNonceAndEveryLockItsOwnId) {
    const Shot shot = picture("same.png");
    std::set<std::string> nonces, ids;
    for (int i = 0; i < 3; ++i) {
        const auto result = vault.lock(shot, key, at(1700000000.0));
        ASSERT_TRUE(result) << result.error();
        ids.insert(result->id);
        auto found = python("open " + hex(key) + " '" + vault.pathOf(result->id) + "'");
        nonces.insert(found["headerNonce"]);
        nonces.insert(found["bodyNonce"]);
    }
    EXPECT_EQ(ids.size(), 3u);
    EXPECT_EQ(nonces.size(), 6u);
}

// Big-endian 4 bytes.
std::string be32(uint32_t v) {
    return {char(v >> 24), char(v >> 16 & 0xff), char(v >> 8 & 0xff), char(v & 0xff)};
}

struct BrokenFile {
    const char* name;
    std::function<std::string(const std::string& good, const std::string& foreign)> make;
    std::optional<VaultError> headerError; // nothing: the header still opens
    std::optional<VaultError> imageError;  // nothing: the picture still opens
};

TEST_F(VaultTest, brokenAndForeignFilesAreRefusedAndCountedUnreadable) {
    const std::string magic(Vault::magic);
    const auto notAFile = VaultError::notAFile();
    const auto cannotOpen = VaultError::cannotOpen();
    const auto withH = [&](const std::string& good, uint32_t h) {
        return magic + be32(h) + good.substr(21);
    };
    const BrokenFile cases[] = {
        {"empty", [](auto&, auto&) { return std::string(); }, notAFile, notAFile},
        {"magic and H only (21 bytes)", [&](auto&, auto&) { return magic + be32(1); }, notAFile,
         notAFile},
        {"20 bytes", [&](auto&, auto&) { return magic + "\0\0\0"; }, notAFile, notAFile},
        {"H = 0", [&](auto& good, auto&) { return withH(good, 0); }, notAFile, notAFile},
        {"H reaching the end", [&](auto& good, auto&) { return withH(good, good.size() - 21); },
         notAFile, notAFile},
        {"H past the end", [&](auto& good, auto&) { return withH(good, good.size()); }, notAFile,
         notAFile},
        {"H of 4 GiB", [&](auto& good, auto&) { return withH(good, 0xffffffff); }, notAFile,
         notAFile},
        {"another magic", [](auto& good, auto&) { return "LUMIVALE-VAULT-2\n" + good.substr(17); },
         notAFile, notAFile},
        {"a picture", [](auto&, auto&) { return "\x89PNG\r\n\x1a\n" + pictureBytes(100); },
         notAFile, notAFile},
        {"sealed under another key", [](auto&, auto& foreign) { return foreign; }, cannotOpen,
         cannotOpen},
        {"a flipped byte in the body",
         [](auto& good, auto&) {
             std::string bad = good;
             bad[bad.size() - 100] ^= 0x20;
             return bad;
         },
         std::nullopt, cannotOpen},
        {"a flipped byte in the header",
         [](auto& good, auto&) {
             std::string bad = good;
             bad[30] ^= 0x01;
             return bad;
         },
         cannotOpen, std::nullopt},
        {"header too short to hold a box",
         [&](auto& good, auto&) { return magic + be32(5) + "abcde" + good.substr(21); }, cannotOpen,
         cannotOpen},
        {"body of one byte",
         [&](auto& good, auto&) {
             const uint32_t h = std::stoul(hex(good.substr(17, 4)), nullptr, 16);
             return good.substr(0, 21 + h) + "x";
         },
         std::nullopt, cannotOpen},
    };

    const LockedShot good = locked("good.png");
    const std::string goodBytes = readFile(vault.pathOf(good.id));
    const VaultKey otherKey = VaultKey::random();
    const auto foreign = vault.lock(picture("foreign.png"), otherKey, at(1700000000.0));
    ASSERT_TRUE(foreign);
    const std::string foreignBytes = readFile(vault.pathOf(foreign->id));

    for (const BrokenFile& c : cases) {
        SCOPED_TRACE(c.name);
        const TempDir folder;
        const Vault broken(folder.str());
        const std::string id = newUuid();
        writeFile(broken.pathOf(id), c.make(goodBytes, foreignBytes));

        const auto header = broken.header(broken.pathOf(id), key);
        EXPECT_EQ(header ? std::nullopt : std::optional(header.error()), c.headerError);
        const auto image = broken.image(id, key);
        EXPECT_EQ(image ? std::nullopt : std::optional(image.error()), c.imageError);
        const auto parts = broken.parts(broken.pathOf(id));
        EXPECT_EQ(parts.ok(), c.imageError != notAFile);
        EXPECT_EQ(broken.restore(id, folder.file("restored"), key).ok(), false);
        EXPECT_FALSE(fs::exists(folder.file("restored")));

        const auto listing = broken.list(key);
        EXPECT_EQ(listing.unreadable, c.headerError ? 1 : 0);
        EXPECT_EQ(listing.items.size(), c.headerError ? 0u : 1u);
        EXPECT_EQ(broken.count(), 1);
    }
}

TEST_F(VaultTest, partsSplitAtTheHeaderLength) {
    const LockedShot shot = locked("parts.png");
    const std::string raw = readFile(vault.pathOf(shot.id));
    const auto parts = vault.parts(vault.pathOf(shot.id));
    ASSERT_TRUE(parts) << parts.error();
    EXPECT_EQ(std::string(Vault::magic) + be32(parts->header.size()) + parts->header + parts->body,
              raw);
    EXPECT_EQ(parts->body.size(), 12 + pictureBytes().size() + 16);
}

struct FolderCase {
    const char* name;
    std::vector<std::string> extraFiles; // beside one good locked file
    bool folderExists;
};

TEST_F(VaultTest, onlyFilesEndingInLowerCaseLvlockCount) {
    const FolderCase cases[] = {
        {"missing folder", {}, false},
        {"empty folder", {}, true},
        {"other names",
         {"A.LVLOCK", "B.Lvlock", "C.lvlock.bak", "D.txt", "lvlock", ".lvlock", "E.lvlock~",
          "F.lvlock.XXXXXX"},
         true},
    };
    for (const FolderCase& c : cases) {
        SCOPED_TRACE(c.name);
        const TempDir top;
        const Vault folder(top.file("Locked"));
        if (c.folderExists) fs::create_directories(folder.dir());
        for (const std::string& name : c.extraFiles)
            writeFile(folder.dir() + "/" + name, readFile(vault.pathOf(locked(name + ".png").id)));
        EXPECT_TRUE(folder.files().empty());
        EXPECT_EQ(folder.count(), 0);
        const auto empty = folder.list(key);
        EXPECT_TRUE(empty.items.empty());
        EXPECT_EQ(empty.unreadable, 0);

        const auto one = folder.lock(picture("one.png"), key, at(1700000000.0));
        ASSERT_TRUE(one) << one.error();
        EXPECT_EQ(folder.files(), std::vector<std::string>{folder.pathOf(one->id)});
        EXPECT_EQ(folder.count(), 1);
        EXPECT_EQ(folder.list(key).items.size(), 1u);
        EXPECT_EQ(folder.list(key).unreadable, 0);
    }
}

TEST_F(VaultTest, listsNewestFirstKeepingListingOrderForEqualDates) {
    const double dates[] = {1700000100, 1700000300, 1700000200, 1700000300, 1700000100};
    std::map<std::string, Date> lockedAt;
    for (size_t i = 0; i < std::size(dates); ++i)
        lockedAt[locked("shot" + std::to_string(i) + ".png", at(dates[i])).id] = at(dates[i]);
    writeFile(lockedFolder + "/not-locked.lvlock", "LUMIVALE-VAULT-1\nrest");

    // Equal dates keep the order in which the folder lists the files.
    std::vector<std::pair<Date, std::string>> expected;
    for (const std::string& path : vault.files())
        if (const std::string id = fs::path(path).stem().string(); lockedAt.count(id))
            expected.emplace_back(lockedAt[id], id);
    std::stable_sort(expected.begin(), expected.end(),
                     [](const auto& a, const auto& b) { return a.first > b.first; });

    const auto listing = vault.list(key);
    EXPECT_EQ(listing.unreadable, 1);
    ASSERT_EQ(listing.items.size(), expected.size());
    for (size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(listing.items[i].id, expected[i].second) << i;
        EXPECT_EQ(listing.items[i].lockedAt, expected[i].first) << i;
    }
}

struct LockFailure {
    const char* name;
    std::function<Shot(VaultTest&)> shot;
    WriteCall write;
    VaultError::Kind expected;
};

TEST_F(VaultTest, aFailedLockLeavesNothingBehindAndTheOriginalUntouched) {
    std::vector<LockFailure> cases = {
        {"missing picture",
         [](VaultTest& t) { return shotAt(t.home.file("gone.png"), pictureBytes()); }, systemWrite,
         VaultError::Kind::cannotRead},
        {"a folder in place of the picture",
         [](VaultTest& t) {
             fs::create_directories(t.home.file("folder.png"));
             return shotAt(t.home.file("folder.png"), "");
         },
         systemWrite, VaultError::Kind::cannotRead},
        {"the written copy does not check out", [](VaultTest& t) { return t.picture("a.png"); },
         damagingWrite, VaultError::Kind::verifyFailed},
        {"the disk is full", [](VaultTest& t) { return t.picture("b.png"); }, fullDiskWrite,
         VaultError::Kind::io},
        {"a named pipe in place of the picture",
         [](VaultTest& t) {
             mkfifo(t.home.file("pipe.png").c_str(), 0600);
             return shotAt(t.home.file("pipe.png"), pictureBytes());
         },
         systemWrite, VaultError::Kind::cannotRead},
    };
    // Permissions do not hold for root.
    if (!test::runningAsRoot())
        cases.push_back({"a picture that may not be read",
                         [](VaultTest& t) {
                             const Shot shot = t.picture("private.png");
                             fs::permissions(shot.path, fs::perms::none);
                             return shot;
                         },
                         systemWrite, VaultError::Kind::cannotRead});
    for (const LockFailure& c : cases) {
        SCOPED_TRACE(c.name);
        const Shot shot = c.shot(*this);
        struct stat st {};
        const bool existed = stat(shot.path.c_str(), &st) == 0;
        const std::string before = S_ISREG(st.st_mode) ? readFile(shot.path) : "";
        const auto result = vault.lock(shot, key, at(1700000000.0), c.write);
        ASSERT_FALSE(result);
        EXPECT_EQ(result.error().kind(), c.expected);
        EXPECT_TRUE(entries(lockedFolder).empty());
        EXPECT_EQ(vault.count(), 0);
        struct stat after {};
        EXPECT_EQ(stat(shot.path.c_str(), &after) == 0, existed);
        if (existed) EXPECT_EQ(nanoseconds(after.st_mtim), nanoseconds(st.st_mtim));
    }
}

TEST_F(VaultTest, restoreWritesThePictureBackWithItsDateAndRemovesTheLockedFile) {
    const std::string bytes = pictureBytes(3000);
    const Shot shot = picture("Screenshot 2021-03-04.png", bytes);
    const auto lockedShot = vault.lock(shot, key, at(1700000000.0));
    ASSERT_TRUE(lockedShot) << lockedShot.error();
    const Date modified = vault.header(vault.pathOf(lockedShot->id), key)->shot.modified;
    fs::remove(shot.path);

    const std::string folder = home.file("Restored/nested");
    const auto restored = vault.restore(lockedShot->id, folder, key);
    ASSERT_TRUE(restored) << restored.error();
    EXPECT_EQ(restored.value(), folder + "/Screenshot 2021-03-04.png");
    // Dates first: reading the file may move its access time on.
    struct stat st {};
    ASSERT_EQ(stat(restored.value().c_str(), &st), 0);
    EXPECT_EQ(nanoseconds(st.st_mtim), modified.time_since_epoch().count());
    EXPECT_EQ(nanoseconds(st.st_atim), modified.time_since_epoch().count());
    EXPECT_EQ(readFile(restored.value()), bytes);
    EXPECT_NEAR(secondsSince1970(modified), secondsSince1970(shot.modified), 1e-5);
    EXPECT_EQ(vault.count(), 0);
    EXPECT_TRUE(entries(lockedFolder).empty());
    EXPECT_EQ(entries(folder), std::vector<std::string>{"Screenshot 2021-03-04.png"});
}

struct RestoreFailure {
    const char* name;
    std::function<std::string(VaultTest&, const LockedShot&, const std::string& folder)> prepare;
    VaultError::Kind expected;
    std::vector<std::string> leftInFolder;
};

TEST_F(VaultTest, aFailedRestoreKeepsTheLockedFileAndWritesNothing) {
    const RestoreFailure cases[] = {
        {"the name is taken",
         [](VaultTest&, const LockedShot&, const std::string& folder) {
             writeFile(folder + "/taken.png", "someone else's");
             return std::string("taken");
         },
         VaultError::Kind::io,
         {"taken.png"}},
        {"the restored copy does not check out",
         [](VaultTest&, const LockedShot&, const std::string&) { return std::string("damage"); },
         VaultError::Kind::verifyFailed,
         {}},
        {"another key",
         [](VaultTest&, const LockedShot&, const std::string&) { return std::string("key"); },
         VaultError::Kind::cannotOpen,
         {}},
        {"an id from elsewhere",
         [](VaultTest&, const LockedShot&, const std::string&) { return std::string("../x"); },
         VaultError::Kind::notAFile,
         {}},
        {"an unknown id",
         [](VaultTest&, const LockedShot&, const std::string&) { return std::string("unknown"); },
         VaultError::Kind::io,
         {}},
    };
    for (const RestoreFailure& c : cases) {
        SCOPED_TRACE(c.name);
        const TempDir target;
        const LockedShot shot = locked("taken.png");
        fs::remove(shot.shot.path);
        const std::string how = c.prepare(*this, shot, target.str());
        const std::string id = how == "../x" ? "../x" : how == "unknown" ? newUuid() : shot.id;
        const VaultKey otherKey = VaultKey::random();
        const auto restored = vault.restore(id, target.str(), how == "key" ? otherKey : key,
                                            how == "damage" ? damagingWrite : systemWrite);
        ASSERT_FALSE(restored);
        EXPECT_EQ(restored.error().kind(), c.expected);
        EXPECT_EQ(entries(target.str()), c.leftInFolder);
        if (!c.leftInFolder.empty())
            EXPECT_EQ(readFile(target.file("taken.png")), "someone else's");
        EXPECT_TRUE(fs::exists(vault.pathOf(shot.id)));
        EXPECT_TRUE(vault.image(shot.id, key));
        fs::remove(vault.pathOf(shot.id));
    }
    EXPECT_TRUE(entries(lockedFolder).empty());
}

TEST_F(VaultTest, discardHandsTheLockedFileToTheDisposer) {
    const LockedShot shot = locked("discard.png");
    std::vector<std::string> handed;
    const auto refuse = [&](const std::string& path) {
        handed.push_back(path);
        return Status::failure("The Trash is full");
    };
    const auto failed = vault.discard(shot.id, refuse);
    ASSERT_FALSE(failed);
    EXPECT_EQ(failed.error().description(), "The Trash is full");
    EXPECT_FALSE(vault.discard("../../etc/passwd", refuse));
    EXPECT_EQ(handed, std::vector<std::string>{vault.pathOf(shot.id)});

    const std::string trash = home.file("Trash");
    fs::create_directories(trash);
    const auto moved = vault.discard(shot.id, [&](const std::string& path) {
        fs::rename(path, trash + "/" + fs::path(path).filename().string());
        return Status::ok();
    });
    EXPECT_TRUE(moved);
    EXPECT_EQ(vault.count(), 0);
    EXPECT_EQ(entries(trash), std::vector<std::string>{shot.id + ".lvlock"});
}

TEST(LockedShotCoding, aHeaderNeedsAllThreeKeysOfTheRightType) {
    const Shot shot = shotAt("/p/a.png", "abc");
    const LockedShot whole{"0C6F3B7A-1D2E-4F50-8A9B-0123456789AB", shot, at(1700000000.0)};
    const std::string encoded = encodeLockedShot(whole);
    const auto bytes = [](const std::string& s) {
        return std::span<const uint8_t>(reinterpret_cast<const uint8_t*>(s.data()), s.size());
    };
    const auto decoded = decodeLockedShot(bytes(encoded));
    ASSERT_TRUE(decoded);
    EXPECT_EQ(decoded->id, whole.id);
    EXPECT_EQ(decoded->lockedAt, whole.lockedAt);
    EXPECT_EQ(decoded->shot.path, shot.path);
    EXPECT_EQ(decoded->shot.lines, shot.lines);
    EXPECT_EQ(decoded->shot.flags, shot.flags);

    struct Case {
        const char* name;
        bool id, shot, lockedAt, idIsNumber;
    };
    for (const Case& c :
         {Case{"no id", false, true, true, false}, Case{"no shot", true, false, true, false},
          Case{"no lockedAt", true, true, false, false},
          Case{"id not a string", true, true, true, true}}) {
        SCOPED_TRACE(c.name);
        plist::Writer writer;
        std::vector<std::pair<plist::Ref, plist::Ref>> entries;
        if (c.id)
            entries.emplace_back(writer.key("id"),
                                 c.idIsNumber ? writer.integer(7) : writer.string(whole.id));
        if (c.shot) entries.emplace_back(writer.key("shot"), writeShot(writer, shot));
        if (c.lockedAt) entries.emplace_back(writer.key("lockedAt"), writer.date(whole.lockedAt));
        EXPECT_FALSE(decodeLockedShot(bytes(writer.finish(writer.dict(entries)))));
    }
    EXPECT_FALSE(decodeLockedShot(bytes("not a property list")));
}

TEST(VaultError, descriptionsAndEquality) {
    const std::pair<VaultError, std::string> cases[] = {
        {VaultError::keychain(-25300), "The keyring refused (-25300)."},
        {VaultError::keychain(0), "The keyring refused (0)."},
        {VaultError::notAFile(), "That isn't a locked screenshot."},
        {VaultError::cannotRead(), "The screenshot couldn't be read."},
        {VaultError::cannotOpen(),
         "This locked screenshot can't be opened with this computer's key."},
        {VaultError::verifyFailed(),
         "The locked copy didn't check out, so the original was left where it is."},
        {VaultError::io("“a.png” couldn't be written: File exists."),
         "“a.png” couldn't be written: File exists."},
    };
    for (size_t i = 0; i < std::size(cases); ++i) {
        SCOPED_TRACE(cases[i].second);
        EXPECT_EQ(cases[i].first.description(), cases[i].second);
        for (size_t j = 0; j < std::size(cases); ++j)
            EXPECT_EQ(cases[i].first == cases[j].first, i == j);
    }
    EXPECT_EQ(VaultError::keychain(-1), VaultError::keychain(-1));
}

TEST(MemoryKey, keepsOneKeyAndEachMemoryHasItsOwn) {
    MemoryKey first, second;
    const auto a = first.key(), b = first.key(), c = second.key();
    ASSERT_TRUE(a && b && c);
    EXPECT_EQ(a.value(), b.value());
    EXPECT_NE(a.value(), c.value());

    std::array<uint8_t, 32> bytes;
    bytes.fill(0x5a);
    const VaultKey given{std::span<const uint8_t, 32>(bytes)};
    EXPECT_EQ(MemoryKey(given).key().value(), given);

    // A key never shows its bytes.
    std::ostringstream shown;
    shown << given << a.value();
    EXPECT_EQ(shown.str().find("5a"), std::string::npos);
    EXPECT_EQ(shown.str().find("5A"), std::string::npos);
    EXPECT_EQ(shown.str().find(hex(a.value())), std::string::npos);
}

} // namespace
} // namespace lumivale
