#include "app/Canvas.h"

#include <QFontMetricsF>
#include <QLinearGradient>
#include <QPainter>
#include <ZXing/BarcodeFormat.h>
#include <ZXing/BitMatrix.h>
#include <ZXing/MultiFormatWriter.h>
#include <algorithm>
#include <cmath>
#include <exception>

namespace lumivale {
namespace {

// 72 dots per inch while drawing, so that a font of size s is s points tall before scaling.
constexpr int pointsPerMeter = 2835;
// A screen capture of a display with two pixels per point is 144 dots per inch.
constexpr int retinaDotsPerMeter = 5669;

const QStringList sansFamilies = {"Liberation Sans", "Noto Sans", "Noto Sans Symbols2",
                                  "Noto Sans Symbols", "DejaVu Sans"};
const QStringList monoFamilies = {"DejaVu Sans Mono", "Noto Sans Symbols2", "Noto Sans Mono"};

const QStringList& swiftKeywords() {
    static const QStringList words = {"import", "struct", "class",   "enum",   "var",    "let",
                                      "func",   "some",   "private", "public", "static", "return",
                                      "if",     "else",   "in",      "self",   "true",   "false"};
    return words;
}

// The end of the token that starts at i: a string literal, an attribute, a number, a word,
// or a single other character.
qsizetype tokenEnd(const QString& line, qsizetype i) {
    const qsizetype n = line.size();
    const QChar c = line[i];
    auto wordEnd = [&](qsizetype from) {
        while (from < n && (line[from].isLetterOrNumber() || line[from] == '_'))
            ++from;
        return from;
    };
    if (c == '"') {
        qsizetype j = i + 1;
        while (j < n && !(line[j] == '"' && line[j - 1] != '\\'))
            ++j;
        return std::min(j + 1, n);
    }
    if (c == '@' && i + 1 < n && line[i + 1].isLetter()) return wordEnd(i + 1);
    if (c.isDigit()) {
        qsizetype j = i;
        while (j < n && (line[j].isDigit() || line[j] == '.'))
            ++j;
        return j;
    }
    if (c.isLetter() || c == '_') return wordEnd(i);
    return i + 1;
}

uint32_t tokenColour(const QString& token, const CodeStyle& style) {
    const QChar c = token[0];
    if (c == '"') return style.string;
    if (c == '@') return style.attribute;
    if (c.isDigit()) return style.number;
    if (swiftKeywords().contains(token)) return style.keyword;
    if (c.isUpper()) return style.type;
    return style.plain;
}

ZXing::BarcodeFormat formatOf(BarcodeKind kind) {
    return kind == BarcodeKind::qr ? ZXing::BarcodeFormat::QRCode : ZXing::BarcodeFormat::Aztec;
}

// Empty modules a reader needs around each kind of symbol.
int quietModules(BarcodeKind kind) {
    return kind == BarcodeKind::qr ? 4 : 2;
}

} // namespace

QColor rgb(uint32_t value) {
    return QColor((value >> 16) & 0xFF, (value >> 8) & 0xFF, value & 0xFF);
}

QImage Canvas::render(const std::function<void(Canvas&)>& draw) {
    QImage image(static_cast<int>(std::lround(2 * w)), static_cast<int>(std::lround(2 * h)),
                 QImage::Format_ARGB32_Premultiplied);
    if (image.isNull()) return {};
    image.setDotsPerMeterX(pointsPerMeter);
    image.setDotsPerMeterY(pointsPerMeter);
    image.fill(rgb(bg));
    {
        QPainter painter(&image);
        if (!painter.isActive()) return {};
        painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
        painter.scale(2, 2);
        texts_.clear();
        painter_ = &painter;
        draw(*this);
        painter_ = nullptr;
    }
    image.setDotsPerMeterX(retinaDotsPerMeter);
    image.setDotsPerMeterY(retinaDotsPerMeter);
    return image;
}

QFont Canvas::sans(double size, int weight) {
    QFont font;
    font.setFamilies(sansFamilies);
    font.setPointSizeF(size);
    font.setWeight(static_cast<QFont::Weight>(weight));
    return font;
}

QFont Canvas::mono(double size, bool bold) {
    QFont font;
    font.setFamilies(monoFamilies);
    font.setStyleHint(QFont::Monospace);
    font.setPointSizeF(size);
    font.setWeight(bold ? QFont::Bold : QFont::Normal);
    return font;
}

double Canvas::width(const QString& s, const QFont& font) const {
    return QFontMetricsF(font, painter_->device()).horizontalAdvance(s);
}

void Canvas::text(const QString& s, double x, double y, const QFont& font, uint32_t colour,
                  Qt::AlignmentFlag anchor) {
    if (anchor == Qt::AlignRight)
        x -= width(s, font);
    else if (anchor == Qt::AlignHCenter)
        x -= width(s, font) / 2;
    texts_.push_back(s);
    painter_->setFont(font);
    painter_->setPen(rgb(colour));
    painter_->drawText(QPointF(x, y), s);
}

void Canvas::text(const QString& s, const QRectF& box, const QFont& font, uint32_t colour,
                  int flags) {
    texts_.push_back(s);
    painter_->setFont(font);
    painter_->setPen(rgb(colour));
    painter_->drawText(box, flags, s);
}

void Canvas::fill(const QRectF& r, uint32_t colour, double radius) {
    painter_->setPen(Qt::NoPen);
    painter_->setBrush(rgb(colour));
    painter_->drawRoundedRect(r, radius, radius);
}

void Canvas::outline(const QRectF& r, uint32_t colour, double lineWidth, double radius) {
    painter_->setPen(QPen(rgb(colour), lineWidth));
    painter_->setBrush(Qt::NoBrush);
    const double inset = lineWidth / 2;
    painter_->drawRoundedRect(r.adjusted(inset, inset, -inset, -inset), radius, radius);
}

void Canvas::disc(QPointF centre, double radius, uint32_t colour) {
    painter_->setPen(Qt::NoPen);
    painter_->setBrush(rgb(colour));
    painter_->drawEllipse(centre, radius, radius);
}

QRectF Canvas::window(const QString& title, bool dark) {
    constexpr double bar = 30;
    fill(QRectF(0, 0, w, bar), dark ? 0x2B2C31 : 0xE8E6E3);
    fill(QRectF(0, bar - 1, w, 1), dark ? 0x141518 : 0xCFCCC8);
    const uint32_t lights[] = {0xFF5F57, 0xFEBC2E, 0x28C840};
    for (int i = 0; i < 3; ++i)
        disc(QPointF(18 + 20 * i, bar / 2), 6, lights[i]);
    text(title, QRectF(90, 0, w - 180, bar), sans(13, QFont::DemiBold), dark ? 0xD0D0D4 : 0x3C3C3C,
         Qt::AlignCenter);
    return QRectF(0, bar, w, h - bar);
}

void Canvas::statusBar(const QString& time, bool dark) {
    const uint32_t ink = dark ? 0xFFFFFF : 0x000000;
    text(time, QRectF(24, 12, 80, 26), sans(17, QFont::DemiBold), ink, Qt::AlignCenter);
    // Signal: four bars rising to the right.
    for (int i = 0; i < 4; ++i)
        fill(QRectF(284 + 5.5 * i, 30 - 3 * (i + 1), 3.6, 3 * (i + 1)), ink, 1);
    // Wi-Fi: three arcs over a dot.
    painter_->setBrush(Qt::NoBrush);
    painter_->setPen(QPen(rgb(ink), 2.2, Qt::SolidLine, Qt::RoundCap));
    for (int i = 1; i <= 3; ++i) {
        const double r = 3.5 * i;
        painter_->drawArc(QRectF(322 - r, 30 - r, 2 * r, 2 * r), 50 * 16, 80 * 16);
    }
    // Battery: an outline, its charge and the terminal nub.
    outline(QRectF(340, 18, 25, 12.5), dark ? 0x8E8E93 : 0x9A9A9E, 1.2, 3.5);
    fill(QRectF(342, 20, 17, 8.5), ink, 2);
    fill(QRectF(366, 22, 2, 4.5), dark ? 0x8E8E93 : 0x9A9A9E, 1);
}

double Canvas::bubble(const Bubble& b, double y, double left, double right) {
    constexpr double padX = 12, padY = 8, nameHeight = 19, timeHeight = 16;
    const QFont body = sans(16), small = sans(12), name = sans(13, QFont::DemiBold);
    const double maxText = (right - left) * 0.72;
    const QRectF textBox = QFontMetricsF(body, painter_->device())
                               .boundingRect(QRectF(0, 0, maxText, 1000), Qt::TextWordWrap, b.text);
    const bool named = !b.mine && !b.sender.isEmpty();
    const double inner =
        std::max({textBox.width(), width(b.time, small) + 6, named ? width(b.sender, name) : 0.0});
    const double bw = inner + 2 * padX;
    const double bh = padY + (named ? nameHeight : 0) + textBox.height() + timeHeight + padY;
    const double x = b.mine ? right - bw : left;
    fill(QRectF(x, y, bw, bh), b.mine ? 0xD9FDD3 : 0xF0F0F0, 14);
    double top = y + padY;
    if (named) {
        const uint32_t senderColours[] = {0xC2185B, 0x1565C0, 0x2E7D32, 0x6A1B9A, 0xAD5B00};
        const uint32_t colour = senderColours[qHash(b.sender) % std::size(senderColours)];
        text(b.sender, QRectF(x + padX, top, inner, nameHeight), name, colour,
             Qt::AlignLeft | Qt::AlignTop);
        top += nameHeight;
    }
    text(b.text, QRectF(x + padX, top, maxText, textBox.height()), body, 0x111B21,
         Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap);
    top += textBox.height();
    text(b.time, QRectF(x + padX, top, inner, timeHeight), small, 0x5B6B74,
         Qt::AlignRight | Qt::AlignBottom);
    return y + bh;
}

void Canvas::code(const QString& line, double x, double y, const CodeStyle& style) {
    const QFont font = mono(style.size, style.bold);
    for (qsizetype i = 0; i < line.size();) {
        const qsizetype end = tokenEnd(line, i);
        const QString token = line.mid(i, end - i);
        text(token, x, y, font, tokenColour(token, style));
        x += width(token, font);
        i = end;
    }
}

void Canvas::dash(double x0, double x1, double y, uint32_t colour, double lineWidth) {
    QPen pen(rgb(colour), lineWidth, Qt::CustomDashLine, Qt::FlatCap);
    pen.setDashPattern({4, 3});
    painter_->setPen(pen);
    painter_->drawLine(QPointF(x0, y), QPointF(x1, y));
}

void Canvas::path(const QPainterPath& p, uint32_t colour, double lineWidth) {
    painter_->setPen(QPen(rgb(colour), lineWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter_->setBrush(Qt::NoBrush);
    painter_->drawPath(p);
}

void Canvas::gradient(const QRectF& r, const std::vector<uint32_t>& colours) {
    if (colours.empty()) return;
    QLinearGradient g(r.topLeft(), r.bottomLeft());
    const double last = std::max<double>(1, static_cast<double>(colours.size() - 1));
    for (size_t i = 0; i < colours.size(); ++i)
        g.setColorAt(static_cast<double>(i) / last, rgb(colours[i]));
    painter_->fillRect(r, g);
}

void Canvas::barcode(BarcodeKind kind, const QString& payload, const QRectF& r) {
    ZXing::BitMatrix matrix;
    try {
        matrix = ZXing::MultiFormatWriter(formatOf(kind))
                     .setMargin(0)
                     .encode(payload.toStdWString(), 0, 0);
    } catch (const std::exception&) {
        return; // a payload the symbology cannot hold draws nothing
    }
    const int side = std::max(matrix.width(), matrix.height()) + 2 * quietModules(kind);
    // Whole pixels per module keep the edges sharp for a reader.
    const int module = static_cast<int>(std::floor(2 * std::min(r.width(), r.height()) / side));
    if (matrix.width() == 0 || module < 1) return;
    const double step = module / 2.0;
    const double size = side * step;
    const double left = std::round(2 * (r.x() + (r.width() - size) / 2)) / 2;
    const double top = std::round(2 * (r.y() + (r.height() - size) / 2)) / 2;
    const double inset = quietModules(kind) * step;
    painter_->save();
    painter_->setRenderHint(QPainter::Antialiasing, false);
    painter_->fillRect(QRectF(left, top, size, size), Qt::white);
    for (int my = 0; my < matrix.height(); ++my)
        for (int mx = 0; mx < matrix.width(); ++mx)
            if (matrix.get(mx, my))
                painter_->fillRect(
                    QRectF(left + inset + mx * step, top + inset + my * step, step, step),
                    Qt::black);
    painter_->restore();
}

} // namespace lumivale
