#pragma once

#include <QImage>
#include <QString>

namespace trv5::platform {

// The application clipboard. Everything the charts put on the clipboard goes through here, so
// that the choice of clipboard mode (the global clipboard, not the X11 selection) is made once.
class ClipboardAccess {
public:
    static void Clear();
    // Replaces the clipboard's content with the picture in the platform's default image format.
    static void SetImage(const QImage& pImage);
    // Replaces the clipboard's content with plain text.
    static void SetText(const QString& pText);

    // What the clipboard holds now; a null image or an empty text when it holds no such data.
    static QImage Image();
    static QString Text();
};

} // namespace trv5::platform
