#pragma once

#include <QString>
#include <optional>
#include <string>

class QWidget;

namespace lumivale {

// Asks for a folder in a folder chooser that says `message` and whose button reads `accept`,
// starting at `start`; nothing when the user cancels.
std::optional<std::string> chooseFolder(QWidget* parent, const QString& message,
                                        const QString& accept, const std::string& start);

} // namespace lumivale
