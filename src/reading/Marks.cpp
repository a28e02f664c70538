#include "reading/Marks.h"

#include <algorithm>
#include <utility>

namespace lumivale::Marks {

namespace {

// Marks grown run by run, merged as runs turn out to touch.
class Forest {
  public:
    int add(int left, int right, int y) {
        parent_.push_back(int(parent_.size()));
        boxes_.push_back({left, y, right, y});
        return parent_.back();
    }

    void join(int a, int b) {
        a = root(a);
        b = root(b);
        if (a == b) return;
        parent_[b] = a;
        Box& box = boxes_[a];
        const Box& other = boxes_[b];
        box = {std::min(box.left, other.left), std::min(box.top, other.top),
               std::max(box.right, other.right), std::max(box.bottom, other.bottom)};
    }

    std::vector<Box> boxes() {
        std::vector<Box> found;
        for (int i = 0; i < int(parent_.size()); ++i)
            if (root(i) == i) found.push_back(boxes_[i]);
        return found;
    }

  private:
    int root(int a) {
        while (parent_[a] != a)
            a = parent_[a] = parent_[parent_[a]];
        return a;
    }

    std::vector<int> parent_;
    std::vector<Box> boxes_;
};

struct Run {
    int left, right, mark; // edges included
};

} // namespace

std::vector<Box> find(const GrayImage& image, int inkBelow) {
    Forest forest;
    std::vector<Run> above, here;
    for (int y = 0; y < image.height; ++y) {
        here.clear();
        size_t a = 0;
        for (int x = 0; x < image.width;) {
            if (image.at(x, y) >= inkBelow) {
                ++x;
                continue;
            }
            const int left = x;
            while (x < image.width && image.at(x, y) < inkBelow)
                ++x;
            const int right = x - 1;
            const int mark = forest.add(left, right, y);
            // Runs of the row above are ordered and apart, so the ones sharing a column with
            // this run follow one another.
            while (a < above.size() && above[a].right < left)
                ++a;
            for (size_t b = a; b < above.size() && above[b].left <= right; ++b)
                forest.join(above[b].mark, mark);
            here.push_back({left, right, mark});
        }
        std::swap(above, here);
    }
    return forest.boxes();
}

} // namespace lumivale::Marks
