// The paper documents among the made-up screenshots (identity card, passport, receipts, a rail
// ticket, a recipe page) and the one photo.

#include "app/FixtureDrawings.h"

#include <QPainter>

namespace lumivale::FixtureDrawings {
namespace {

constexpr uint32_t ink = 0x111827;
constexpr uint32_t grey = 0x5B6770;
constexpr uint32_t specimenRed = 0xB42318;

QFont sans(double size, int weight = QFont::Normal) {
    return Canvas::sans(size, weight);
}

// A grey head-and-shoulders placeholder where a photo of the holder would be.
void photo(Canvas& c, const QRectF& r) {
    c.fill(r, 0xDCE3EA, 8);
    QPainter& p = c.ctx();
    p.save();
    QPainterPath clip;
    clip.addRoundedRect(r, 8, 8);
    p.setClipPath(clip);
    const double cx = r.center().x();
    c.disc(QPointF(cx, r.top() + r.height() * 0.38), r.width() * 0.22, 0xA9B6C4);
    p.setBrush(rgb(0xA9B6C4));
    p.setPen(Qt::NoPen);
    p.drawEllipse(QRectF(cx - r.width() * 0.4, r.top() + r.height() * 0.66, r.width() * 0.8,
                         r.height() * 0.7));
    p.restore();
}

// The red band that marks a made-up document.
void specimenBand(Canvas& c, const QRectF& r) {
    c.fill(r, 0xFDE2E1);
    c.text("SPECIMEN · NOT A REAL DOCUMENT", r, sans(15, QFont::Bold), specimenRed,
           Qt::AlignCenter);
}

// A label in small grey type with its value underneath.
void field(Canvas& c, const QString& label, const QString& value, double x, double y,
           double valueSize = 19) {
    c.text(label, x, y, sans(13.5), grey);
    c.text(value, x, y + valueSize + 6, sans(valueSize, QFont::DemiBold), ink);
}

// A sheet of paper with a soft shadow and a torn, zigzag edge at the bottom (and the top).
void paper(Canvas& c, const QRectF& r, uint32_t colour, bool tornTop) {
    auto sheet = [&](QPointF shift) {
        QPainterPath edge;
        const double tooth = 10;
        edge.moveTo(r.topLeft() + shift);
        if (tornTop)
            for (double x = r.left(); x < r.right(); x += tooth) {
                edge.lineTo(QPointF(x + tooth / 2, r.top() + 5) + shift);
                edge.lineTo(QPointF(std::min(x + tooth, r.right()), r.top()) + shift);
            }
        else
            edge.lineTo(r.topRight() + shift);
        edge.lineTo(r.bottomRight() + shift);
        for (double x = r.right(); x > r.left(); x -= tooth) {
            edge.lineTo(QPointF(x - tooth / 2, r.bottom() - 6) + shift);
            edge.lineTo(QPointF(std::max(x - tooth, r.left()), r.bottom()) + shift);
        }
        edge.closeSubpath();
        return edge;
    };
    QPainter& p = c.ctx();
    p.setPen(Qt::NoPen);
    p.setBrush(rgb(0xD9DBDF));
    p.drawPath(sheet(QPointF(0, 3)));
    p.setBrush(rgb(colour));
    p.drawPath(sheet(QPointF(0, 0)));
}

} // namespace

void idCard(Canvas& c) {
    const QRectF card(40, 32, 680, 416);
    c.fill(card.translated(0, 4), 0xCDD3DA, 24);
    c.fill(card, 0xF7FAFC, 24);
    // Faint security waves across the card.
    for (int i = 0; i < 9; ++i) {
        QPainterPath wave;
        const double y = 180 + 30 * i;
        wave.moveTo(40, y);
        for (double x = 40; x < 720; x += 80)
            wave.quadTo(x + 40, y + (i % 2 ? 10 : -10), x + 80, y);
        c.path(wave, 0xEAF0F5, 1.5);
    }
    c.fill(QRectF(40, 32, 680, 74), 0xD6ECEA, 24);
    c.fill(QRectF(40, 70, 680, 36), 0xD6ECEA);
    c.disc(QPointF(88, 69), 23, 0x0F5C63);
    c.disc(QPointF(88, 69), 16, 0xD6ECEA);
    c.disc(QPointF(88, 69), 8, 0x0F5C63);
    c.text("NATIONAL IDENTITY CARD", 126, 80, sans(27, QFont::Bold), 0x0F3D44);
    specimenBand(c, QRectF(40, 106, 680, 32));

    photo(c, QRectF(72, 164, 172, 214));
    field(c, "Name", "Nela Doran", 280, 184, 24);
    field(c, "Date of Birth", "14 Aug 1991", 280, 246);
    field(c, "Sex", "F", 470, 246);
    c.text("ID No.", 280, 306, sans(13.5), grey);
    c.text(QString::fromStdString(of(Fixture::Kind::idCard).quoted[3]), 280, 344,
           Canvas::mono(30, true), ink);

    QPainterPath signature;
    signature.moveTo(290, 398);
    signature.cubicTo(300, 370, 318, 372, 314, 394);
    signature.cubicTo(330, 360, 350, 404, 362, 384);
    signature.cubicTo(372, 370, 384, 398, 402, 386);
    signature.quadTo(430, 376, 452, 390);
    c.path(signature, 0x1E3A8A, 2);
    c.fill(QRectF(280, 404, 220, 1.2), 0x9AA5B1);
    c.text("Holder's signature", 280, 424, sans(13.5), grey);

    // A holographic seal.
    for (int i = 0; i < 4; ++i) {
        c.ctx().setPen(QPen(rgb(0xA5B4FC), 1.4));
        c.ctx().setBrush(Qt::NoBrush);
        c.ctx().drawEllipse(QPointF(640, 380), 18.0 + 7 * i, 18.0 + 7 * i);
    }
}

void passport(Canvas& c) {
    const QRectF page(30, 26, 760, 488);
    c.fill(page.translated(0, 4), 0xD9D3C4, 14);
    c.fill(page, 0xFBF8F1, 14);
    for (int i = 0; i < 12; ++i) {
        QPainterPath wave;
        const double y = 150 + 22 * i;
        wave.moveTo(30, y);
        for (double x = 30; x < 790; x += 60)
            wave.quadTo(x + 30, y + (i % 2 ? 8 : -8), x + 60, y);
        c.path(wave, 0xF0E9DA, 1.2);
    }
    c.text("PASSPORT", 60, 76, sans(32, QFont::Bold), 0x1F3A5F);
    c.text("REPUBLIC OF INDIA", 760, 74, sans(17, QFont::DemiBold), 0x1F3A5F, Qt::AlignRight);
    specimenBand(c, QRectF(30, 94, 760, 32));

    photo(c, QRectF(60, 148, 150, 192));
    field(c, "Type", "P", 240, 162);
    field(c, "Country Code", "IND", 330, 162);
    field(c, "Passport No.", "Z1234567", 500, 162);
    field(c, "Surname", "DORAN", 240, 214);
    field(c, "Given Names", "NELA", 240, 266);
    field(c, "Nationality", "INDIAN", 240, 318);
    field(c, "Sex", "F", 400, 318);
    field(c, "Date of Birth", "14 AUG 1991", 500, 318);
    field(c, "Place of Birth", "PUNE", 240, 370);
    field(c, "Date of Issue", "14 AUG 2021", 400, 370);
    field(c, "Date of Expiry", "13 AUG 2031", 580, 370);

    // The machine-readable zone, set in a monospaced face as the border scanners expect.
    c.fill(QRectF(30, 420, 760, 94), 0xFFFFFF, 0);
    c.fill(QRectF(30, 420, 760, 1), 0xE4DCCB);
    // Machine-readable zones are set wide, one character to a fixed cell.
    QFont mrz = Canvas::mono(19);
    mrz.setLetterSpacing(QFont::AbsoluteSpacing, 3);
    c.text("P<INDDORAN<<NELA<<<<<<<<<<<<<<<<<<<<<<<<<<<", 410, 458, mrz, 0x111111,
           Qt::AlignHCenter);
    c.text("Z1234567<4IND9108145F3108139<<<<<<<<<<<<<<02", 410, 494, mrz, 0x111111,
           Qt::AlignHCenter);
}

void receipt(Canvas& c) {
    paper(c, QRectF(110, 30, 400, 770), 0xFFFFFF, false);
    const QFont body = sans(17);
    const double left = 140, right = 480, mid = 310;
    // The café's mark: a cup on a saucer with a sprig beside it.
    c.fill(QRectF(294, 58, 30, 24), 0x7C4A2D, 6);
    c.fill(QRectF(288, 82, 42, 4), 0x7C4A2D, 2);
    QPainterPath handle(QPointF(323, 63));
    handle.cubicTo(334, 63, 334, 76, 323, 76);
    c.path(handle, 0x7C4A2D, 3);
    QPainterPath sprig(QPointF(300, 52));
    sprig.quadTo(304, 42, 312, 38);
    c.path(sprig, 0x4D7C0F, 2.5);
    c.disc(QPointF(313, 40), 3.5, 0x65A30D);

    c.text("Brew & Bloom Café", mid, 122, sans(27, QFont::Bold), ink, Qt::AlignHCenter);
    c.text("12 Residency Road, Bengaluru", mid, 150, sans(16), 0x4B5563, Qt::AlignHCenter);
    c.text("TAX INVOICE", mid, 194, sans(18, QFont::Bold), ink, Qt::AlignHCenter);
    c.dash(left, right, 212, 0x9CA3AF);
    c.text("Bill No. 4471", left, 242, body, ink);
    c.text("Table 6", right, 242, body, ink, Qt::AlignRight);
    c.text("12 Oct 2026  8:42 PM", left, 270, body, ink);
    c.dash(left, right, 290, 0x9CA3AF);

    const std::pair<const char*, const char*> items[] = {{"Cappuccino x2", "₹360.00"},
                                                         {"Masala Dosa", "₹220.00"},
                                                         {"Blueberry Muffin", "₹180.00"},
                                                         {"Cold Brew", "₹200.00"}};
    double y = 324;
    for (const auto& [item, amount] : items) {
        c.text(item, left, y, body, ink);
        c.text(amount, right, y, body, ink, Qt::AlignRight);
        y += 34;
    }
    c.dash(left, right, y - 14, 0x9CA3AF);
    y += 16;
    const std::pair<const char*, const char*> sums[] = {
        {"Subtotal", "₹960.00"}, {"CGST 2.5%", "₹24.00"}, {"SGST 2.5%", "₹24.00"}};
    for (const auto& [label, amount] : sums) {
        c.text(label, left, y, body, 0x374151);
        c.text(amount, right, y, body, 0x374151, Qt::AlignRight);
        y += 32;
    }
    c.fill(QRectF(left, y - 14, right - left, 1.5), 0x111827);
    y += 28;
    c.text("Grand Total", left, y, sans(21, QFont::Bold), ink);
    c.text("₹1,008.00", right, y, sans(21, QFont::Bold), ink, Qt::AlignRight);
    c.dash(left, right, y + 22, 0x9CA3AF);
    y += 60;
    c.text("Paid by UPI · INR", mid, y, sans(17), ink, Qt::AlignHCenter);
    c.text("GSTIN 29ABCDE1234F1Z5", mid, y + 30, sans(16), 0x4B5563, Qt::AlignHCenter);
    c.text("Thank you! Visit again", mid, y + 96, sans(19, QFont::DemiBold), ink, Qt::AlignHCenter);
}

void hardwareReceipt(Canvas& c) {
    paper(c, QRectF(100, 30, 360, 650), 0xFFFEF8, true);
    const QFont body = Canvas::mono(15), bold = Canvas::mono(17, true);
    const double left = 122, right = 438, mid = 280, step = 27;
    constexpr uint32_t thermal = 0x1F1F1F;
    double y = 86;
    auto row = [&](const char* label, const char* amount, const QFont& font) {
        c.text(label, left, y, font, thermal);
        if (*amount) c.text(amount, right, y, font, thermal, Qt::AlignRight);
        y += step;
    };
    c.text("CORNER HARDWARE CO.", mid, y, Canvas::mono(19, true), thermal, Qt::AlignHCenter);
    y += 30;
    for (const char* line : {"218 Mill Street", "Springfield, IL 62701", "(217) 555-0142"}) {
        c.text(line, mid, y, body, thermal, Qt::AlignHCenter);
        y += 22;
    }
    y += 22;
    row("Receipt #20931", "", body);
    row("09/26/2026  10:12 AM", "", body);
    c.dash(left, right, y - 10, thermal);
    y += 14;
    row("WOOD SCREWS 50PK", "6.49", body);
    row("PAINT ROLLER 9IN", "11.99", body);
    row("MASKING TAPE 2PK", "7.58", body);
    row("SANDPAPER ASST", "5.29", body);
    c.dash(left, right, y - 10, thermal);
    y += 14;
    row("SUBTOTAL", "31.35", body);
    row("TAX 8.0%", "2.51", body);
    y += 4;
    row("TOTAL", "$33.86", bold);
    y += 14;
    row("VISA ending 4417", "33.86", body);
    row("CHANGE DUE $0.00", "", body);
    y += 14;
    row("CASHIER: ORLI", "", body);
    y += 30;
    c.text("THANK YOU", mid, y, Canvas::mono(19, true), thermal, Qt::AlignHCenter);
    c.text("PLEASE COME AGAIN", mid, y + 26, body, thermal, Qt::AlignHCenter);
}

void trainTicket(Canvas& c) {
    const QRectF sheet(28, 24, 844, 512);
    c.fill(sheet, 0xFFFFFF, 10);
    c.outline(sheet, 0xD6D3C4, 1, 10);
    c.fill(QRectF(28, 24, 844, 84), 0xE8EEF7, 10);
    c.fill(QRectF(28, 90, 844, 18), 0xE8EEF7);
    c.fill(QRectF(28, 107, 844, 2), 0x1E3A8A);
    c.text("Rail e-Ticket", 60, 66, sans(30, QFont::Bold), 0x1E3A8A);
    c.text("Electronic Reservation Slip", 60, 94, sans(16), 0x475569);
    c.barcode(BarcodeKind::qr, "PNR4521873690", QRectF(700, 130, 150, 150));

    c.text("PNR 4521873690", 60, 146, sans(22, QFont::Bold), ink);
    c.text("Train 12627 · Karnataka Express", 60, 176, sans(18), ink);
    c.dash(60, 670, 196, 0xB8BCC6);
    c.text("From", 60, 226, sans(14), grey);
    c.text("KSR Bengaluru (SBC)", 60, 254, sans(20, QFont::DemiBold), ink);
    c.text("21 Oct 2026 19:20", 60, 280, sans(16), ink);
    QPainterPath arrow(QPointF(300, 246));
    arrow.lineTo(350, 246);
    arrow.moveTo(342, 239);
    arrow.lineTo(350, 246);
    arrow.lineTo(342, 253);
    c.path(arrow, 0x94A3B8, 2);
    c.text("To", 380, 226, sans(14), grey);
    c.text("New Delhi (NDLS)", 380, 254, sans(20, QFont::DemiBold), ink);
    c.text("23 Oct 2026 09:00", 380, 280, sans(16), ink);
    c.dash(60, 670, 304, 0xB8BCC6);

    c.text("Passenger", 60, 334, sans(14), grey);
    c.text("Nela Doran, 35, F", 60, 362, sans(18, QFont::DemiBold), ink);
    c.text("Status", 380, 334, sans(14), grey);
    c.text("CNF / Coach B2 / Berth 34", 380, 362, sans(18, QFont::DemiBold), ink);
    c.text("Class 3A · Quota General", 60, 398, sans(15), 0x475569);
    c.dash(60, 840, 420, 0xB8BCC6);
    c.text("Total fare ₹2,145.00", 60, 462, sans(22, QFont::Bold), ink);
    c.text("Carry a photo identity proof during the journey.", 60, 504, sans(13.5), grey);
}

void recipe(Canvas& c) {
    c.window("Masala Chai — Recipe", false);
    c.text("Masala Chai", 60, 98, sans(34, QFont::Bold), 0x3B2412);
    c.text("Serves 2 · 10 minutes", 60, 132, sans(17), 0x8A6A50);

    // A cup of chai on a saucer.
    c.ctx().setPen(Qt::NoPen);
    c.ctx().setBrush(rgb(0xE7D8C6));
    c.ctx().drawEllipse(QRectF(570, 196, 170, 34));
    c.fill(QRectF(598, 120, 114, 92), 0xFFFFFF, 18);
    c.outline(QRectF(598, 120, 114, 92), 0xD8C3A5, 2, 18);
    c.ctx().setBrush(rgb(0xB7773F));
    c.ctx().drawEllipse(QRectF(604, 116, 102, 18));
    QPainterPath handle(QPointF(712, 140));
    handle.cubicTo(744, 140, 744, 184, 710, 184);
    c.path(handle, 0xD8C3A5, 6);
    for (int i = 0; i < 3; ++i) {
        QPainterPath steam(QPointF(628 + 26 * i, 104));
        steam.cubicTo(618 + 26 * i, 90, 640 + 26 * i, 80, 630 + 26 * i, 66);
        c.path(steam, 0xE3D6C8, 3);
    }

    c.text("Ingredients", 60, 190, sans(22, QFont::Bold), 0xB45309);
    const char* ingredients[] = {"• 2 cups water and 1 cup milk", "• 2 teaspoons loose black tea",
                                 "• 4 green cardamom pods, crushed",
                                 "• A small piece of fresh ginger"};
    double y = 226;
    for (const char* line : ingredients) {
        c.text(line, 64, y, sans(18), 0x2B2118);
        y += 32;
    }
    c.text("Method", 60, y + 28, sans(22, QFont::Bold), 0xB45309);
    c.text("Simmer the water with the spices, add the tea, then the milk.", 60, y + 64, sans(18),
           0x2B2118);
    c.text("Bring it up twice, strain into cups and enjoy it hot.", 60, y + 96, sans(18), 0x2B2118);
}

void sunset(Canvas& c) {
    c.gradient(QRectF(0, 0, 600, 262), {0x2E1A47, 0x7B2D5B, 0xD9485F, 0xF6A04D, 0xFFD27A});
    c.disc(QPointF(300, 250), 52, 0xFFE7A3);
    c.gradient(QRectF(0, 262, 600, 138), {0xE98A55, 0x8A3A5A, 0x2A1733});
    // The sun's path on the water.
    for (int i = 0; i < 7; ++i) {
        const double half = 46 - 6 * i;
        c.fill(QRectF(300 - half, 270 + 9 * i, 2 * half, 3), 0xFFD08A, 1.5);
    }
    // Headlands on either side, dark against the light.
    QPainterPath left(QPointF(0, 210));
    left.cubicTo(60, 180, 120, 200, 170, 236);
    left.cubicTo(200, 256, 230, 262, 250, 268);
    left.lineTo(0, 268);
    left.closeSubpath();
    QPainterPath right(QPointF(600, 190));
    right.cubicTo(540, 196, 500, 226, 450, 250);
    right.cubicTo(420, 262, 400, 266, 380, 270);
    right.lineTo(600, 270);
    right.closeSubpath();
    QPainterPath shore(QPointF(0, 330));
    shore.cubicTo(120, 310, 260, 360, 420, 350);
    shore.cubicTo(500, 345, 560, 330, 600, 336);
    shore.lineTo(600, 400);
    shore.lineTo(0, 400);
    shore.closeSubpath();
    QPainter& p = c.ctx();
    p.setPen(Qt::NoPen);
    p.setBrush(rgb(0x3A1C45));
    p.drawPath(left);
    p.drawPath(right);
    p.setBrush(rgb(0x1C0F26));
    p.drawPath(shore);
}

} // namespace lumivale::FixtureDrawings
