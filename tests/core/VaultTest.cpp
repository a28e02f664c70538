// The locked area: its file format, checked against an independent AES-GCM and property-list
// implementation (Python's cryptography and plistlib), broken and foreign files, and locking and
// restoring real files.
#include "core/Vault.h"

#include "core/Uuid.h"
#include "support/ChildRun.h"
#include "support/FailingWrite.h"
#include "support/PlistInterop.h"
#include "support/TempDir.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <sstream>
#include <sys/stat.h>

namespace lumivale {
namespace {

namespace fs = std::filesystem;
using test::readFile;
using test::TempDir;
using test::writeFile;

// Every byte value, so that no text handling can pass unnoticed.
std::string pictureBytes(size_t length = 1000) {
    std::string bytes(length, '\0');
    for (size_t i = 0; i < length; ++i)
        bytes[i] = static_cast<char>((i * 7 + 3) & 0xff);
    return bytes;
}

const Date lockTime = dateFromSeconds(1700000000.5);

std::string hex(const VaultKey& key) {
    return test::hexOf({reinterpret_cast<const char*>(key.bytes().data()), key.bytes().size()});
}

// Runs the independent implementation; its "name=value" lines.
std::map<std::string, std::string> python(const std::string& arguments) {
    const std::string script = LUMIVALE_TEST_SOURCE_DIR "/tests/core/vaultfile.py ";
    std::istringstream lines(test::runShell("/usr/bin/python3 " + script + arguments).value_or(""));
    std::map<std::string, std::string> fields;
    for (std::string line; std::getline(lines, line);)
        if (const auto eq = line.find('='); eq != std::string::npos)
            fields[line.substr(0, eq)] = line.substr(eq + 1);
    return fields;
}

// The kind of failure, or nothing on success.
template <class T> std::optional<VaultError::Kind> failureOf(const VaultResult<T>& result) {
    return result ? std::nullopt : std::optional(result.error().kind());
}

// A write that changes the last byte of what it is given: a disk that damages data.
ssize_t damagingWrite(int fd, const void* data, size_t length) {
    std::string copy(static_cast<const char*>(data), length);
    copy.back() ^= 0x01;
    return ::write(fd, copy.data(), copy.size());
}

class VaultTest : public ::testing::Test {
  public:
    TempDir home;
    const std::string pictures = home.file("Pictures");
    const std::string lockedFolder = home.file("data/Locked");
    const Vault vault{lockedFolder};
    const VaultKey key = VaultKey::random();

    // A picture on disk and its read, private shot.
    Shot picture(const std::string& name, const std::string& bytes = pictureBytes()) {
        Shot shot(writeFile(pictures + "/" + name, bytes), static_cast<int64_t>(bytes.size()),
                  dateFromSeconds(1614830767.25), dateFromSeconds(1614834367.5));
        shot.setLines({{"Visa 4111 1111 1111 1111", 0.1f, 0.7f, 0.6f, 0.04f},
                       {"Café Übersee", 0.1f, 0.6f, 0.3f, 0.04f}});
        shot.guess = Shelf::bills;
        shot.flags = {SensitiveKind::cardNumber};
        shot.readAt = dateFromSeconds(1614900000.0);
        return shot;
    }

