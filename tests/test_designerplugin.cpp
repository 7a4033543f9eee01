// The Designer plugin as Designer and QUiLoader use it: loaded from its file, every control made
// through it, and the controls' properties kept through .ui files.

#include <trv5charts/rtchart.h>

#include <QBuffer>
#include <QColor>
#include <QFile>
#include <QFileInfo>
#include <QMetaProperty>
#include <QPluginLoader>
#include <QUiLoader>
#include <QtDesigner/QFormBuilder>
#include <QtUiPlugin/QDesignerCustomWidgetCollectionInterface>

#include <gtest/gtest.h>

#include <memory>

namespace {

QList<QDesignerCustomWidgetInterface*> PluginControls() {
    static QPluginLoader loader(QStringLiteral(TRV5_DESIGNER_PLUGIN));
    auto* collection = qobject_cast<QDesignerCustomWidgetCollectionInterface*>(loader.instance());
    EXPECT_NE(collection, nullptr) << loader.errorString().toStdString();
    return collection != nullptr ? collection->customWidgets()
                                 : QList<QDesignerCustomWidgetInterface*>();
}

std::unique_ptr<QWidget> LoadUi(const QByteArray& pUi) {
    QUiLoader loader;
    loader.clearPluginPaths();
    loader.addPluginPath(QFileInfo(QStringLiteral(TRV5_DESIGNER_PLUGIN)).absolutePath());
    QBuffer buffer;
    buffer.setData(pUi);
    buffer.open(QIODevice::ReadOnly);
    std::unique_ptr<QWidget> widget(loader.load(&buffer));
    EXPECT_NE(widget, nullptr) << loader.errorString().toStdString();
    return widget;
}

// Saves only the control itself, as Designer does for a widget that is not a container (the
// charts' internal child widgets are not part of a form).
class ControlFormBuilder : public QFormBuilder {
protected:
    using QFormBuilder::createDom;
    DomWidget* createDom(QWidget* pWidget, DomWidget* pParent, bool /*recursive*/) override {
        return QFormBuilder::createDom(pWidget, pParent, false);
    }
};

// A value other than pValue that a setter is unlikely to refuse.
QVariant OtherValue(const QMetaProperty& pProperty, const QVariant& pValue) {
    if (pProperty.isEnumType()) {
        const QMetaEnum values = pProperty.enumerator();
        for (int i = 0; i < values.keyCount(); ++i) {
            if (values.value(i) != pValue.toInt()) {
                return values.value(i);
            }
        }
        return pValue;
    }
    switch (pValue.typeId()) {
    case QMetaType::Bool:
        return !pValue.toBool();
    case QMetaType::Int:
        return pValue.toInt() == 3 ? 5 : 3;
    case QMetaType::Float:
    case QMetaType::Double:
        return pValue.toDouble() == 0.25 ? 0.5 : 0.25;
    case QMetaType::QString:
        return pValue.toString() + QStringLiteral("Run 7");
    case QMetaType::QColor:
        return pValue.value<QColor>() == QColor(200, 40, 30) ? QColor(20, 90, 160)
                                                             : QColor(200, 40, 30);
    default:
        ADD_FAILURE() << "no test value for property " << pProperty.name() << " of type "
                      << pValue.typeName();
        return pValue;
    }
}

} // namespace

TEST(DesignerPlugin, EveryControlIsMadeByThePluginAndFromItsWidgetBoxEntry) {
    const auto controls = PluginControls();
    ASSERT_FALSE(controls.isEmpty());
    QStringList names;
    for (QDesignerCustomWidgetInterface* control : controls) {
        SCOPED_TRACE(control->name().toStdString());
        names << control->name();
        const std::unique_ptr<QWidget> made(control->createWidget(nullptr));
        ASSERT_NE(made, nullptr);
        EXPECT_EQ(QString::fromLatin1(made->metaObject()->className()), control->name());

        // uic writes this include into generated code; it must name the control's real header.
        const QString include = control->includeFile();
        ASSERT_TRUE(include.startsWith(u'<') && include.endsWith(u'>')) << include.toStdString();
        EXPECT_TRUE(QFile::exists(QStringLiteral(TRV5_INCLUDE_DIR "/") +
                                  include.mid(1, include.size() - 2)))
            << include.toStdString();

        // What Designer drops on a form when the control is dragged from the widget box.
        const std::unique_ptr<QWidget> dropped = LoadUi(control->domXml().toUtf8());
        ASSERT_NE(dropped, nullptr);
        EXPECT_EQ(QString::fromLatin1(dropped->metaObject()->className()), control->name());
        EXPECT_FALSE(dropped->objectName().isEmpty());
    }
    EXPECT_TRUE(names.contains(QStringLiteral("trv5::RTChart")));
    EXPECT_TRUE(names.contains(QStringLiteral("trv5::BlockPanel")));
    EXPECT_TRUE(names.contains(QStringLiteral("trv5::BlockPanelSimple")));
}

