#pragma once

#include <QtUiPlugin/QDesignerCustomWidgetInterface>

#include <span>

class QWidget;

namespace trv5::designer {

// What Designer needs to know about one control: how to name it in the widget box and in
// generated code, and how to make one.
struct ControlInfo {
    const char* className; // with its namespace, as uic writes it
    const char* header;    // include path under the installed include directory
    const char* group;     // widget box group
    const char* toolTip;
    QWidget* (*create)(QWidget* pParent);
};

template <class Control> QWidget* CreateControl(QWidget* pParent) {
    return new Control(pParent);
}

// One entry of the control table in controls.cpp: the class (in namespace trv5), its public
// header under trv5charts/, the widget box group and the tool tip.
#define TRV5_DESIGNER_CONTROL(Class, Header, Group, ToolTip)                                       \
    ::trv5::designer::ControlInfo {                                                                \
        "trv5::" #Class, "trv5charts/" Header, Group, ToolTip,                                     \
            &::trv5::designer::CreateControl<::trv5::Class>                                        \
    }

// Every control the plugin offers, in widget box order.
std::span<const ControlInfo> Controls();

// Designer's view of one control. Designer persists the control's Q_PROPERTYs itself.
class ControlInterface : public QDesignerCustomWidgetInterface {
public:
    explicit ControlInterface(const ControlInfo& pInfo) : m_info(pInfo) {}

    QString name() const override;
    QString group() const override;
    QString toolTip() const override;
    QString whatsThis() const override;
    QString includeFile() const override;
    QIcon icon() const override;
    bool isContainer() const override { return false; }
    QWidget* createWidget(QWidget* pParent) override;
    bool isInitialized() const override { return m_initialized; }
    // Designer hands in its core; controls made after that show sample data. QUiLoader never
    // initializes a plugin, so the controls of a loaded form start empty.
    void initialize(QDesignerFormEditorInterface* pCore) override;
    QString domXml() const override;

    // The object name Designer gives a new instance: "RTChart" becomes "rtChart".
    static QString DefaultObjectName(const QString& pClassName);

private:
    const ControlInfo& m_info;
    bool m_initialized = false;
    QDesignerFormEditorInterface* m_core = nullptr;
};

} // namespace trv5::designer
