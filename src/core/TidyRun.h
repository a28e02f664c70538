#pragma once

// Carrying out a tidy plan, putting files in the Trash, and undoing either, with a journal of
// exactly what was done. Nothing here deletes a file.

#include "core/Date.h"
#include "core/Status.h"
#include "core/TidyPlan.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lumivale {

// The record of one tidy or one trashing, in the order the files were handled.
struct Journal {
    enum class Kind { moved, trashed };

    std::string id; // an upper-case UUID
    Date date{};
    Kind kind = Kind::moved;
    std::vector<Move> entries; // for `trashed`, `to` is the place in the Trash, or empty
    bool undone = false;

    Journal() = default;
    // A new journal with a fresh identifier, not undone.
    Journal(Date date, Kind kind, std::vector<Move> entries);

    // "Moved 12 screenshots", "Put 1 screenshot in the Trash".
    std::string summary() const;

    bool operator==(const Journal&) const = default;
};

// The raw value of a kind ("moved", "trashed").
std::string_view journalKindId(Journal::Kind kind);
// The kind with exactly this raw value, or nothing.
std::optional<Journal::Kind> journalKindFromId(std::string_view id);

// The outcome of one run: what was done, and each file that could not be handled (keyed by its
// path before the run) with the reason in words.
struct TidyResult {
    Journal journal;
    std::map<std::string, std::string> failed;
};

// What became of one file handed to the Trash: where it landed inside the Trash (nothing when
// the Trash did not say), or why it could not go.
struct TrashOutcome {
    Status status;
    std::optional<std::string> place;

    static TrashOutcome landedAt(std::string place) { return {Status::ok(), std::move(place)}; }
    static TrashOutcome failure(std::string message) {
        return {Status::failure(std::move(message)), std::nullopt};
    }
};

// Puts the file at a path in the Trash.
using Trasher = std::function<TrashOutcome(const std::string& path)>;

// What an undo put back (each from its filed place to where it now is) and what it could not;
// `left` holds the journal's entries that failed but still lie where they were put, so that a
// later undo can try them again.
struct UndoResult {
    std::vector<Move> restored;
    std::map<std::string, std::string> failed;
    std::vector<Move> left;
};

} // namespace lumivale

namespace lumivale::Tidy {

// The reason an undo gives for a file that is not where the journal left it.
inline constexpr std::string_view notWhereItWasPut = "It's no longer where it was put";

// Carries out the moves in order, each to a target re-checked against the disk (a file that
// appeared there since planning gets a numbered neighbour, never overwritten), making folders as
// needed. A failed move is recorded and the run goes on.
TidyResult perform(const TidyPlan& plan, Date now);

// Hands each path to the trasher in order and records where each went.
TidyResult trash(const std::vector<std::string>& paths, Date now, const Trasher& trasher);

// Puts the journal's files back, newest first, each under its old path or a numbered name
// beside it when that path is taken now. A file taken out of a freedesktop Trash also loses its
// ".trashinfo".
UndoResult undo(const Journal& journal);

} // namespace lumivale::Tidy
