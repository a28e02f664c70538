#pragma once

#include <QImage>

namespace lumivale {

// The thumbnail of a private picture as it may be shown: the same size, blurred so strongly that
// no text on it can be read, its colours and layout still recognisable.
QImage blurredThumbnail(const QImage& thumbnail);

} // namespace lumivale
