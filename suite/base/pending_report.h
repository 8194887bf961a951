#pragma once
// The reports waiting to be shown to the operator, with the severity of the
// whole list and the text of the box that shows them.
#include <QString>
#include <QStringList>

class MSG_PendingReport {
public:
    // Longest list shown; the rest is cut with "...".
    static constexpr int kMaxLines = 29;

    // `severity` is 'E', 'W' or 'I', or 'T' for a text that turns a list of
    // information into a warning. The first text or any error sets the severity.
    void add(char severity, const QString &text);
    bool isEmpty() const { return texts_.isEmpty(); }
    char severity() const { return severity_; }
    const QStringList &texts() const { return texts_; }
    // Hands the texts over and starts an empty list.
    QStringList take();

    // The opening line for a list of `count` texts of `severity`
    // ("The following error occurred:\n", ..., "Information:\n"), translated.
    static QString heading(char severity, qsizetype count);
    // The body: one text alone, or each as " - text" on its own line, cut after
    // kMaxLines lines with "...".
    static QString body(const QStringList &texts);

private:
    QStringList texts_;
    char severity_ = 'I';
};
