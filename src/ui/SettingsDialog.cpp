#include "ui/SettingsDialog.h"

#include "app/AppModel.h"
#include "core/ScreenshotFolder.h"
#include "reading/ReadingLanguages.h"
#include "ui/Brand.h"
#include "ui/FolderChooser.h"
#include "ui/Icons.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QLocale>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

namespace lumivale {
namespace {

constexpr int PathRole = Qt::UserRole + 1;

QLabel* hint(const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setWordWrap(true);
    label->setEnabled(false);
    return label;
}

// "German (de-DE)": a reading language as people know it, with its tag.
QString languageName(const std::string& tag) {
    const QString code = QString::fromStdString(tag);
    const QLocale locale(QString(code).replace('-', '_'));
    if (locale.language() == QLocale::C) return code;
    return QString("%1 (%2)").arg(QLocale::languageToString(locale.language()), code);
}

const Source* sourceAt(const AppModel& model, const QListWidgetItem* item) {
    if (!item) return nullptr;
    const std::string path = item->data(PathRole).toString().toStdString();
    for (const Source& source : model.sources())
        if (source.path == path) return &source;
    return nullptr;
}

} // namespace

SettingsDialog::SettingsDialog(AppModel& model, QWidget* parent) : QDialog(parent), model_(model) {
    setObjectName("settingsDialog");
    setWindowTitle(tr("Settings"));
    setMinimumWidth(580);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(18, 16, 18, 14);
    layout->setSpacing(12);
    layout->addWidget(foldersBox());

    auto* privacy = new QGroupBox(tr("Privacy"), this);
    auto* privacyLayout = new QFormLayout(privacy);
    blur_ = new QCheckBox(tr("Blur private screenshots"), privacy);
    blur_->setObjectName("blurPrivateBox");
    connect(blur_, &QCheckBox::toggled, &model_, &AppModel::setBlurPrivate);
    privacyLayout->addRow(blur_);
    lockAfter_ = new QSpinBox(privacy);
    lockAfter_->setObjectName("lockAfterBox");
    lockAfter_->setAccessibleName(tr("Lock the locked area after this many minutes"));
    lockAfter_->setRange(1, 240);
    lockAfter_->setSuffix(tr(" minutes"));
    connect(lockAfter_, &QSpinBox::valueChanged, this, [this](int minutes) {
        if (minutes != model_.lockAfterMinutes()) model_.setLockAfterMinutes(minutes);
    });
    privacyLayout->addRow(tr("Lock the locked area after"), lockAfter_);
    layout->addWidget(privacy);

    auto* filing = new QGroupBox(tr("Tidying"), this);
    auto* filingLayout = new QHBoxLayout(filing);
    auto* folderIcon = new QLabel(filing);
    folderIcon->setPixmap(Icons::symbol("folder", "folder").pixmap(18, 18));
    archive_ = new QLabel(filing);
    archive_->setObjectName("archiveFolder");
    archive_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* change = new QPushButton(tr("Change…"), filing);
    change->setObjectName("changeArchiveButton");
    change->setAccessibleName(tr("Change where tidied screenshots go"));
    connect(change, &QPushButton::clicked, this, [this] {
        if (const auto folder = chooseFolder(this,
                                             tr("Choose where tidied screenshots go. Lumivale "
                                                "makes a folder per shelf inside it."),
                                             tr("Use This Folder"), model_.paths().archive))
            model_.setArchive(*folder);
    });
    filingLayout->addWidget(new QLabel(tr("Tidied screenshots go to"), filing));
    filingLayout->addWidget(folderIcon);
    filingLayout->addWidget(archive_, 1);
    filingLayout->addWidget(change);
    layout->addWidget(filing);
    layout->addWidget(languagesBox());

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    buttons->button(QDialogButtonBox::Close)->setObjectName("closeButton");
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);

    connect(&model_, &AppModel::sourcesChanged, this, &SettingsDialog::showFolders);
    connect(&model_, &AppModel::settingsChanged, this, &SettingsDialog::showSettings);
    showFolders();
    showSettings();
}

