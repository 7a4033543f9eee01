#pragma once

#include <trv5charts/capture.h>

#include <QObject>
#include <QPoint>
#include <QString>

#include <memory>
#include <vector>

class QAction;
class QMenu;
class QWidget;

namespace trv5::platform {

// A chart's context menu: entries addressed by index, as the charts' menu arrays are, a caption
// of "-" making a separator. The owner opens it from its contextMenuEvent, which Qt sends for a
// right click and for the keyboard's menu key or Shift+F10, so the menu is reachable without a
// mouse; a keyboard-opened menu appears at the chart's centre rather than at a stale pointer.
//
// The menu also owns the chart's print dialog (the Qt dialog unless a host or a test installs
// its own), because printing is only ever started from here or from the chart's own commands.
class ChartMenu : public QObject {
    Q_OBJECT

public:
    // The menu's object name is the chart's name for it ("ctxMain"), so that hosts and tests can
    // find it with findChild.
    explicit ChartMenu(QWidget* pOwner, const QString& pObjectName = QStringLiteral("ctxMain"));
    ~ChartMenu() override = default;
    ChartMenu(const ChartMenu&) = delete;
    ChartMenu& operator=(const ChartMenu&) = delete;

    // Appends an entry and returns its action; pObjectName names the action for findChild.
    QAction* AddItem(const QString& pCaption, const QString& pObjectName);
    // nullptr when the index is out of range.
    QAction* Item(int pIndex) const;
    int ItemCount() const { return static_cast<int>(m_items.size()); }
    QMenu* Menu() const { return m_menu; }

    // Opens the menu at a global position; pFromKeyboard opens it at the owner's centre.
    void Popup(const QPoint& pGlobalPos, bool pFromKeyboard);
    void Hide();

    // The print dialog; never null.
    IPrintDialog& PrintDialog();
    // nullptr returns to the Qt print dialog.
    void SetPrintDialog(std::shared_ptr<IPrintDialog> pDialog);

    // The chart's copy and print commands: the owner's picture to the clipboard or the printer,
    // with this menu out of the picture. A print that fails also emits PrintFailed.
    void CopyOwnerPicture();
    PrintResult PrintOwnerPicture();
    // The print preview of the owner's picture, the page exactly as PrintOwnerPicture prints it.
    void PreviewOwnerPicture();
    // Replaces the clipboard's content with plain text.
    static void CopyText(const QString& pText);

signals:
    // An entry was chosen, by its index.
    void Triggered(int pIndex);
    // Printing failed for a reason the user should hear of (not a cancel).
    void PrintFailed(const QString& pMessage);

private:
    QWidget* m_owner;
    QMenu* m_menu; // a child of the owner, which deletes it
    std::vector<QAction*> m_items;
    std::shared_ptr<IPrintDialog> m_printDialog;
};

} // namespace trv5::platform
