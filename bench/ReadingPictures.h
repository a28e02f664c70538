#pragma once
// Screenshot-like pictures with known text for the reading benchmark: light and dark themes,
// text from 10 px to 180 px, a dark sidebar beside a light page, white text on coloured
// buttons. Each drawn line is recorded so the benchmark can measure word recall.

#include <array>
#include <fstream>
#include <memory>
#include <string>
#include <vector>
#include <vips/vips.h>

namespace lumivale::bench {

using Colour = std::array<double, 3>;

// A picture being drawn, with the lines of text drawn on it.
class Canvas {
  public:
    Canvas(int width, int height, Colour background) {
        VipsImage* black = nullptr;
        VipsImage* tinted = nullptr;
        VipsImage* bytes = nullptr;
        double one[3] = {1, 1, 1};
        vips_black(&black, width, height, "bands", 3, nullptr);
        vips_linear(black, &tinted, one, background.data(), 3, nullptr);
        vips_cast_uchar(tinted, &bytes, nullptr);
        image_ = vips_image_copy_memory(bytes);
        for (VipsImage* i : {black, tinted, bytes})
            g_object_unref(i);
    }
    ~Canvas() { g_object_unref(image_); }
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    void rect(Colour c, int x, int y, int w, int h) {
        vips_draw_rect(image_, c.data(), 3, x, y, w, h, "fill", TRUE, nullptr);
    }

    // Draws one line of text with its top-left corner at x, y; returns its height.
    int text(Colour c, int x, int y, const std::string& font, const std::string& line) {
        VipsImage* mask = nullptr;
        if (vips_text(&mask, escaped(line).c_str(), "font", font.c_str(), "dpi", 72, nullptr))
            return 0;
        vips_draw_mask(image_, c.data(), 3, mask, x, y, nullptr);
        const int height = mask->Ysize;
        g_object_unref(mask);
        lines_.push_back(line);
        return height;
    }

    bool save(const std::string& path) const {
        return vips_image_write_to_file(image_, path.c_str(), nullptr) == 0;
    }
    const std::vector<std::string>& lines() const { return lines_; }

  private:
    static std::string escaped(const std::string& s) {
        std::string out;
        for (char c : s)
            out += c == '&' ? "&amp;" : c == '<' ? "&lt;" : c == '>' ? "&gt;" : std::string(1, c);
        return out;
    }

