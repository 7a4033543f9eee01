// The gallery: every chart of TRV5Charts on a real modelling run. Interactive by default;
// --output DIR writes every chart's picture, data and state without a user, --screenshot FILE a
// picture of the window after a run.
#include "core/galleryerror.h"
#include "ui/gallerysettings.h"
#include "ui/gallerywindow.h"
#include "ui/headless.h"

#include <trv5charts/hostsettings.h>

#include <QApplication>
#include <QCommandLineParser>
#include <QTextStream>

#include <cstring>
#include <memory>

namespace {

bool HasDisplay() {
    return !qEnvironmentVariableIsEmpty("DISPLAY") ||
           !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

// Modes that need no screen: writing files, and the help text.
bool WantsBatchMode(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        for (const char* option : {"--output", "--screenshot", "--help", "-h", "-?"}) {
            if (std::strncmp(argv[i], option, std::strlen(option)) == 0) {
                return true;
            }
        }
    }
    return false;
}

} // namespace

int main(int argc, char** argv) {
    const bool batch = WantsBatchMode(argc, argv);
    // The platform must be chosen before the application object exists.
    if (batch && !HasDisplay() && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    if (!batch && !HasDisplay() && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        QTextStream(stderr) << "trv5_gallery: no display; run with --output DIR to write the "
                               "charts into a directory instead\n";
        return 2;
    }
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("trv5_gallery"));
    QApplication::setApplicationDisplayName(QStringLiteral("TRV5Charts Gallery"));

    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Shows every TRV5Charts chart on a classifier trained on a real data set."));
    parser.addHelpOption();
    const QCommandLineOption outputOption(
        QStringLiteral("output"),
        QStringLiteral("Run without a user and write every chart's PNG, data and state into DIR."),
        QStringLiteral("DIR"));
    const QCommandLineOption screenshotOption(
        QStringLiteral("screenshot"),
        QStringLiteral("Run, then save a picture of the window into FILE and exit."),
        QStringLiteral("FILE"));
    const QCommandLineOption pageOption(QStringLiteral("page"),
                                        QStringLiteral("The page shown in the screenshot (0-2)."),
                                        QStringLiteral("N"), QStringLiteral("0"));
    parser.addOption(outputOption);
    parser.addOption(screenshotOption);
    const QCommandLineOption settingsOption(
        QStringLiteral("settings"),
        QStringLiteral("Read the charts' display settings from the INI file FILE instead of the "
                       "built-in defaults."),
        QStringLiteral("FILE"));
    parser.addOption(pageOption);
    parser.addOption(settingsOption);
    parser.process(app);

    try {
        trv5::Globals::StoreConfig(trv5::gallery::settings::Load(parser.value(settingsOption)));
    } catch (const trv5::gallery::GalleryError& error) {
        QTextStream(stderr) << "trv5_gallery: " << error.Text() << '\n';
        return 2;
    }
    trv5::gallery::GalleryWindow window;
    if (parser.isSet(outputOption)) {
        return trv5::gallery::headless::ExportAll(window, parser.value(outputOption));
    }
    if (parser.isSet(screenshotOption)) {
        return trv5::gallery::headless::Screenshot(window, parser.value(screenshotOption),
                                                   parser.value(pageOption).toInt());
    }
    window.show();
    return QApplication::exec();
}
