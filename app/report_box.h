#pragma once
// The box that shows the operator the reports of one round: its heading by
// severity and count, the list cut at 29 lines, and OK or Ignore / Ignore All.
#include <QString>
#include <QStringList>

#include <memory>

class QMessageBox;
class QWidget;

// Minimum text width of a report box, before scaling to the screen's density.
inline constexpr int kReportBoxWidth = 640;

// `severity` is 'E', 'W' or 'I'. With `askIgnore` the buttons are "Ignore" and
// "Ignore All" (Ignore is the default), otherwise "OK".
std::unique_ptr<QMessageBox> makeReportBox(char severity, const QStringList &pending, bool askIgnore,
                                           const QString &title, QWidget *parent);

// True when the operator left the box through "Ignore All".
bool isIgnoreAll(const QMessageBox &box);
