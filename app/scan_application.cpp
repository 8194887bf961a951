#include "app/scan_application.h"

#include <QAbstractEventDispatcher>
#include <QDir>
#include <QFile>
#include <QPalette>
#include <QStyle>
#include <QStyleFactory>
#include <QTranslator>

#include <optional>

#include "suite/base/osw_util.h"
#include "suite/base/tumessage.h"

Scan_Application::Scan_Application(int &argc, char **argv) : QApplication(argc, argv) {
    if (QAbstractEventDispatcher *d = QAbstractEventDispatcher::instance())
        connect(d, &QAbstractEventDispatcher::aboutToBlock, this, &Scan_Application::aboutToBlock);
}

Scan_Application::~Scan_Application() = default;

bool Scan_Application::notify(QObject *receiver, QEvent *event) {
    ++depth_;
    const bool result = QApplication::notify(receiver, event);
    --depth_;
    return result;
}

void Scan_Application::aboutToBlock() {
    TUMessage *m = TUMessage::instance();
    if (!m->isReportSuspended()) return;
    m->suspendReport(false);
    m->suspendReport(true);
}

namespace {

// The look of the application before the dark style first replaced it.
struct PlainLook {
    QString style;
    QPalette palette;
};
std::optional<PlainLook> &plainLook() {
    static std::optional<PlainLook> look;
    return look;
}

}  // namespace

void Scan_Application::setDarkStyle(bool on) {
    std::optional<PlainLook> &plain = plainLook();
    if (!on) {
        if (!plain) return;  // the dark style was never on
        setStyle(QStyleFactory::create(plain->style));
        setPalette(plain->palette);
        plain.reset();
        return;
    }
    if (!plain) plain = PlainLook{style()->name(), palette()};
    setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QPalette p;
    const QColor window(53, 53, 53), base(35, 35, 35), text(220, 220, 220), highlight(42, 130, 218);
    p.setColor(QPalette::Window, window);
    p.setColor(QPalette::WindowText, text);
    p.setColor(QPalette::Base, base);
    p.setColor(QPalette::AlternateBase, window);
    p.setColor(QPalette::ToolTipBase, window);
    p.setColor(QPalette::ToolTipText, text);
    p.setColor(QPalette::Text, text);
    p.setColor(QPalette::Button, window);
    p.setColor(QPalette::ButtonText, text);
    p.setColor(QPalette::BrightText, Qt::red);
    p.setColor(QPalette::Highlight, highlight);
    p.setColor(QPalette::HighlightedText, Qt::black);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        p.setColor(QPalette::Disabled, role, QColor(127, 127, 127));
    // Disabled text is etched with the light colour under it: a light shadow
    // on a dark ground would blur it.
    p.setColor(QPalette::Disabled, QPalette::Light, Qt::transparent);
    setPalette(p);
}

void Scan_Application::loadStyleSheets() {
    // Every .qss of the installation's style folder, in name order; none is fine.
    const QDir dir(oswUtil::LMVDir(false) + QStringLiteral("/resources/styles"));
    QString sheet;
    for (const QString &name : dir.entryList({QStringLiteral("*.qss")}, QDir::Files, QDir::Name)) {
        QFile f(dir.filePath(name));
        if (f.open(QIODevice::ReadOnly)) sheet += QString::fromUtf8(f.readAll()) + QLatin1Char('\n');
    }
    if (!sheet.isEmpty()) qApp->setStyleSheet(sheet);
}

TUKqScanApp::TUKqScanApp(int &argc, char **argv) : Scan_Application(argc, argv) {}

TUKqScanApp::~TUKqScanApp() { setTranslator(nullptr); }

void TUKqScanApp::setTranslator(QTranslator *translator) {
    if (translator_) {
        removeTranslator(translator_);
        delete translator_;
    }
    translator_ = translator;
    if (translator_) installTranslator(translator_);
}
