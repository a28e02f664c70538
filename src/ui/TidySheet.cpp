#include "ui/TidySheet.h"

#include "app/AppModel.h"
#include "core/PathName.h"
#include "core/ScreenshotFolder.h"
#include "ui/FolderChooser.h"
#include "ui/Icons.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QRadioButton>
#include <QStackedWidget>
#include <QToolButton>
#include <QVBoxLayout>

namespace lumivale {
namespace {

constexpr int previewMoves = 6; // rows shown before "and … more"

QString qs(std::string_view s) {
    return QString::fromUtf8(s.data(), static_cast<qsizetype>(s.size()));
}

QString count(int64_t n) {
    return QLocale().toString(static_cast<qlonglong>(n));
}

QLabel* wrapped(const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setWordWrap(true);
    return label;
}

// Where a move goes, written under the archive ("Bills › 2026-11 › Receipt.png").
QString placeIn(const std::string& to, const std::string& archive) {
    std::string inside = to.starts_with(archive + "/") ? to.substr(archive.size() + 1) : to;
    for (size_t at = inside.find('/'); at != std::string::npos; at = inside.find('/', at))
        inside.replace(at, 1, " \u203A ");
    return QString::fromStdString(inside);
}

void clearLayout(QLayout* layout) {
    while (QLayoutItem* item = layout->takeAt(0)) {
        if (QWidget* w = item->widget())
            delete w;
        else if (QLayout* inner = item->layout())
            clearLayout(inner);
        delete item;
    }
}

} // namespace

TidySheet::TidySheet(AppModel& model, QWidget* parent) : QDialog(parent), model_(model) {
    setObjectName("tidySheet");
    setWindowTitle(tr("Tidy"));
    setAccessibleName(tr("Tidy"));
    setMinimumWidth(680);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(22, 18, 22, 16);
    layout->setSpacing(12);

    auto* title = new QLabel(tr("Tidy"), this);
    QFont big = title->font();
    big.setPointSizeF(big.pointSizeF() * 1.4);
    big.setWeight(QFont::Bold);
    title->setFont(big);
    layout->addWidget(title);

    // The two modes side by side, as one segmented control.
    auto* modeRow = new QHBoxLayout;
    modeRow->setSpacing(0);
    modes_ = new QButtonGroup(this);
    const std::pair<Mode, QString> modes[] = {{Mode::file, tr("File into folders")},
                                              {Mode::clear, tr("Clear out old ones")}};
    for (const auto& [mode, text] : modes) {
        auto* button = new QToolButton(this);
        button->setText(text);
        button->setObjectName(mode == Mode::file ? "fileMode" : "clearMode");
        button->setCheckable(true);
        button->setChecked(mode == mode_);
        button->setMinimumWidth(200);
        button->setToolButtonStyle(Qt::ToolButtonTextOnly);
        modes_->addButton(button, static_cast<int>(mode));
        modeRow->addWidget(button);
    }
    modeRow->addStretch();
    layout->addLayout(modeRow);
    connect(modes_, &QButtonGroup::idClicked, this, [this](int id) {
        mode_ = static_cast<Mode>(id);
        refresh();
    });

    auto* scopeBox = new QVBoxLayout;
    scopeBox->setSpacing(4);
    scopes_ = new QButtonGroup(this);
    const std::pair<TidyScope, const char*> scopes[] = {{TidyScope::loose, "scopeLoose"},
                                                        {TidyScope::view, "scopeView"},
                                                        {TidyScope::everything, "scopeEverything"}};
    for (const auto& [scope, name] : scopes) {
        auto* button = new QRadioButton(this);
        button->setObjectName(name);
        button->setChecked(scope == choices_.scope);
        scopes_->addButton(button, static_cast<int>(scope));
        scopeBox->addWidget(button);
    }
    connect(scopes_, &QButtonGroup::idClicked, this, [this](int id) {
        choices_.scope = static_cast<TidyScope>(id);
        refresh();
    });
    auto* form = new QFormLayout;
    form->addRow(tr("Which screenshots"), scopeBox);
    layout->addLayout(form);

    keepPrivate_ = new QCheckBox(this);
    keepPrivate_->setObjectName("keepPrivate");
    keepPrivate_->setChecked(choices_.keepPrivate);
    connect(keepPrivate_, &QCheckBox::toggled, this, [this](bool on) {
        choices_.keepPrivate = on;
        refresh();
    });
    layout->addWidget(keepPrivate_);

    options_ = new QStackedWidget(this);
    options_->addWidget(fileOptions());
    options_->addWidget(clearOptions());
    layout->addWidget(options_);

    preview_ = new QFrame(this);
    preview_->setObjectName("tidyPreview");
    preview_->setAccessibleName(tr("Preview"));
    static_cast<QFrame*>(preview_)->setFrameShape(QFrame::StyledPanel);
    previewRows_ = new QVBoxLayout(preview_);
    previewRows_->setContentsMargins(14, 10, 14, 10);
    previewRows_->setSpacing(4);
    preview_->setMinimumHeight(180);
    layout->addWidget(preview_, 1);

    auto* footer = new QHBoxLayout;
    note_ = new QLabel(tr("Nothing is deleted. Undo puts everything back."), this);
    note_->setObjectName("tidyNote");
    note_->setEnabled(false);
    footer->addWidget(note_);
    footer->addStretch();
    auto* cancel = new QPushButton(tr("Cancel"), this);
    cancel->setObjectName("cancelButton");
    cancel->setAutoDefault(false);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    footer->addWidget(cancel);
    run_ = new QPushButton(this);
    run_->setObjectName("runButton");
    run_->setDefault(true);
    connect(run_, &QPushButton::clicked, this, &TidySheet::run);
    footer->addWidget(run_);
    layout->addLayout(footer);

    connect(this, &QDialog::finished, &model_, [this] { model_.setShowTidy(false); });
    for (auto signal : {&AppModel::libraryChanged, &AppModel::placeChanged,
                        &AppModel::settingsChanged, &AppModel::sourcesChanged})
        connect(&model_, signal, this, &TidySheet::refresh);
    refresh();
}

QWidget* TidySheet::fileOptions() {
    auto* page = new QWidget(this);
    auto* form = new QFormLayout(page);
    form->setContentsMargins(0, 0, 0, 0);
    layout_ = new QComboBox(page);
    layout_->setObjectName("layoutPicker");
    layout_->setAccessibleName(tr("Folders"));
    for (TidyLayout l : allTidyLayouts)
        layout_->addItem(qs(tidyLayoutTitle(l)), static_cast<int>(l));
    connect(layout_, &QComboBox::activated, this, [this](int index) {
        choices_.layout = static_cast<TidyLayout>(layout_->itemData(index).toInt());
        refresh();
    });
    form->addRow(tr("Folders"), layout_);
    rename_ = new QCheckBox(tr("Rename them from what's inside"), page);
    rename_->setObjectName("renameBox");
    connect(rename_, &QCheckBox::toggled, this, [this](bool on) {
        choices_.rename = on;
        refresh();
    });
    form->addRow(QString(), rename_);

    auto* destination = new QHBoxLayout;
    auto* folderIcon = new QLabel(page);
    folderIcon->setPixmap(Icons::symbol("folder", "folder").pixmap(18, 18));
    archive_ = new QLabel(page);
    archive_->setObjectName("archiveFolder");
    archive_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* change = new QPushButton(tr("Change…"), page);
    change->setObjectName("changeArchiveButton");
    change->setAccessibleName(tr("Change where tidied screenshots go"));
    change->setAutoDefault(false);
    connect(change, &QPushButton::clicked, this, &TidySheet::chooseArchive);
    destination->addWidget(folderIcon);
    destination->addWidget(archive_, 1);
    destination->addWidget(change);
    form->addRow(tr("Into"), destination);
    return page;
}

QWidget* TidySheet::clearOptions() {
    auto* page = new QWidget(this);
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(
        wrapped(tr("Clear out the ones you'll never need again. They go to the Trash."), page));
    auto* ageRow = new QHBoxLayout;
    ageRow->addWidget(new QLabel(tr("Older than"), page));
    ages_ = new QButtonGroup(this);
    const std::pair<int, QString> ages[] = {
        {30, tr("1 month")}, {90, tr("3 months")}, {182, tr("6 months")}, {365, tr("1 year")}};
    for (const auto& [days, text] : ages) {
        auto* button = new QRadioButton(text, page);
        button->setObjectName(QString("age%1").arg(days));
        button->setChecked(days == choices_.days);
        ages_->addButton(button, days);
        ageRow->addWidget(button);
    }
    ageRow->addStretch();
    connect(ages_, &QButtonGroup::idClicked, this, [this](int days) {
        choices_.days = days;
        refresh();
    });
    layout->addLayout(ageRow);
    auto* notForGood = wrapped(
        tr("They go to the Trash, not away for good. Undo, or Restore in your file manager, "
           "brings them back until you empty it."),
        page);
    notForGood->setEnabled(false);
    layout->addWidget(notForGood);
    return page;
}

void TidySheet::chooseArchive() {
    const auto folder = chooseFolder(
        this,
        tr("Choose where tidied screenshots go. Lumivale makes a folder per shelf inside it."),
        tr("Use This Folder"), model_.paths().archive);
    if (folder) model_.setArchive(*folder);
}

void TidySheet::refresh() {
    const bool file = mode_ == Mode::file;
    options_->setCurrentIndex(file ? 0 : 1);
    for (QAbstractButton* button : scopes_->buttons())
        button->setText(QString::fromStdString(
            tidyScopeLabel(model_, static_cast<TidyScope>(scopes_->id(button)))));
    keepPrivate_->setText(file ? tr("Leave IDs and documents where they are")
                               : tr("Leave IDs and documents alone"));
    archive_->setText(QString::fromStdString(
        ScreenshotFolder::displayName(model_.paths().archive, QDir::homePath().toStdString())));
    archive_->setToolTip(QString::fromStdString(model_.paths().archive));
    note_->setVisible(file);
    clearLayout(previewRows_);
    if (file)
        showPlan();
    else
        showOld();
    previewRows_->addStretch();
}

QLabel* TidySheet::previewLine(const QString& text, const char* name) {
    auto* label = wrapped(text, preview_);
    label->setObjectName(name);
    previewRows_->addWidget(label);
    return label;
}

void TidySheet::showPlan() {
    old_.clear();
    plan_ = fileIntoFolders(model_, choices_);
    const auto n = static_cast<int64_t>(plan_.moves.size());
    run_->setText(n == 1 ? tr("Move 1 Screenshot") : tr("Move %1 Screenshots").arg(count(n)));
    run_->setEnabled(n > 0);
    if (choices_.scope == TidyScope::loose && !anyLoose(model_)) {
        previewLine(tr("No loose screenshots: they're all filed already."), "previewSummary");
        return;
    }
    if (n == 0) {
        previewLine(tr("Everything here is already in place."), "previewSummary");
        return;
    }
    QFont bold = font();
    bold.setWeight(QFont::DemiBold);
    previewLine(tr("%1 to move").arg(count(n)), "previewSummary")->setFont(bold);
    const QPixmap arrow = Icons::symbol("arrow").pixmap(14, 14);
    const std::string& archive = model_.paths().archive;
    for (int64_t i = 0; i < std::min<int64_t>(n, previewMoves); ++i) {
        const Move& move = plan_.moves[static_cast<size_t>(i)];
        const QString from = QString::fromStdString(std::string(lastComponent(move.from)));
        const QString to = placeIn(move.to, archive);
        auto* row = new QWidget(preview_);
        row->setObjectName("previewRow");
        row->setAccessibleName(tr("%1 to %2").arg(from, to));
        auto* rowLayout = new QHBoxLayout(row);
        rowLayout->setContentsMargins(0, 0, 0, 0);
        auto* fromLabel = new QLabel(row);
        fromLabel->setText(fontMetrics().elidedText(from, Qt::ElideMiddle, 230));
        fromLabel->setToolTip(from);
        auto* arrowLabel = new QLabel(row);
        arrowLabel->setPixmap(arrow);
        auto* toLabel = new QLabel(fontMetrics().elidedText(to, Qt::ElideMiddle, 340), row);
        toLabel->setToolTip(to);
        rowLayout->addWidget(fromLabel);
        rowLayout->addWidget(arrowLabel);
        rowLayout->addWidget(toLabel, 1);
        previewRows_->addWidget(row);
    }
    if (n > previewMoves)
        previewLine(tr("and %1 more").arg(count(n - previewMoves)), "previewMore")
            ->setEnabled(false);
}

void TidySheet::showOld() {
    plan_ = {};
    old_ = clearOut(model_, choices_);
    const auto n = static_cast<int64_t>(old_.size());
    run_->setText(tr("Move %1 to Trash").arg(count(n)));
    run_->setEnabled(n > 0);
    if (n == 0) {
        previewLine(tr("Nothing that old. Nice."), "previewSummary");
        return;
    }
    QFont bold = font();
    bold.setWeight(QFont::DemiBold);
    previewLine(tr("By shelf"), "previewSummary")->setFont(bold);
    const Tally tally(old_);
    for (Shelf shelf : allShelves) {
        const int64_t onShelf = tally.count(shelf);
        if (onShelf == 0) continue;
        auto* row = new QWidget(preview_);
        row->setObjectName("previewRow");
        const QString title = qs(shelfTitle(shelf));
        row->setAccessibleName(tr("%1: %2").arg(title, count(onShelf)));
        auto* rowLayout = new QHBoxLayout(row);
        rowLayout->setContentsMargins(0, 0, 0, 0);
        auto* icon = new QLabel(row);
        icon->setPixmap(Icons::shelf(shelf).pixmap(16, 16));
        rowLayout->addWidget(icon);
        rowLayout->addWidget(new QLabel(title, row), 1);
        rowLayout->addWidget(new QLabel(count(onShelf), row));
        previewRows_->addWidget(row);
    }
}

void TidySheet::run() {
    if (mode_ == Mode::file) {
        // A copy: the run changes the library, which makes the sheet plan again.
        const TidyPlan plan = plan_;
        model_.tidy(plan);
        done(QDialog::Accepted);
        return;
    }
    std::vector<std::string> paths;
    for (const ShotPtr& shot : old_)
        paths.push_back(shot->path);
    // Declining the Trash's question leaves the sheet open with its choices.
    if (model_.trash(paths)) done(QDialog::Accepted);
}

} // namespace lumivale
