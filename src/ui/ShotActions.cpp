#include "ui/ShotActions.h"

#include "app/AppModel.h"
#include "ui/Desktop.h"
#include "ui/Icons.h"

namespace lumivale {
namespace {

QAction* make(QObject* parent, const QString& name, const QString& text, const QIcon& icon, const QKeySequence& keys) {
    auto* action = new QAction(icon, text, parent);
    action->setObjectName(name);
    action->setShortcut(keys);
    action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    return action;
}

} // namespace

ShotActions::ShotActions(AppModel& model, Targets targets, QObject* parent)
    : QObject(parent), model_(model), targets_(std::move(targets)) {
    open = make(this, "openAction", tr("Open"), Icons::symbol("open", "document-open"), QKeySequence(Qt::CTRL | Qt::Key_O));
    showInFolder = make(this, "showInFolderAction", tr("Show in Folder"), Icons::symbol("folder", "folder-open"),
                        QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_O));
    copyText = make(this, "copyTextAction", tr("Copy Text"), Icons::symbol("copy", "edit-copy"), QKeySequence::Copy);
    copyPicture = make(this, "copyPictureAction", tr("Copy Picture"), Icons::symbol("copy", "edit-copy"),
                       QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_C));
    lockAway = make(this, "lockAwayAction", tr("Lock Away…"), Icons::symbol("locked"), QKeySequence(Qt::CTRL | Qt::Key_L));
    moveToTrash = make(this, "moveToTrashAction", tr("Move to Trash"), Icons::symbol("trash", "user-trash"),
                       QKeySequence::Delete);

    shelfMenu_ = std::make_unique<QMenu>(tr("Move to Shelf"));
    moveToShelf = shelfMenu_.get();
    moveToShelf->menuAction()->setObjectName("moveToShelfMenu");
    const auto shelve = [this](std::optional<Shelf> shelf) {
        for (const std::string& path : targets_())
            model_.setShelf(path, shelf);
    };
    QAction* automatic = moveToShelf->addAction(tr("Automatic"), this, [shelve] { shelve(std::nullopt); });
    automatic->setObjectName("shelfAction-auto");
    moveToShelf->addSeparator();
    for (Shelf s : allShelves) {
        QAction* a = moveToShelf->addAction(Icons::shelf(s), QString::fromUtf8(shelfTitle(s).data()), this,
                                            [shelve, s] { shelve(s); });
        a->setObjectName("shelfAction-" + QString::fromUtf8(shelfId(s).data()));
    }

    const auto first = [this]() -> const Shot* {
        const auto paths = targets_();
        return paths.empty() ? nullptr : model_.library().find(paths.front());
    };
    connect(open, &QAction::triggered, this, [first] {
        if (const Shot* s = first())
            Desktop::openFile(s->path);
    });
    connect(showInFolder, &QAction::triggered, this, [first] {
        if (const Shot* s = first())
            Desktop::showInFolder(s->path);
    });
    connect(copyText, &QAction::triggered, this, [this, first] {
        if (const Shot* s = first())
            model_.copyText(*s);
    });
    connect(copyPicture, &QAction::triggered, this, [this, first] {
        if (const Shot* s = first())
            model_.copyImage(*s);
    });
    connect(lockAway, &QAction::triggered, this, [this] {
        if (auto paths = targets_(); !paths.empty())
            model_.lock(paths);
    });
    connect(moveToTrash, &QAction::triggered, this, [this] {
        if (auto paths = targets_(); !paths.empty())
            model_.trash(paths);
    });
    update();
}

QList<QAction*> ShotActions::all() const {
    return {open, showInFolder, copyText, copyPicture, moveToShelf->menuAction(), lockAway, moveToTrash};
}

void ShotActions::fill(QMenu& menu) const {
    menu.addActions({open, showInFolder});
    menu.addSeparator();
    menu.addActions({copyText, copyPicture});
    menu.addSeparator();
    menu.addMenu(moveToShelf);
    menu.addActions({lockAway, moveToTrash});
}

void ShotActions::update() {
    const auto paths = targets_();
    const Shot* shot = paths.empty() ? nullptr : model_.library().find(paths.front());
    const bool one = shot != nullptr;
    for (QAction* a : {open, showInFolder, copyPicture, lockAway, moveToTrash})
        a->setEnabled(one);
    moveToShelf->setEnabled(one);
    // The words of a hidden shot stay hidden, on the clipboard too.
    copyText->setEnabled(one && shot->isRead() && !model_.isHidden(*shot));
}

} // namespace lumivale
