#include "reading/Reader.h"

#include "reading/Barcodes.h"
#include "reading/Icons.h"
#include "reading/Lines.h"
#include "reading/MachineZone.h"
#include "reading/Preparation.h"
#include "reading/ReadingLanguages.h"
#include "reading/VipsHandles.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <memory>
#include <tesseract/baseapi.h>
#include <tesseract/ocrclass.h>
#include <tesseract/resultiterator.h>
#include <unistd.h>

namespace lumivale::Reader {

namespace {

// The longer side of the picture that is read; larger pictures are read reduced.
constexpr int longestSide = 3000;
// Recognition of one picture is given up after this long (a photograph of noise, say).
constexpr int recognitionDeadlineMs = 30000;
// The engine takes the resolution only as a hint for its page layout; stating one keeps it from
// guessing. At 300 it takes the smallest prepared letters (a desktop's top bar) for specks.
constexpr int resolution = 150;

// A picture file as opened: its recorded size (0 × 0 when it could not be opened), and its
// grey picture when it could be decoded.
struct Opened {
    int64_t width = 0, height = 0;
    std::optional<GrayImage> picture;
};

// The orientation-corrected picture, at most `longestSide` pixels long, in grey levels on a
// white ground where it was transparent.
std::optional<GrayImage> greyPicture(VipsImage* image) {
    VipsImage* out = nullptr;
    if (vips_thumbnail_image(image, &out, longestSide, "height", longestSide, "size",
                             VIPS_SIZE_DOWN, nullptr))
        return std::nullopt;
    VipsRef<VipsImage> picture(out);
    // Into 8-bit grey or sRGB (from 16 bits, CMYK, Lab…), alpha kept.
    const bool grey = vips_image_get_bands(picture.get()) < 3;
    if (vips_colourspace(picture.get(), &out,
                         grey ? VIPS_INTERPRETATION_B_W : VIPS_INTERPRETATION_sRGB, nullptr))
        return std::nullopt;
    picture.reset(out);
    if (vips_image_hasalpha(picture.get())) {
        double white = 255;
        VipsArrayDouble* background = vips_array_double_new(&white, 1);
        const int failed = vips_flatten(picture.get(), &out, "background", background, nullptr);
        vips_area_unref(VIPS_AREA(background));
        if (failed) return std::nullopt;
        picture.reset(out);
    }
    // Luma straight from the sRGB values: the colour-managed route through linear light costs
    // more than the decoding, and reads no better.
    if (!grey) {
        VipsRef<VipsImage> luma(vips_image_new_matrixv(3, 1, 0.299, 0.587, 0.114));
        if (vips_recomb(picture.get(), &out, luma.get(), nullptr)) return std::nullopt;
        picture.reset(out);
    }
    if (vips_cast_uchar(picture.get(), &out, nullptr)) return std::nullopt;
    picture.reset(out);
    return pixelsOf(picture.get());
}

Opened open(const std::string& path) {
    Opened result;
    if (!vipsStarted()) return result;
    // A source, not a file name: libvips would read "[…]" in a file name as load options.
    VipsRef<VipsSource> source(vips_source_new_from_file(path.c_str()));
    VipsRef<VipsImage> image(source ? vips_image_new_from_source(source.get(), "", "access",
                                                                 VIPS_ACCESS_SEQUENTIAL, "fail_on",
                                                                 VIPS_FAIL_ON_TRUNCATED, nullptr)
                                    : nullptr);
    if (image) {
        // The file's own size, as stored: an orientation tag does not swap it.
        result.width = vips_image_get_width(image.get());
        result.height = vips_image_get_height(image.get());
        result.picture = greyPicture(image.get());
    }
    vips_error_clear();
    return result;
}

// One recognition engine per reading thread, kept for the life of the thread.
class Engine {
  public:
    // Loads the models unless they are loaded already; false when they cannot be.
    bool load(const std::string& models) {
        if (ready_ && models == models_) return true;
        api_.End();
        api_.SetVariable("debug_file", "/dev/null");
        ready_ = api_.Init(nullptr, models.c_str(), tesseract::OEM_LSTM_ONLY) == 0;
        models_ = models;
        if (ready_) {
            api_.SetPageSegMode(tesseract::PSM_AUTO);
            // The prepared picture holds dark text only: reading each doubtful line a second
            // time inverted would only cost time.
            api_.SetVariable("tessedit_do_invert", "0");
        }
        return ready_;
    }

