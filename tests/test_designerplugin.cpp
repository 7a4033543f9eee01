// The Designer plugin as Designer and QUiLoader use it: loaded from its file, every control made
// through it, and the controls' properties kept through .ui files.

#include <trv5charts/barchart.h>
#include <trv5charts/blockpanel.h>
#include <trv5charts/blockpanelsimple.h>
#include <trv5charts/capture.h>
#include <trv5charts/rocchart.h>
#include <trv5charts/rtchart.h>
#include <trv5charts/verticallabel.h>

#include <QBuffer>
#include <QColor>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QMetaProperty>
#include <QPluginLoader>
#include <QUiLoader>
#include <QtDesigner/QDesignerFormEditorInterface>
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

QDesignerCustomWidgetInterface* PluginControl(const QString& pName) {
    for (QDesignerCustomWidgetInterface* control : PluginControls()) {
        if (control->name() == pName) {
            return control;
        }
    }
    ADD_FAILURE() << "no control " << pName.toStdString();
    return nullptr;
}

QByteArray FormWith(const QByteArray& pControls) {
    return R"(<?xml version="1.0" encoding="UTF-8"?>
<ui version="4.0">
 <class>Form</class>
 <widget class="QWidget" name="Form">
  <layout class="QVBoxLayout" name="layout">
)" + pControls +
           R"(  </layout>
 </widget>
</ui>
)";
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

