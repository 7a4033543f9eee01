#include <trv5charts/stringhelpers.h>

namespace trv5::StringHelpers {

bool StartsWith(QStringView pText, QStringView pPrefix) {
    return pText.startsWith(pPrefix, Qt::CaseSensitive);
}

QString RemoveTrailing(QString pText, QStringView pSuffix) {
    if (pSuffix.isEmpty()) {
        return pText;
    }
    // Find where the run of suffixes starts, then cut once.
    QStringView remaining(pText);
    while (remaining.endsWith(pSuffix, Qt::CaseSensitive)) {
        remaining.chop(pSuffix.size());
    }
    pText.truncate(remaining.size());
    return pText;
}

} // namespace trv5::StringHelpers
