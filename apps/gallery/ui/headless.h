#pragma once

#include <QString>

namespace trv5::gallery {

class GalleryWindow;

// The gallery without a user: both run the model on the window's data with the default settings
// (seed 1), wait for the run to finish and return 0, or print what went wrong on stderr and
// return 1.
namespace headless {

// The project file written beside the charts.
inline constexpr const char* kProjectFileName = "gallery.trv5gallery";

// Every chart's picture, data text and saved state into pDirectory, plus the project file; the
// run goes flat out (pace 0).
int ExportAll(GalleryWindow& pWindow, const QString& pDirectory);
// A picture of the whole window after the run, showing the page numbered pPage (0-based).
int Screenshot(GalleryWindow& pWindow, const QString& pFile, int pPage);

} // namespace headless

} // namespace trv5::gallery
