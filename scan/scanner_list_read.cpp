// Reading Scan.conf into a ScannerList.
#include <QCoreApplication>
#include <QFile>

#include <cerrno>
#include <climits>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include <locale.h>

#include "scan/devices.h"
#include "scan/scanner_list.h"
#include "suite/base/lmv_trace.h"
#include "suite/base/msg_scope.h"
#include "suite/base/osw_util.h"

namespace {

constexpr int kLineBuffer = 5000;
constexpr const char *kSeparators = " \r\t";

void report(const char *source, const QString &arg) {
    MSG_Scope(MSG_Text("Scan", source).arg(arg), MSG_ACTION_ERROR);
}

// A few old messages carry a printf "%s" for the path.
void report_printf(const char *source, const QString &path) {
    QString text = QCoreApplication::translate("Scan", source);
    text.replace(QLatin1String("%s"), path);
    MSG_Scope(MSG_Text::untranslated(text), MSG_ACTION_ERROR);
}

// Numbers read as the C library reads them (the longest valid prefix, 0 for
// none; hexadecimal floats, "inf", and infinity beyond the range), but in the
// "C" locale, so that a station in another language reads "0.5".
locale_t c_locale() {
    static const locale_t locale = newlocale(LC_ALL_MASK, "C", locale_t(nullptr));
    return locale;
}

double to_double(const char *s) { return strtod_l(s, nullptr, c_locale()); }

float to_float(const char *s) { return strtof_l(s, nullptr, c_locale()); }

int32_t to_int(const char *s, int base) {
    const long long v = std::strtoll(s, nullptr, base);
    if (v > INT32_MAX) return INT32_MAX;
    if (v < INT32_MIN) return INT32_MIN;
    return static_cast<int32_t>(v);
}

// The value of a keyword that takes the rest of the line: blanks and tabs
// trimmed at both ends.
QString rest_trimmed(const char *rest) {
    std::string_view v(rest);
    while (!v.empty() && (v.front() == ' ' || v.front() == '\t')) v.remove_prefix(1);
    while (!v.empty() && (v.back() == ' ' || v.back() == '\t')) v.remove_suffix(1);
    return QString::fromUtf8(v.data(), static_cast<qsizetype>(v.size()));
}

// rgbDropList: the rest up to a carriage return or newline, untrimmed.
QString rest_raw(const char *rest) { return QString::fromUtf8(rest, static_cast<qsizetype>(std::strcspn(rest, "\r\n"))); }

class Reader {
public:
    Reader(ScannerList &list, const QString &path) : list_(list), path_(path) {}

    void line(char *buffer);

private:
    void keyword(const char *key, char *rest);
    bool float_keyword(const char *key, const char *tok);
    bool int_keyword(const char *key, const char *tok);

    void drop_current() {
        list_.entries.pop_back();
        list_.count = static_cast<int32_t>(list_.entries.size());
        current_ = nullptr;
    }

