#pragma once
// Line edit validators that refuse what cannot stand in a file name or a
// path: control characters and the characters that file systems (or their
// shells) reserve. A path may hold separators and a drive colon; a file name
// may not.
#include <QValidator>

class TUCharacterValidator : public QValidator {
    Q_OBJECT
public:
    // `refused`: the printable characters refused besides control characters.
    TUCharacterValidator(QString refused, QObject *parent);
    State validate(QString &input, int &pos) const override;
    // Drops the refused characters (a pasted name keeps what it can).
    void fixup(QString &input) const override;

private:
    bool refuses(QChar c) const;
    QString refused_;
};

class TUFileNameValidator : public TUCharacterValidator {
    Q_OBJECT
public:
    explicit TUFileNameValidator(QObject *parent = nullptr);
};

class TUPathValidator : public TUCharacterValidator {
    Q_OBJECT
public:
    explicit TUPathValidator(QObject *parent = nullptr);
};
