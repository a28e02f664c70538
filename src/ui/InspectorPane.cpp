#include "ui/InspectorPane.h"

#include <QDateTime>
#include <QLabel>
#include <QLocale>
#include <QVBoxLayout>

namespace lumivale {

QString InspectorPane::when(Date date) {
    const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(date.time_since_epoch()).count();
    return QLocale().toString(QDateTime::fromMSecsSinceEpoch(ms), QLocale::LongFormat);
}

QLabel* InspectorPane::value(const QString& text) {
    auto* label = new QLabel(text);
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    return label;
}

InspectorPane::InspectorPane(const QString& name, const QString& accessibleName, const QString& nothingText,
                             QWidget* parent)
    : QScrollArea(parent) {
    setObjectName(name);
    setAccessibleName(accessibleName);
    setWidgetResizable(true);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setMinimumWidth(pictureWidth + 40);

    auto* page = new QWidget(this);
    auto* pageLayout = new QVBoxLayout(page);
    nothing_ = new QLabel(nothingText, page);
    nothing_->setWordWrap(true);
    nothing_->setAlignment(Qt::AlignCenter);
    nothing_->setEnabled(false);
    pageLayout->addWidget(nothing_);

    details_ = new QWidget(page);
    detailsLayout_ = new QVBoxLayout(details_);
    detailsLayout_->setContentsMargins(4, 4, 4, 4);
    detailsLayout_->setSpacing(8);
    picture_ = new QLabel(details_);
    picture_->setAlignment(Qt::AlignCenter);
    picture_->setMinimumHeight(120);
    picture_->setAccessibleName(tr("Picture"));
    detailsLayout_->addWidget(picture_);
    pageLayout->addWidget(details_);
    pageLayout->addStretch();
    setWidget(page);
}

} // namespace lumivale
