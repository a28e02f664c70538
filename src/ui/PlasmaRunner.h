#pragma once

#include "ui/DesktopSearch.h"

#include <QByteArray>
#include <QDBusArgument>
#include <QDBusContext>
#include <QList>
#include <QObject>
#include <QString>
#include <QThreadPool>
#include <QVariantMap>

namespace lumivale {

// One match as KRunner reads it: id, text, icon name, type, relevance (0 to 1), properties.
struct RunnerMatch {
    QString id, text, icon;
    int type = 0;
    double relevance = 0;
    QVariantMap properties;
};
// An action KRunner may offer on a match: id, text, icon name.
struct RunnerAction {
    QString id, text, icon;
};
// Pixels as the desktop's D-Bus interfaces carry them: width, height, row stride, alpha, bits per
// sample, channels, data.
struct RunnerImage {
    int width = 0, height = 0, stride = 0;
    bool alpha = true;
    int bits = 8, channels = 4;
    QByteArray data;
};

// The types above as D-Bus structures, in the order of their fields.
QDBusArgument& operator<<(QDBusArgument& out, const RunnerMatch& match);
const QDBusArgument& operator>>(const QDBusArgument& in, RunnerMatch& match);
QDBusArgument& operator<<(QDBusArgument& out, const RunnerAction& action);
const QDBusArgument& operator>>(const QDBusArgument& in, RunnerAction& action);
QDBusArgument& operator<<(QDBusArgument& out, const RunnerImage& image);
const QDBusArgument& operator>>(const QDBusArgument& in, RunnerImage& image);

// The runner KRunner and the Plasma launcher ask as the user types. Match ids are the shots'
// paths. Answers on the main thread; the matches' thumbnails are found or made on a worker of
// its own.
class PlasmaRunner : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.krunner1")

  public:
    PlasmaRunner(AppModel& model, DesktopSearch::Callbacks callbacks, QObject* parent);
    // Waits for the answer being made, if any.
    ~PlasmaRunner() override;
    // Makes the types above known to Qt's D-Bus; before the first registration.
    static void registerTypes();

  public slots:
    // None: a match only opens the window.
    QList<RunnerAction> Actions();
    // The best matches of the query, with "subtext", "icon-data" and no actions.
    QList<RunnerMatch> Match(const QString& query);
    // Opens the window at the shot.
    void Run(const QString& id, const QString& action);

  private:
    AppModel& model_;
    DesktopSearch::Callbacks callbacks_;
    QThreadPool pool_;
};

} // namespace lumivale

Q_DECLARE_METATYPE(lumivale::RunnerMatch)
Q_DECLARE_METATYPE(lumivale::RunnerAction)
Q_DECLARE_METATYPE(lumivale::RunnerImage)