    VipsImage* image_;
    std::vector<std::string> lines_;
};

inline const Colour white{255, 255, 255}, black{0, 0, 0};

// Lines of text one under another, from x, y, with a fixed step.
inline void column(Canvas& c, Colour ink, int x, int y, int step, const std::string& font,
                   const std::vector<std::string>& lines) {
    for (const auto& line : lines) {
        c.text(ink, x, y, font, line);
        y += step;
    }
}

inline void settings(Canvas& c, bool dark) {
    const Colour side = dark ? Colour{43, 43, 43} : Colour{236, 236, 236};
    const Colour ink = dark ? Colour{224, 224, 224} : Colour{28, 28, 30};
    const Colour dim = dark ? Colour{150, 150, 150} : Colour{110, 110, 115};
    c.rect(side, 0, 0, 260, 900);
    column(c, ink, 24, 30, 30, "Liberation Sans 13",
           {"General", "Appearance", "Notifications", "Privacy and Security", "Displays",
            "Keyboard shortcuts", "Network", "Bluetooth devices", "Battery"});
    c.text(ink, 300, 28, "Liberation Sans Bold 20", "Privacy and Security");
    column(c, ink, 300, 80, 44, "Liberation Sans 13",
           {"Location services are turned off for all applications",
            "Allow apps to request access to your camera",
            "Automatically lock the screen after five minutes",
            "Send anonymous usage statistics to improve the system",
            "Remove temporary files older than thirty days"});
    column(c, dim, 300, 102, 44, "Liberation Sans 11",
           {"Applies to every user of this computer", "Three apps asked for access this week",
            "Requires your password after sleep", "Nothing personal is ever included",
            "Last cleaned on Monday morning"});
}

inline void chat(Canvas& c, bool dark) {
    const Colour theirs = dark ? Colour{38, 38, 41} : Colour{233, 233, 235};
    const Colour theirInk = dark ? white : black;
    const Colour blue{11, 132, 255};
    c.text(theirInk, 420, 140, "Liberation Sans Bold 50", "Martina Keller");
    const std::vector<std::pair<bool, std::string>> messages = {
        {false, "Are you still coming to the concert"},
        {false, "tonight at the old harbour hall?"},
        {true, "Yes! I bought the tickets this morning"},
        {true, "Doors open at seven thirty"},
        {false, "Perfect, I will bring the umbrella"},
        {false, "Meet you near the north entrance"},
        {true, "Great, see you there"},
        {false, "Parking costs twelve euros"},
    };
    int y = 360;
    for (const auto& [mine, text] : messages) {
        const int x = mine ? 330 : 60;
        c.rect(mine ? blue : theirs, x - 30, y - 18, 800, 96);
        c.text(mine ? white : theirInk, x, y, "Liberation Sans 44", text);
        y += 190;
    }
}

inline void terminal(Canvas& c) {
    const Colour green{152, 195, 121}, grey{204, 204, 204};
    int y = 20;
    const std::vector<std::pair<bool, std::string>> lines = {
        {true, "user@workstation:~/projects/garden$ git status"},
        {false, "On branch feature/watering-schedule"},
        {false, "Your branch is ahead of origin by three commits."},
        {false, "Changes not staged for commit:"},
        {false, "modified: src/schedule/planner.cpp"},
        {false, "modified: tests/planner_test.cpp"},
        {true, "user@workstation:~/projects/garden$ make test"},
        {false, "Running tests for the watering planner"},
        {false, "All forty two tests passed in 3.7 seconds"},
        {true, "user@workstation:~/projects/garden$ df -h /home"},
        {false, "Filesystem Size Used Avail Use% Mounted on"},
        {false, "/dev/nvme0n1p3 468G 211G 234G 48% /home"},
    };
    for (const auto& [prompt, text] : lines) {
        c.text(prompt ? green : grey, 16, y, "DejaVu Sans Mono 14", text);
        y += 24;
    }
}

inline void editor(Canvas& c) {
    const Colour number{110, 118, 129}, keyword{197, 134, 192}, plain{212, 212, 212},
        comment{106, 153, 85}, string{206, 145, 120};
    c.rect({37, 37, 38}, 0, 0, 1600, 36);
    c.text(plain, 20, 9, "Liberation Sans 13", "invoice_export.py");
    const std::vector<std::pair<Colour, std::string>> code = {
        {comment, "# Export every unpaid invoice to a spreadsheet"},
        {keyword, "def export_unpaid(invoices, path):"},
        {plain, "    rows = [invoice.summary() for invoice in invoices]"},
        {plain, "    unpaid = filter(lambda row: row.balance > 0, rows)"},
        {keyword, "    with open(path, 'w') as sheet:"},
        {string, "        sheet.write('customer,amount,due date')"},
        {plain, "        for row in sorted(unpaid, key=by_due_date):"},
        {plain, "            sheet.write(row.as_csv())"},
        {keyword, "    return len(rows)"},
    };
    int y = 60;
    for (size_t i = 0; i < code.size(); ++i) {
        c.text(number, 16, y, "DejaVu Sans Mono 15", std::to_string(i + 1));
        c.text(code[i].first, 70, y, "DejaVu Sans Mono 15", code[i].second);
        y += 26;
    }
}

inline void receipt(Canvas& c) {
    c.text(black, 300, 60, "Liberation Sans Bold 30", "Corner Bakery");
    column(c, black, 80, 140, 40, "Liberation Sans 18",
           {"Receipt number 20931 Table 14", "Sourdough loaf 4.50", "Two cappuccino 7.80",
            "Almond croissant 3.20", "Apple tart slice 4.10", "Subtotal 19.60",
            "Service charge 1.96", "Total paid by card 21.56",
            "Thank you for visiting, see you soon"});
}

inline void poster(Canvas& c) {
    c.text({20, 20, 20}, 120, 120, "Liberation Sans Bold 180", "Summer Sale");
    c.text({180, 30, 40}, 120, 420, "Liberation Sans 110", "Everything half price");
    c.text({60, 60, 60}, 120, 640, "Liberation Sans 60", "From Friday until the end of August");
}

inline void ticket(Canvas& c) {
    const Colour card{35, 38, 47}, dim{154, 160, 176};
    c.rect(card, 60, 200, 1050, 1700);
    c.text(white, 120, 260, "Liberation Sans Bold 90", "Starlight");
    c.text(white, 120, 380, "Liberation Sans Bold 90", "Cinema");
    const std::vector<std::pair<std::string, std::string>> fields = {
        {"Film", "The Quiet Mountain"},     {"Date", "Saturday 14 June"},
        {"Time", "Eight fifteen"},          {"Screen", "Hall four"},
        {"Seats", "Row G seats 11 and 12"}, {"Booking", "Reference KX7Q2M"},
    };
    int y = 560;
    for (const auto& [label, value] : fields) {
        c.text(dim, 120, y, "Liberation Sans 34", label);
        c.text(white, 120, y + 50, "Liberation Sans 48", value);
        y += 190;
    }
}

inline void sidebar(Canvas& c) {
    const Colour purple{63, 14, 64}, light{230, 220, 232};
    c.rect(purple, 0, 0, 300, 1000);
    c.text(white, 20, 24, "Liberation Sans Bold 18", "Design Studio");
    column(c, light, 24, 80, 30, "Liberation Sans 15",
           {"Threads", "Mentions", "general", "marketing", "random", "website launch",
            "Direct messages", "Priya Natarajan", "Tomas Berg"});
    column(c, black, 340, 40, 56, "Liberation Sans 15",
           {"Priya: the new homepage drafts are in the shared folder",
            "Tomas: I left comments on the pricing section",
            "Priya: can we move the launch to Thursday afternoon",
            "Tomas: fine by me, I will tell the printer",
            "Priya: thanks, the banner still needs a darker blue"});
}

inline void buttons(Canvas& c) {
    const Colour caption{142, 142, 147};
    const std::vector<std::pair<Colour, std::string>> list = {
        {{0, 122, 255}, "Continue"},
        {{52, 199, 89}, "Accept invitation"},
        {{255, 59, 48}, "Delete account"},
        {{88, 86, 214}, "Upgrade plan"},
    };
    int y = 80;
    for (const auto& [colour, label] : list) {
        c.rect(colour, 100, y, 360, 48);
        c.text(white, 130, y + 14, "Liberation Sans Bold 16", label);
        y += 110;
    }
    column(c, caption, 100, y, 24, "Liberation Sans 12",
           {"By continuing you agree to the terms of service", "Your data stays on this device",
            "Version 4.2 released in March"});
}

inline void tiny(Canvas& c) {
    column(c, {40, 40, 40}, 20, 20, 16, "Liberation Sans 10",
           {"Downloads folder contains twelve files", "Backup finished without errors",
            "Printer queue is empty", "Calendar invitation from the school office",
            "Weather tomorrow cloudy with light rain", "Storage almost full on the laptop"});
}

inline void article(Canvas& c) {
    c.text(black, 160, 120, "Liberation Sans Bold 52", "How to grow tomatoes on a balcony");
    column(c, {34, 34, 34}, 160, 240, 52, "Liberation Sans 26",
           {"Choose a sunny corner that gets at least six hours of light.",
            "Use a large pot with drainage holes and fresh compost.",
            "Water deeply twice a week instead of a little every day.",
            "Tie the stems to a cane as the plants grow taller.",
            "Pick the fruit when it is firm and evenly red."});
}

struct PictureKind {
    const char* file;
    int width, height;
    Colour background;
    void (*draw)(Canvas&);
};

inline const std::vector<PictureKind>& pictureKinds() {
    static const std::vector<PictureKind> kinds = {
        {"settings-light.png", 1440, 900, white, [](Canvas& c) { settings(c, false); }},
        {"settings-dark.png", 1440, 900, {30, 30, 30}, [](Canvas& c) { settings(c, true); }},
        {"chat-light.png", 1170, 2000, white, [](Canvas& c) { chat(c, false); }},
        {"chat-dark.png", 1170, 2000, black, [](Canvas& c) { chat(c, true); }},
        {"terminal-dark.png", 1280, 800, {29, 31, 33}, terminal},
        {"editor-dark.png", 1600, 1000, {30, 30, 30}, editor},
        {"receipt-light.png", 900, 1400, white, receipt},
        {"poster-large.png", 2400, 1000, {250, 246, 236}, poster},
        {"ticket-dark.png", 1170, 2100, {20, 22, 28}, ticket},
        {"sidebar-mixed.png", 1600, 1000, white, sidebar},
        {"buttons-colour.png", 1200, 800, white, buttons},
        {"tiny-light.png", 1280, 800, white, tiny},
        {"article-hidpi.png", 2880, 1800, white, article},
    };
    return kinds;
}

// Draws every picture into `folder` with an expected.tsv of their lines; false on a failure.
inline bool drawPictures(const std::string& folder) {
    std::ofstream expected(folder + "/expected.tsv");
    for (const auto& kind : pictureKinds()) {
        Canvas canvas(kind.width, kind.height, kind.background);
        kind.draw(canvas);
        if (!canvas.save(folder + "/" + kind.file)) return false;
        for (const auto& line : canvas.lines())
            expected << kind.file << '\t' << line << '\n';
    }
    return bool(expected.flush());
}

} // namespace lumivale::bench
