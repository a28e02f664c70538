#include "ui/WelcomeSheet.h"

#include "app/AppModel.h"
#include "core/ScreenshotFolder.h"
#include "ui/FolderChooser.h"
#include "ui/Icons.h"

#include <QCheckBox>
#include <QDir>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace lumivale {
namespace {

QLabel* wrapped(const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setWordWrap(true);
    return label;
}

} // namespace

WelcomeSheet::WelcomeSheet(AppModel& model, QWidget* parent) : QDialog(parent), model_(model) {
    setObjectName("welcomeSheet");
    setWindowTitle(tr("Welcome to Lumivale"));
    setMinimumWidth(560);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(28, 24, 28, 20);
    layout->setSpacing(12);

    auto* top = new QHBoxLayout;
    auto* icon = new QLabel(this);
    icon->setPixmap(Icons::app().pixmap(64, 64));
    icon->setFixedSize(64, 64);
    top->addWidget(icon);
    auto* title = new QLabel(tr("Welcome to Lumivale"), this);
    QFont big = title->font();
    big.setPointSizeF(big.pointSizeF() * 1.6);
    big.setWeight(QFont::Bold);
    title->setFont(big);
    top->addWidget(title, 1);
    layout->addLayout(top);

    layout->addWidget(wrapped(
        tr("Lumivale keeps your screenshots in order. It reads the words in each one and puts it "
           "on a shelf: IDs and documents, bills and receipts, tickets, chats, code, shopping "
           "and maps."),
        this));
    layout->addWidget(wrapped(
        tr("Find any screenshot by the words inside it, file them into folders with Undo for "
           "everything, and lock private ones away."),
        this));
    auto* local = wrapped(
        tr("<b>Nothing leaves this computer.</b> Reading, sorting and encryption all happen here."),
        this);
    local->setObjectName("welcomePrivacy");
    layout->addWidget(local);

    auto* heading = new QLabel(tr("Screenshots are read from"), this);
    QFont bold = heading->font();
    bold.setWeight(QFont::DemiBold);
    heading->setFont(bold);
    layout->addWidget(heading);
    folders_ = wrapped(QString(), this);
    folders_->setObjectName("welcomeFolders");
    folders_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    layout->addWidget(folders_);
    auto* add = new QPushButton(Icons::symbol("add", "list-add"), tr("Add Another Folder…"), this);
    add->setObjectName("addFolderButton");
    add->setAutoDefault(false);
    connect(add, &QPushButton::clicked, this, [this] {
        if (const auto folder =
                chooseFolder(this, tr("Choose a folder of pictures for Lumivale to read."),
                             tr("Add Folder"), QDir::homePath().toStdString()))
            model_.addFolder(*folder);
    });
    layout->addWidget(add, 0, Qt::AlignLeft);

    blur_ = new QCheckBox(tr("Blur private screenshots (cards, IDs, documents)"), this);
    blur_->setObjectName("blurPrivateBox");
    connect(blur_, &QCheckBox::toggled, &model_, &AppModel::setBlurPrivate);
    layout->addWidget(blur_);

    layout->addSpacing(8);
    auto* start = new QPushButton(tr("Start"), this);
    start->setObjectName("startButton");
    start->setDefault(true);
    start->setMinimumWidth(120);
    connect(start, &QPushButton::clicked, this, &QDialog::accept);
    layout->addWidget(start, 0, Qt::AlignRight);

    // Closing the welcome counts as finishing it: the window would be of no use without a scan.
    connect(this, &QDialog::finished, &model_, [this] { model_.finishWelcome(); });
    connect(&model_, &AppModel::sourcesChanged, this, &WelcomeSheet::refresh);
    connect(&model_, &AppModel::settingsChanged, this, &WelcomeSheet::refresh);
    refresh();
}

void WelcomeSheet::refresh() {
    const std::string home = QDir::homePath().toStdString();
    QStringList lines;
    for (const Source& source : model_.sources()) {
        if (source.kind == Source::Kind::archive) continue;
        const QString name =
            QString::fromStdString(ScreenshotFolder::displayName(source.path, home))
                .toHtmlEscaped();
        lines << (source.kind == Source::Kind::screenshots
                      ? tr("%1 <i>(where your screenshots are saved)</i>").arg(name)
                      : name);
    }
    folders_->setText(lines.join("<br>"));
    blur_->setChecked(model_.blurPrivate());
}

} // namespace lumivale
