#include "core/Vault.h"

#include "core/Plist.h"
#include "core/ShotCodec.h"
#include "core/Uuid.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <sys/stat.h>
#include <unistd.h>

namespace lumivale {
namespace {

constexpr size_t nonceSize = 12;
constexpr size_t tagSize = 16;
constexpr size_t prefixSize = Vault::magic.size() + 4;

using CipherContext = std::unique_ptr<EVP_CIPHER_CTX, decltype(&EVP_CIPHER_CTX_free)>;

CipherContext newContext() {
    return CipherContext(EVP_CIPHER_CTX_new(), EVP_CIPHER_CTX_free);
}

uint8_t* bytesOf(std::string& s) {
    return reinterpret_cast<uint8_t*>(s.data());
}
const uint8_t* bytesOf(std::string_view s) {
    return reinterpret_cast<const uint8_t*>(s.data());
}

// EVP takes int lengths, so long inputs go through in pieces.
bool cipherUpdate(EVP_CIPHER_CTX* ctx, bool encrypt, uint8_t* out, const uint8_t* in,
                  size_t length) {
    constexpr size_t chunk = 1 << 30;
    for (size_t done = 0; done < length; done += chunk) {
        const int n = static_cast<int>(std::min(chunk, length - done));
        int written = 0;
        const int ok = encrypt ? EVP_EncryptUpdate(ctx, out + done, &written, in + done, n)
                               : EVP_DecryptUpdate(ctx, out + done, &written, in + done, n);
        if (ok != 1 || written != n) return false;
    }
    return true;
}

// AES-256-GCM under a fresh random nonce, in the combined form nonce ‖ ciphertext ‖ tag.
std::optional<std::string> seal(const VaultKey& key, std::string_view plain) {
    std::string box(nonceSize + plain.size() + tagSize, '\0');
    uint8_t* nonce = bytesOf(box);
    randomBytes({nonce, nonceSize});
    const CipherContext ctx = newContext();
    int finalLength = 0;
    if (!ctx ||
        EVP_EncryptInit_ex(ctx.get(), EVP_aes_256_gcm(), nullptr, key.bytes().data(), nonce) != 1 ||
        !cipherUpdate(ctx.get(), true, nonce + nonceSize, bytesOf(plain), plain.size()) ||
        EVP_EncryptFinal_ex(ctx.get(), nonce + nonceSize + plain.size(), &finalLength) != 1 ||
        EVP_CIPHER_CTX_ctrl(ctx.get(), EVP_CTRL_GCM_GET_TAG, tagSize,
                            nonce + nonceSize + plain.size()) != 1)
        return std::nullopt;
    return box;
}

// The plaintext of a combined box, or nothing when the key or the box is wrong.
std::optional<std::string> unseal(const VaultKey& key, std::string_view box) {
    if (box.size() < nonceSize + tagSize) return std::nullopt;
    const size_t length = box.size() - nonceSize - tagSize;
    const uint8_t* nonce = bytesOf(box);
    // The tag is set through a non-const pointer, so it is copied out first.
    std::array<uint8_t, tagSize> tag;
    std::copy_n(nonce + nonceSize + length, tagSize, tag.begin());
    std::string plain(length, '\0');
    const CipherContext ctx = newContext();
    int finalLength = 0;
    if (!ctx ||
        EVP_DecryptInit_ex(ctx.get(), EVP_aes_256_gcm(), nullptr, key.bytes().data(), nonce) != 1 ||
        !cipherUpdate(ctx.get(), false, bytesOf(plain), nonce + nonceSize, length) ||
        EVP_CIPHER_CTX_ctrl(ctx.get(), EVP_CTRL_GCM_SET_TAG, tagSize, tag.data()) != 1 ||
        EVP_DecryptFinal_ex(ctx.get(), bytesOf(plain) + length, &finalLength) != 1) {
        // Unauthenticated plaintext must not linger.
        OPENSSL_cleanse(plain.data(), plain.size());
        return std::nullopt;
    }
    return plain;
}

// An id names a file directly inside the folder, never one elsewhere.
bool isPlainName(std::string_view id) {
    return !id.empty() && id != "." && id != ".." && id.find('/') == std::string_view::npos;
}

std::string fileName(const std::string& path) {
    return std::filesystem::path(path).filename().string();
}

VaultError readError(const std::string& path, int err) {
    return VaultError::io("“" + fileName(path) + "” couldn't be read: " + describeErrno(err) + ".");
}

// Reads `length` bytes at `offset`; a file that ends sooner is an error (EIO).
int readAt(int fd, std::string& into, size_t length, off_t offset) {
    into.resize(length);
    size_t done = 0;
    while (done < length) {
        const ssize_t n =
            pread(fd, into.data() + done, length - done, offset + static_cast<off_t>(done));
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return n < 0 ? errno : EIO;
        done += static_cast<size_t>(n);
    }
    return 0;
}

class File {
  public:
    // O_NONBLOCK so that a named pipe in place of a file cannot hang the open.
    explicit File(const std::string& path)
        : fd_(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {}
    ~File() {
        if (fd_ >= 0) close(fd_);
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    int fd() const { return fd_; }

  private:
    int fd_;
};

// The whole of a regular file, or the error number that kept it from being read.
std::variant<std::string, int> readWhole(const std::string& path) {
    const File file(path);
    struct stat st {};
    if (file.fd() < 0 || fstat(file.fd(), &st) != 0) return errno;
    if (!S_ISREG(st.st_mode)) return S_ISDIR(st.st_mode) ? EISDIR : EINVAL;
    std::string bytes;
    if (const int err = readAt(file.fd(), bytes, static_cast<size_t>(st.st_size), 0)) return err;
    return bytes;
}

// The sealed header and, when asked, the sealed body of a locked file. Only the parts asked
// for are read, so listing many large files reads little more than their headers.
VaultResult<Vault::Parts> readParts(const std::string& path, bool withBody) {
    const File file(path);
    struct stat st {};
    if (file.fd() < 0 || fstat(file.fd(), &st) != 0) return readError(path, errno);
    if (!S_ISREG(st.st_mode)) return VaultError::notAFile();
    const auto length = static_cast<uint64_t>(st.st_size);
    if (length <= prefixSize) return VaultError::notAFile();
    std::string prefix;
    if (const int err = readAt(file.fd(), prefix, prefixSize, 0)) return readError(path, err);
    if (std::string_view(prefix).substr(0, Vault::magic.size()) != Vault::magic)
        return VaultError::notAFile();
    const auto* h = bytesOf(std::string_view(prefix)) + Vault::magic.size();
    const uint64_t headerSize =
        uint64_t(h[0]) << 24 | uint64_t(h[1]) << 16 | uint64_t(h[2]) << 8 | uint64_t(h[3]);
    if (headerSize < 1 || prefixSize + headerSize >= length) return VaultError::notAFile();
    Vault::Parts parts;
    if (const int err = readAt(file.fd(), parts.header, headerSize, prefixSize))
        return readError(path, err);
    if (withBody) {
        const uint64_t bodyStart = prefixSize + headerSize;
        if (const int err =
                readAt(file.fd(), parts.body, length - bodyStart, static_cast<off_t>(bodyStart)))
            return readError(path, err);
    }
    return parts;
}

// The time as utimensat wants it, rounded down to whole seconds plus nanoseconds.
timespec timespecOf(Date date) {
    const auto ns = date.time_since_epoch().count();
    const auto seconds = ns / 1'000'000'000 - (ns % 1'000'000'000 < 0 ? 1 : 0);
    return timespec{static_cast<time_t>(seconds), static_cast<long>(ns - seconds * 1'000'000'000)};
}

} // namespace

std::string encodeLockedShot(const LockedShot& locked) {
    plist::Writer writer;
    const plist::Ref id = writer.string(locked.id);
    const plist::Ref shot = writeShot(writer, locked.shot);
    const plist::Ref lockedAt = writer.date(locked.lockedAt);
    const std::array<std::pair<plist::Ref, plist::Ref>, 3> entries{{
        {writer.key("id"), id},
        {writer.key("shot"), shot},
        {writer.key("lockedAt"), lockedAt},
    }};
    return writer.finish(writer.dict(entries));
}

std::optional<LockedShot> decodeLockedShot(std::span<const uint8_t> bytes) {
    const auto doc = plist::Document::open(bytes);
    if (!doc) return std::nullopt;
    const auto dict = doc->dict(doc->root());
    if (!dict) return std::nullopt;
    const auto idRef = dict->find("id");
    const auto shotRef = dict->find("shot");
    const auto lockedAtRef = dict->find("lockedAt");
    if (!idRef || !shotRef || !lockedAtRef) return std::nullopt;
    auto id = doc->string(*idRef);
    auto shot = readShot(*doc, *shotRef);
    const auto lockedAt = doc->date(*lockedAtRef);
    if (!id || !shot || !lockedAt) return std::nullopt;
    shot->indexSearchText();
    return LockedShot{std::move(*id), std::move(*shot), *lockedAt};
}

std::string Vault::pathOf(std::string_view id) const {
    return (std::filesystem::path(dir_) / (std::string(id) + "." + std::string(fileExtension)))
        .string();
}

std::vector<std::string> Vault::files() const {
    std::vector<std::string> found;
    std::error_code ec;
    const std::string wanted = "." + std::string(fileExtension);
    for (auto it = std::filesystem::directory_iterator(dir_, ec);
         !ec && it != std::filesystem::directory_iterator(); it.increment(ec))
        if (it->path().extension() == wanted) found.push_back(it->path().string());
    return found;
}

int64_t Vault::count() const {
    return static_cast<int64_t>(files().size());
}

VaultResult<LockedShot> Vault::lock(const Shot& shot, const VaultKey& key, Date now,
                                    const WriteCall& write) const {
    auto read = readWhole(shot.path);
    if (read.index() != 0) return VaultError::cannotRead();
    const std::string& picture = std::get<0>(read);

    LockedShot locked{newUuid(), shot, now};
    const auto sealedHeader = seal(key, encodeLockedShot(locked));
    const auto sealedBody = seal(key, picture);
    // Failing to seal is as good as a copy that does not check out: nothing is written.
    if (!sealedHeader || !sealedBody || sealedHeader->size() > UINT32_MAX)
        return VaultError::verifyFailed();

    std::string file;
    file.reserve(prefixSize + sealedHeader->size() + sealedBody->size());
    file += magic;
    const auto h = static_cast<uint32_t>(sealedHeader->size());
    for (const int shift : {24, 16, 8, 0})
        file += static_cast<char>((h >> shift) & 0xff);
    file += *sealedHeader;
    file += *sealedBody;

    const std::string path = pathOf(locked.id);
    if (const Status written = writeAtomically(path, file, write); !written)
        return VaultError::io("The locked file couldn't be written: " + written.message() + ".");

    const auto back = image(locked.id, key);
    if (!back || back.value() != picture) {
        unlink(path.c_str());
        return VaultError::verifyFailed();
    }
    return locked;
}

VaultResult<Vault::Parts> Vault::parts(const std::string& path) const {
    return readParts(path, true);
}

VaultResult<LockedShot> Vault::header(const std::string& path, const VaultKey& key) const {
    auto parts = readParts(path, false);
    if (!parts) return parts.error();
    const auto plain = unseal(key, parts->header);
    if (!plain) return VaultError::cannotOpen();
    auto locked = decodeLockedShot({bytesOf(std::string_view(*plain)), plain->size()});
    if (!locked) return VaultError::cannotOpen();
    return std::move(*locked);
}

VaultResult<std::string> Vault::image(std::string_view id, const VaultKey& key) const {
    if (!isPlainName(id)) return VaultError::notAFile();
    auto parts = readParts(pathOf(id), true);
    if (!parts) return parts.error();
    auto plain = unseal(key, parts->body);
    if (!plain) return VaultError::cannotOpen();
    return std::move(*plain);
}

Vault::Listing Vault::list(const VaultKey& key) const {
    Listing listing;
    for (const std::string& path : files()) {
        auto locked = header(path, key);
        if (locked)
            listing.items.push_back(std::move(locked).value());
        else
            ++listing.unreadable;
    }
    std::stable_sort(
        listing.items.begin(), listing.items.end(),
        [](const LockedShot& a, const LockedShot& b) { return a.lockedAt > b.lockedAt; });
    return listing;
}

VaultResult<std::string> Vault::restore(std::string_view id, const std::string& folder,
                                        const VaultKey& key, const WriteCall& write) const {
    auto bytes = image(id, key);
    if (!bytes) return bytes.error();
    const std::string lockedPath = pathOf(id);
    const auto locked = header(lockedPath, key);
    if (!locked) return locked.error();

    if (const Status made = makeFolders(folder); !made)
        return VaultError::io("The folder couldn't be made: " + made.message() + ".");
    const std::string name(locked->shot.name());
    const std::string target = (std::filesystem::path(folder) / name).string();
    if (const Status written = writeNew(target, bytes.value(), write); !written)
        return VaultError::io("“" + name + "” couldn't be written: " + written.message() + ".");

    const auto back = readWhole(target);
    if (back.index() != 0 || std::get<0>(back) != bytes.value()) {
        unlink(target.c_str());
        return VaultError::verifyFailed();
    }
    // Linux keeps no settable birth time; the modification date carries the shot's date. A
    // failure here is let go: the picture itself is back, exactly.
    const timespec modified = timespecOf(locked->shot.modified);
    const timespec times[2] = {modified, modified};
    utimensat(AT_FDCWD, target.c_str(), times, 0);

    if (unlink(lockedPath.c_str()) != 0)
        return VaultError::io("The locked file couldn't be removed: " + describeErrno(errno) + ".");
    return target;
}

VaultResult<void> Vault::discard(std::string_view id, const Disposer& disposer) const {
    if (!isPlainName(id)) return VaultError::notAFile();
    if (const Status moved = disposer(pathOf(id)); !moved) return VaultError::io(moved.message());
    return {};
}

} // namespace lumivale
