// Writes a PNG of every chart into a directory (docs/images by default), so that the pictures
// in the documentation always come from the current code.
#include "chartimages.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QTextStream>

#include <algorithm>

namespace trv5::images {

std::vector<ImageJob>& Jobs() {
    static std::vector<ImageJob> jobs;
    return jobs;
}

RegisterImage::RegisterImage(const QString& pFileName, std::function<QImage()> pRender) {
    Jobs().push_back({pFileName, std::move(pRender)});
}

} // namespace trv5::images

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription("Renders every TRV5Charts chart into PNG files.");
    parser.addHelpOption();
    const QCommandLineOption outputOption({"o", "output"}, "Directory for the PNG files.", "dir",
                                          "docs/images");
    const QCommandLineOption onlyOption("only", "Render only the named file.", "file");
    parser.addOption(outputOption);
    parser.addOption(onlyOption);
    parser.process(app);

    QTextStream out(stdout);
    QTextStream err(stderr);
    const QDir dir(parser.value(outputOption));
    if (!QDir().mkpath(dir.path())) {
        err << "cannot create the directory " << dir.path() << '\n';
        return 1;
    }
    auto jobs = trv5::images::Jobs();
    std::sort(jobs.begin(), jobs.end(),
              [](const auto& a, const auto& b) { return a.fileName < b.fileName; });
    int failures = 0;
    for (const auto& job : jobs) {
        if (parser.isSet(onlyOption) && job.fileName != parser.value(onlyOption))
            continue;
        const QImage image = job.render();
        const QString path = dir.filePath(job.fileName);
        if (image.isNull() || !image.save(path, "PNG")) {
            err << "could not render " << path << '\n';
            ++failures;
            continue;
        }
        out << path << " (" << image.width() << " x " << image.height() << ")\n";
    }
    return failures == 0 ? 0 : 1;
}