    // Recognises the lines of a prepared picture into `lines`; false when recognition failed
    // (the lines found until then are still given).
    bool recognise(const GrayImage& picture, std::vector<TextLine>& lines) {
        api_.SetImage(picture.pixels.data(), picture.width, picture.height, 1, picture.width);
        api_.SetSourceResolution(resolution);
        tesseract::ETEXT_DESC monitor;
        monitor.set_deadline_msecs(recognitionDeadlineMs);
        const bool done = api_.Recognize(&monitor) == 0;
        std::vector<Lines::Word> words;
        std::unique_ptr<tesseract::ResultIterator> it(api_.GetIterator());
        if (it && !it->Empty(tesseract::RIL_TEXTLINE)) do
                addWordsOfLine(*it, words);
            while (it->Next(tesseract::RIL_TEXTLINE));
        Icons::mark(words, picture.width, picture.height);
        for (Lines::Piece& piece : Lines::pieces(words)) {
            if (MachineZone::looksLikeZoneLine(piece.text))
                piece.text = zoneLine(piece.box, picture.width, picture.height);
            if (auto line = Lines::make(piece.text, piece.box, picture.width, picture.height))
                lines.push_back(std::move(*line));
        }
        api_.Clear();
        return done;
    }

  private:
    // A line of a machine-readable zone read again on its own, as only the characters a zone
    // holds: its fillers and the look-alike letters and digits of its font come out right far
    // more often than among the page's words.
    std::string zoneLine(const Lines::PixelBox& box, int width, int height) {
        const int margin = (box.bottom - box.top) / 2;
        const int left = std::max(0, box.left - margin), top = std::max(0, box.top - margin);
        api_.SetRectangle(left, top, std::min(width, box.right + margin) - left,
                          std::min(height, box.bottom + margin) - top);
        api_.SetPageSegMode(tesseract::PSM_SINGLE_LINE);
        api_.SetVariable("tessedit_char_whitelist", "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789<");
        const std::unique_ptr<char[]> text(api_.GetUTF8Text());
        api_.SetVariable("tessedit_char_whitelist", "");
        api_.SetPageSegMode(tesseract::PSM_AUTO);
        return text ? text.get() : "";
    }

    // Adds the words of the line at `it`, leaving `it` at its last word. The line's box is
    // asked for once: the engine measures it anew on every call.
    static void addWordsOfLine(tesseract::ResultIterator& it, std::vector<Lines::Word>& words) {
        Lines::PixelBox line;
        if (!boxAt(it, tesseract::RIL_TEXTLINE, line)) return;
        bool first = true;
        do {
            const std::unique_ptr<char[]> text(it.GetUTF8Text(tesseract::RIL_WORD));
            Lines::Word word{
                text ? text.get() : "", {}, line, first, it.Confidence(tesseract::RIL_WORD)};
            if (text && boxAt(it, tesseract::RIL_WORD, word.box)) {
                words.push_back(std::move(word));
                first = false;
            }
        } while (!it.IsAtFinalElement(tesseract::RIL_TEXTLINE, tesseract::RIL_WORD) &&
                 it.Next(tesseract::RIL_WORD));
    }

    static bool boxAt(const tesseract::ResultIterator& it, tesseract::PageIteratorLevel level,
                      Lines::PixelBox& box) {
        return it.BoundingBox(level, &box.left, &box.top, &box.right, &box.bottom);
    }

    tesseract::TessBaseAPI api_;
    std::string models_;
    bool ready_ = false;
};

thread_local Engine engine;

} // namespace

Reading read(const std::string& path, const std::vector<std::string>& languages) {
    Reading reading;
    try {
        const Opened file = open(path);
        reading.pixelWidth = file.width;
        reading.pixelHeight = file.height;
        if (!file.picture) {
            reading.failed = true;
            return reading;
        }
        if (reading.pixelWidth == 0) {
            reading.pixelWidth = file.picture->width;
            reading.pixelHeight = file.picture->height;
        }
        reading.barcodes = Barcodes::kindsIn(*file.picture);
        reading.failed = !engine.load(ReadingLanguages::models(languages)) ||
                         !engine.recognise(Preparation::prepare(*file.picture), reading.lines);
    } catch (const std::exception&) {
        // Out of memory, or an exception of the engine or the detector.
        reading.failed = true;
    }
    Lines::sort(reading.lines);
    MachineZone::repair(reading.lines);
    return reading;
}

std::string name(const std::string& symbology) {
    if (symbology == "QRCode" || symbology == "MicroQRCode") return "QR";
    if (symbology == "Aztec" || symbology == "PDF417" || symbology == "DataMatrix")
        return symbology;
    return "Barcode";
}

void startWithOneRecognitionThread(char** argv) {
    if (const char* limit = std::getenv("OMP_THREAD_LIMIT"); limit && std::strcmp(limit, "1") == 0)
        return;
    setenv("OMP_THREAD_LIMIT", "1", 1);
    execv("/proc/self/exe", argv);
}

} // namespace lumivale::Reader
