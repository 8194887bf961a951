// Reading the station's style list.
#include "vectorize/vectorization_styles.h"

#include <QFile>
#include <QTextStream>

#include <algorithm>

#include "suite/base/msg_scope.h"
#include "suite/base/osw_util.h"

namespace {

const char *const kContext = "TUVectOptionsDlg";
const QString kNameTag = QStringLiteral("style_name: ");
const QString kOptionsTag = QStringLiteral("options: ");

QString lineError(const char *text, int line) {
    return MSG_Text(kContext, text).arg(line).text();
}

}  // namespace

VectorizationStyleList readVectorizationStyles(QTextStream &in) {
    VectorizationStyleList list;
    int number = 0;
    QString line;
    while (in.readLineInto(&line)) {
        ++number;
        if (line.left(kNameTag.size()) == kNameTag) {
            const QString name = line.mid(kNameTag.size()).trimmed();
            if (name.isEmpty())
                list.errors += lineError(QT_TRANSLATE_NOOP("TUVectOptionsDlg", "\nInvalid Style name at line %1."), number);
            else
                list.styles.push_back({name, QString(), false});
        } else if (line.left(kOptionsTag.size()) == kOptionsTag) {
            const QString options = line.mid(kOptionsTag.size()).trimmed();
            if (list.styles.empty())
                list.errors +=
                    lineError(QT_TRANSLATE_NOOP("TUVectOptionsDlg", "\nOptions without style name at line %1."), number);
            else if (options.isEmpty())
                list.errors += lineError(QT_TRANSLATE_NOOP("TUVectOptionsDlg", "\nInvalid Option at line %1."), number);
            else
                list.styles.back().options = options;
        }
    }
    return list;
}

void selectDefaultStyle(std::vector<VectorizationStyle> &styles) {
    const QString name = QString::fromLatin1(kDefaultStyleName);
    auto isDefault = [&](const VectorizationStyle &style) { return style.name == name; };
    auto found = std::find_if(styles.begin(), styles.end(), isDefault);
    if (found == styles.end()) found = styles.insert(styles.begin(), {name, QStringLiteral(" "), false});
    for (VectorizationStyle &style : styles) style.selected = false;
    found->selected = true;
}

QString vectorizationStylesPath() { return oswUtil::LMVEtc() + QStringLiteral("/VectOptions.conf"); }

std::vector<VectorizationStyle> loadVectorizationStyles(const QString &path) {
    VectorizationStyleList list;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        MSG_Scope(MSG_Text(kContext, QT_TRANSLATE_NOOP("TUVectOptionsDlg", "Error opening file %1")).arg(path),
                  MSG_ACTION_ERROR);
    } else {
        QTextStream in(&file);
        list = readVectorizationStyles(in);
        if (!list.errors.isEmpty())
            MSG_Scope(MSG_Text(kContext, QT_TRANSLATE_NOOP("TUVectOptionsDlg", "Error(s) detected while reading %1:%2"))
                          .arg(path, list.errors),
                      MSG_ACTION_ERROR);
    }
    selectDefaultStyle(list.styles);
    return list.styles;
}
