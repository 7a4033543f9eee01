#pragma once

#include <QByteArray>
#include <QString>

namespace trv5::gallery {

// The whole content of a file of at most pLimit bytes, read in chunks so that a file that grows
// while it is read, or a device that reports no size, still stops at the limit. Throws
// GalleryError naming the file when it cannot be opened or read or is too large.
QByteArray ReadFileCapped(const QString& pPath, qint64 pLimit);

// Replaces the file's content atomically: a failed write leaves the old file as it was. Throws
// GalleryError naming the file.
void WriteFileAtomically(const QString& pPath, const QByteArray& pContent);

} // namespace trv5::gallery
