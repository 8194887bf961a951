#include "app/file_name_validators.h"

#include <utility>

TUCharacterValidator::TUCharacterValidator(QString refused, QObject *parent)
    : QValidator(parent), refused_(std::move(refused)) {}

bool TUCharacterValidator::refuses(QChar c) const {
    return c.category() == QChar::Other_Control || refused_.contains(c);
}

QValidator::State TUCharacterValidator::validate(QString &input, int &) const {
    for (const QChar c : std::as_const(input))
        if (refuses(c)) return Invalid;
    return Acceptable;
}

void TUCharacterValidator::fixup(QString &input) const {
    QString kept;
    for (const QChar c : std::as_const(input))
        if (!refuses(c)) kept.append(c);
    input = kept;
}

// The characters Windows refuses in a name; "/" and "\" also separate
// folders, so neither can be part of one name.
TUFileNameValidator::TUFileNameValidator(QObject *parent)
    : TUCharacterValidator(QStringLiteral("/\\:*?\"<>|"), parent) {}

// Separators and the drive colon belong to a path; wildcards and quotes never do.
TUPathValidator::TUPathValidator(QObject *parent) : TUCharacterValidator(QStringLiteral("*?\"<>|"), parent) {}
