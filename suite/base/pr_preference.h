#pragma once
// The user's preferences: named values kept between runs in the user's
// settings file (or a file given by path).
#include <QString>

#include <memory>

class QSettings;

class PR_Preference {
public:
    ~PR_Preference();
    // Opens the preferences at `path`, or the user's own when it is empty. Check
    // getErrorCode afterwards: the object exists even when the file is unusable.
    static std::unique_ptr<PR_Preference> createPreference(const QString &path);

    int getErrorCode() const;  // 0 when the preferences are usable
    QString getPrefErrorMessage() const;

    QString getString(const QString &key, const QString &defaultValue) const;
    void setString(const QString &key, const QString &value);

private:
    explicit PR_Preference(std::unique_ptr<QSettings> settings);
    std::unique_ptr<QSettings> settings_;
};

// The station's preferences once start-up has made them; null before.
extern PR_Preference *tuPref;
// The preferences the language is read from at start-up (the station's own).
PR_Preference *localPrefs();
