// The phone screens and desktop windows among the made-up screenshots.

#include "app/FixtureDrawings.h"

#include <QPainter>

namespace lumivale::FixtureDrawings {
namespace {

QFont sans(double size, int weight = QFont::Normal) {
    return Canvas::sans(size, weight);
}

// A "<" back chevron of a phone's navigation bar.
void backChevron(Canvas& c, double x, double y, uint32_t colour) {
    QPainterPath chevron(QPointF(x + 8, y - 9));
    chevron.lineTo(x, y);
    chevron.lineTo(x + 8, y + 9);
    c.path(chevron, colour, 2.6);
}

// Draws pieces of text one after another on a baseline, each in its own colour; gives the end.
double runs(Canvas& c, double x, double y, const QFont& font,
            std::initializer_list<std::pair<QString, uint32_t>> pieces) {
    for (const auto& [piece, colour] : pieces) {
        c.text(piece, x, y, font, colour);
        x += c.width(piece, font);
    }
    return x;
}

// The notches of a ticket's tear-off line, cut out of a card on both sides.
void perforation(Canvas& c, double left, double right, double y, uint32_t background,
                 uint32_t line) {
    c.disc(QPointF(left, y), 12, background);
    c.disc(QPointF(right, y), 12, background);
    c.dash(left + 18, right - 18, y, line, 1.5);
}

// A magnifying glass, as search fields show it.
void magnifier(Canvas& c, QPointF centre, uint32_t colour) {
    QPainterPath glass;
    glass.addEllipse(centre, 5.5, 5.5);
    glass.moveTo(centre + QPointF(4, 4));
    glass.lineTo(centre + QPointF(8.5, 8.5));
    c.path(glass, colour, 1.8);
}

} // namespace

void upiPayment(Canvas& c) {
    c.statusBar("7:15", false);
    constexpr uint32_t green = 0x12B76A;
    c.disc(QPointF(195, 186), 50, 0xD1FADF);
    c.disc(QPointF(195, 186), 40, green);
    c.text("✓", QRectF(155, 146, 80, 80), sans(46, QFont::Bold), 0xFFFFFF, Qt::AlignCenter);
    c.text("Payment Successful", 195, 284, sans(25, QFont::Bold), 0x101828, Qt::AlignHCenter);
    c.text("₹1,249.00", 195, 346, sans(42, QFont::Bold), 0x101828, Qt::AlignHCenter);
    c.text("Paid to Green Grocer Mart", 195, 384, sans(17), 0x344054, Qt::AlignHCenter);

    c.fill(QRectF(24, 420, 342, 236), 0xF2F4F7, 16);
    c.text("Debited from", 44, 456, sans(14), 0x667085);
    c.text("Axis Savings ••4417", 44, 482, sans(18, QFont::DemiBold), 0x101828);
    c.fill(QRectF(44, 500, 302, 1), 0xE4E7EC);
    c.text("Date and time", 44, 530, sans(14), 0x667085);
    c.text("17 Oct 2026, 7:15 PM", 44, 556, sans(18, QFont::DemiBold), 0x101828);
    c.fill(QRectF(44, 574, 302, 1), 0xE4E7EC);
    c.text("UPI Ref No.", 44, 606, sans(16), 0x667085);
    c.text("629145803718", 346, 606, sans(18, QFont::DemiBold), 0x101828, Qt::AlignRight);
    c.text("Share receipt", 195, 700, sans(16, QFont::DemiBold), 0x0B6E4F, Qt::AlignHCenter);

    c.fill(QRectF(24, 756, 342, 54), green, 27);
    c.text("Done", QRectF(24, 756, 342, 54), sans(19, QFont::DemiBold), 0xFFFFFF, Qt::AlignCenter);
}

void boardingPass(Canvas& c) {
    c.statusBar("5:52", false);
    c.text("Boarding Pass", 24, 100, sans(30, QFont::Bold), 0x0F172A);
    const QRectF card(20, 122, 350, 668);
    c.fill(card, 0xFFFFFF, 22);
    // The airline's colours along the top of the pass.
    QPainter& p = c.ctx();
    p.save();
    QPainterPath edge;
    edge.addRoundedRect(card, 22, 22);
    p.setClipPath(edge);
    c.fill(QRectF(20, 122, 350, 10), 0x4F46E5);
    c.fill(QRectF(300, 122, 70, 10), 0xF59E0B);
    p.restore();
    c.text("Skyline Air", 40, 169, sans(21, QFont::Bold), 0x312E81);
    c.text("6E 2134", 350, 169, sans(18, QFont::DemiBold), 0x312E81, Qt::AlignRight);
    c.fill(QRectF(40, 194, 310, 1), 0xE2E8F0);

    c.text("BLR", 40, 254, sans(46, QFont::Bold), 0x0F172A);
    c.text("→", 195, 248, sans(30), 0x64748B, Qt::AlignHCenter);
    c.text("DEL", 350, 254, sans(46, QFont::Bold), 0x0F172A, Qt::AlignRight);
    c.text("Bengaluru", 40, 280, sans(16), 0x475569);
    c.text("New Delhi", 350, 280, sans(16), 0x475569, Qt::AlignRight);
    perforation(c, 20, 370, 306, 0xEEF2F7, 0xCBD5E1);

    struct Cell {
        const char* label;
        const char* value;
        double x;
    };
    const Cell rows[2][3] = {
        {{"Flight", "6E 2134", 40}, {"Date", "17 Oct", 150}, {"Boards", "05:20", 262}},
        {{"Gate", "22", 40}, {"Seat", "22A", 150}, {"Group", "3", 262}}};
    double y = 340;
    for (const auto& row : rows) {
        for (const Cell& cell : row) {
            c.text(cell.label, cell.x, y, sans(14), 0x64748B);
            c.text(cell.value, cell.x, y + 26, sans(19, QFont::DemiBold), 0x0F172A);
        }
        y += 62;
    }
    c.text("Passenger", 40, y, sans(14), 0x64748B);
    c.text("NELA DORAN", 40, y + 28, sans(21, QFont::Bold), 0x0F172A);
    c.text("PNR", 262, y, sans(14), 0x64748B);
    c.text("K7Q2MX", 262, y + 28, sans(21, QFont::Bold), 0x0F172A);
    perforation(c, 20, 370, y + 56, 0xEEF2F7, 0xCBD5E1);
    c.barcode(BarcodeKind::aztec, "M1DORAN/NELA EK7Q2MX BLRDEL 6E 2134 290Y022A0014 100",
              QRectF(95, y + 80, 200, 200));
}

void movieTicket(Canvas& c) {
    c.statusBar("6:58", true);
    // The poster: a lighthouse on a rock at dusk, its beam across the sky.
    const QRectF poster(20, 64, 350, 206);
    QPainter& p = c.ctx();
    p.save();
    QPainterPath frame;
    frame.addRoundedRect(poster, 18, 18);
    p.setClipPath(frame);
    c.gradient(poster, {0x14213D, 0x35527F, 0xD98E5B});
    p.setPen(Qt::NoPen);
    p.setBrush(rgb(0xF7E7B4));
    p.drawPolygon(QPolygonF({QPointF(196, 120), QPointF(370, 86), QPointF(370, 128)}));
    p.setBrush(rgb(0x0B1424));
    p.drawPolygon(QPolygonF({QPointF(20, 270), QPointF(20, 240), QPointF(120, 226),
                             QPointF(250, 236), QPointF(370, 250), QPointF(370, 270)}));
    p.setBrush(rgb(0xECE6DA));
    p.drawPolygon(
        QPolygonF({QPointF(182, 232), QPointF(188, 128), QPointF(204, 128), QPointF(210, 232)}));
    p.setBrush(rgb(0xB3261E));
    for (double y : {150.0, 180.0, 210.0})
        p.drawRect(QRectF(181, y, 30, 10));
    c.fill(QRectF(184, 112, 24, 16), 0xF7E7B4, 3);
    c.fill(QRectF(180, 106, 32, 6), 0x0B1424, 2);
    p.restore();

    c.text("ADMIT ONE", 195, 306, sans(16, QFont::Bold), 0xF5C451, Qt::AlignHCenter);
    c.text("The Last Lighthouse", 195, 344, sans(28, QFont::Bold), 0xFFFFFF, Qt::AlignHCenter);
    c.text("English · 2h 14m", 195, 372, sans(16), 0xA1A1AA, Qt::AlignHCenter);

    c.fill(QRectF(20, 396, 350, 424), 0x211E2C, 18);
    c.text("Showtime", 42, 434, sans(14), 0x9CA3AF);
    c.text("Sat, 25 Oct · 7:30 PM", 42, 460, sans(20, QFont::DemiBold), 0xFFFFFF);
    c.text("Cinema", 42, 496, sans(14), 0x9CA3AF);
    c.text("Orion Cinemas, Screen 3", 42, 522, sans(20, QFont::DemiBold), 0xFFFFFF);
    c.text("Seats", 42, 558, sans(14), 0x9CA3AF);
    c.text("F7, F8", 42, 584, sans(20, QFont::DemiBold), 0xFFFFFF);
    perforation(c, 20, 370, 608, 0x111018, 0x4B4760);
    c.barcode(BarcodeKind::qr, "MX93K2-F7F8-2510-1930-ORION3", QRectF(115, 624, 160, 160));
    c.text("Booking ID MX93K2", 195, 806, sans(17, QFont::DemiBold), 0xFFFFFF, Qt::AlignHCenter);
}

void chat(Canvas& c) {
    c.statusBar("9:41", false);
    backChevron(c, 18, 78, 0x007AFF);
    c.disc(QPointF(62, 78), 20, 0xB794F4);
    c.text("T", QRectF(42, 58, 40, 40), sans(19, QFont::Bold), 0xFFFFFF, Qt::AlignCenter);
    c.text("Tove", 94, 74, sans(18, QFont::DemiBold), 0x111B21);
    c.text("online", 94, 94, sans(14), 0x667781);
    // Call buttons: a camera and a handset.
    c.outline(QRectF(296, 70, 22, 16), 0x007AFF, 2, 4);
    QPainterPath lens(QPointF(318, 78));
    lens.lineTo(328, 71);
    lens.lineTo(328, 85);
    lens.closeSubpath();
    c.path(lens, 0x007AFF, 2);
    QPainterPath handset(QPointF(349, 70));
    handset.cubicTo(345, 82, 354, 91, 366, 88);
    c.path(handset, 0x007AFF, 3.5);
    c.disc(QPointF(350, 70), 4, 0x007AFF);
    c.disc(QPointF(366, 87), 4, 0x007AFF);
    c.fill(QRectF(0, 108, 390, 1), 0xE5E7EB);

    c.fill(QRectF(166, 122, 58, 24), 0xF1F5F9, 12);
    c.text("Today", QRectF(166, 122, 58, 24), sans(13), 0x667781, Qt::AlignCenter);
    const Bubble bubbles[] = {{"Are we still on for Saturday?", false, "6:02 PM", {}},
                              {"Yes! 7 pm at the usual place", true, "6:03 PM", {}},
                              {"Can you send me the address?", false, "6:05 PM", {}},
                              {"Sure, sending it now", true, "6:06 PM", {}},
                              {"Perfect, see you then", false, "6:10 PM", {}},
                              {"Don't forget the tickets haha", true, "6:11 PM", {}}};
    double y = 162;
    for (const Bubble& b : bubbles)
        y = c.bubble(b, y, 14, 376) + 12;
    c.text("Delivered", 376, y + 6, sans(13), 0x667781, Qt::AlignRight);

    c.fill(QRectF(0, 770, 390, 74), 0xF7F7F7);
    c.fill(QRectF(0, 770, 390, 1), 0xE5E7EB);
    QPainterPath plus(QPointF(20, 800));
    plus.lineTo(38, 800);
    plus.moveTo(29, 791);
    plus.lineTo(29, 809);
    c.path(plus, 0x007AFF, 2.4);
    c.fill(QRectF(54, 782, 270, 38), 0xFFFFFF, 19);
    c.outline(QRectF(54, 782, 270, 38), 0xD1D5DB, 1, 19);
    c.text("Message", 72, 807, sans(16), 0x8E8E93);
    // The microphone: a capsule in a cradle on a stand.
    c.fill(QRectF(344, 784, 12, 19), 0x007AFF, 6);
    QPainterPath cradle(QPointF(339, 796));
    cradle.cubicTo(339, 812, 361, 812, 361, 796);
    cradle.moveTo(350, 808);
    cradle.lineTo(350, 814);
    c.path(cradle, 0x007AFF, 2);
}

void groupChat(Canvas& c) {
    c.window("Family", false);
    c.fill(QRectF(0, 30, 232, 570), 0xF5F5F7);
    c.fill(QRectF(232, 30, 1, 570), 0xDDDDE1);
    c.fill(QRectF(14, 44, 204, 30), 0xE6E6EB, 8);
    c.text("Search", 40, 64, sans(14), 0x8E8E93);
    magnifier(c, QPointF(26, 57), 0x8E8E93);

    struct Conversation {
        const char* name;
        const char* preview;
        uint32_t colour;
    };
    const Conversation list[] = {{"Family", "Sam: ok yes please", 0xF59E0B},
                                 {"Tove", "Perfect, see you then", 0xB794F4},
                                 {"Orli", "Sent a photo", 0x34D399},
                                 {"Book club", "Next one is on the 14th", 0x60A5FA}};
    double y = 88;
    for (size_t i = 0; i < std::size(list); ++i) {
        if (i == 0) c.fill(QRectF(8, y, 216, 58), 0xDCE7FB, 10);
        c.disc(QPointF(38, y + 29), 19, list[i].colour);
        c.text(QString(list[i].name).left(1), QRectF(19, y + 10, 38, 38), sans(17, QFont::Bold),
               0xFFFFFF, Qt::AlignCenter);
        c.text(list[i].name, 68, y + 25, sans(15, QFont::DemiBold), 0x1C1C1E);
        c.text(list[i].preview, 68, y + 45, sans(13.5), 0x6E6E73);
        y += 62;
    }

    c.disc(QPointF(262, 56), 17, 0xF59E0B);
    c.text("F", QRectF(245, 39, 34, 34), sans(16, QFont::Bold), 0xFFFFFF, Qt::AlignCenter);
    c.text("Family", 290, 53, sans(17, QFont::Bold), 0x1C1C1E);
    c.text("Nela, Orli, Sam and you", 290, 71, sans(13), 0x6E6E73);
    c.fill(QRectF(233, 82, 667, 1), 0xE5E5EA);

    c.fill(QRectF(260, 104, 230, 1), 0xE5E5EA);
    c.fill(QRectF(642, 104, 230, 1), 0xE5E5EA);
    c.text("Yesterday", 566, 109, sans(13.5, QFont::DemiBold), 0x6E6E73, Qt::AlignHCenter);
    const Bubble bubbles[] = {{"Did everyone get home okay?", false, "9:12 PM", "Nela"},
                              {"Yes, reached 10 min ago", false, "9:14 PM", "Orli"},
                              {"Good. Lunch on Sunday at ours?", false, "9:15 PM", "Nela"},
                              {"I'm in! Shall I bring dessert?", true, "9:17 PM", {}},
                              {"Typing a long reply... ok yes please", false, "9:20 PM", "Sam"}};
    y = 124;
    for (const Bubble& b : bubbles)
        y = c.bubble(b, y, 252, 880) + 8;

    c.fill(QRectF(233, 548, 667, 52), 0xFAFAFA);
    c.fill(QRectF(233, 548, 667, 1), 0xE5E5EA);
    c.fill(QRectF(252, 558, 628, 32), 0xFFFFFF, 16);
    c.outline(QRectF(252, 558, 628, 32), 0xD1D1D6, 1, 16);
    c.text("Message", 270, 579, sans(15), 0x8E8E93);
}

void code(Canvas& c) {
    c.window("ContentView.swift", true);
    c.fill(QRectF(0, 30, 210, 570), 0x26272D);
    c.fill(QRectF(210, 30, 1, 570), 0x141518);
    c.text("COUNTER", 18, 58, sans(12, QFont::Bold), 0x8E8E93);
    const char* files[] = {"CounterApp.swift", "ContentView.swift", "Assets", "Preview Content"};
    double y = 86;
    for (const char* file : files) {
        if (QString(file) == "ContentView.swift") c.fill(QRectF(8, y - 17, 194, 24), 0x3A3C44, 5);
        c.fill(QRectF(22, y - 11, 10, 12), QString(file).endsWith(".swift") ? 0xF05138 : 0x5E9CF2,
               2);
        c.text(file, 40, y, sans(13.5), 0xD1D1D6);
        y += 28;
    }
    c.fill(QRectF(211, 30, 749, 32), 0x2A2B31);
    c.fill(QRectF(211, 30, 180, 32), 0x1E1F25);
    c.text("ContentView.swift", 228, 51, sans(13), 0xE5E5EA);

    const CodeStyle swift{.plain = 0xE4E4E6,
                          .keyword = 0xFF7AB2,
                          .type = 0xDABAFF,
                          .string = 0xFF8170,
                          .number = 0xD9C97C,
                          .attribute = 0xFFA14F,
                          .size = 15};
    const char* lines[] = {"import SwiftUI",
                           "",
                           "struct ContentView: View {",
                           "    @State private var count = 0",
                           "",
                           "    var body: some View {",
                           "        Button(\"Tapped \\(count) times\") {",
                           "            count += 1",
                           "        }",
                           "        .padding()",
                           "    }",
                           "}",
                           "",
                           "#Preview {",
                           "    ContentView()",
                           "}"};
    y = 96;
    int number = 1;
    for (const char* line : lines) {
        c.text(QString::number(number++), 252, y, Canvas::mono(13), 0x6C6C75, Qt::AlignRight);
        c.code(line, 276, y, swift);
        y += 26;
    }
    c.fill(QRectF(211, 576, 749, 24), 0x2A2B31);
    c.text("Line 7, Column 18", 940, 593, sans(12), 0x9A9AA0, Qt::AlignRight);
}

void terminal(Canvas& c) {
    c.window("zsh — 96×27", true);
    constexpr uint32_t white = 0xE6E6E6, dim = 0xA0A0A0, green = 0x5AF78E, red = 0xFF5C57,
                       cyan = 0x57C7FF, yellow = 0xF3F99D;
    const QFont font = Canvas::mono(15);
    const double x = 18, step = 24;
    double y = 60;
    auto line = [&](std::initializer_list<std::pair<QString, uint32_t>> pieces) {
        runs(c, x, y, font, pieces);
        y += step;
    };
    line({{"$ ", green}, {"npm run build", white}});
    y += step / 2;
    line({{"> web-app@1.4.0 build", dim}});
    line({{"> tsc && vite build", dim}});
    y += step / 2;
    line({{"src/index.ts", cyan},
          {":", white},
          {"42", yellow},
          {":", white},
          {"7", yellow},
          {" - ", white},
          {"error", red},
          {" TS2322: ", dim},
          {"Type 'string' is not", white}});
    line({{"assignable to type 'number'.", white}});
    y += step / 2;
    line({{"    const total: number = getTotal();", white}});
    line({{"          ~~~~~", red}});
    y += step / 2;
    line({{"Found 1 error in src/index.ts:42", white}});
    y += step;
    line({{"On branch main", green}, {" | 2 files changed | node 20.11.0", dim}});
    line({{"$ ", green}});
    c.fill(QRectF(x + c.width("$ ", font), y - step - 15, 9, 19), white);
}

void shopping(Canvas& c) {
    c.statusBar("1:24", false);
    backChevron(c, 18, 78, 0x0F1111);
    c.fill(QRectF(44, 60, 280, 36), 0xF0F2F2, 10);
    magnifier(c, QPointF(60, 76), 0x565959);
    c.text("Search Tideline", 76, 83, sans(15), 0x6F7373);
    QPainterPath cart(QPointF(336, 68));
    cart.lineTo(342, 68);
    cart.lineTo(348, 86);
    cart.lineTo(366, 86);
    cart.lineTo(370, 73);
    cart.lineTo(344, 73);
    c.path(cart, 0x0F1111, 2);
    c.disc(QPointF(350, 92), 2.5, 0x0F1111);
    c.disc(QPointF(364, 92), 2.5, 0x0F1111);

    // The product photo: a linen shirt on a warm background.
    c.fill(QRectF(0, 108, 390, 330), 0xF4EFE6);
    QPainterPath shirt(QPointF(160, 150));
    shirt.lineTo(120, 166);
    shirt.lineTo(86, 250);
    shirt.lineTo(116, 262);
    shirt.lineTo(136, 220);
    shirt.lineTo(136, 410);
    shirt.lineTo(254, 410);
    shirt.lineTo(254, 220);
    shirt.lineTo(274, 262);
    shirt.lineTo(304, 250);
    shirt.lineTo(270, 166);
    shirt.lineTo(230, 150);
    shirt.quadTo(195, 176, 160, 150);
    QPainter& p = c.ctx();
    p.setPen(QPen(rgb(0xC9B89A), 2));
    p.setBrush(rgb(0xE9DFCB));
    p.drawPath(shirt);
    QPainterPath placket(QPointF(195, 170));
    placket.lineTo(195, 410);
    c.path(placket, 0xC9B89A, 1.5);
    for (int i = 0; i < 5; ++i)
        c.disc(QPointF(201, 196 + 44 * i), 2.6, 0xB8A27E);
    for (int i = 0; i < 4; ++i)
        c.disc(QPointF(177 + 12 * i, 452), 3.2, i == 0 ? 0x007185 : 0xC8C8C8);

    c.text("Visit the Tideline Store", 20, 484, sans(14), 0x007185);
    c.text("Linen Shirt, Relaxed Fit", 20, 512, sans(21, QFont::DemiBold), 0x0F1111);
    runs(c, 20, 540, sans(16), {{"★★★★☆", 0xF59E0B}, {" 4.3 · 2,184 ratings", 0x007185}});
    c.text("₹1,299", 20, 584, sans(32, QFont::Bold), 0x0F1111);
    const QFont small = sans(15);
    const double mrpEnd = runs(c, 20, 612, small, {{"MRP ", 0x565959}, {"₹2,499", 0x565959}});
    c.fill(QRectF(20 + c.width("MRP ", small), 607, mrpEnd - 20 - c.width("MRP ", small), 1.2),
           0x565959);
    runs(c, mrpEnd, 612, small, {{"   48% off", 0xCC0C39}});
    c.text("Inclusive of all taxes", 20, 636, sans(14), 0x565959);
    c.text("Select Size", 20, 670, sans(16, QFont::Bold), 0x0F1111);
    const char* sizes[] = {"S", "M", "L", "XL", "XXL"};
    double x = 20;
    for (const char* size : sizes) {
        const QRectF chip(x, 682, 58, 34);
        const bool chosen = QString(size) == "M";
        c.fill(chip, chosen ? 0xE7F4F5 : 0xFFFFFF, 8);
        c.outline(chip, chosen ? 0x007185 : 0xA6A6A6, chosen ? 2 : 1, 8);
        c.text(size, chip, sans(15, QFont::DemiBold), 0x0F1111, Qt::AlignCenter);
        x += 68;
    }
    c.text("Free delivery by Tue, 21 Oct · In stock", 20, 746, sans(14.5), 0x007600);
    c.fill(QRectF(20, 766, 170, 50), 0xFFD814, 25);
    c.text("Add to Cart", QRectF(20, 766, 170, 50), sans(17, QFont::DemiBold), 0x0F1111,
           Qt::AlignCenter);
    c.fill(QRectF(200, 766, 170, 50), 0xFFA41C, 25);
    c.text("Buy Now", QRectF(200, 766, 170, 50), sans(17, QFont::DemiBold), 0x0F1111,
           Qt::AlignCenter);
}

void map(Canvas& c) {
    // The map under everything: a park with a lake, a grid of streets, a main road.
    QPainter& p = c.ctx();
    p.setPen(Qt::NoPen);
    p.setBrush(rgb(0xC6E5BC));
    p.drawPolygon(QPolygonF({QPointF(200, 170), QPointF(330, 160), QPointF(372, 250),
                             QPointF(340, 330), QPointF(230, 320), QPointF(190, 250)}));
    p.setBrush(rgb(0xA8D4F5));
    p.drawEllipse(QRectF(286, 260, 50, 30));
    auto street = [&](QPainterPath s, double width, uint32_t fill, uint32_t edge) {
        c.path(s, edge, width + 2);
        c.path(s, fill, width);
    };
    for (double x : {40.0, 130.0, 220.0, 320.0}) {
        QPainterPath s(QPointF(x, 150));
        s.lineTo(x + 30, 560);
        street(s, 7, 0xFFFFFF, 0xDAD4C8);
    }
    for (double y : {200.0, 300.0, 400.0, 500.0}) {
        QPainterPath s(QPointF(0, y));
        s.lineTo(390, y - 20);
        street(s, 7, 0xFFFFFF, 0xDAD4C8);
    }
    QPainterPath hosur(QPointF(0, 560));
    hosur.cubicTo(120, 470, 200, 420, 390, 350);
    street(hosur, 13, 0xFFE9A8, 0xF0C86A);

    QPainterPath route(QPointF(70, 520));
    route.lineTo(150, 452);
    route.lineTo(240, 420);
    route.lineTo(234, 394);
    route.lineTo(228, 292);
    route.lineTo(262, 290);
    c.path(route, 0x1558B0, 10);
    c.path(route, 0x1A73E8, 7);
    c.disc(QPointF(70, 520), 10, 0xFFFFFF);
    c.disc(QPointF(70, 520), 6.5, 0x1A73E8);
    QPainterPath pin(QPointF(262, 290));
    pin.cubicTo(250, 270, 246, 262, 246, 254);
    pin.arcTo(QRectF(246, 238, 32, 32), 180, -180);
    pin.cubicTo(278, 262, 274, 270, 262, 290);
    p.setPen(Qt::NoPen);
    p.setBrush(rgb(0xEA4335));
    p.drawPath(pin);
    c.disc(QPointF(262, 254), 5, 0x8C1D18);

    c.text("Hosur Rd", 40, 486, sans(12, QFont::DemiBold), 0x8A7443);
    c.fill(QRectF(150, 356, 70, 30), 0xFFFFFF, 8);
    c.text("18 min", QRectF(150, 356, 70, 30), sans(14, QFont::Bold), 0x188038, Qt::AlignCenter);

    c.statusBar("4:07", false);
    c.fill(QRectF(12, 56, 366, 90), 0xFFFFFF, 14);
    c.outline(QRectF(12, 56, 366, 90), 0xDADCE0, 1, 14);
    c.disc(QPointF(34, 82), 6, 0x1A73E8);
    c.text("Your location", 52, 88, sans(16), 0x202124);
    c.fill(QRectF(52, 100, 310, 1), 0xE8EAED);
    c.disc(QPointF(34, 122), 6, 0xEA4335);
    c.text("Lalbagh Botanical Garden", 52, 128, sans(16), 0x202124);

    c.fill(QRectF(0, 566, 390, 300), 0xFFFFFF, 22);
    c.fill(QRectF(175, 576, 40, 5), 0xDADCE0, 2.5);
    c.text("Lalbagh Botanical Garden", 20, 620, sans(22, QFont::Bold), 0x202124);
    runs(c, 20, 648, sans(15),
         {{"4.6 ", 0x5F6368}, {"★", 0xF9AB00}, {" · Park · ", 0x5F6368}, {"Open now", 0x188038}});
    runs(c, 20, 688, sans(18, QFont::DemiBold),
         {{"18 min", 0x188038}, {" (6.2 km) via Hosur Rd", 0x202124}});
    c.text("Fastest route, light traffic", 20, 714, sans(15), 0x5F6368);
    c.fill(QRectF(20, 740, 170, 48), 0x0B57D0, 24);
    c.text("Directions", QRectF(20, 740, 170, 48), sans(17, QFont::DemiBold), 0xFFFFFF,
           Qt::AlignCenter);
    c.outline(QRectF(200, 740, 170, 48), 0x747775, 1, 24);
    c.text("Start", QRectF(200, 740, 170, 48), sans(17, QFont::DemiBold), 0x0B57D0,
           Qt::AlignCenter);
}

} // namespace lumivale::FixtureDrawings
