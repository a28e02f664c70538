#include "core/Shot.h"

#include "core/Fold.h"

#include <algorithm>
#include <chrono>

namespace lumivale {

Shot::Shot(std::string p, int64_t sz, Date c, Date m)
    : created(c), modified(m), path(std::move(p)), size(sz) {
    refold(); // the file name can be searched for before the picture is read
}

std::string_view Shot::name() const {
    const std::string_view p = path;
    const auto slash = p.rfind('/');
    return slash == std::string_view::npos ? p : p.substr(slash + 1);
}

std::string_view Shot::folder() const {
    const std::string_view p = path;
    const auto slash = p.rfind('/');
    if (slash == std::string_view::npos) return {};
    return slash == 0 ? p.substr(0, 1) : p.substr(0, slash);
}

std::string Shot::text() const {
    std::string out;
    for (size_t i = 0; i < lines.size(); ++i) {
        if (i) out += '\n';
        out += lines[i].text;
    }
    return out;
}

void Shot::setLines(std::vector<TextLine> newLines) {
    lines = std::move(newLines);
    refold();
}

void Shot::refold() {
    folded = searchTextOf(lines, name());
    indexSearchText();
}

// The search text is some text T and, when squashing changes it, a line feed and T squashed. T
// and its copy hold as many line feeds each, so the copy can only begin after the middle one of
// an odd count; squashing drops characters, so the copy is the shorter. T ends with a line feed
// and the folded name, which holds as many line feeds as the name.
void Shot::indexSearchText() {
    const std::string_view text = folded;
    const auto feeds = static_cast<size_t>(std::count(text.begin(), text.end(), '\n'));
    squashedAt = 0;
    if (feeds % 2 == 1) {
        size_t middle = text.find('\n');
        for (size_t n = feeds / 2; n > 0; --n)
            middle = text.find('\n', middle + 1);
        const std::string_view plain = text.substr(0, middle);
        const std::string_view copy = text.substr(middle + 1);
        if (copy.size() < plain.size() && isSquashedInPart(copy, plain)) squashedAt = middle + 1;
    }
    const std::string_view plain = squashedAt ? text.substr(0, squashedAt - 1) : text;
    const std::string_view fileName = name();
    size_t feed = plain.size();
    for (auto n = std::count(fileName.begin(), fileName.end(), '\n') + 1;
         n > 0 && feed != std::string_view::npos; --n)
        feed = feed == 0 ? std::string_view::npos : plain.rfind('\n', feed - 1);
    nameAt = feed == std::string_view::npos ? 0 : feed + 1;
    pairs = sketchPairs(text);
    lineStarts = sketchLineStarts(text);
}

bool Shot::matches(int64_t otherSize, Date otherModified) const {
    // In whole nanoseconds: seconds since 1970 as doubles are too coarse to tell 1.0 s apart
    // from a hair less.
    const auto apart =
        otherModified > modified ? otherModified - modified : modified - otherModified;
    return otherSize == size && apart < std::chrono::seconds(1);
}

std::string searchTextOf(const std::vector<TextLine>& lines, std::string_view fileName) {
    // The text, a line feed, the name: a shot with no lines still starts with the line feed.
    std::string joined;
    for (size_t i = 0; i < lines.size(); ++i) {
        if (i) joined += '\n';
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
