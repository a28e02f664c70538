#include "core/JournalBook.h"

#include "core/FileOps.h"
#include "core/Plist.h"
#include "core/Uuid.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <fstream>
#include <iterator>

namespace lumivale {
namespace {

using plist::Ref;

// The book holds at most 30 small journals; anything far larger is not a book.
constexpr std::streamoff kMaxFileSize = 64 << 20;

Ref writeMove(plist::Writer& w, const Move& move) {
    const std::array<std::pair<Ref, Ref>, 2> fields = {{
        {w.key("from"), w.string(move.from)},
        {w.key("to"), w.string(move.to)},
    }};
    return w.dict(fields);
}

Ref writeJournal(plist::Writer& w, const Journal& journal) {
    std::vector<Ref> moves;
    moves.reserve(journal.entries.size());
    for (const Move& move : journal.entries)
        moves.push_back(writeMove(w, move));
    const std::array<std::pair<Ref, Ref>, 5> fields = {{
        {w.key("id"), w.string(journal.id)},
        {w.key("date"), w.date(journal.date)},
        {w.key("kind"), w.string(journalKindId(journal.kind))},
        {w.key("entries"), w.array(moves)},
        {w.key("undone"), w.boolean(journal.undone)},
    }};
    return w.dict(fields);
}

std::optional<std::string> stringAt(const plist::Document& doc, const plist::Dict& dict,
                                    std::string_view key) {
    const auto ref = dict.find(key);
    return ref ? doc.string(*ref) : std::nullopt;
}

std::optional<Move> readMove(const plist::Document& doc, Ref ref) {
    const auto dict = doc.dict(ref);
    if (!dict) return std::nullopt;
    auto from = stringAt(doc, *dict, "from");
    auto to = stringAt(doc, *dict, "to");
    if (!from || !to) return std::nullopt;
    return Move{std::move(*from), std::move(*to)};
}

std::optional<std::vector<Move>> readMoves(const plist::Document& doc, Ref ref) {
    const auto refs = doc.array(ref);
    if (!refs) return std::nullopt;
    std::vector<Move> moves;
    moves.reserve(refs->size());
    for (Ref item : *refs) {
        auto move = readMove(doc, item);
        if (!move) return std::nullopt;
        moves.push_back(std::move(*move));
    }
    return moves;
}

std::optional<Journal> readJournal(const plist::Document& doc, Ref ref) {
    const auto dict = doc.dict(ref);
    if (!dict) return std::nullopt;
    const auto id = stringAt(doc, *dict, "id");
    const auto kindId = stringAt(doc, *dict, "kind");
    const auto dateRef = dict->find("date");
    const auto entriesRef = dict->find("entries");
    const auto undoneRef = dict->find("undone");
    if (!id || !isUuid(*id) || !kindId || !dateRef || !entriesRef || !undoneRef)
        return std::nullopt;
    const auto kind = journalKindFromId(*kindId);
    const auto date = doc.date(*dateRef);
    auto entries = readMoves(doc, *entriesRef);
    const auto undone = doc.boolean(*undoneRef);
    if (!kind || !date || !entries || !undone) return std::nullopt;
    Journal journal;
    journal.id = *id;
    std::transform(journal.id.begin(), journal.id.end(), journal.id.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    journal.date = *date;
    journal.kind = *kind;
    journal.entries = std::move(*entries);
    journal.undone = *undone;
    return journal;
}

std::optional<JournalBook> decode(std::span<const uint8_t> bytes) {
    const auto doc = plist::Document::open(bytes);
    if (!doc) return std::nullopt;
    const auto root = doc->dict(doc->root());
    if (!root) return std::nullopt;
    const auto entries = root->find("entries");
    const auto refs = entries ? doc->array(*entries) : std::nullopt;
    if (!refs) return std::nullopt;
    JournalBook book;
    for (Ref ref : *refs) {
        auto journal = readJournal(*doc, ref);
        if (!journal) return std::nullopt;
        book.entries.push_back(std::move(*journal));
    }
    return book;
}

std::optional<std::vector<uint8_t>> readBytes(const std::string& file) {
    std::ifstream in(file, std::ios::binary | std::ios::ate);
    if (!in) return std::nullopt;
    const std::streamoff size = in.tellg();
    if (size < 0 || size > kMaxFileSize) return std::nullopt;
    std::vector<uint8_t> bytes(static_cast<size_t>(size));
    in.seekg(0);
    if (!in.read(reinterpret_cast<char*>(bytes.data()), size)) return std::nullopt;
    return bytes;
}

} // namespace

void JournalBook::add(Journal journal) {
    if (journal.entries.empty()) return;
    entries.insert(entries.begin(), std::move(journal));
    if (entries.size() > keep) entries.resize(keep);
}

std::optional<Journal> JournalBook::lastUndoable() const {
    for (const Journal& journal : entries)
        if (!journal.undone) return journal;
    return std::nullopt;
}

void JournalBook::markUndone(std::string_view id) {
    for (Journal& journal : entries) {
        if (journal.id == id) {
            journal.undone = true;
            return;
        }
    }
}

void JournalBook::narrow(std::string_view id, std::vector<Move> left) {
    for (Journal& journal : entries) {
        if (journal.id == id) {
            journal.entries = std::move(left);
            return;
        }
    }
}

JournalBook JournalBook::load(const std::string& file) {
    const auto bytes = readBytes(file);
    if (!bytes) return {};
    return decode(*bytes).value_or(JournalBook{});
}

Status JournalBook::save(const std::string& file) const {
    plist::Writer w;
    std::vector<Ref> journals;
    journals.reserve(entries.size());
    for (const Journal& journal : entries)
        journals.push_back(writeJournal(w, journal));
    const std::array<std::pair<Ref, Ref>, 1> root = {{{w.key("entries"), w.array(journals)}}};
    const Ref top = w.dict(root);
    return writeAtomically(file, w.finish(top));
}

} // namespace lumivale
