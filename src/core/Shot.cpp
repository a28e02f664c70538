#include "core/Shot.h"

#include "core/Fold.h"

#include <chrono>

namespace lumivale {

Shot::Shot(std::string p, int64_t sz, Date c, Date m)
    : path(std::move(p)), size(sz), created(c), modified(m) {}

std::string_view Shot::name() const {
    const std::string_view p = path;
    const auto slash = p.rfind('/');
    return slash == std::string_view::npos ? p : p.substr(slash + 1);
}

std::string_view Shot::folder() const {
    const std::string_view p = path;
    const auto slash = p.rfind('/');
    if (slash == std::string_view::npos)
        return {};
    return slash == 0 ? p.substr(0, 1) : p.substr(0, slash);
}

std::string Shot::text() const {
    std::string out;
    for (size_t i = 0; i < lines.size(); ++i) {
        if (i)
            out += '\n';
        out += lines[i].text;
    }
    return out;
}

void Shot::setLines(std::vector<TextLine> newLines) {
    lines = std::move(newLines);
    refold();
}

void Shot::refold() { folded = searchTextOf(lines, name()); }

bool Shot::matches(int64_t otherSize, Date otherModified) const {
    // In whole nanoseconds: seconds since 1970 as doubles are too coarse to tell 1.0 s apart
    // from a hair less.
    const auto apart = otherModified > modified ? otherModified - modified
                                                : modified - otherModified;
    return otherSize == size && apart < std::chrono::seconds(1);
}

std::string searchTextOf(const std::vector<TextLine>& lines, std::string_view fileName) {
    // The text, a line feed, the name: a shot with no lines still starts with the line feed.
    std::string joined;
    for (size_t i = 0; i < lines.size(); ++i) {
        if (i)
            joined += '\n';
        joined += lines[i].text;
    }
    joined += '\n';
    joined += fileName;
    std::string folded = foldText(joined);
    std::string squashed = squash(folded);
    if (squashed != folded) {
        folded += '\n';
        folded += squashed;
    }
    return folded;
}

} // namespace lumivale
