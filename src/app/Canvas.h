#pragma once

// The drawing surface of the made-up screenshots: a picture of w × h points at two pixels per
// point, y growing downwards, with the pieces that screenshots are made of (window frames,
// phone status bars, chat bubbles, coloured code, barcodes).

#include <QFont>
#include <QImage>
#include <QPainterPath>
#include <QRectF>
#include <QString>
#include <cstdint>
#include <functional>
#include <vector>

class QPainter;

namespace lumivale {

// An opaque colour from 0xRRGGBB.
QColor rgb(uint32_t value);

// Colours for one line of code; a style whose colours are all the same draws plain text.
struct CodeStyle {
    uint32_t plain = 0xFFFFFF;
    uint32_t keyword = 0xFFFFFF;
    uint32_t type = 0xFFFFFF;
    uint32_t string = 0xFFFFFF;
    uint32_t number = 0xFFFFFF;
    uint32_t attribute = 0xFFFFFF;
    double size = 14;
    bool bold = false;
};

// One chat bubble: the text, whose it is, the clock time shown in it and, in a group, the
// sender's name shown above the text of others' bubbles.
struct Bubble {
    QString text;
    bool mine = false;
    QString time;
    QString sender;
};

enum class BarcodeKind { qr, aztec };

class Canvas {
  public:
    Canvas(double w, double h, uint32_t bg) : w(w), h(h), bg(bg) {}

    const double w; // points
    const double h;
    const uint32_t bg;

    // Makes a 2w × 2h picture filled with bg, runs `draw` with one point two pixels, and returns
    // the picture; a null image when no picture can be made.
    QImage render(const std::function<void(Canvas&)>& draw);
    // The drawing context of the running render.
    QPainter& ctx() { return *painter_; }
    // Every text drawn by the last render, piece by piece in drawing order.
    const std::vector<QString>& texts() const { return texts_; }

    // Liberation Sans (standing in for Helvetica), with Noto for the symbols it lacks.
    static QFont sans(double size, int weight = QFont::Normal);
    // DejaVu Sans Mono (standing in for Menlo).
    static QFont mono(double size, bool bold = false);
    // The width of s set in font, in points, on the running render.
    double width(const QString& s, const QFont& font) const;

    // Text on the baseline y whose left end, centre or right end (by anchor) is at x.
    void text(const QString& s, double x, double y, const QFont& font, uint32_t colour,
              Qt::AlignmentFlag anchor = Qt::AlignLeft);
    // Text placed inside box by Qt alignment flags (and Qt::TextWordWrap to wrap).
    void text(const QString& s, const QRectF& box, const QFont& font, uint32_t colour,
              int flags = Qt::AlignLeft | Qt::AlignVCenter);
    void fill(const QRectF& r, uint32_t colour, double radius = 0);
    void outline(const QRectF& r, uint32_t colour, double lineWidth, double radius = 0);
    void disc(QPointF centre, double radius, uint32_t colour);

    // A desktop window over the whole canvas: a title bar with the three window buttons and a
    // centred title. Gives the content area under the bar.
    QRectF window(const QString& title, bool dark);
    // A phone status bar across the top: the time on the left; signal, Wi-Fi and battery on
    // the right.
    void statusBar(const QString& time, bool dark);
    // A chat bubble whose top is at y, kept between left and right; gives its bottom.
    double bubble(const Bubble& b, double y, double left, double right);
    // One line of code with its baseline at (x, y): keywords, type names, strings, numbers and
    // attributes each in the style's colour.
    void code(const QString& line, double x, double y, const CodeStyle& style);
    // A dashed line from (x0, y) to (x1, y).
    void dash(double x0, double x1, double y, uint32_t colour, double lineWidth = 1);
    // A stroked path with round ends and joins.
    void path(const QPainterPath& p, uint32_t colour, double lineWidth);
    // A vertical gradient through the colours, evenly spaced from top to bottom.
    void gradient(const QRectF& r, const std::vector<uint32_t>& colours);
    // A QR or Aztec symbol holding payload, black on white with its quiet zone, centred in r
    // with a whole number of pixels per module.
    void barcode(BarcodeKind kind, const QString& payload, const QRectF& r);

  private:
    QPainter* painter_ = nullptr;
    std::vector<QString> texts_;
};

} // namespace lumivale
