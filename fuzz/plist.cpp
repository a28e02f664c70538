// A property list of any shape: every object reachable from the root is read as every type, and
// a list that refers to itself cannot make the reader loop.
#include "core/Plist.h"

#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace lumivale::plist;
    const auto doc = Document::open({data, size});
    if (!doc) return 0;
    std::vector<Ref> waiting = {doc->root()};
    std::string scratch;
    // Each object is visited as often as it is referred to, so a bound keeps shared graphs small.
    for (size_t visited = 0; !waiting.empty() && visited < 4096; ++visited) {
        const Ref ref = waiting.back();
        waiting.pop_back();
        (void)doc->string(ref);
        (void)doc->stringView(ref, scratch);
        (void)doc->integer(ref);
        (void)doc->real(ref);
        (void)doc->boolean(ref);
        (void)doc->date(ref);
        (void)doc->data(ref);
        if (const auto array = doc->array(ref))
            for (Ref item : *array)
                waiting.push_back(item);
        if (const auto dict = doc->dict(ref)) {
            for (size_t i = 0; i < dict->size(); ++i) {
                (void)doc->keyEquals(dict->keyAt(i), "shots");
                waiting.push_back(dict->valueAt(i));
            }
            (void)dict->find("version");
        }
    }
    return 0;
}
