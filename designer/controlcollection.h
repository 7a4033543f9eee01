#pragma once

#include "controlinterface.h"

#include <QObject>
#include <QtUiPlugin/QDesignerCustomWidgetCollectionInterface>

#include <memory>
#include <vector>

namespace trv5::designer {

// The plugin Designer and QUiLoader load: one interface per entry of the control table.
class ControlCollection : public QObject, public QDesignerCustomWidgetCollectionInterface {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QDesignerCustomWidgetCollectionInterface_iid)
    Q_INTERFACES(QDesignerCustomWidgetCollectionInterface)

public:
    explicit ControlCollection(QObject* pParent = nullptr);
    ~ControlCollection() override;

    QList<QDesignerCustomWidgetInterface*> customWidgets() const override;

private:
    std::vector<std::unique_ptr<ControlInterface>> m_controls;
};

} // namespace trv5::designer
