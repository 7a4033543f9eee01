// The gallery's data and project files from outside. The first byte picks the kind: a CSV data
// set, or a project file, which must also save the same bytes it loads back from.

#include "core/dataset.h"
#include "core/galleryerror.h"
#include "core/projectfile.h"

#include <cstdint>
#include <cstdlib>

using trv5::gallery::GalleryError;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t pSize) {
    if (pSize == 0) {
        return 0;
    }
    const QByteArrayView bytes(reinterpret_cast<const char*>(pData + 1),
                               static_cast<qsizetype>(pSize - 1));
    if (pData[0] % 2 == 0) {
        try {
            const trv5::gallery::Dataset data =
                trv5::gallery::Dataset::FromText(bytes, QStringLiteral("fuzz.csv"));
            if (data.FeatureNames().isEmpty()) {
                std::abort();
            }
        } catch (const GalleryError&) {
        }
        return 0;
    }
    trv5::gallery::ProjectFile project;
    try {
        project = trv5::gallery::ProjectFile::FromBytes(bytes, QStringLiteral("fuzz.json"));
    } catch (const GalleryError&) {
        return 0;
    }
    const QByteArray saved = project.ToBytes();
    try {
        const trv5::gallery::ProjectFile again =
            trv5::gallery::ProjectFile::FromBytes(saved, QStringLiteral("saved.json"));
        if (!(again == project) || again.ToBytes() != saved) {
            std::abort();
        }
    } catch (const GalleryError&) {
        std::abort(); // what the gallery saves must load
    }
    return 0;
}
