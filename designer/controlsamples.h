#pragma once

#include <QIcon>
#include <QString>

class QWidget;

namespace trv5::designer {

// The widget box icon of a control, drawn for its class name ("trv5::RTChart"); a plain chart
// frame for a class without a drawing of its own.
QIcon ControlIcon(const QString& pClassName);

// Fills a control that Designer just made with sample data, so that a form shows what the
// control looks like instead of a blank box. Only data and texts the form does not keep are
// set, and only for controls that are blank without data.
void ShowSample(QWidget& pControl);

} // namespace trv5::designer
