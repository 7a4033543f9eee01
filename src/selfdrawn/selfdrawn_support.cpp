#include "selfdrawn/selfdrawn_support.h"

#include <trv5charts/stringhelpers.h>

namespace trv5::selfdrawn {

QString DataHeader(const QString& pDataPointName) {
    qsizetype begin = 0;
    qsizetype end = pDataPointName.size();
    while (begin < end && pDataPointName.at(begin) == QLatin1Char(' ')) {
        ++begin;
    }
    while (end > begin && pDataPointName.at(end - 1) == QLatin1Char(' ')) {
        --end;
    }
    return StringHelpers::RemoveTrailing(pDataPointName.mid(begin, end - begin),
                                         QStringLiteral(":"));
}

} // namespace trv5::selfdrawn
