#include "app/ThumbnailProvider.h"
#include <QImageReader>
#include <QPointer>
namespace lumivale {
QImage ThumbnailProvider::thumbnail(const Shot& shot, bool blurred) {
    const QString path = QString::fromStdString(shot.path);
    auto it = done_.find(path);
    if (it != done_.end()) {
        if (!blurred) return *it;
        return it->scaled(16, 16, Qt::KeepAspectRatio, Qt::SmoothTransformation).scaled(it->size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    }
    if (asked_.contains(path)) return {};
    asked_.insert(path);
    QPointer<ThumbnailProvider> self(this);
    pool_.start([self, path] {
        QImageReader reader(path);
        reader.setAutoTransform(true);
        QSize size = reader.size();
        size.scale(256, 256, Qt::KeepAspectRatio);
        reader.setScaledSize(size);
        QImage image = reader.read();
        QMetaObject::invokeMethod(self, [self, path, image] { if (self) { self->done_.insert(path, image); emit self->ready(path); } }, Qt::QueuedConnection);
    });
    return {};
}
}
