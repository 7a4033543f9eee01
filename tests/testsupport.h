#pragma once

#include <trv5charts/capture.h>
#include <trv5charts/charterror.h>
#include <trv5charts/hostsettings.h>

#include <QAction>
#include <QContextMenuEvent>
#include <QCoreApplication>
#include <QLocale>
#include <QMenu>
#include <QString>

#include <gtest/gtest.h>

#include <ostream>
#include <utility>

// Readable QString values in assertion messages.
inline void PrintTo(const QString& pText, std::ostream* pStream) {
    *pStream << '"' << pText.toStdString() << '"';
}

namespace trv5::test {

// Switches the process-wide default locale for the lifetime of the object, so that a test can
// prove that saved state does not depend on the user's locale.
class ScopedLocale {
public:
    explicit ScopedLocale(const QLocale& pLocale) : m_previous(QLocale()) {
        QLocale::setDefault(pLocale);
    }
    ~ScopedLocale() { QLocale::setDefault(m_previous); }
    ScopedLocale(const ScopedLocale&) = delete;
    ScopedLocale& operator=(const ScopedLocale&) = delete;

private:
    QLocale m_previous;
};

// Host settings from a map, for tests that need a margin or a colour from the settings.
class MapConfig final : public IConfig {
public:
    explicit MapConfig(QVariantMap pSettings) : settings(std::move(pSettings)) {}
    QVariantMap Settings() const override { return settings; }
    QVariantMap settings;
};

// Answers the print dialog with one copy to a PDF file, or with a cancel.
class PdfDialog : public IPrintDialog {
public:
    explicit PdfDialog(QString pFile) : m_file(std::move(pFile)) {}
    bool Exec(PrintSettings& pSettings) override {
        ++shown;
        pSettings.copies = 1;
        pSettings.outputFile = m_file;
        return !cancel;
    }
    int shown = 0;
    bool cancel = false;

private:
    QString m_file;
};

// A self-drawn chart's context menu "ctxMain": its four entries, and that the keyboard's menu
// key opens it only while ShowCopyPrint is set. Returns the menu, left open; null (with a
// failure) when the chart has none.
template <class Chart> QMenu* CheckCopyPrintMenu(Chart& pChart) {
    auto* menu = pChart.template findChild<QMenu*>(QStringLiteral("ctxMain"));
    if (menu == nullptr) {
        ADD_FAILURE() << "no context menu";
        return nullptr;
    }
    QStringList captions;
    for (QAction* action : menu->actions()) {
        captions << (action->isSeparator() ? QStringLiteral("-") : action->text());
    }
    EXPECT_EQ(captions, (QStringList{"Copy Chart", "Copy Chart Data", "-", "Print"}));

    QContextMenuEvent key(QContextMenuEvent::Keyboard, QPoint(5, 5),
                          pChart.mapToGlobal(QPoint(5, 5)));
    pChart.SetShowCopyPrint(false);
    QCoreApplication::sendEvent(&pChart, &key);
    EXPECT_FALSE(menu->isVisible());
    pChart.SetShowCopyPrint(true);
    QCoreApplication::sendEvent(&pChart, &key);
    EXPECT_TRUE(menu->isVisible());
    return menu;
}

inline QLocale German() {
    return QLocale(QLocale::German, QLocale::Germany);
}
inline QLocale BritishEnglish() {
    return QLocale(QLocale::English, QLocale::UnitedKingdom);
}

} // namespace trv5::test

// Asserts that a statement throws trv5::ChartError with the given number.
#define EXPECT_CHART_ERROR(statement, expectedNumber)                                              \
    do {                                                                                           \
        try {                                                                                      \
            statement;                                                                             \
            ADD_FAILURE() << "expected ChartError " << (expectedNumber) << " from " #statement;    \
        } catch (const trv5::ChartError& chartError) {                                             \
            EXPECT_EQ(chartError.number(), (expectedNumber)) << chartError.what();                 \
        }                                                                                          \
    } while (false)
