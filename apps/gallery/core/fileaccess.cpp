#include "fileaccess.h"

#include "galleryerror.h"

#include <QFile>
#include <QSaveFile>

namespace trv5::gallery {

QByteArray ReadFileCapped(const QString& pPath, qint64 pLimit) {
    QFile file(pPath);
    if (!file.open(QIODevice::ReadOnly)) {
        throw GalleryError(pPath, QStringLiteral("cannot be opened: %1").arg(file.errorString()));
    }
    const QString tooLarge = QStringLiteral("is larger than %1 bytes").arg(pLimit);
    if (file.size() > pLimit) {
        throw GalleryError(pPath, tooLarge);
    }
    QByteArray content;
    for (;;) {
        const QByteArray chunk = file.read(qint64{1} << 20);
        if (chunk.isEmpty()) {
            break;
        }
        if (content.size() + chunk.size() > pLimit) {
            throw GalleryError(pPath, tooLarge);
        }
        content += chunk;
    }
    if (file.error() != QFileDevice::NoError) {
        throw GalleryError(pPath, QStringLiteral("cannot be read: %1").arg(file.errorString()));
    }
    return content;
}

void WriteFileAtomically(const QString& pPath, const QByteArray& pContent) {
    QSaveFile file(pPath);
    if (!file.open(QIODevice::WriteOnly) || file.write(pContent) != pContent.size() ||
        !file.commit()) {
        throw GalleryError(pPath, QStringLiteral("cannot be written: %1").arg(file.errorString()));
    }
}

} // namespace trv5::gallery
