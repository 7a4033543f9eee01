#include "controlcollection.h"

namespace trv5::designer {

ControlCollection::ControlCollection(QObject* pParent) : QObject(pParent) {
    const std::span<const ControlInfo> controls = Controls();
    m_controls.reserve(controls.size());
    for (const ControlInfo& control : controls) {
        m_controls.push_back(std::make_unique<ControlInterface>(control));
    }
}

ControlCollection::~ControlCollection() = default;

QList<QDesignerCustomWidgetInterface*> ControlCollection::customWidgets() const {
    QList<QDesignerCustomWidgetInterface*> controls;
    controls.reserve(static_cast<qsizetype>(m_controls.size()));
    for (const auto& control : m_controls) {
        controls.append(control.get());
    }
    return controls;
}

} // namespace trv5::designer
