#pragma once

// For fuzz targets that create widgets: an offscreen QApplication for the whole run, and the
// input as text.

#include <QApplication>
#include <QString>

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerInitialize(int* pArgc, char*** pArgv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static QApplication application(*pArgc, *pArgv);
    return 0;
}

inline QString FuzzText(const std::uint8_t* pData, std::size_t pSize) {
    return QString::fromUtf8(reinterpret_cast<const char*>(pData), static_cast<qsizetype>(pSize));
}
