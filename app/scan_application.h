#pragma once
// The station's application object: event delivery with its nesting depth, and
// the flush of held-back reports before the event loop sleeps.
#include <QApplication>
#include <QPointer>
#include <QWidget>

class QTranslator;

class Scan_Application : public QApplication {
    Q_OBJECT
public:
    Scan_Application(int &argc, char **argv);
    ~Scan_Application() override;

    bool notify(QObject *receiver, QEvent *event) override;
    // Reports held back while events were handled are shown now, and holding
    // back goes on.
    virtual void aboutToBlock();

    int notifyDepth() const { return depth_; }

    // The window the station is about.
    void setMainWidget(QWidget *widget) { mainWidget_ = widget; }
    QWidget *mainWidget() const { return mainWidget_; }

    // The station's dark look, or back to the look the application had before
    // it; and the style sheets of the installation. Both act on whatever
    // application object runs.
    static void setDarkStyle(bool on);
    static void loadStyleSheets();

private:
    int depth_ = 0;
    QPointer<QWidget> mainWidget_;
};

class TUKqScanApp : public Scan_Application {
    Q_OBJECT
public:
    TUKqScanApp(int &argc, char **argv);
    ~TUKqScanApp() override;

    // Takes over a translator and installs it; the previous one is removed.
    void setTranslator(QTranslator *translator);

private:
    QTranslator *translator_ = nullptr;
};
