#pragma once

#include <QString>
#include <QStringList>

#include <memory>

namespace trv5 {
class IConfig;
}

// The gallery's host settings: an INI file read through QSettingsConfig, so that a user can
// change the charts' colours, heat map, gaps and margin without rebuilding. The defaults ship
// inside the program (data/gallery.ini, documented there and in the README).
namespace trv5::gallery::settings {

inline constexpr char kDefaultsPath[] = ":/trv5gallery/gallery.ini";

// Every key the charts read; a settings file must hold them all.
QStringList RequiredKeys();

// The settings of the INI file at pPath (the shipped defaults when empty), which then become
// the ones Current() gives. Throws GalleryError naming the file when it cannot be read or
// lacks one of the required keys.
std::shared_ptr<IConfig> Load(const QString& pPath);
// The settings last loaded, or the shipped defaults.
std::shared_ptr<IConfig> Current();

} // namespace trv5::gallery::settings
