#pragma once

#include "app/AppModel.h"
#include "core/Status.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <QThreadPool>
#include <QVariant>
#include <functional>
#include <string>

namespace lumivale::DesktopSearch {

// Where the desktop finds the providers on the application's bus name.
inline constexpr char gnomeShellPath[] = "/app/orvane/lumivale/SearchProvider";
inline constexpr char krunnerPath[] = "/app/orvane/lumivale/KRunner";

// What the desktop asks of the application's owner.
struct Callbacks {
    std::function<void(const std::string& path)> show;    // open the window at this shot
    std::function<void(const std::string& query)> search; // open the window searching for this

    // Shows the shot at this path if it is still in the library (a result may outlive its shot,
    // which may have been locked away since).
    void showKept(const AppModel& model, const std::string& path) const;
};

// Puts the GNOME Shell search provider and the KRunner runner on the connection, answering from
// the model, whose children they become; on failure neither stays, and the reason is given.
Status registerOn(QDBusConnection& connection, AppModel& model, Callbacks callbacks);

// Defers the reply to the D-Bus call being handled: `answer` runs on the pool and its value is
// sent as the reply, so slow work (thumbnails) never holds up the main thread.
void answerLater(const QDBusContext& call, QThreadPool& pool, std::function<QVariant()> answer);

} // namespace lumivale::DesktopSearch
