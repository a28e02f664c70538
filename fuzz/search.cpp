// Search: the first line is the query, the others make up shots of a line each; every match
// the ranking gives matches, and what matches is ranked.
#include "FuzzInput.h"
#include "core/SearchQuery.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace lumivale;
    const std::vector<std::string> lines =
        fuzz::linesOf({reinterpret_cast<const char*>(data), size});
    const SearchQuery query(lines.front());
    std::vector<ShotPtr> shots;
    for (size_t i = 1; i < lines.size() && i < 64; ++i)
        shots.push_back(std::make_shared<const Shot>(fuzz::shotOf(lines[i])));
    const std::vector<ShotPtr> ranked = query.rank(shots);
    size_t matching = 0;
    for (const ShotPtr& shot : shots) {
        matching += query.matches(*shot);
        (void)query.hitLines(*shot);
    }
    if (ranked.size() != matching) abort();
    return 0;
}
