#pragma once
// TEMPORARY stand-in until the thumbnails branch lands (not to be committed).
#include "core/Shot.h"
#include <QHash>
#include <QSet>
#include <QImage>
#include <QObject>
#include <QThreadPool>
namespace lumivale {
class ThumbnailProvider : public QObject {
    Q_OBJECT
public:
    explicit ThumbnailProvider(QObject* parent = nullptr) : QObject(parent) { pool_.setMaxThreadCount(2); }
    ~ThumbnailProvider() override { pool_.waitForDone(); }
    QImage thumbnail(const Shot& shot, bool blurred);
    void prioritise(const std::vector<std::string>&, const std::vector<std::string>&) {}
signals:
    void ready(const QString& path);
private:
    QHash<QString, QImage> done_;
    QSet<QString> asked_;
    QThreadPool pool_;
};
}
