#include "ui/GnomeSearchProvider.h"

#include "ui/DesktopResults.h"

namespace lumivale {
namespace {

QStringList toList(const std::vector<std::string>& ids) {
    QStringList list;
    for (const std::string& id : ids)
        list << QString::fromStdString(id);
    return list;
}

std::vector<std::string> fromList(const QStringList& list) {
    std::vector<std::string> ids;
    for (const QString& id : list)
        ids.push_back(id.toStdString());
    return ids;
}

// One result as the shell reads it; "gicon" is a file path or a themed icon name.
QVariantMap metaOf(const DesktopResult& result) {
    const auto thumbnail = DesktopResults::thumbnailFile(result);
    const char* icon = result.hidden ? "security-high" : "app.orvane.lumivale";
    return {{"id", QString::fromStdString(result.id)},
            {"name", QString::fromStdString(result.name)},
            {"description", QString::fromStdString(result.description)},
            {"gicon", thumbnail ? QString::fromStdString(*thumbnail) : QString(icon)}};
}

} // namespace

GnomeSearchProvider::GnomeSearchProvider(AppModel& model, DesktopSearch::Callbacks callbacks,
                                         QObject* parent)
    : QObject(parent), model_(model), callbacks_(std::move(callbacks)) {
    pool_.setMaxThreadCount(1);
}

GnomeSearchProvider::~GnomeSearchProvider() {
    pool_.waitForDone();
}

QStringList GnomeSearchProvider::GetInitialResultSet(const QStringList& terms) {
    last_ = DesktopResults::queryOf(terms);
    return toList(DesktopResults::find(model_, last_));
}

QStringList GnomeSearchProvider::GetSubsearchResultSet(const QStringList&,
                                                       const QStringList& terms) {
    return GetInitialResultSet(terms);
}

QList<QVariantMap> GnomeSearchProvider::GetResultMetas(const QStringList& ids) {
    DesktopSearch::answerLater(*this, pool_,
                               [results = DesktopResults::describe(model_, fromList(ids), last_)] {
                                   QList<QVariantMap> metas;
                                   for (const DesktopResult& result : results)
                                       metas << metaOf(result);
                                   return QVariant::fromValue(metas);
                               });
    return {};
}

void GnomeSearchProvider::ActivateResult(const QString& id, const QStringList&, uint) {
    callbacks_.showKept(model_, id.toStdString());
}

void GnomeSearchProvider::LaunchSearch(const QStringList& terms, uint) {
    if (callbacks_.search) callbacks_.search(terms.join(' ').toStdString());
}

} // namespace lumivale