QWidget* SettingsDialog::foldersBox() {
    auto* box = new QGroupBox(tr("Folders that are read"), this);
    auto* layout = new QVBoxLayout(box);
    folders_ = new QListWidget(box);
    folders_->setObjectName("folderList");
    folders_->setAccessibleName(tr("Folders that are read"));
    folders_->setMinimumHeight(120);
    connect(folders_, &QListWidget::itemChanged, this, [this](QListWidgetItem* item) {
        const Source* source = sourceAt(model_, item);
        const bool on = item->checkState() == Qt::Checked;
        if (source && source->enabled != on) model_.setEnabled(Source(*source), on);
    });
    connect(folders_, &QListWidget::currentItemChanged, this, &SettingsDialog::updateRemove);
    layout->addWidget(folders_);
    auto* watch = new QCheckBox(tr("Watch these folders for new screenshots"), box);
    watch_ = watch;
    watch_->setObjectName("watchBox");
    connect(watch_, &QCheckBox::toggled, this, [this](bool on) {
        if (on != model_.watch()) model_.setWatch(on);
    });
    auto* buttons = new QHBoxLayout;
    auto* add = new QPushButton(Icons::symbol("add", "list-add"), tr("Add Folder…"), box);
    add->setObjectName("addFolderButton");
    connect(add, &QPushButton::clicked, this, [this] {
        if (const auto folder =
                chooseFolder(this, tr("Choose a folder of pictures for Lumivale to read."),
                             tr("Add Folder"), QDir::homePath().toStdString()))
            model_.addFolder(*folder);
    });
    remove_ = new QPushButton(Icons::symbol("remove", "list-remove"), tr("Remove"), box);
    remove_->setObjectName("removeFolderButton");
    remove_->setAccessibleName(tr("Remove the chosen folder"));
    connect(remove_, &QPushButton::clicked, this, [this] {
        if (const Source* source = sourceAt(model_, folders_->currentItem());
            source && source->kind == Source::Kind::added)
            model_.removeFolder(Source(*source));
    });
    buttons->addWidget(add);
    buttons->addWidget(remove_);
    buttons->addStretch();
    buttons->addWidget(watch_);
    layout->addLayout(buttons);
    return box;
}

QWidget* SettingsDialog::languagesBox() {
    auto* box = new QGroupBox(tr("Reading languages"), this);
    auto* layout = new QVBoxLayout(box);
    QStringList names;
    for (const std::string& tag : ReadingLanguages::supported())
        names << languageName(tag);
    auto* list = new QLabel(names.join(", "), box);
    list->setObjectName("readingLanguages");
    list->setWordWrap(true);
    list->setTextInteractionFlags(Qt::TextSelectableByMouse);
    layout->addWidget(list);
    layout->addWidget(
        hint(tr("Lumivale reads the languages whose recognition models are installed. The packages "
                "tesseract-ocr-LANG add more, for example tesseract-ocr-deu for German."),
             box));
    return box;
}

void SettingsDialog::showFolders() {
    const std::string home = QDir::homePath().toStdString();
    const QString current =
        folders_->currentItem() ? folders_->currentItem()->data(PathRole).toString() : QString();
    const QSignalBlocker quiet(folders_);
    folders_->clear();
    for (const Source& source : model_.sources()) {
        QString text = QString::fromStdString(ScreenshotFolder::displayName(source.path, home));
        if (source.kind == Source::Kind::screenshots)
            text += tr(" (screenshot folder)");
        else if (source.kind == Source::Kind::archive)
            text += tr(" (archive)");
        auto* item = new QListWidgetItem(Icons::symbol("folder", "folder"), text, folders_);
        item->setData(PathRole, QString::fromStdString(source.path));
        item->setToolTip(QString::fromStdString(source.path));
        if (!source.readable) {
            item->setText(text + tr(" — can't be opened"));
            item->setIcon(Icons::symbol("warning", "dialog-warning"));
            item->setForeground(Brand::marker());
        }
        Qt::ItemFlags flags = Qt::ItemIsSelectable | Qt::ItemIsEnabled;
        // The archive is always read: tidied screenshots would vanish from view otherwise.
        if (source.kind != Source::Kind::archive) flags |= Qt::ItemIsUserCheckable;
        item->setFlags(flags);
        item->setCheckState(source.enabled ? Qt::Checked : Qt::Unchecked);
        if (item->data(PathRole).toString() == current) folders_->setCurrentItem(item);
    }
    updateRemove();
}

void SettingsDialog::showSettings() {
    // Showing a value is no change: a stored 0 minutes, shown as 1, stays 0 until the user acts.
    const QSignalBlocker quietBlur(blur_), quietWatch(watch_), quietMinutes(lockAfter_);
    blur_->setChecked(model_.blurPrivate());
    watch_->setChecked(model_.watch());
    lockAfter_->setValue(model_.lockAfterMinutes());
    archive_->setText(QString::fromStdString(
        ScreenshotFolder::displayName(model_.paths().archive, QDir::homePath().toStdString())));
    archive_->setToolTip(QString::fromStdString(model_.paths().archive));
}

void SettingsDialog::updateRemove() {
    const Source* source = sourceAt(model_, folders_->currentItem());
    remove_->setEnabled(source && source->kind == Source::Kind::added);
}

} // namespace lumivale
