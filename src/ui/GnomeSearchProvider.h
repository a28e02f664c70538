#pragma once

#include "core/SearchQuery.h"
#include "ui/DesktopSearch.h"

#include <QDBusContext>
#include <QList>
#include <QObject>
#include <QStringList>
#include <QThreadPool>
#include <QVariantMap>

namespace lumivale {

// The search provider GNOME Shell asks as the user types in the overview. Result ids are the
// shots' paths. Answers on the main thread; the thumbnails of the metas are found or made on a
// worker of its own.
class GnomeSearchProvider : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.gnome.Shell.SearchProvider2")

  public:
    GnomeSearchProvider(AppModel& model, DesktopSearch::Callbacks callbacks, QObject* parent);
    // Waits for the answer being made, if any.
    ~GnomeSearchProvider() override;

  public slots:
    // The best matches of the terms.
    QStringList GetInitialResultSet(const QStringList& terms);
    // The best matches of the refined terms (searched afresh, as the first set was cut short).
    QStringList GetSubsearchResultSet(const QStringList& previous, const QStringList& terms);
    // For each id still in the library: "id", "name", "description" and "gicon".
    QList<QVariantMap> GetResultMetas(const QStringList& ids);
    // Opens the window at the shot.
    void ActivateResult(const QString& id, const QStringList& terms, uint timestamp);
    // Opens the window searching for the terms.
    void LaunchSearch(const QStringList& terms, uint timestamp);

  private:
    AppModel& model_;
    DesktopSearch::Callbacks callbacks_;
    SearchQuery last_; // the descriptions' hit lines are those of the latest search
    QThreadPool pool_;
};

} // namespace lumivale
