#include "ui/PlasmaRunner.h"

#include "app/ThumbnailMaker.h"
#include "ui/DesktopResults.h"

#include <QDBusMetaType>
#include <QImage>

namespace lumivale {
namespace {

// KRunner's kinds of match; a shot found by its words is worth showing among the others.
constexpr int informationalMatch = 50;
// Big enough for a list row at twice the pixel density.
constexpr int iconSide = 96;

RunnerImage imageOf(const QImage& picture) {
    const QImage rgba = picture.convertToFormat(QImage::Format_RGBA8888);
    return {rgba.width(),
            rgba.height(),
            static_cast<int>(rgba.bytesPerLine()),
            true,
            8,
            4,
            QByteArray(reinterpret_cast<const char*>(rgba.constBits()), rgba.sizeInBytes())};
}

RunnerMatch matchOf(const DesktopResult& result, double relevance) {
    RunnerMatch match{
        QString::fromStdString(result.id),
        QString::fromStdString(result.name),
        result.hidden ? "security-high" : "app.orvane.lumivale",
        informationalMatch,
        relevance,
        {{"subtext", QString::fromStdString(result.description)}, {"actions", QStringList()}}};
    if (const auto file = DesktopResults::thumbnailFile(result))
        if (const QImage icon = makeThumbnail(*file, iconSide); !icon.isNull())
            match.properties.insert("icon-data", QVariant::fromValue(imageOf(icon)));
    return match;
}

} // namespace

QDBusArgument& operator<<(QDBusArgument& out, const RunnerMatch& m) {
    out.beginStructure();
    out << m.id << m.text << m.icon << m.type << m.relevance << m.properties;
    out.endStructure();
    return out;
}

const QDBusArgument& operator>>(const QDBusArgument& in, RunnerMatch& m) {
    in.beginStructure();
    in >> m.id >> m.text >> m.icon >> m.type >> m.relevance >> m.properties;
    in.endStructure();
    return in;
}

QDBusArgument& operator<<(QDBusArgument& out, const RunnerAction& a) {
    out.beginStructure();
    out << a.id << a.text << a.icon;
    out.endStructure();
    return out;
}

const QDBusArgument& operator>>(const QDBusArgument& in, RunnerAction& a) {
    in.beginStructure();
    in >> a.id >> a.text >> a.icon;
    in.endStructure();
    return in;
}

QDBusArgument& operator<<(QDBusArgument& out, const RunnerImage& i) {
    out.beginStructure();
    out << i.width << i.height << i.stride << i.alpha << i.bits << i.channels << i.data;
    out.endStructure();
    return out;
}

const QDBusArgument& operator>>(const QDBusArgument& in, RunnerImage& i) {
    in.beginStructure();
    in >> i.width >> i.height >> i.stride >> i.alpha >> i.bits >> i.channels >> i.data;
    in.endStructure();
    return in;
}

PlasmaRunner::PlasmaRunner(AppModel& model, DesktopSearch::Callbacks callbacks, QObject* parent)
    : QObject(parent), model_(model), callbacks_(std::move(callbacks)) {
    pool_.setMaxThreadCount(1);
}

PlasmaRunner::~PlasmaRunner() {
    pool_.waitForDone();
}

void PlasmaRunner::registerTypes() {
    qDBusRegisterMetaType<RunnerMatch>();
    qDBusRegisterMetaType<QList<RunnerMatch>>();
    qDBusRegisterMetaType<RunnerAction>();
    qDBusRegisterMetaType<QList<RunnerAction>>();
    qDBusRegisterMetaType<RunnerImage>();
}

QList<RunnerAction> PlasmaRunner::Actions() {
    return {};
}

QList<RunnerMatch> PlasmaRunner::Match(const QString& query) {
    const SearchQuery parsed(query.toStdString());
    auto results = DesktopResults::describe(model_, DesktopResults::find(model_, parsed), parsed);
    DesktopSearch::answerLater(*this, pool_, [results = std::move(results)] {
        QList<RunnerMatch> matches;
        // Relevance falls from 1 to 0.5 down the ranking, so the order survives among other
        // runners.
        for (size_t i = 0; i < results.size(); ++i)
            matches << matchOf(results[i], 1.0 - 0.5 * static_cast<double>(i) /
                                                     static_cast<double>(results.size()));
        return QVariant::fromValue(matches);
    });
    return {};
}

void PlasmaRunner::Run(const QString& id, const QString&) {
    callbacks_.showKept(model_, id.toStdString());
}

} // namespace lumivale
