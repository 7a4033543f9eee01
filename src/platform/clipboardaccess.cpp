#include "platform/clipboardaccess.h"

#include <QClipboard>
#include <QGuiApplication>

namespace trv5::platform {

namespace {

// Without a GUI application there is no clipboard; the commands then do nothing rather than
// dereference a null pointer.
QClipboard* Clipboard() {
    return qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr
               ? QGuiApplication::clipboard()
               : nullptr;
}

} // namespace

void ClipboardAccess::Clear() {
    if (QClipboard* clipboard = Clipboard()) {
        clipboard->clear(QClipboard::Clipboard);
    }
}

void ClipboardAccess::SetImage(const QImage& pImage) {
    if (QClipboard* clipboard = Clipboard()) {
        clipboard->setImage(pImage, QClipboard::Clipboard);
    }
}

void ClipboardAccess::SetText(const QString& pText) {
    if (QClipboard* clipboard = Clipboard()) {
        clipboard->setText(pText, QClipboard::Clipboard);
    }
}

QImage ClipboardAccess::Image() {
    QClipboard* clipboard = Clipboard();
    return clipboard != nullptr ? clipboard->image(QClipboard::Clipboard) : QImage();
}

QString ClipboardAccess::Text() {
    QClipboard* clipboard = Clipboard();
    return clipboard != nullptr ? clipboard->text(QClipboard::Clipboard) : QString();
}

} // namespace trv5::platform
