#pragma once
// The station's named vectorization styles: each a name and an option line,
// read from VectOptions.conf in the configuration folder.
#include <QString>

#include <vector>

class QTextStream;

struct VectorizationStyle {
    QString name;
    QString options;  // one option line; empty when the file gave none
    bool selected = false;
};

// The name of the style that is always offered and chosen at start.
inline constexpr const char *kDefaultStyleName = "Default Style";

struct VectorizationStyleList {
    std::vector<VectorizationStyle> styles;
    QString errors;  // each error starts a new line; empty when the file was clean
};

// Reads the "style_name: " and "options: " lines of a style file; any other
// line is skipped. Lines are counted from 1 in the error texts.
VectorizationStyleList readVectorizationStyles(QTextStream &in);

// Puts "Default Style" at the front when the list has none (its options a
// single blank) and selects the first style of that name.
void selectDefaultStyle(std::vector<VectorizationStyle> &styles);

// The configuration folder's VectOptions.conf.
QString vectorizationStylesPath();

// Reads `path`, reports a file that cannot be opened or has errors, and
// returns the styles with the default one selected.
std::vector<VectorizationStyle> loadVectorizationStyles(const QString &path);
