#pragma once

#include "core/Shelf.h"

#include <string>
#include <variant>

namespace lumivale {

// What the main area shows: a shelf, a folder, or one of the fixed places.
struct Place {
    enum class Kind { shelf, folder, overview, all, recent, privateOnes, locked };

    Kind kind = Kind::overview;
    Shelf shelf = Shelf::other; // for shelf
    std::string folder;         // for folder

    static Place ofShelf(Shelf s) { return {Kind::shelf, s, {}}; }
    static Place ofFolder(std::string path) { return {Kind::folder, Shelf::other, std::move(path)}; }
    static Place of(Kind k) { return {k, Shelf::other, {}}; }

    // The title shown for the place; folders are named relative to `home`.
    std::string title(const std::string& home) const;
    // The place named on the command line: overview, all, recent, private, locked, a shelf's
    // raw value, or a folder path; nothing for anything else.
    static std::optional<Place> parse(const std::string& name);

    bool operator==(const Place&) const = default;
};

} // namespace lumivale
