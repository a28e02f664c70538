#pragma once

#include <QAction>
#include <QMenu>
#include <QObject>

#include <functional>
#include <string>
#include <vector>

namespace lumivale {

class AppModel;

// The actions on screenshots that the grid's menu, the inspector and the window's menu share.
// They act on the screenshots that `targets` names (the grid's selection), and the one-shot
// actions on the first of them.
class ShotActions : public QObject {
    Q_OBJECT

public:
    using Targets = std::function<std::vector<std::string>()>;

    ShotActions(AppModel& model, Targets targets, QObject* parent = nullptr);

    QAction* open;
    QAction* showInFolder;
    QAction* copyText;
    QAction* copyPicture;
    QAction* lockAway;
    QAction* moveToTrash;
    QMenu* moveToShelf; // "Automatic" and the eight shelves

    // Every action, in menu order (the shelf menu's own action included).
    QList<QAction*> all() const;
    // A context menu with every action.
    void fill(QMenu& menu) const;
    // Enables what fits the current targets.
    void update();

private:
    AppModel& model_;
    Targets targets_;
    std::unique_ptr<QMenu> shelfMenu_;
};

} // namespace lumivale
