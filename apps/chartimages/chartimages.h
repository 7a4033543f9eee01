#pragma once

#include <QImage>
#include <QString>

#include <functional>
#include <vector>

namespace trv5::images {

// One picture of the gallery: a file name (without directory) and a function that builds the
// chart, feeds it its data and returns what the chart shows on screen.
struct ImageJob {
    QString fileName;
    std::function<QImage()> render;
};

std::vector<ImageJob>& Jobs();

// A file-scope instance registers a picture before main runs:
//   static const RegisterImage reg("barchart.png", [] { ...; return chart.grab().toImage(); });
struct RegisterImage {
    RegisterImage(const QString& pFileName, std::function<QImage()> pRender);
};

} // namespace trv5::images
