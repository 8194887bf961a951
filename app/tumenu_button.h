#pragma once
// A push button that pops up a menu of checkable entries, one of them current;
// the six settings of the station (scanner, colour, dpi, peg, field, feed) are
// chosen with it. Each entry carries an integer id.
#include <QPushButton>

class QAction;
class QActionGroup;
class QMenu;

class TUMenuButton : public QPushButton {
    Q_OBJECT
public:
    explicit TUMenuButton(QWidget *parent = nullptr);

    // Appends an entry; the first one added also becomes the current one.
    void addEntry(const QString &text, int id);
    // When the current entry goes, the first remaining one is shown (with id
    // 0 as current), or nothing with id -1.
    void removeEntry(int id);
    void clear();
    // Shows and checks the entry; an unknown id changes nothing.
    void setCurrent(int id);
    void setEntryEnabled(int id, bool on);
    int idAt(int index) const;  // -1 when there is no such entry
    // 0 means no limit.
    void setTextLimit(int limit) { m_textLimit = limit; }

    int currentId() const { return m_currentId; }
    int count() const;
    QMenu *menu() const { return m_menu; }
    QAction *entry(int id) const;  // null for an unknown id

    // What the button shows for an entry's text: cut to `limit` (0: no cut),
    // then the accelerator marks dropped while "&&" keeps one ampersand.
    static QString buttonText(const QString &entryText, int limit);

signals:
    void activated(int id);

protected:
    // A push button with its icon and text at the left. Painted here rather
    // than aligned by a style sheet, which would pin the palette the button
    // had when it was made and keep it light under the dark style.
    void paintEvent(QPaintEvent *event) override;

private slots:
    void popup();
    void triggered(QAction *action);

private:
    void showEntry(const QString &entryText);

    QMenu *m_menu;
    QActionGroup *m_group;
    int m_currentId = -1;
    int m_textLimit = 0;
};