    ScannerList &list_;
    const QString &path_;
    ScannerEntry *current_ = nullptr;
};

void Reader::line(char *buffer) {
    if (buffer[0] == '#') return;
    if (char *nl = std::strchr(buffer, '\n')) {
        *nl = '\0';
        if (nl > buffer && nl[-1] == '\r') nl[-1] = '\0';
    }
    const std::size_t length = std::strlen(buffer);
    char *save = nullptr;
    char *key = strtok_r(buffer, kSeparators, &save);
    if (!key) return;
    // What follows the keyword's separator; the keyword may end the line.
    char *rest = key + std::strlen(key);
    if (rest < buffer + length) ++rest;

    if (std::strcmp(key, "host:") == 0) {
        const char *tok = strtok_r(nullptr, kSeparators, &save);
        const QString host = QString::fromUtf8(tok ? tok : "");
        LMV_trace("bp = /%s/ hostname = /%s/", tok ? tok : "", list_.host.toUtf8().constData());
        current_ = nullptr;
        if (!host.isEmpty() && oswUtil::isSameMachineName(host, list_.host)) {
            list_.entries.push_back(std::make_unique<ScannerEntry>());
            list_.count = static_cast<int32_t>(list_.entries.size());
            current_ = list_.entries.back().get();
        }
        return;
    }
    // Other machines' blocks and anything before the first host: are not ours.
    if (!current_) return;
    keyword(key, rest);
}

void Reader::keyword(const char *key, char *rest) {
    ScannerEntry *e = current_;
    auto is = [key](const char *k) { return std::strcmp(key, k) == 0; };

    if (is("name:") || is("device:") || is("model:") || is("descr:")) {
        const QString value = rest_trimmed(rest);
        if (value.isEmpty()) return;  // a keyword without its value changes nothing
        if (is("name:")) {
            set_name_of_ScannerEntry(e, value);
        } else if (is("device:")) {
            e->device = value;
        } else if (is("descr:")) {
            e->descr = value;
        } else {
            e->model = value;
            if (!supported_model_of_devices(value)) {
                report("Model %1 Is Not A Supported Scanner.", value);
                drop_current();
            }
        }
        return;
    }
    if (is("rgbDropList:")) {
        e->rgbDropList.append(rest_raw(rest));
        return;
    }
    if (is("forceAllResolutions:")) {
        e->forceAllResolutions = true;
        return;
    }

    char *save = nullptr;
    const char *tok = strtok_r(rest, kSeparators, &save);
    if (float_keyword(key, tok) || int_keyword(key, tok)) return;
    const bool known = is("gammaFile:") || is("dropOutColor:") || is("defaultPegSide:") || is("registrationStrictness:");
    if (!known) {
        MSG_Scope(MSG_Text("Scan", "Unknown keyword '%1' in file '%2'.\n").arg(QString::fromUtf8(key), path_),
                  MSG_ACTION_ERROR);
        return;
    }
    if (!tok) return;  // a keyword without its value changes nothing

    const QString value = QString::fromUtf8(tok);
    if (is("gammaFile:")) {
        e->gammaFile = value;
    } else if (is("dropOutColor:")) {
        e->dropOutColor = value;
    } else if (is("defaultPegSide:")) {
        if (value == QLatin1String("Bottom")) e->defaultPegSide = PEG_BOTTOM;
        else if (value == QLatin1String("Top")) e->defaultPegSide = PEG_TOP;
        else if (value == QLatin1String("Left")) e->defaultPegSide = PEG_LEFT;
        else if (value == QLatin1String("Right")) e->defaultPegSide = PEG_RIGHT;
        else report("Unknown defaultPegSide value '%1'\n", value);
    } else if (is("registrationStrictness:")) {
        if (value == QLatin1String("Loose")) e->registrationStrictness = REGISTRATION_LOOSE;
        else if (value == QLatin1String("Strict")) e->registrationStrictness = REGISTRATION_STRICT;
        else report("Unknown registrationStrictness value '%1'\n", value);
    }
}

// The keywords with a floating point value. False for any other keyword; with a
// null token only tells whether the keyword is one of them.
bool Reader::float_keyword(const char *key, const char *tok) {
    ScannerEntry *e = current_;
    auto is = [key](const char *k) { return std::strcmp(key, k) == 0; };
    struct Kept {
        const char *keys[2];
        float ScannerEntry::*field;
        int side;  // cleanSize index, or -1
        const char *message;
    };
    static const Kept kept[] = {
        {{"pegPitch:", nullptr}, &ScannerEntry::pegPitch, -1, "Config file %1: pegPitch should be > 0.0.\n"},
        {{"pegSideCleanSize:", "Side0CleanSize:"}, nullptr, 0, "Config file %1: Side0CleanSize should be > 0.0.\n"},
        {{"Side1CleanSize:", nullptr}, nullptr, 1, "Config file %1: Side1CleanSize should be > 0.0.\n"},
        {{"oppositeSideCleanSize:", "Side2CleanSize:"}, nullptr, 2,
         "Config file %1: oppositeSideCleanSize should be > 0.0.\n"},
        {{"Side3CleanSize:", nullptr}, nullptr, 3, "Config file %1: Side3CleanSize should be > 0.0.\n"},
    };
    for (const Kept &k : kept) {
        if (!is(k.keys[0]) && !(k.keys[1] && is(k.keys[1]))) continue;
        if (!tok) return true;
        const float v = to_float(tok);
        if (k.field) e->*k.field = v;
        else e->cleanSize[static_cast<std::size_t>(k.side)] = v;
        // A bad value is kept; the operator is told.
        if (!(v > 0.0f)) report(k.message, path_);
        return true;
    }
    if (is("leftOffset:")) {
        if (!tok) return true;
        e->leftOffset = to_float(tok);
        if (!(e->leftOffset > 0.0f)) report_printf("Config file %s: leftOffset should be > 0.0.\n", path_);
        return true;
    }
    if (is("defaultGamma:")) {
        if (!tok) return true;
        e->defaultGamma = to_float(tok);
        if (!(e->defaultGamma > 0.0f)) {
            report("Config file %1: defaultGamma should be > 0.0.\n", path_);
            e->defaultGamma = 0.0000000001f;
        }
        return true;
    }
    if (is("xScaleAdjustment:") || is("yScaleAdjustment:")) {
        if (!tok) return true;
        const bool x = is("xScaleAdjustment:");
        double &v = x ? e->xScaleAdjustment : e->yScaleAdjustment;
        v = to_double(tok);
        if (!(v > 0.0)) {
            report(x ? "Config file %1: xscale should be > 0.0.\n" : "Config file %1: yscale should be > 0.0.\n",
                   path_);
            v = 1.0;
        }
        return true;
    }
    return false;
}

// The keywords with an integer value, as float_keyword.
bool Reader::int_keyword(const char *key, const char *tok) {
    ScannerEntry *e = current_;
    auto is = [key](const char *k) { return std::strcmp(key, k) == 0; };
    struct Plain {
        const char *key;
        int32_t ScannerEntry::*field;
    };
    static const Plain plain[] = {
        {"defaultThreshold:", &ScannerEntry::defaultThreshold},
        {"defaultBlackPoint:", &ScannerEntry::defaultBlackPoint},
        {"defaultWhitePoint:", &ScannerEntry::defaultWhitePoint},
    };
    for (const Plain &p : plain) {
        if (!is(p.key)) continue;
        if (tok) e->*p.field = to_int(tok, 10);
        return true;
    }
    // A range is checked on what the accessor reads back, which falls through to
    // the device record on -1: -1 is refused for contrast, brightness and gamma
    // mode, while -1 for the resolution means the model's value.
    struct Ranged {
        const char *key;
        int base;
        int32_t ScannerEntry::*field;
        int32_t (*read)(const ScannerEntry *);
        const char *message;
    };
    static const Ranged ranged[] = {
        {"defaultContrast:", 10, &ScannerEntry::defaultContrast, defaultContrast_of_ScannerEntry,
         "Config file %1: defaultContrast should be > 0 or less than 255.\n"},
        {"defaultBrightness:", 10, &ScannerEntry::defaultBrightness, defaultBrightness_of_ScannerEntry,
         "Config file %1: defaultBrightness should be > 0 or less than 255.\n"},
        {"defaultGammaMode:", 16, &ScannerEntry::defaultGammaMode, defaultGammaMode_of_ScannerEntry,
         "Config file %1: defaultGammaMode should be > 0 or less than 255.\n"},
    };
    for (const Ranged &r : ranged) {
        if (!is(r.key)) continue;
        if (!tok) return true;
        const bool gammaMode = r.field == &ScannerEntry::defaultGammaMode;
        const int32_t v = to_int(tok, r.base);
        if (gammaMode) set_defaultGammaMode_of_ScannerEntry(e, v);
        else e->*r.field = v;
        const int32_t back = r.read(e);
        if (back < 0 || back > 255) {
            report(r.message, path_);
            if (gammaMode) set_defaultGammaMode_of_ScannerEntry(e, 0);
            else e->*r.field = 0;
        }
        return true;
    }
    if (is("defaultResolution:")) {
        if (!tok) return true;
        e->defaultResolution = to_int(tok, 10);
        if (defaultResolution_of_ScannerEntry(e) <= 0) {
            report("Config file %1: defaultResolution should be > 0.\n", path_);
            e->defaultResolution = 1;
        }
        return true;
    }
    if (is("WaitBetweenDrawings:")) {
        if (!tok) return true;
        // Hexadecimal and unsigned: "1000" is 4096 and a negative value is huge.
        errno = 0;
        const unsigned long long v = std::strtoull(tok, nullptr, 16);
        const bool negative = tok[0] == '-';
        if (v > 1000 || negative || errno == ERANGE) {
            report_printf("Config file %s: WaitBetweenDrawings should be >= 0 or less than 1000. \n", path_);
            e->WaitBetweenDrawings = 0;
        } else {
            e->WaitBetweenDrawings = static_cast<int32_t>(v);
        }
        return true;
    }
    return false;
}

const char *const kGammaFileModels[] = {"Sharp_JX-610",    "Epson_836XL",     "Epson_1640XL",    "Epson_GT-15000",
                                        "Microtek_9600XL", "Fujitsu_fi4750C", "Fujitsu_fi5750C", "Umax_Mirage"};

// The "not stated" mark -1 takes the device's value; anything else is given to it.
template <typename T>
void merge(T &own, T &device) {
    if (own == static_cast<T>(-1)) own = device;
    else device = own;
}

void complete(ScannerEntry *e, const QString &path) {
    if (e->model == QLatin1String("TWAIN")) {
        e->name = QStringLiteral("TWAIN");
        e->device = QStringLiteral("sc0;d0;l0");
        e->forceAllResolutions = true;
    }
    bool missing = false;
    if (e->name.isEmpty()) {
        report("In file '%1', missing name.\n", path);
        missing = true;
    }
    if (e->device.isEmpty()) {
        report("In file '%1', missing device.\n", path);
        missing = true;
    }
    if (e->model.isEmpty()) {
        report("In file '%1', missing model.\n", path);
        missing = true;
    }
    if (missing) return;

    ScanDeviceInfo *dev = e->device_info.get();
    dev->name = e->name;
    dev->device = e->device;
    dev->model = e->model;
    for (const char *m : kGammaFileModels)
        if (e->model == QLatin1String(m))
            dev->gamma_file = e->gammaFile.isNull() ? QStringLiteral("(None)") : e->gammaFile;
    if (!e->dropOutColor.isNull()) dev->dropOutColor = e->dropOutColor;
    dev->rgbDropList = e->rgbDropList;
    if (e->leftOffset != 0.0f) dev->leftOffset = e->leftOffset;

    merge(e->defaultGamma, dev->default_gamma);
    merge(e->defaultThreshold, dev->default_threshold);
    merge(e->defaultBlackPoint, dev->default_black_point);
    merge(e->defaultWhitePoint, dev->default_white_point);
    merge(e->defaultResolution, dev->default_resolution);
    merge(e->defaultContrast, dev->default_contrast);
    merge(e->defaultBrightness, dev->default_brightness);

    setup_model_of_devices(dev);
    if (e->forceAllResolutions) widen_resolutions_of_ScanDeviceInfo(dev);
    check_resolution_of_ScannerEntry(e);
}

}  // namespace

std::unique_ptr<ScannerList> read_ScannerList(const QString &path, bool keepTwain, const std::optional<QString> &host) {
    auto list = std::make_unique<ScannerList>();
    if (host) {
        list->host = *host;
    } else if (!oswUtil::getShortMachineName(list->host)) {
        MSG_Scope(MSG_Text("Scan", "Failed to get hostname, giving up on config file."), MSG_ACTION_ERROR);
        list->host.clear();
        return list;
    }

    std::FILE *file = std::fopen(QFile::encodeName(path).constData(), "r");
    if (!file) {
        report("Failed to open config file: %1", path);
        return list;
    }
    Reader reader(*list, path);
    char buffer[kLineBuffer] = {};
    for (;;) {
        if (!std::fgets(buffer, kLineBuffer, file)) {
            if (!std::ferror(file)) break;
            // The buffer is handled once more as it stood. A file that keeps
            // failing would never end, so reading stops there.
            report("Error detected while reading config file: %1", path);
            reader.line(buffer);
            break;
        }
        reader.line(buffer);
    }
    std::fclose(file);

    for (const auto &e : list->entries) complete(e.get(), path);
    if (!keepTwain) list->setAside = take_TWAIN_of_ScannerList(list.get());
    return list;
}
