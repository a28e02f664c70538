#include "ui/BannerBar.h"

#include "app/AppModel.h"
#include "ui/Brand.h"
#include "ui/Icons.h"

#include <QAccessible>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QToolButton>

namespace lumivale {

BannerBar::BannerBar(AppModel& model, QWidget* parent) : QFrame(parent), model_(model) {
    setObjectName("banner");
    setAccessibleName(tr("Message"));
    text_ = new QLabel(this);
    text_->setObjectName("bannerText");
    text_->setWordWrap(true);
    undo_ = new QPushButton(Icons::tinted("undo", Qt::white), tr("Undo"), this);
    undo_->setObjectName("bannerUndo");
    close_ = new QToolButton(this);
    close_->setObjectName("bannerClose");
    close_->setIcon(Icons::tinted("close", Qt::white));
    close_->setAutoRaise(true);
    close_->setAccessibleName(tr("Dismiss"));
    close_->setToolTip(tr("Dismiss"));
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(14, 6, 8, 6);
    layout->addWidget(text_, 1);
    layout->addWidget(undo_);
    layout->addWidget(close_);
    connect(undo_, &QPushButton::clicked, this, [this] {
        if (model_.banner() && model_.banner()->undo)
            model_.undo(*model_.banner()->undo);
    });
    connect(close_, &QToolButton::clicked, this, [this] { model_.dismissBanner(); });
    connect(&model_, &AppModel::bannerChanged, this, &BannerBar::refresh);
    refresh();
}

void BannerBar::refresh() {
    const auto& banner = model_.banner();
    setVisible(banner.has_value());
    if (!banner)
        return;
    text_->setText(QString::fromStdString(banner->text));
    undo_->setVisible(banner->undo.has_value());
    const QColor fill = banner->isError ? Brand::marker() : Brand::accent();
    setStyleSheet(QString("#banner { background: %1; border-radius: 6px; } #banner QLabel { color: white; }"
                          "#banner QPushButton { color: white; background: rgba(255,255,255,0.18);"
                          " border: 1px solid rgba(255,255,255,0.5); border-radius: 4px; padding: 3px 12px; }")
                      .arg(fill.name()));
    QAccessibleEvent event(text_, QAccessible::Alert);
    QAccessible::updateAccessibility(&event);
}

} // namespace lumivale
