#pragma once

#include <QString>
#include <QStringView>

namespace trv5::StringHelpers {

// Whether pText begins with pPrefix, compared case-sensitively; an empty prefix always matches.
bool StartsWith(QStringView pText, QStringView pPrefix);

// pText without any number of repetitions of pSuffix at its end ("Name::" without ":" is "Name").
// An empty suffix removes nothing.
QString RemoveTrailing(QString pText, QStringView pSuffix);

} // namespace trv5::StringHelpers
