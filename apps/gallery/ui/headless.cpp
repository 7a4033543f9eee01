#include "ui/headless.h"

#include "core/galleryerror.h"
#include "ui/chartboard.h"
#include "ui/chartexport.h"
#include "ui/controlpanel.h"
#include "ui/gallerywindow.h"
#include "ui/runsession.h"

#include <QApplication>
#include <QDir>
#include <QEventLoop>
#include <QTabWidget>
#include <QTextStream>

#include <exception>

namespace trv5::gallery::headless {

namespace {

void Report(const QString& pMessage) {
    QTextStream(stderr) << "trv5_gallery: " << pMessage << '\n';
}

// Runs the model with the window's settings (flat out when pFlatOut) and waits for the charts
// to be filled. Returns an error message, empty on success.
QString RunToEnd(GalleryWindow& pWindow, bool pFlatOut) {
    QString failure;
    pWindow.SetErrorSink([&failure](const QString& pTitle, const QString& pMessage) {
        failure = pTitle + QStringLiteral(": ") + pMessage;
    });
    if (pFlatOut) {
        RunSettings settings = pWindow.Panel().Settings();
        settings.PaceMilliseconds = 0;
        pWindow.Panel().SetSettings(settings);
    }

    QEventLoop loop;
    QObject::connect(&pWindow.Session(), &RunSession::finished, &loop, &QEventLoop::quit);
    QObject::connect(&pWindow.Session(), &RunSession::failed, &loop, [&](const QString& pMessage) {
        failure = pMessage;
        loop.quit();
    });
    try {
        pWindow.StartRun();
    } catch (const GalleryError& error) {
        return error.Text();
    }
    loop.exec();
    // The window's own handler of the finished signal runs before the loop ends; let anything
    // it queued (layouts, replots) happen before the pictures are taken.
    QApplication::processEvents();
    return failure;
}

} // namespace

int ExportAll(GalleryWindow& pWindow, const QString& pDirectory) {
    pWindow.show();
    if (const QString failure = RunToEnd(pWindow, true); !failure.isEmpty()) {
        Report(failure);
        return 1;
    }
    try {
        ExportCharts(pWindow.Board().Entries(), pDirectory,
                     [&pWindow](const ChartEntry& pChart) { pWindow.RevealChart(pChart.name); });
        pWindow.SaveProject(QDir(pDirectory).filePath(QString::fromLatin1(kProjectFileName)));
    } catch (const GalleryError& error) {
        Report(error.Text());
        return 1;
    } catch (const std::exception& error) {
        Report(QString::fromLocal8Bit(error.what()));
        return 1;
    }
    QTextStream(stdout) << "Wrote the charts of the gallery to " << QDir(pDirectory).absolutePath()
                        << '\n';
    return 0;
}

int Screenshot(GalleryWindow& pWindow, const QString& pFile, int pPage) {
    pWindow.show();
    // At the usual pace, so the window shows the settings a user starts with.
    if (const QString failure = RunToEnd(pWindow, false); !failure.isEmpty()) {
        Report(failure);
        return 1;
    }
    if (auto* pages = pWindow.findChild<QTabWidget*>(QStringLiteral("tabCharts"))) {
        pages->setCurrentIndex(pPage);
    }
    QApplication::processEvents();
    if (!pWindow.grab().save(pFile, "PNG")) {
        Report(QStringLiteral("cannot write %1").arg(pFile));
        return 1;
    }
    return 0;
}

} // namespace trv5::gallery::headless
