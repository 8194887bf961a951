#pragma once
// The station's error messages while a command works on one file, kept for
// that file's report instead of going to the terminal as boxes.
#include <QStringList>

class MessageCollector {
public:
    MessageCollector();
    ~MessageCollector();
    MessageCollector(const MessageCollector &) = delete;
    MessageCollector &operator=(const MessageCollector &) = delete;

    // The errors since the last call.
    QStringList take();

private:
    int id_ = 0;
    QStringList errors_;
};

// Why a file could not be loaded: the image reader's last error, else the
// station's messages.
QString load_failure_reason(MessageCollector &messages);
