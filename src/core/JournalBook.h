#pragma once

#include "core/Status.h"
#include "core/TidyRun.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lumivale {

// The journals of the recent tidies, newest first, kept in the data folder as "journal.plist"
// (a binary property list) so that Undo survives a restart.
struct JournalBook {
    // The most journals the book holds; older ones drop out.
    static constexpr size_t keep = 30;

    std::vector<Journal> entries;

    // Records a journal at the front, dropping the oldest beyond `keep`. A journal with no
    // entries did nothing that could be undone and is ignored.
    void add(Journal journal);
    // The newest journal not yet undone, or nothing.
    std::optional<Journal> lastUndoable() const;
    // Marks the journal with this identifier undone, so it is never offered again.
    void markUndone(std::string_view id);
    // Leaves only these entries of the journal with this identifier to be undone.
    void narrow(std::string_view id, std::vector<Move> left);

    // The book in the file; an empty book when the file is missing, unreadable or damaged.
    static JournalBook load(const std::string& file);
    // Writes the book atomically, making its folder first; the old file stays on failure.
    Status save(const std::string& file) const;

    bool operator==(const JournalBook&) const = default;
};

} // namespace lumivale
