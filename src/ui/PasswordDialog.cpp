#include "ui/PasswordDialog.h"

#include "ui/Icons.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QStyleOptionFrame>
#include <QVBoxLayout>
#include <openssl/crypto.h>

namespace lumivale {

PasswordField::PasswordField(QWidget* parent) : QWidget(parent) {
    setObjectName("passwordField");
    setAccessibleName(tr("Password"));
    setFocusPolicy(Qt::StrongFocus);
    // Typed straight into our buffer: no input method keeps a copy of its own.
    setAttribute(Qt::WA_InputMethodEnabled, false);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

PasswordField::~PasswordField() {
    wipe();
}

void PasswordField::wipe() {
    OPENSSL_cleanse(typed_.data(), typed_.size());
    size_ = 0;
}

SecretText PasswordField::take() {
    SecretText secret(std::string_view(typed_.data(), size_));
    wipe();
    update();
    return secret;
}

int PasswordField::length() const {
    // Characters, not bytes: continuation bytes of UTF-8 do not count.
    return static_cast<int>(
        std::count_if(typed_.begin(), typed_.begin() + static_cast<long>(size_),
                      [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

void PasswordField::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        emit returnPressed();
        return;
    }
    if (event->key() == Qt::Key_Backspace) {
        while (size_ > 0 && (static_cast<unsigned char>(typed_[--size_]) & 0xC0) == 0x80)
            typed_[size_] = 0;
        typed_[size_] = 0;
    } else if (event->matches(QKeySequence::DeleteStartOfWord) ||
               (event->key() == Qt::Key_U && event->modifiers() == Qt::ControlModifier)) {
        wipe();
    } else if (!event->text().isEmpty() && event->text().front().isPrint()) {
        QByteArray bytes = event->text().toUtf8();
        if (size_ + static_cast<size_t>(bytes.size()) <= typed_.size()) {
            std::copy(bytes.begin(), bytes.end(), typed_.begin() + static_cast<long>(size_));
            size_ += static_cast<size_t>(bytes.size());
        }
        OPENSSL_cleanse(bytes.data(), static_cast<size_t>(bytes.size()));
    } else {
        QWidget::keyPressEvent(event);
        return;
    }
    update();
}

QSize PasswordField::sizeHint() const {
    return {280, fontMetrics().height() + 14};
}

void PasswordField::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    QStyleOptionFrame frame;
    frame.initFrom(this);
    frame.lineWidth = style()->pixelMetric(QStyle::PM_DefaultFrameWidth, &frame, this);
    frame.state |= QStyle::State_Sunken;
    style()->drawPrimitive(QStyle::PE_PanelLineEdit, &frame, &painter, this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(palette().color(QPalette::Text));
    const int dot = 7, gap = 5, n = length();
    const int y = height() / 2 - dot / 2;
    for (int i = 0, x = 10; i < n && x + dot < width() - 8; ++i, x += dot + gap)
        painter.drawEllipse(x, y, dot, dot);
}

PasswordDialog::PasswordDialog(const QString& reason, QWidget* parent) : QDialog(parent) {
    setObjectName("passwordDialog");
    setWindowTitle(tr("Authenticate"));
    auto* layout = new QVBoxLayout(this);
    auto* top = new QHBoxLayout;
    auto* icon = new QLabel(this);
    icon->setPixmap(Icons::symbol("locked").pixmap(40, 40));
    top->addWidget(icon, 0, Qt::AlignTop);
    auto* text = new QLabel(tr("Lumivale needs your account password to %1.").arg(reason), this);
    text->setObjectName("passwordReason");
    text->setWordWrap(true);
    top->addWidget(text, 1);
    layout->addLayout(top);
    field_ = new PasswordField(this);
    layout->addWidget(field_);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
    QPushButton* ok = buttons->addButton(tr("Authenticate"), QDialogButtonBox::AcceptRole);
    ok->setObjectName("authenticateButton");
    ok->setDefault(true);
    buttons->button(QDialogButtonBox::Cancel)->setObjectName("cancelButton");
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(field_, &PasswordField::returnPressed, this, &QDialog::accept);
    layout->addWidget(buttons);
    field_->setFocus();
}

PasswordPrompt passwordDialogPrompt() {
    return [](const std::string& reason) -> std::optional<SecretText> {
        PasswordDialog dialog(QString::fromStdString(reason), QApplication::activeWindow());
        if (dialog.exec() != QDialog::Accepted) return std::nullopt;
        return dialog.field()->take();
    };
}

} // namespace lumivale