    LockedShot locked(const std::string& name) {
        auto result = vault.lock(picture(name), key, lockTime);
        EXPECT_TRUE(result) << (result ? "" : result.error().description());
        return result ? result.value() : LockedShot{};
    }
};

TEST_F(VaultTest, aLockedFileOpensWithAnIndependentImplementation) {
    const std::string bytes = pictureBytes(4096);
    const Shot shot = picture("Screenshot 2021-03-04 at 05.06.07.png", bytes);
    std::set<std::string> nonces;
    for (int i = 0; i < 2; ++i) {
        const auto result = vault.lock(shot, key, lockTime);
        ASSERT_TRUE(result) << result.error();
        auto found = python("open " + hex(key) + " '" + vault.pathOf(result->id) + "'");
        // The magic, then a body of nonce, ciphertext as long as the plaintext, and tag.
        EXPECT_EQ(found["layout"], "True " + std::to_string(12 + bytes.size() + 16));
        EXPECT_EQ(found["header"], "id,shot,lockedAt|" + result->id + "|1700000000.500000");
        EXPECT_EQ(found["shot"], shot.path + "|4096|1614834367.500000|bills|cardNumber|"
                                             "Visa 4111 1111 1111 1111;Café Übersee");
        EXPECT_EQ(found["body"], test::hexOf(bytes));
        nonces.insert(found["nonces"].substr(0, 24));
        nonces.insert(found["nonces"].substr(25));
    }
    EXPECT_EQ(nonces.size(), 4u) << "every seal has its own nonce";
    // The original stays; nothing but the two locked files was written.
    EXPECT_EQ(readFile(shot.path), bytes);
    EXPECT_EQ(test::namesIn(home.file("data")), std::set<std::string>{"Locked"});
    EXPECT_EQ(test::namesIn(lockedFolder).size(), 2u);
}

TEST_F(VaultTest, aFileSealedByAnIndependentWriterOpens) {
    const std::string bytes = pictureBytes(777);
    const std::string source = writeFile(home.file("source.png"), bytes);
    const std::string id = "0C6F3B7A-1D2E-4F50-8A9B-0123456789AB";
    python("seal " + hex(key) + " '" + vault.pathOf(id) + "' '" + source + "' " + id +
           " /home/me/Pictures/written-by-python.png 1700000123.25");
    const auto header = vault.header(vault.pathOf(id), key);
    ASSERT_TRUE(header) << header.error();
    EXPECT_EQ(header->id, id);
    EXPECT_NEAR(secondsSince1970(header->lockedAt), 1700000123.25, 1e-6);
    EXPECT_EQ(header->shot.path, "/home/me/Pictures/written-by-python.png");
    EXPECT_EQ(header->shot.text(), "Card 4111 1111 1111 1111");
    EXPECT_EQ(vault.image(id, key).value(), bytes);
}

// Big-endian 4 bytes.
std::string be32(uint32_t v) {
    return {char(v >> 24), char(v >> 16 & 0xff), char(v >> 8 & 0xff), char(v & 0xff)};
}

TEST_F(VaultTest, brokenAndForeignFilesAreRefusedAndCountedUnreadable) {
    const std::string sound = readFile(vault.pathOf(locked("good.png").id));
    const auto foreign = vault.lock(picture("foreign.png"), VaultKey::random(), lockTime);
    ASSERT_TRUE(foreign);
    const std::string magic(Vault::magic);
    const uint32_t h = static_cast<uint32_t>(sound.size() - 21 - (12 + pictureBytes().size() + 16));
    const auto withH = [&](uint32_t length) { return magic + be32(length) + sound.substr(21); };
    std::string flipped = sound;
    flipped[sound.size() - 100] ^= 0x20; // in the body
    using enum VaultError::Kind;
    const std::optional<VaultError::Kind> opens;
    const struct {
        const char* name;
        std::string bytes;
        std::optional<VaultError::Kind> headerError, imageError; // nothing: it still opens
    } cases[] = {
        {"magic and H only (21 bytes)", magic + be32(1), notAFile, notAFile},
        {"H = 0", withH(0), notAFile, notAFile},
        {"H reaching the end", withH(sound.size() - 21), notAFile, notAFile},
        {"another magic", "LUMIVALE-VAULT-2\n" + sound.substr(17), notAFile, notAFile},
        {"sealed under another key", readFile(vault.pathOf(foreign->id)), cannotOpen, cannotOpen},
        {"a flipped byte in the body", flipped, opens, cannotOpen},
        {"header too short to hold a box", magic + be32(5) + "abcde" + sound.substr(21), cannotOpen,
         cannotOpen},
        {"body of one byte", sound.substr(0, 21 + h) + "x", opens, cannotOpen},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const TempDir folder;
        const Vault broken(folder.str());
        const std::string id = newUuid();
        writeFile(broken.pathOf(id), c.bytes);

        EXPECT_EQ(failureOf(broken.header(broken.pathOf(id), key)), c.headerError);
        EXPECT_EQ(failureOf(broken.image(id, key)), c.imageError);
        const auto listing = broken.list(key);
        EXPECT_EQ(listing.unreadable, c.headerError ? 1 : 0);
        EXPECT_EQ(listing.items.size(), c.headerError ? 0u : 1u);
    }
}

// Listing newest first is the application model's test to make.
TEST_F(VaultTest, onlyFilesEndingInLowerCaseLvlockCount) {
    EXPECT_EQ(Vault(home.file("nowhere")).count(), 0);
    EXPECT_TRUE(Vault(home.file("nowhere")).list(key).items.empty());
    const std::string sound = readFile(vault.pathOf(locked("copied.png").id));
    for (const char* name : {"A.LVLOCK", "B.Lvlock", "C.lvlock.bak", "lvlock", ".lvlock",
                             "E.lvlock~", "F.lvlock.XXXXXX"})
        writeFile(lockedFolder + "/" + name, sound);
    EXPECT_EQ(vault.count(), 1);
    EXPECT_EQ(vault.list(key).items.size(), 1u);
}

TEST_F(VaultTest, aFailedLockLeavesNothingBehindAndTheOriginalUntouched) {
    using enum VaultError::Kind;
    const struct {
        const char* name;
        WriteCall write;
        VaultError::Kind expected;
    } cases[] = {
        {"missing", systemWrite, cannotRead},
        {"the written copy does not check out", damagingWrite, verifyFailed},
        {"the disk is full", test::failingAfter(0), io},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const Shot shot = picture(std::string(c.name) + ".png");
        if (c.expected == cannotRead) fs::remove(shot.path);
        EXPECT_EQ(failureOf(vault.lock(shot, key, lockTime, c.write)), c.expected);
        EXPECT_TRUE(test::namesIn(lockedFolder).empty()) << "no locked or temporary file";
        EXPECT_EQ(readFile(shot.path), c.expected == cannotRead ? "" : pictureBytes());
    }
}

// A restore into a folder that holds the name already: the application model's tests.
TEST_F(VaultTest, restoreWritesThePictureBackWithItsDateOrKeepsTheLockedFile) {
    const LockedShot item = locked("taken.png");
    const std::string folder = home.file("Restored/nested"), file = folder + "/taken.png";
    EXPECT_EQ(failureOf(vault.restore(item.id, folder, key, damagingWrite)),
              VaultError::Kind::verifyFailed);
    EXPECT_TRUE(test::namesIn(folder).empty());
    EXPECT_TRUE(vault.image(item.id, key)) << "the locked file stays";

    const auto restored = vault.restore(item.id, folder, key);
    ASSERT_TRUE(restored) << restored.error();
    EXPECT_EQ(restored.value(), file);
    EXPECT_EQ(readFile(file), pictureBytes());
    struct stat st {};
    ASSERT_EQ(stat(file.c_str(), &st), 0);
    EXPECT_NEAR(st.st_mtim.tv_sec + st.st_mtim.tv_nsec / 1e9, secondsSince1970(item.shot.modified),
                1e-5);
    EXPECT_TRUE(test::namesIn(lockedFolder).empty()) << "the locked file is gone";
}

// Handing the file on and passing the disposer's failure on: the application model's tests.
TEST_F(VaultTest, anIdReachesNoFileOutsideTheFolder) {
    const auto outside = Vault(home.file("data")).lock(picture("outside.png"), key, lockTime);
    ASSERT_TRUE(outside);
    fs::create_directories(lockedFolder); // so that "Locked/.." leads somewhere
    for (const std::string& id : {"../" + outside->id, std::string(".."), std::string()}) {
        SCOPED_TRACE(id);
        EXPECT_FALSE(vault.image(id, key));
        EXPECT_FALSE(vault.restore(id, home.file("out"), key));
        EXPECT_FALSE(vault.discard(id, [](const std::string& path) {
            ADD_FAILURE() << path;
            return Status::ok();
        }));
    }
    EXPECT_FALSE(fs::exists(home.file("out")));
}

} // namespace
} // namespace lumivale
