#include "platform/chartmenu.h"

#include "platform/clipboardaccess.h"
#include "platform/printeraccess.h"

#include <QAction>
#include <QMenu>
#include <QWidget>

namespace trv5::platform {

ChartMenu::ChartMenu(QWidget* pOwner, const QString& pObjectName)
    : QObject(pOwner), m_owner(pOwner), m_menu(new QMenu(pOwner)) {
    m_menu->setObjectName(pObjectName);
}

QAction* ChartMenu::AddItem(const QString& pCaption, const QString& pObjectName) {
    QAction* action = nullptr;
    if (pCaption == QLatin1String("-")) {
        action = m_menu->addSeparator();
    } else {
        action = m_menu->addAction(pCaption);
    }
    action->setObjectName(pObjectName);
    const int index = static_cast<int>(m_items.size());
    m_items.push_back(action);
    connect(action, &QAction::triggered, this, [this, index] { emit Triggered(index); });
    return action;
}

QAction* ChartMenu::Item(int pIndex) const {
    if (pIndex < 0 || pIndex >= ItemCount()) {
        return nullptr;
    }
    return m_items[static_cast<std::size_t>(pIndex)];
}

void ChartMenu::Popup(const QPoint& pGlobalPos, bool pFromKeyboard) {
    const QPoint at = pFromKeyboard ? m_owner->mapToGlobal(m_owner->rect().center()) : pGlobalPos;
    m_menu->popup(at);
}

void ChartMenu::Hide() {
    m_menu->hide();
}

IPrintDialog& ChartMenu::PrintDialog() {
    if (!m_printDialog) {
        m_printDialog = std::make_shared<QtPrintDialog>(m_owner);
    }
    return *m_printDialog;
}

void ChartMenu::SetPrintDialog(std::shared_ptr<IPrintDialog> pDialog) {
    m_printDialog = std::move(pDialog);
}

void ChartMenu::CopyOwnerPicture() {
    CopyControlPicture(m_owner, m_menu);
}

PrintResult ChartMenu::PrintOwnerPicture() {
    PrintResult result = PrintControlPicture(m_owner, PrintDialog(), m_menu);
    if (result.Failed()) {
        emit PrintFailed(result.message);
    }
    return result;
}

void ChartMenu::PreviewOwnerPicture() {
    PreviewControlPicture(m_owner, m_owner, m_menu);
}

void ChartMenu::CopyText(const QString& pText) {
    ClipboardAccess::Clear();
    ClipboardAccess::SetText(pText);
}

} // namespace trv5::platform
