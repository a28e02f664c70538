// The sorter on a screenshot set's true text: answers for each picture file as `lumivale read
// --json` does, but from the set's manifest instead of from the picture, so that the set's scorer
// shows what the sorter makes of perfect reading. The gap to the reader's own figures is the
// reader's.
//
//   ScreensBench MANIFEST FILE...
#include "core/Shelf.h"
#include "core/Sorter.h"

#include <QByteArray>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <iostream>
#include <map>

using namespace lumivale;

namespace {

// The kind name the reader gives a barcode the manifest writes as "QRCODE: payload".
std::string barcodeKind(const QString& barcode) {
    const QString format = barcode.section(':', 0, 0).trimmed();
    if (format == "QRCODE" || format == "MICROQRCODE") return "QR";
    if (format == "AZTEC") return "Aztec";
    if (format == "PDF417") return "PDF417";
    if (format == "DATAMATRIX") return "DataMatrix";
    return "Barcode";
}

QJsonObject answer(const QString& path, const QJsonObject& truth) {
    std::vector<std::string> lines;
    QJsonArray lineArray;
    for (const QString& line : truth["text"].toString().split('\n', Qt::SkipEmptyParts)) {
        lines.push_back(line.toStdString());
        lineArray.append(line);
    }
    std::vector<std::string> barcodes;
    for (const QJsonValue& barcode : truth["barcodes"].toArray())
        barcodes.push_back(barcodeKind(barcode.toString()));
    std::sort(barcodes.begin(), barcodes.end());
    barcodes.erase(std::unique(barcodes.begin(), barcodes.end()), barcodes.end());
    const bool failed = truth["failed"].toBool();
    const Verdict verdict = Sorter::sort(lines, barcodes);
    QJsonArray flags;
    for (SensitiveKind kind : verdict.flags)
        flags.append(QString::fromUtf8(sensitiveKindId(kind)));
    const Shelf shelf = failed ? Shelf::other : verdict.category;
    return QJsonObject{{"path", path},
                       {"failed", failed},
                       {"lines", lineArray},
                       {"shelf", QString::fromUtf8(shelfId(shelf))},
                       {"flags", flags}};
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::cerr << "usage: ScreensBench MANIFEST FILE...\n";
        return 2;
    }
    QFile file(argv[1]);
    if (!file.open(QIODevice::ReadOnly)) {
        std::cerr << "ScreensBench: cannot open " << argv[1] << "\n";
        return 2;
    }
    std::map<QString, QJsonObject> byName;
    for (const QJsonValue& entry : QJsonDocument::fromJson(file.readAll()).array())
        byName[entry["file"].toString()] = entry.toObject();
    int missing = 0;
    for (int i = 2; i < argc; ++i) {
        const QString path = QString::fromLocal8Bit(argv[i]);
        const auto truth = byName.find(QFileInfo(path).fileName());
        if (truth == byName.end()) {
            ++missing;
            continue;
        }
        std::cout << QJsonDocument(answer(path, truth->second))
                         .toJson(QJsonDocument::Compact)
                         .toStdString()
                  << "\n";
    }
    return missing ? 1 : 0;
}
