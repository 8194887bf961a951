#include "suite/base/osw_lang.h"

#include <QCoreApplication>
#include <QTranslator>

#include "suite/base/osw_util.h"

namespace {

QString &language() {
    static QString l;
    return l;
}

// Every translated text comes back in brackets.
class FakeTranslator : public QTranslator {
public:
    using QTranslator::QTranslator;
    bool isEmpty() const override { return false; }
    QString translate(const char *, const char *source, const char *, int) const override {
        return QStringLiteral("[") + QString::fromUtf8(source) + QStringLiteral("]");
    }
};

}  // namespace

QString OSW_Lang::preferenceKey() { return QStringLiteral("LANGUAGE"); }

void OSW_Lang::setDefaultLanguage(const QString &l) { language() = l; }

QString OSW_Lang::defaultLanguage() { return language(); }

void OSW_Lang::loadTranslators(bool fake) {
    QCoreApplication *app = QCoreApplication::instance();
    if (!app) return;
    if (fake) {
        app->installTranslator(new FakeTranslator(app));
        return;
    }
    if (language().isEmpty()) return;
    auto *translator = new QTranslator(app);
    if (translator->load(QStringLiteral("scan_") + language(), BAPP_SharedSpecialFolders_instance().languageFolder()))
        app->installTranslator(translator);
    else
        delete translator;
}
