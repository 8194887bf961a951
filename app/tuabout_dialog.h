#pragma once
// The about box: the program's name and version, and the Qt it runs on.
#include <QDialog>

class QLabel;
struct WHO_AppInfo;

class TUAboutDialog : public QDialog {
    Q_OBJECT
public:
    explicit TUAboutDialog(const WHO_AppInfo &info, QWidget *parent = nullptr);

    QLabel *nameLabel() const { return m_name; }
    QLabel *versionLabel() const { return m_version; }

private:
    QLabel *m_name;
    QLabel *m_version;
};
