#pragma once

#include "core/TidyRun.h"

#include <QUuid>

#include <optional>

#include <string>

namespace lumivale {

// A short message at the top of the window; a fresh id tells two equal texts apart.
struct Banner {
    QUuid id = QUuid::createUuid();
    std::string text;
    std::optional<Journal> undo; // present when the action can be undone from the banner
    bool isError = false;

    bool operator==(const Banner&) const = default;
};

} // namespace lumivale
