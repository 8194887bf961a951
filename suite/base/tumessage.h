#pragma once
// The one path of every message of the system: operator reports, the log file
// and its lock, debug and direct mode, and writes from other threads.
//
// The log opens when the object is installed with setInstance, or at its first
// write, so that a subclass's okToUseFile is already in force. When no log number
// can be used the process ends with exit code 1.
//
// The texts of this class (report headings, the fatal log failure) are
// translated in the context "TUUIMessage". When "The application will
// terminate." has a translation there, a second log (the log's name followed by
// "i") carries the translated texts.
#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

#include "suite/base/msg_text.h"

class TUMessage : public QObject {
    Q_OBJECT
public:
    struct Settings {
        QString appName = QStringLiteral("Scan");  // blanks are removed for the log's name
        QString version;                           // the header's " Version : " line
        bool debug = false;
        bool console = false;    // no log file at all; reports go to standard error
        bool appendLog = false;  // a reused log number is appended to, not truncated
        QString logFolder;       // empty: the shared special folder for logs
        QString userName;        // empty: oswUtil::getUserName()
    };

    // Log line types, as getMsgTypeText tells them.
    enum MsgType : char {
        TypeError = 'E',
        TypeFatal = 'F',
        TypeWarning = 'W',
        TypeInformation = 'I',
        TypeTrace = 'T',
        TypeDebug = 'D',
    };

    // Type of the event that makes the object write what other threads queued.
    static constexpr int kQueuedWriteEvent = 1234;
    static constexpr const char *kContext = "TUUIMessage";

    explicit TUMessage(Settings settings);
    ~TUMessage() override;

    // The singleton. Without an installed instance a console instance is made on
    // first use, so that code running before start-up (and tools) still reports.
    static TUMessage *instance();
    static void setInstance(std::unique_ptr<TUMessage> message);
    static std::unique_ptr<TUMessage> takeInstance();

    // Reports. error, warning and information are shown to the operator and logged.
    virtual void warning(const MSG_Text &text);
    virtual void fatalError(const MSG_Text &text);
    virtual void error(const MSG_Text &text);
    virtual void information(const MSG_Text &text);
    // Always written to the log, never shown.
    virtual void trace(const MSG_Text &text);
    // Written from any thread: queued and written on the main thread.
    virtual void traceLater(const MSG_Text &text);
    // Written only in debug mode.
    virtual void debug(const MSG_Text &text);

    virtual void setDebugMode(bool on);
    virtual bool getDebugMode() const;
    virtual bool isDebugMode() const;
    virtual void setDirectMode(bool on);
    virtual bool isDirectMode() const;
    virtual void setSilent(bool on);
    // Kept for callers that ask; every log line carries its time already.
    virtual void setTimeLogging(bool on);
    virtual bool isTimeLogging() const;
    // While suspended, reports pile up; lifting the suspension shows them.
    virtual void suspendReport(bool on);
    virtual bool isReportSuspended() const;
    virtual void closeAndRemoveLog();
    virtual void catchErrorCode(bool on);
    virtual int getErrorCode() const;
    virtual QString readLog() const;
    virtual void closeViews();
    virtual bool openLog();
    virtual void baseWriteLog(char type, const QString &text, const QString &translated);
    virtual void write(char type, const MSG_Text &text);
    virtual bool okToUseFile(const QString &lockPath, const QString &logPath);
    virtual void flush();
    virtual QString getMsgTypeText(char type) const;
    virtual void updateErrorCode(int code);

    // Shows whatever reports are pending, suspended or not (the event loop calls
    // this before it sleeps). Does nothing on another thread or inside a report.
    void showPendingReports();

    // Entry of MSG_Scope: routes a text by its action (2, 3, 5, 6).
    void dispatch(const MSG_Text &text, int action, int errorCode);

    // Text views receive every line as it is written: its type, its text (the
    // source text) and the whole formatted log line.
    using View = std::function<void(char type, const QString &text, const QString &line)>;
    int attachView(View view);
    void detachView(int id);

    bool isLogOpen() const;
    QString logPath() const;
    QString translatedLogPath() const;  // empty when there is one log only
    QString lockPath() const;

signals:
    void lineWritten(const QString &line);

protected:
    // Shows the pending reports to the operator. Severity 'E', 'W' or 'I'; the base
    // writes them to standard error. Returns true when the operator chose Ignore All.
    virtual bool report(char severity, const QStringList &pending, bool askIgnore);
    // No log number could be used: tells the operator (the base writes the lines
    // to standard error). The process exits with 1 when this returns.
    virtual void showFatalLogFailure(const QStringList &lines);
    void customEvent(QEvent *event) override;

private:
    struct Record;
    void queueReport(char severity, const QString &text);
    void enqueue(Record record);
    void drainQueue();
    void writeRecord(const Record &record);
    bool onOwnThread() const;

    struct Impl;
    std::unique_ptr<Impl> d;
};
