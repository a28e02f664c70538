#include "ui/Header.h"

#include "app/AppModel.h"
#include "ui/Icons.h"

#include <QAction>
#include <QDir>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QToolButton>

namespace lumivale {

Header::Header(AppModel& model, QAction* tidy, QWidget* parent) : QWidget(parent), model_(model) {
    title_ = new QLabel(this);
    title_->setObjectName("placeTitle");
    QFont font = title_->font();
    font.setPointSizeF(font.pointSizeF() * 1.5);
    font.setWeight(QFont::Bold);
    title_->setFont(font);

    progress_ = new QLabel(this);
    progress_->setObjectName("progress");
    progress_->setEnabled(false);

    search_ = new QLineEdit(this);
    search_->setObjectName("searchField");
    search_->setAccessibleName(tr("Search"));
    search_->setPlaceholderText(tr("Search the words in your screenshots"));
    search_->setClearButtonEnabled(true);
    search_->addAction(Icons::symbol("search", "edit-find"), QLineEdit::LeadingPosition);
    search_->setMinimumWidth(320);
    // The field's own buttons (the magnifier and the clear button) are named for screen readers.
    for (QToolButton* button : search_->findChildren<QToolButton*>()) {
        const bool clears = button->defaultAction() && button->defaultAction()->objectName() == "_q_qlineeditclearaction";
        button->setAccessibleName(clears ? tr("Clear search") : tr("Search"));
    }
    connect(search_, &QLineEdit::textChanged, this, [this](const QString& text) { model_.setQuery(text.toStdString()); });
    connect(&model_, &AppModel::queryChanged, this, [this] {
        const QString query = QString::fromStdString(model_.query());
        if (search_->text() != query)
            search_->setText(query);
    });

    auto* tidyButton = new QToolButton(this);
    tidyButton->setObjectName("tidyButton");
    tidyButton->setDefaultAction(tidy);
    tidyButton->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(16, 10, 12, 10);
    layout->addWidget(title_);
    layout->addSpacing(12);
    layout->addWidget(progress_);
    layout->addStretch();
    layout->addWidget(search_);
    layout->addWidget(tidyButton);

    connect(&model_, &AppModel::placeChanged, this, &Header::showPlace);
    connect(&model_, &AppModel::sourcesChanged, this, &Header::showPlace);
    connect(&model_, &AppModel::progressChanged, this, &Header::showProgress);
    connect(&model_, &AppModel::scanningChanged, this, &Header::showProgress);
    connect(&model_, &AppModel::loadingChanged, this, &Header::showProgress);
    showPlace();
    showProgress();
}

void Header::showPlace() {
    title_->setText(QString::fromStdString(model_.place().title(QDir::homePath().toStdString())));
}

void Header::showProgress() {
    if (model_.loading())
        progress_->setText(tr("Opening your library…"));
    else if (const auto& p = model_.progress())
        progress_->setText(tr("Reading %1 of %2").arg(QLocale().toString(p->done + 1 > p->total ? p->total : p->done + 1),
                                                       QLocale().toString(p->total)));
    else if (model_.scanning())
        progress_->setText(tr("Looking for screenshots…"));
    else
        progress_->clear();
}

} // namespace lumivale
