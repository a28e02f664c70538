#pragma once

#include "platform/PasswordPrompt.h"

#include <QDialog>
#include <QWidget>
#include <array>

namespace lumivale {

// A field for a password that keeps what is typed in a fixed buffer of its own, wiped when it
// is taken or the field goes, and shows only dots. Backspace and Ctrl+U edit; Enter accepts.
class PasswordField : public QWidget {
    Q_OBJECT

  public:
    explicit PasswordField(QWidget* parent = nullptr);
    ~PasswordField() override;

    // The typed password; the field is empty afterwards.
    SecretText take();
    // The number of characters typed.
    int length() const;

  signals:
    void returnPressed();

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    QSize sizeHint() const override;

  private:
    std::array<char, 1024> typed_{};
    size_t size_ = 0;

    void wipe();
};

// The dialog that asks for the account password, saying what it is for.
class PasswordDialog : public QDialog {
    Q_OBJECT

  public:
    PasswordDialog(const QString& reason, QWidget* parent = nullptr);
    PasswordField* field() const { return field_; }

  private:
    PasswordField* field_;
};

// Asks for the account password in a PasswordDialog over the active window; nothing when
// cancelled.
PasswordPrompt passwordDialogPrompt();

} // namespace lumivale
