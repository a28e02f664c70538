#include "ui/LockedInspector.h"

#include "app/AppModel.h"
#include "core/PathName.h"
#include "core/ScreenshotFolder.h"
#include "ui/FolderChooser.h"
#include "ui/Icons.h"

#include <QDateTime>
#include <QDir>
#include <QFormLayout>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QVBoxLayout>

namespace lumivale {
namespace {

QString qs(std::string_view s) {
    return QString::fromUtf8(s.data(), static_cast<qsizetype>(s.size()));
}

} // namespace

LockedInspector::LockedInspector(AppModel& model, QWidget* parent)
    : InspectorPane("lockedInspector", tr("Locked screenshot"), tr("Choose a locked screenshot to see it."), parent),
      model_(model) {
    QVBoxLayout* layout = detailsLayout_;
    facts_ = new QFormLayout;
    layout->addLayout(facts_);

    restoreHome_ = new QPushButton(Icons::symbol("restore", "edit-undo"), QString(), details_);
    restoreHome_->setObjectName("restoreButton");
    connect(restoreHome_, &QPushButton::clicked, this, [this] {
        if (const auto item = selected()) restoreTo(std::string(item->shot.folder()));
    });
    restoreElsewhere_ = new QPushButton(Icons::symbol("restore", "edit-undo"),
                                        tr("Restore to Another Folder…"), details_);
    restoreElsewhere_->setObjectName("restoreElsewhereButton");
    connect(restoreElsewhere_, &QPushButton::clicked, this, [this] {
        const auto item = selected();
        if (!item) return;
        if (const auto folder = chooseFolder(
                this, tr("Choose the folder to restore “%1” to.").arg(qs(item->shot.name())),
                tr("Restore Here"), std::string(item->shot.folder())))
            restoreTo(*folder);
    });
    for (QPushButton* button : {restoreHome_, restoreElsewhere_}) {
        button->setStyleSheet("text-align: left; padding: 4px 10px;");
        layout->addWidget(button);
    }
    auto* note = new QLabel(tr("Restoring writes it back as an ordinary file, readable by anyone "
                               "who can open your folders."),
                            details_);
    note->setObjectName("restoreNote");
    note->setWordWrap(true);
    note->setEnabled(false);
    layout->addWidget(note);
    discard_ =
        new QPushButton(Icons::symbol("trash", "user-trash"), tr("Move to Trash…"), details_);
    discard_->setObjectName("discardButton");
    discard_->setAccessibleName(tr("Remove from the locked area"));
    connect(discard_, &QPushButton::clicked, this, [this] {
        if (const auto item = selected()) model_.discard(*item);
    });
    layout->addWidget(discard_, 0, Qt::AlignLeft);

    connect(&model_, &AppModel::vaultChanged, this, &LockedInspector::refresh);
    refresh();
}

std::optional<LockedShot> LockedInspector::selected() const {
    const auto& id = model_.lockedSelection();
    if (!id || !model_.vaultOpen()) return std::nullopt;
    for (const LockedShot& item : model_.lockedItems())
        if (item.id == *id) return item;
    return std::nullopt;
}

void LockedInspector::refresh() {
    const auto item = selected();
    nothing_->setVisible(!item);
    details_->setVisible(item.has_value());
    while (facts_->rowCount() > 0)
        facts_->removeRow(0);
    // Nothing decrypted stays on screen once the item or the whole area is gone.
    picture_->clear();
    if (!item) return;
    if (const auto image = model_.lockedImage(item->id)) {
        const qreal ratio = devicePixelRatioF();
        QImage scaled =
            image->scaledToWidth(qRound(pictureWidth * ratio), Qt::SmoothTransformation);
        if (scaled.height() > 420 * ratio)
            scaled = image->scaledToHeight(qRound(420 * ratio), Qt::SmoothTransformation);
        scaled.setDevicePixelRatio(ratio);
        picture_->setPixmap(QPixmap::fromImage(scaled));
    } else {
        picture_->setText(tr("This picture can't be shown."));
    }
    const std::string folder(item->shot.folder());
    facts_->addRow(tr("File"), value(qs(item->shot.name())));
    facts_->addRow(tr("From"), value(QString::fromStdString(ScreenshotFolder::displayName(
                                   folder, QDir::homePath().toStdString()))));
    facts_->addRow(tr("Taken"), value(when(item->shot.created)));
    facts_->addRow(tr("Locked"), value(when(item->lockedAt)));
    restoreHome_->setText(tr("Restore to %1").arg(qs(lastComponent(folder))));
}

void LockedInspector::restoreTo(const std::string& folder) {
    if (const auto item = selected()) model_.restore(*item, folder);
}

} // namespace lumivale
