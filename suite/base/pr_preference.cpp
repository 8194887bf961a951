#include "suite/base/pr_preference.h"

#include <QCoreApplication>
#include <QSettings>

PR_Preference *tuPref = nullptr;

PR_Preference *localPrefs() { return tuPref; }

PR_Preference::PR_Preference(std::unique_ptr<QSettings> settings) : settings_(std::move(settings)) {}
PR_Preference::~PR_Preference() = default;

std::unique_ptr<PR_Preference> PR_Preference::createPreference(const QString &path) {
    auto settings = path.isEmpty()
                        ? std::make_unique<QSettings>(QSettings::IniFormat, QSettings::UserScope,
                                                      QStringLiteral("scanstation"), QStringLiteral("Scan"))
                        : std::make_unique<QSettings>(path, QSettings::IniFormat);
    return std::unique_ptr<PR_Preference>(new PR_Preference(std::move(settings)));
}

int PR_Preference::getErrorCode() const { return static_cast<int>(settings_->status()); }

QString PR_Preference::getPrefErrorMessage() const {
    switch (settings_->status()) {
    case QSettings::NoError: return {};
    case QSettings::AccessError:
        return QCoreApplication::translate("PR_Preference", "The preferences file %1 cannot be read or written.")
            .arg(settings_->fileName());
    case QSettings::FormatError:
        return QCoreApplication::translate("PR_Preference", "The preferences file %1 is damaged.")
            .arg(settings_->fileName());
    }
    return {};
}

QString PR_Preference::getString(const QString &key, const QString &defaultValue) const {
    return settings_->value(key, defaultValue).toString();
}

void PR_Preference::setString(const QString &key, const QString &value) { settings_->setValue(key, value); }
