#include "ui/Inspector.h"

#include "app/AppModel.h"
#include "app/ThumbnailProvider.h"
#include "core/Facts.h"
#include "core/ScreenshotFolder.h"
#include "core/Titles.h"
#include "ui/Brand.h"
#include "ui/Icons.h"
#include "ui/ShotActions.h"

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QDateTime>
#include <QDir>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QFutureWatcher>
#include <QImageReader>
#include <QLabel>
#include <QtConcurrent>
#include <QLocale>
#include <QPushButton>
#include <QTextBrowser>
#include <QToolButton>
#include <QVBoxLayout>

namespace lumivale {
namespace {

QString qs(std::string_view s) { return QString::fromUtf8(s.data(), static_cast<qsizetype>(s.size())); }

QLabel* heading(const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    QFont font = label->font();
    font.setWeight(QFont::DemiBold);
    label->setFont(font);
    return label;
}

void clear(QFormLayout* form) {
    while (form->rowCount() > 0)
        form->removeRow(0);
}

} // namespace

Inspector::Inspector(AppModel& model, ThumbnailProvider& thumbnails, ShotActions& actions, QWidget* parent)
    : InspectorPane("inspector", tr("Inspector"), tr("Choose a screenshot to see what Lumivale read in it."), parent),
      model_(model), thumbnails_(thumbnails) {
    QVBoxLayout* layout = detailsLayout_;
    reveal_ = new QPushButton(Icons::symbol("eye"), tr("Show for 30 seconds"), details_);
    reveal_->setObjectName("revealButton");
    connect(reveal_, &QPushButton::clicked, this, [this] {
        if (model_.selected())
            model_.reveal(model_.selected()->path);
    });
    layout->addWidget(reveal_, 0, Qt::AlignHCenter);

    title_ = new QLabel(details_);
    QFont big = title_->font();
    big.setPointSizeF(big.pointSizeF() * 1.35);
    big.setWeight(QFont::DemiBold);
    title_->setFont(big);
    title_->setWordWrap(true);
    title_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    layout->addWidget(title_);

    auto* shelfRow = new QHBoxLayout;
    auto* shelfLabel = new QLabel(tr("Shelf"), details_);
    shelf_ = new QComboBox(details_);
    shelf_->setObjectName("shelfPicker");
    shelf_->setAccessibleName(tr("Shelf"));
    shelfLabel->setBuddy(shelf_);
    shelf_->addItem(tr("Automatic"), QString());
    for (Shelf s : allShelves)
        shelf_->addItem(Icons::shelf(s), qs(shelfTitle(s)), qs(shelfId(s)));
    connect(shelf_, &QComboBox::activated, this, [this](int index) {
        if (!model_.selected())
            return;
        const auto id = shelf_->itemData(index).toString().toStdString();
        model_.setShelf(model_.selected()->path, id.empty() ? std::nullopt : shelfFromId(id));
    });
    shelfRow->addWidget(shelfLabel);
    shelfRow->addWidget(shelf_, 1);
    layout->addLayout(shelfRow);
    confidence_ = new QLabel(details_);
    confidence_->setEnabled(false);
    layout->addWidget(confidence_);

    privateNumbers_ = new QLabel(details_);
    privateNumbers_->setWordWrap(true);
    layout->addWidget(privateNumbers_);

    factsBox_ = new QWidget(details_);
    auto* factsLayout = new QVBoxLayout(factsBox_);
    factsLayout->setContentsMargins(0, 0, 0, 0);
    factsLayout->addWidget(heading(tr("Facts"), factsBox_));
    facts_ = new QFormLayout;
    factsLayout->addLayout(facts_);
    layout->addWidget(factsBox_);

    auto* actionRow = new QHBoxLayout;
    auto* actionRow2 = new QHBoxLayout;
    int n = 0;
    for (QAction* action : {actions.copyText, actions.copyPicture, actions.showInFolder, actions.lockAway, actions.moveToTrash}) {
        auto* button = new QToolButton(details_);
        button->setDefaultAction(action);
        button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
        button->setObjectName(action->objectName() + "Button");
        (n++ < 3 ? actionRow : actionRow2)->addWidget(button);
    }
    actionRow->addStretch();
    actionRow2->addStretch();
    layout->addLayout(actionRow);
    layout->addLayout(actionRow2);

    layout->addWidget(heading(tr("File"), details_));
    file_ = new QFormLayout;
    layout->addLayout(file_);

    textHeading_ = heading(tr("Text"), details_);
    layout->addWidget(textHeading_);
    text_ = new QTextBrowser(details_);
    text_->setObjectName("recognisedText");
    text_->setAccessibleName(tr("Recognised text"));
    text_->setMinimumHeight(160);
    text_->setOpenLinks(false);
    layout->addWidget(text_);

    for (auto signal : {&AppModel::selectionChanged, &AppModel::libraryChanged, &AppModel::revealedChanged,
                        &AppModel::settingsChanged, &AppModel::queryChanged})
        connect(&model_, signal, this, &Inspector::refresh);
    connect(&thumbnails_, &ThumbnailProvider::ready, this, [this](const QString& path) {
        if (model_.selected() && model_.selected()->path == path.toStdString())
            showPicture(*model_.selected());
    });
    refresh();
}

void Inspector::refresh() {
    const Shot* shot = model_.selected();
    nothing_->setVisible(!shot);
    details_->setVisible(shot);
    if (!shot)
        return;
    const bool hidden = model_.isHidden(*shot);
    showPicture(*shot);
    reveal_->setVisible(hidden);
    const auto title = Titles::of(*shot, 80);
    title_->setText(hidden || !title ? qs(shot->name()) : QString::fromStdString(*title));
    shelf_->setCurrentIndex(shot->manual ? shelf_->findData(qs(shelfId(*shot->manual))) : 0);
    shelf_->setItemText(0, tr("Automatic (%1)").arg(qs(shelfTitle(shot->guess))));
    if (!shot->isRead())
        confidence_->setText(tr("Waiting to be read"));
    else if (shot->failed)
        confidence_->setText(tr("This picture couldn't be read."));
    else
        confidence_->setText(tr("Sorted with %1 % confidence").arg(qRound(shot->guessScore * 100)));
    QStringList kinds;
    for (SensitiveKind k : shot->flags)
        kinds << qs(sensitiveKindTitle(k));
    privateNumbers_->setVisible(shot->isRead() && shot->isSensitive());
    privateNumbers_->setText(kinds.isEmpty() ? tr("<b>Private:</b> an ID or document")
                                             : tr("<b>Private:</b> %1").arg(kinds.join(", ")));
    privateNumbers_->setStyleSheet(QString("color: %1").arg(Brand::marker().name()));
    fillFacts(*shot, hidden);
    fillFile(*shot);
    fillText(*shot, hidden);
}

void Inspector::showPicture(const Shot& shot) {
    const bool hidden = model_.isHidden(shot);
    if (!hidden && sharpPath_ == shot.path && !sharp_.isNull()) {
        setPicture(sharp_);
        return;
    }
    const QImage image = thumbnails_.thumbnail(shot, hidden);
    if (image.isNull()) {
        picture_->setPixmap({});
        picture_->setText(tr("…"));
    } else {
        setPicture(image);
    }
    if (!hidden)
        loadSharp(shot);
}

void Inspector::loadSharp(const Shot& shot) {
    if (sharpPath_ == shot.path)
        return;
    sharpPath_ = shot.path;
    sharp_ = {};
    const int longest = qRound(420 * devicePixelRatioF());
    const QString path = QString::fromStdString(shot.path);
    auto* job = new QFutureWatcher<QImage>(this);
    connect(job, &QFutureWatcher<QImage>::finished, this, [this, job, wanted = shot.path] {
        job->deleteLater();
        if (sharpPath_ != wanted)
            return;
        sharp_ = job->result();
        if (const Shot* shot = model_.selected(); shot && shot->path == wanted && !model_.isHidden(*shot) && !sharp_.isNull())
            setPicture(sharp_);
    });
    job->setFuture(QtConcurrent::run([path, longest] {
        QImageReader reader(path);
        reader.setAutoTransform(true);
        QSize size = reader.size();
        if (size.isValid() && (size.width() > longest || size.height() > longest)) {
            size.scale(longest, longest, Qt::KeepAspectRatio);
            reader.setScaledSize(size);
        }
        return reader.read();
    }));
}

void Inspector::setPicture(const QImage& image) {
    const qreal ratio = devicePixelRatioF();
    QImage scaled = image.scaledToWidth(qRound(pictureWidth * ratio), Qt::SmoothTransformation);
    if (scaled.height() > 420 * ratio)
        scaled = image.scaledToHeight(qRound(420 * ratio), Qt::SmoothTransformation);
    scaled.setDevicePixelRatio(ratio);
    picture_->setPixmap(QPixmap::fromImage(scaled));
}

void Inspector::fillFacts(const Shot& shot, bool hidden) {
    clear(facts_);
    const auto facts = hidden ? std::vector<Fact>{} : Facts::of(shot);
    factsBox_->setVisible(!facts.empty());
    for (const Fact& fact : facts) {
        auto* row = new QWidget;
        auto* rowLayout = new QHBoxLayout(row);
        rowLayout->setContentsMargins(0, 0, 0, 0);
        const QString text = QString::fromStdString(fact.value);
        rowLayout->addWidget(value(text), 1);
        auto* copy = new QToolButton(row);
        copy->setIcon(Icons::symbol("copy", "edit-copy"));
        copy->setAutoRaise(true);
        copy->setToolTip(tr("Copy %1").arg(QString::fromStdString(fact.label)));
        copy->setAccessibleName(copy->toolTip());
        connect(copy, &QToolButton::clicked, this, [this, text] {
            QApplication::clipboard()->setText(text);
            model_.flash("Copied \u201c" + text.toStdString() + "\u201d");
        });
        rowLayout->addWidget(copy);
        facts_->addRow(QString::fromStdString(fact.label), row);
    }
}

void Inspector::fillFile(const Shot& shot) {
    clear(file_);
    const std::string home = QDir::homePath().toStdString();
    file_->addRow(tr("Name"), value(qs(shot.name())));
    file_->addRow(tr("Folder"), value(QString::fromStdString(
                                    ScreenshotFolder::displayName(std::string(shot.folder()), home))));
    file_->addRow(tr("Size"), value(QLocale().formattedDataSize(shot.size)));
    if (shot.pixelWidth > 0)
        file_->addRow(tr("Pixels"), value(tr("%1 × %2").arg(shot.pixelWidth).arg(shot.pixelHeight)));
    file_->addRow(tr("Taken"), value(when(shot.date())));
    if (shot.modified != shot.date())
        file_->addRow(tr("Changed"), value(when(shot.modified)));
    if (shot.readAt)
        file_->addRow(tr("Read"), value(when(*shot.readAt)));
    if (!shot.barcodes.empty() && !model_.isHidden(shot)) {
        QStringList codes;
        for (const auto& code : shot.barcodes)
            codes << QString::fromStdString(code).toHtmlEscaped();
        auto* label = value(codes.join("<br>"));
        label->setTextFormat(Qt::RichText);
        file_->addRow(shot.barcodes.size() == 1 ? tr("Barcode") : tr("Barcodes"), label);
    }
}

void Inspector::fillText(const Shot& shot, bool hidden) {
    const bool any = shot.isRead() && !shot.lines.empty();
    textHeading_->setVisible(any);
    text_->setVisible(any);
    if (!any)
        return;
    if (hidden) {
        text_->setPlainText(tr("The words of a private screenshot stay hidden while it is blurred."));
        return;
    }
    // The lines that hold the query stand out in the accent colour.
    const auto hits = model_.hitLines(shot);
    QColor mark = Brand::accent();
    mark.setAlphaF(0.25);
    const QString markCss = QString("rgba(%1,%2,%3,%4)").arg(mark.red()).arg(mark.green()).arg(mark.blue()).arg(mark.alphaF());
    QString html;
    for (size_t i = 0; i < shot.lines.size(); ++i) {
        const QString line = QString::fromStdString(shot.lines[i].text).toHtmlEscaped();
        const bool hit = std::binary_search(hits.begin(), hits.end(), i);
        html += hit ? QString("<div style=\"background:%1\"><b>%2</b></div>").arg(markCss, line)
                    : QString("<div>%1</div>").arg(line);
    }
    text_->setHtml(html);
}

} // namespace lumivale