TEST(DesignerPlugin, EveryDesignTimePropertyIsSavedInTheUiFileAndRestored) {
    for (QDesignerCustomWidgetInterface* control : PluginControls()) {
        SCOPED_TRACE(control->name().toStdString());
        const std::unique_ptr<QWidget> original(control->createWidget(nullptr));
        ASSERT_NE(original, nullptr);
        original->setObjectName(QStringLiteral("control"));
        const QMetaObject* meta = original->metaObject();
        QList<QMetaProperty> properties;
        for (int i = QWidget::staticMetaObject.propertyCount(); i < meta->propertyCount(); ++i) {
            const QMetaProperty property = meta->property(i);
            if (property.isWritable() && property.isDesignable()) {
                property.write(original.get(), OtherValue(property, property.read(original.get())));
                properties << property;
            }
        }
        ASSERT_FALSE(properties.isEmpty());
        // Read after all writes: a setter may change another property, as loading does too.
        QVariantMap expected;
        for (const QMetaProperty& property : properties) {
            expected.insert(QString::fromLatin1(property.name()), property.read(original.get()));
        }

        QBuffer ui;
        ui.open(QIODevice::WriteOnly);
        ControlFormBuilder().save(&ui, original.get());
        const std::unique_ptr<QWidget> restored = LoadUi(ui.data());
        ASSERT_NE(restored, nullptr);
        for (auto it = expected.cbegin(); it != expected.cend(); ++it) {
            // The .ui writer (Designer's too) skips types it has no element for, such as float.
            const bool written =
                ui.data().contains("<property name=\"" + it.key().toLatin1() + '"');
            EXPECT_TRUE(written) << it.key().toStdString() << " of type " << it.value().typeName()
                                 << " is not written to .ui files";
            const QVariant value = restored->property(it.key().toLatin1().constData());
            EXPECT_TRUE(value == it.value())
                << it.key().toStdString() << " restored as " << value.toString().toStdString()
                << ", saved as " << it.value().toString().toStdString();
        }
    }
}

TEST(DesignerPlugin, ChartInAFormKeepsItsPropertiesWhenLoaded) {
    const QByteArray form = R"(<?xml version="1.0" encoding="UTF-8"?>
<ui version="4.0">
 <class>RunWindow</class>
 <widget class="QWidget" name="RunWindow">
  <layout class="QVBoxLayout" name="layout">
   <item>
    <widget class="trv5::RTChart" name="rtChart">
     <property name="ShowCopyPrint"><bool>false</bool></property>
     <property name="BackColor"><number>14745599</number></property>
     <property name="Tag"><string>Fitness by generation</string></property>
    </widget>
   </item>
  </layout>
 </widget>
 <customwidgets>
  <customwidget>
   <class>trv5::RTChart</class>
   <extends>QWidget</extends>
   <header location="global">trv5charts/rtchart.h</header>
  </customwidget>
 </customwidgets>
</ui>
)";
    const std::unique_ptr<QWidget> window = LoadUi(form);
    ASSERT_NE(window, nullptr);
    const auto* chart = window->findChild<trv5::RTChart*>(QStringLiteral("rtChart"));
    ASSERT_NE(chart, nullptr);
    EXPECT_FALSE(chart->ShowCopyPrint());
    EXPECT_EQ(chart->BackColor(), 0xE0FFFF);
    EXPECT_EQ(chart->Tag(), QStringLiteral("Fitness by generation"));
    EXPECT_FALSE(chart->ShowXAxis());
}
