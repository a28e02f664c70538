#pragma once

#include <string>

class QWidget;

namespace lumivale {

// Asks in a warning dialog: the question, the detail, and the button that goes ahead beside
// Cancel. Cancel is the default, since every action that asks moves files. True when the user
// chose the button.
bool confirmInDialog(QWidget* parent, const std::string& message, const std::string& detail, const std::string& button);

} // namespace lumivale