TEST(DesignerPlugin, ColoursAreEditedAsColoursAndReachTheHostsIntegers) {
    // Every integer colour stays for hosts but is left out of Designer's property editor, which
    // offers the same colour as a QColor instead.
    int colours = 0;
    for (QDesignerCustomWidgetInterface* control : PluginControls()) {
        SCOPED_TRACE(control->name().toStdString());
        const std::unique_ptr<QWidget> made(control->createWidget(nullptr));
        const QMetaObject* meta = made->metaObject();
        for (int i = QWidget::staticMetaObject.propertyCount(); i < meta->propertyCount(); ++i) {
            const QMetaProperty property = meta->property(i);
            const QString name = QString::fromLatin1(property.name());
            if (property.typeId() != QMetaType::Int || !name.endsWith(QStringLiteral("Color"))) {
                continue;
            }
            ++colours;
            EXPECT_FALSE(property.isDesignable()) << property.name();
            QString colourName = name;
            colourName[0] = colourName[0].toLower();
            if (colourName.startsWith(QStringLiteral("rOC"))) {
                colourName.replace(0, 3, QStringLiteral("roc"));
            }
            const QMetaProperty twin =
                meta->property(meta->indexOfProperty(colourName.toLatin1().constData()));
            ASSERT_TRUE(twin.isValid()) << colourName.toStdString();
            EXPECT_EQ(twin.typeId(), QMetaType::QColor);
            EXPECT_TRUE(twin.isDesignable());
            ASSERT_TRUE(twin.write(made.get(), QColor(12, 34, 56)));
            EXPECT_EQ(property.read(made.get()).toInt(), 12 | (34 << 8) | (56 << 16))
                << property.name();
        }
    }
    EXPECT_GE(colours, 9);

    // A form as Designer writes it: colours as <color> elements, read back as host integers.
    const std::unique_ptr<QWidget> form = LoadUi(FormWith(R"(
   <item><widget class="trv5::BarChart" name="bars">
    <property name="barColor"><color><red>200</red><green>40</green><blue>30</blue></color></property>
    <property name="backColor"><color><red>255</red><green>250</green><blue>240</blue></color></property>
   </widget></item>
   <item><widget class="trv5::ROCChart" name="roc">
    <property name="rocColor"><color><red>20</red><green>90</green><blue>160</blue></color></property>
   </widget></item>
)"));
    ASSERT_NE(form, nullptr);
    const auto* bars = form->findChild<trv5::BarChart*>(QStringLiteral("bars"));
    ASSERT_NE(bars, nullptr);
    EXPECT_EQ(bars->BarColor(), 200 | (40 << 8) | (30 << 16));
    EXPECT_EQ(bars->BackQColor(), QColor(255, 250, 240));
    const auto* roc = form->findChild<trv5::ROCChart*>(QStringLiteral("roc"));
    ASSERT_NE(roc, nullptr);
    EXPECT_EQ(roc->ROCColor(), 20 | (90 << 8) | (160 << 16));
}

TEST(DesignerPlugin, EachControlHasItsOwnIcon) {
    QList<QImage> icons;
    for (QDesignerCustomWidgetInterface* control : PluginControls()) {
        const QImage icon = control->icon().pixmap(32, 32).toImage();
        ASSERT_FALSE(icon.isNull()) << control->name().toStdString();
        EXPECT_FALSE(icons.contains(icon)) << control->name().toStdString();
        icons << icon;
    }
}

TEST(DesignerPlugin, DesignerShowsSampleDataAndLoadedFormsStartEmpty) {
    QDesignerCustomWidgetInterface* progress = PluginControl(QStringLiteral("trv5::RTChart"));
    QDesignerCustomWidgetInterface* bars = PluginControl(QStringLiteral("trv5::BarChart"));
    QDesignerCustomWidgetInterface* caption = PluginControl(QStringLiteral("trv5::VerticalLabel"));
    QDesignerCustomWidgetInterface* blocks = PluginControl(QStringLiteral("trv5::BlockPanel"));
    QDesignerCustomWidgetInterface* tapestry =
        PluginControl(QStringLiteral("trv5::BlockPanelSimple"));
    ASSERT_TRUE(progress != nullptr && bars != nullptr && caption != nullptr && blocks != nullptr &&
                tapestry != nullptr);

    const auto loaded = [] {
        return LoadUi(FormWith(R"(
   <item><widget class="trv5::RTChart" name="progress"/></item>
   <item><widget class="trv5::BarChart" name="bars"/></item>
   <item><widget class="trv5::VerticalLabel" name="caption"/></item>
   <item><widget class="trv5::BlockPanel" name="blocks"/></item>
   <item><widget class="trv5::BlockPanelSimple" name="tapestry"/></item>
)"));
    };
    const auto expectEmpty = [](const QWidget& pForm) {
        EXPECT_EQ(pForm.findChild<trv5::RTChart*>()->SeriesCount(), 0);
        EXPECT_EQ(pForm.findChild<trv5::BarChart*>()->HasData(), 0);
        EXPECT_TRUE(pForm.findChild<trv5::VerticalLabel*>()->Text().isEmpty());
        EXPECT_EQ(pForm.findChild<trv5::BlockPanel*>()->ItemCount(), 0);
        EXPECT_EQ(pForm.findChild<trv5::BlockPanelSimple*>()->RecordCount(), 0);
    };
    expectEmpty(*loaded());

    // Designer initializes the plugin with its core before it makes controls for a form.
    QDesignerFormEditorInterface core;
    for (QDesignerCustomWidgetInterface* control : PluginControls()) {
        control->initialize(&core);
    }
    const std::unique_ptr<QWidget> chart(progress->createWidget(nullptr));
    EXPECT_GT(static_cast<trv5::RTChart&>(*chart).SeriesCount(), 0);
    const std::unique_ptr<QWidget> bar(bars->createWidget(nullptr));
    EXPECT_EQ(static_cast<trv5::BarChart&>(*bar).HasData(), 1);
    const std::unique_ptr<QWidget> label(caption->createWidget(nullptr));
    EXPECT_FALSE(static_cast<trv5::VerticalLabel&>(*label).Text().isEmpty());
    // The sample is drawn: the bars' colour is on the control's picture.
    bar->resize(200, 120);
    static_cast<trv5::BarChart&>(*bar).Redraw();
    const QImage picture = bar->grab().toImage();
    const QColor barColour = static_cast<trv5::BarChart&>(*bar).BarQColor();
    bool barDrawn = false;
    for (int y = 0; y < picture.height() && !barDrawn; ++y) {
        for (int x = 0; x < picture.width() && !barDrawn; ++x) {
            barDrawn = picture.pixelColor(x, y) == barColour;
        }
    }
    EXPECT_TRUE(barDrawn);
    // The block panels show drawn blocks: the usage panel in its block colour.
    const std::unique_ptr<QWidget> usage(blocks->createWidget(nullptr));
    EXPECT_GT(static_cast<trv5::BlockPanel&>(*usage).ItemCount(), 0);
    usage->resize(200, 120);
    const QImage usagePicture = trv5::CaptureControl(usage.get());
    const QColor blockColour = static_cast<trv5::BlockPanel&>(*usage).BlockQColor();
    int blockPixels = 0;
    for (int y = 0; y < usagePicture.height(); ++y) {
        for (int x = 0; x < usagePicture.width(); ++x) {
            blockPixels += usagePicture.pixelColor(x, y) == blockColour ? 1 : 0;
        }
    }
    EXPECT_GT(blockPixels, usagePicture.width() * usagePicture.height() / 4);
    const std::unique_ptr<QWidget> records(tapestry->createWidget(nullptr));
    EXPECT_GT(static_cast<trv5::BlockPanelSimple&>(*records).RecordCount(), 0);

    for (QDesignerCustomWidgetInterface* control : PluginControls()) {
        control->initialize(nullptr);
    }
    expectEmpty(*loaded());
}
