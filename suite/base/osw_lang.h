#pragma once
// The language of the station's texts and the translators that give it.
#include <QString>

namespace OSW_Lang {
// The preference that keeps the operator's language.
QString preferenceKey();
void setDefaultLanguage(const QString &language);
QString defaultLanguage();
// Installs the translations of the default language from the language folder
// ("scan_<language>.qm"). With `fake`, a made-up translation marks every text
// instead, so that texts that escape translation stand out.
void loadTranslators(bool fake);
}  // namespace OSW_Lang
