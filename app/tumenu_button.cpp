#include "app/tumenu_button.h"

#include <QAction>
#include <QActionGroup>
#include <QMenu>
#include <QStyle>

TUMenuButton::TUMenuButton(QWidget *parent)
    : QPushButton(parent), m_menu(new QMenu(this)), m_group(new QActionGroup(this)) {
    m_group->setExclusive(true);
    setIcon(style()->standardIcon(QStyle::SP_ArrowDown));
    setIconSize(QSize(8, 8));
    setStyleSheet(QStringLiteral("QPushButton { text-align: left; }"));
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
