#include "ui/chartexport.h"

#include "core/galleryerror.h"
#include "ui/chartboard.h"
#include "ui/chartcommands.h"
#include "ui/projectstate.h"

#include <trv5charts/capture.h>

#include <QCoreApplication>
#include <QDir>
#include <QImage>
#include <QSaveFile>
#include <QWidget>

namespace trv5::gallery {

namespace {

void WriteText(const QString& pPath, const QString& pText) {
    QSaveFile file(pPath);
    const QByteArray bytes = pText.toUtf8();
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit()) {
        throw GalleryError(pPath,
                           QStringLiteral("cannot write the file: %1").arg(file.errorString()));
    }
}

QImage Picture(const ChartEntry& pChart) {
    // The picture has the export size; the window gets its chart back as it was.
    QWidget& widget = *pChart.widget;
    const QRect placed = widget.geometry();
    widget.resize(pChart.exportSize);
    QCoreApplication::processEvents();
    const QImage picture = CaptureControl(&widget);
    widget.setGeometry(placed);
    QCoreApplication::processEvents();
    if (picture.isNull()) {
        throw GalleryError(pChart.name, QStringLiteral("the chart gave no picture"));
    }
    return picture;
}

} // namespace

void ExportCharts(const std::vector<ChartEntry>& pCharts, const QString& pDirectory,
                  const std::function<void(const ChartEntry&)>& pReveal) {
    const QDir directory(pDirectory);
    if (!QDir().mkpath(directory.path())) {
        throw GalleryError(pDirectory, QStringLiteral("cannot create the directory"));
    }
    for (const ChartEntry& chart : pCharts) {
        if (pReveal) {
            pReveal(chart);
        }
        const QString base = directory.filePath(chart.name);
        const QString picturePath = base + QStringLiteral(".png");
        if (!Picture(chart).save(picturePath, "PNG")) {
            throw GalleryError(picturePath, QStringLiteral("cannot write the picture"));
        }
        WriteText(base + QStringLiteral(".txt"), chartcommands::DataText(chart));
        if (chart.state != nullptr) {
            WriteText(base + QStringLiteral(".xml"), projectstate::ChartState(chart));
        }
    }
}

} // namespace trv5::gallery
