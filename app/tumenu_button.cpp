#include "app/tumenu_button.h"

#include <QAction>
#include <QActionGroup>
#include <QMenu>
#include <QStyle>
#include <QStyleOptionButton>
#include <QStylePainter>

TUMenuButton::TUMenuButton(QWidget *parent)
    : QPushButton(parent), m_menu(new QMenu(this)), m_group(new QActionGroup(this)) {
    m_group->setExclusive(true);
    setIcon(style()->standardIcon(QStyle::SP_ArrowDown));
    setIconSize(QSize(8, 8));
    connect(this, &QPushButton::pressed, this, &TUMenuButton::popup);
    connect(m_menu, &QMenu::triggered, this, &TUMenuButton::triggered);
}

QString TUMenuButton::buttonText(const QString &entryText, int limit) {
    QString text = limit > 0 ? entryText.left(limit) : entryText;
    text.replace(QStringLiteral("&&"), QStringLiteral("@@"));
    text.remove(QLatin1Char('&'));
    text.replace(QStringLiteral("@@"), QStringLiteral("&&"));
    return text;
}

void TUMenuButton::showEntry(const QString &entryText) { setText(buttonText(entryText, m_textLimit)); }

void TUMenuButton::addEntry(const QString &text, int id) {
    QAction *action = m_menu->addAction(text);
    action->setData(id);
    action->setCheckable(true);
    m_group->addAction(action);
    if (m_menu->actions().size() == 1) {
        showEntry(text);
        m_currentId = id;
    }
}

QAction *TUMenuButton::entry(int id) const {
    for (QAction *action : m_menu->actions())
        if (action->data().toInt() == id) return action;
    return nullptr;
}

int TUMenuButton::count() const { return static_cast<int>(m_menu->actions().size()); }

void TUMenuButton::removeEntry(int id) {
    QAction *action = entry(id);
    if (!action) return;
    m_group->removeAction(action);
    m_menu->removeAction(action);
    delete action;
    if (id != m_currentId) return;
    const QList<QAction *> rest = m_menu->actions();
    if (rest.isEmpty()) {
        setText(QString());
        m_currentId = -1;
    } else {
        showEntry(rest.first()->text());
        m_currentId = 0;
    }
}

void TUMenuButton::clear() {
    for (QAction *action : m_menu->actions()) m_group->removeAction(action);
    m_menu->clear();
    setText(QString());
    m_currentId = -1;
}

void TUMenuButton::setCurrent(int id) {
    QAction *action = entry(id);
    if (!action) return;
    showEntry(action->text());
    action->setChecked(true);
    m_currentId = id;
}

void TUMenuButton::setEntryEnabled(int id, bool on) {
    if (QAction *action = entry(id)) action->setEnabled(on);
}

int TUMenuButton::idAt(int index) const {
    const QList<QAction *> actions = m_menu->actions();
    return index >= 0 && index < actions.size() ? actions.at(index)->data().toInt() : -1;
}

// The menu opens just under the button; the button does not stay down.
void TUMenuButton::popup() {
    setDown(false);
    if (m_menu->actions().isEmpty()) return;
    m_menu->popup(mapToGlobal(QPoint(0, height())));
}

void TUMenuButton::triggered(QAction *action) {
    const int id = action->data().toInt();
    setCurrent(id);
    emit activated(id);
}

void TUMenuButton::paintEvent(QPaintEvent *) {
    QStylePainter painter(this);
    QStyleOptionButton option;
    initStyleOption(&option);
    painter.drawControl(QStyle::CE_PushButtonBevel, option);

    QRect content = style()->subElementRect(QStyle::SE_PushButtonContents, &option, this);
    const int gap = style()->pixelMetric(QStyle::PM_ButtonMargin, &option, this) / 2;
    content.adjust(gap, 0, -gap, 0);
    if (!option.icon.isNull()) {
        const QRect icon = QStyle::alignedRect(layoutDirection(), Qt::AlignLeft | Qt::AlignVCenter, option.iconSize, content);
        option.icon.paint(&painter, icon, Qt::AlignCenter, isEnabled() ? QIcon::Normal : QIcon::Disabled);
        content.setLeft(icon.right() + 1 + gap);
    }
    painter.drawItemText(content, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextShowMnemonic, option.palette, isEnabled(),
                         option.text, QPalette::ButtonText);
    if (option.state & QStyle::State_HasFocus) {
        QStyleOptionFocusRect focus;
        focus.initFrom(this);
        focus.rect = style()->subElementRect(QStyle::SE_PushButtonFocusRect, &option, this);
        painter.drawPrimitive(QStyle::PE_FrameFocusRect, focus);
    }
}
