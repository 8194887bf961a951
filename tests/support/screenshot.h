#pragma once
// Window tests save what the operator would see, so that a person can look at
// each state: SCAN_SCREENSHOT_DIR/<name>.png (build/screenshots by default).
#include <QString>

class QWidget;

// Grabs the widget (and its children) as shown now; the path written, or an
// empty string when the picture could not be saved.
QString save_screenshot(QWidget *widget, const QString &name);
