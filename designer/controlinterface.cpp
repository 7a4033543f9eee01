#include "controlinterface.h"

#include "controlsamples.h"

#include <QIcon>
#include <QWidget>

namespace trv5::designer {

QString ControlInterface::name() const {
    return QString::fromLatin1(m_info.className);
}

QString ControlInterface::group() const {
    return QString::fromUtf8(m_info.group);
}

QString ControlInterface::toolTip() const {
    return QString::fromUtf8(m_info.toolTip);
}

QString ControlInterface::whatsThis() const {
    return toolTip();
}

QString ControlInterface::includeFile() const {
    // The angle brackets make uic write a global include.
    return QLatin1Char('<') + QString::fromLatin1(m_info.header) + QLatin1Char('>');
}

QIcon ControlInterface::icon() const {
    return ControlIcon(name());
}

QWidget* ControlInterface::createWidget(QWidget* pParent) {
    QWidget* control = m_info.create(pParent);
    if (m_core != nullptr && control != nullptr) {
        ShowSample(*control);
    }
    return control;
}

void ControlInterface::initialize(QDesignerFormEditorInterface* pCore) {
    m_core = pCore;
    m_initialized = true;
}

QString ControlInterface::domXml() const {
    const QString className = name();
    const QString objectName = DefaultObjectName(className.mid(className.lastIndexOf(u':') + 1));
    return QStringLiteral("<ui language=\"c++\">\n"
                          " <widget class=\"%1\" name=\"%2\">\n"
                          "  <property name=\"geometry\">\n"
                          "   <rect><x>0</x><y>0</y><width>400</width><height>250</height></rect>\n"
                          "  </property>\n"
                          " </widget>\n"
                          "</ui>\n")
        .arg(className, objectName);
}

QString ControlInterface::DefaultObjectName(const QString& pClassName) {
    // Lower the leading capitals, except the one that starts the next word ("ROCChart" gives
    // "rocChart", "BarChart" gives "barChart").
    qsizetype capitals = 0;
    while (capitals < pClassName.size() && pClassName[capitals].isUpper()) {
        ++capitals;
    }
    if (capitals > 1 && capitals < pClassName.size()) {
        --capitals;
    }
    return pClassName.left(capitals).toLower() + pClassName.mid(capitals);
}

} // namespace trv5::designer
