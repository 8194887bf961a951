// The scan information line: written in the current version, read in any.
#include "scan/vector_scaninfo.h"

#include <cstdio>
#include <cstring>
#include <locale.h>

#include "suite/base/assertion.h"
#include "suite/base/msg_scope.h"

namespace {

// Room for a host or scanner name token, with its NUL.
constexpr size_t kTokenBuffer = 1008;
// Room for a whole line: two full tokens and the rest.
constexpr size_t kLineBuffer = 3008;

const char *const kFormatV1 =
    "Version: %d Scan Host: %1007s Scanner Name: %1007s Threshold/Gamma: %g Peg Side: %1007s Pegged: %1007s "
    "Paper Size: %g Pages: %g DPI: %g Rotation Angle: %g Rotation Center X: %g Rotation Center Y: %g ";
const char *const kFormatV2 =
    "Version: %d Scan Host: %1007s Scanner Name: %1007s Threshold: %d Gamma: %g Speed: %d Peg Side: %1007s "
    "Pegged: %1007s Paper Size: %g Pages: %g DPI: %g Rotation Angle: %g Rotation Center X: %g "
    "Rotation Center Y: %g ";
const char *const kFormatV3 =
    "Version: %d Scan Host: %1007s Scanner Name: %1007s Threshold: %d Black point: %d White point: %d Gamma: %g "
    "Speed: %d Peg Side: %1007s Pegged: %1007s Paper Size: %g Pages: %g DPI: %g Rotation Angle: %g "
    "Rotation Center X: %g Rotation Center Y: %g ";

// Numbers are written and read with a dot whatever the operator's locale, so
// that a line travels between stations.
class CLocaleScope {
public:
    CLocaleScope()
    {
        static const locale_t c = newlocale(LC_ALL_MASK, "C", locale_t(nullptr));
        if (c)
            previous_ = uselocale(c);
    }
    ~CLocaleScope()
    {
        if (previous_)
            uselocale(previous_);
    }
    CLocaleScope(const CLocaleScope &) = delete;
    CLocaleScope &operator=(const CLocaleScope &) = delete;

private:
    locale_t previous_ = nullptr;
};

void reportError(MSG_Text text)
{
    MSG_Scope(std::move(text), MSG_ACTION_ERROR);
}

bool isBlank(unsigned char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

// A name as one token of the line: blanks become "_", an empty name is
// "unknown", and the length fits the reader's buffer without splitting a
// UTF-8 character.
std::string nameToken(const std::string &name)
{
    std::string token(name.c_str());  // a NUL ends the name, as in the line
    for (char &c : token)
        if (isBlank(static_cast<unsigned char>(c)))
            c = '_';
    if (token.size() > kTokenBuffer - 1) {
        size_t cut = kTokenBuffer - 1;
        while (cut > 0 && (static_cast<unsigned char>(token[cut]) & 0xC0) == 0x80)
            --cut;
        token.resize(cut);
    }
    return token.empty() ? "unknown" : token;
}

int32_t pegSideOfToken(const char *token)
{
    if (std::strcmp(token, "Top") == 0)
        return 2;
    if (std::strcmp(token, "Bottom") == 0)
        return 4;
    if (std::strcmp(token, "Left") == 0)
        return 1;
    if (std::strcmp(token, "Right") == 0)
        return 3;
    return 0;
}

} // namespace

LMV_scaninfo *create_LMV_scaninfo()
{
    auto *info = new LMV_scaninfo;
    reset_LMV_scaninfo(info);
    return info;
}

void reset_LMV_scaninfo(LMV_scaninfo *info)
{
    LMV_ASSERT_VOID(info);
    info->version = -1;
    info->scan_host.clear();
    info->scanner_name.clear();
    info->threshold = -1;
    info->black_point = -1;
    info->gamma = -1.0f;
    info->peg_side = 0;
    info->pegged = -1;
    info->paper_size = -1.0f;
    info->pages = 0.0f;
    info->dpi = 0.0f;
    info->rotation_angle = 0.0f;
    info->rotation_center_x = 0.0f;
    info->rotation_center_y = 0.0f;
}

void destroy_LMV_scaninfo(LMV_scaninfo *info)
{
    if (!info) {
        reportError(MSG_Text("Scan", "destroy_LMV_scaninfo(NULL).\n"));
        return;
    }
    reset_LMV_scaninfo(info);
    delete info;
}

const char *peg_side_text(int32_t side)
{
    static const char *const kSides[] = {"NO_PEG_INFO", "Left", "Top", "Right", "Bottom"};
    return side >= 0 && side <= 4 ? kSides[side] : "NO_PEG_INFO";
}

std::string LMV_scaninfo_to_str(LMV_scaninfo *info)
{
    LMV_ASSERT_RET(info, std::string());
    if (info->peg_side < 0 || info->peg_side > 4)
        reportError(MSG_Text("Scan", "LMV_scaninfo_to_str(): Unhandled peg_side case.\n"));
    const std::string host = nameToken(info->scan_host);
    const std::string scanner = nameToken(info->scanner_name);

    char line[kLineBuffer];
    int n;
    {
        CLocaleScope cLocale;
        n = std::snprintf(line, sizeof line,
                          "%s %d %s %s %s %s %s %d %s %d %s %d %s %g %s %d %s %s %s %s %s %g %s %g %s %g %s %g %s %g "
                          "%s %g ",
                          "Version:", 3, "Scan Host:", host.c_str(), "Scanner Name:", scanner.c_str(), "Threshold:",
                          info->threshold, "Black point:", info->black_point, "White point:", info->white_point,
                          "Gamma:", double(info->gamma), "Speed:", info->speed, "Peg Side:",
                          peg_side_text(info->peg_side), "Pegged:", info->pegged != 0 ? "Yes" : "No",
                          "Paper Size:", double(info->paper_size), "Pages:", double(info->pages), "DPI:",
                          double(info->dpi), "Rotation Angle:", double(info->rotation_angle),
                          "Rotation Center X:", double(info->rotation_center_x), "Rotation Center Y:",
                          double(info->rotation_center_y));
    }
    LMV_ASSERT_RET(n >= 0 && size_t(n) < sizeof line, std::string());
    // The record keeps the names as the line carries them.
    info->scan_host = host;
    info->scanner_name = scanner;
    return std::string(line, size_t(n));
}

int LMV_scaninfo_from_str(LMV_scaninfo *info, const char *text)
{
    LMV_ASSERT_RET(info, 1);
    reset_LMV_scaninfo(info);
    if (!text || !*text)
        return 0;

    CLocaleScope cLocale;
    int version = 0;
    if (std::sscanf(text, "Version: %d ", &version) != 1) {
        reportError(MSG_Text("Scan", "LMV_scaninfo_from_str(): parse error.\n"));
        return 1;
    }

    char host[kTokenBuffer] = "", scanner[kTokenBuffer] = "", side[kTokenBuffer] = "", pegged[kTokenBuffer] = "";
    int fields = 0, expected = 0;
    switch (version) {
    case 1:
        expected = 12;
        fields = std::sscanf(text, kFormatV1, &info->version, host, scanner, &info->gamma, side, pegged,
                             &info->paper_size, &info->pages, &info->dpi, &info->rotation_angle,
                             &info->rotation_center_x, &info->rotation_center_y);
        break;
    case 2:
        expected = 14;
        fields = std::sscanf(text, kFormatV2, &info->version, host, scanner, &info->threshold, &info->gamma,
                             &info->speed, side, pegged, &info->paper_size, &info->pages, &info->dpi,
                             &info->rotation_angle, &info->rotation_center_x, &info->rotation_center_y);
        break;
    case 3:
        expected = 16;
        fields = std::sscanf(text, kFormatV3, &info->version, host, scanner, &info->threshold, &info->black_point,
                             &info->white_point, &info->gamma, &info->speed, side, pegged, &info->paper_size,
                             &info->pages, &info->dpi, &info->rotation_angle, &info->rotation_center_x,
                             &info->rotation_center_y);
        break;
    default:
        LMV_assertion_msg(__FILE__, __LINE__, "known scaninfo version");
        reportError(MSG_Text("Scan", "Unrecognized scaninfo version %1.\n").arg(version));
        return 1;
    }
    info->scan_host = host;
    info->scanner_name = scanner;

    int result = 0;
    if (fields != expected) {
        // What was read stays, and the side and pegged flag still count.
        reportError(MSG_Text("Scan", "LMV_scaninfo_from_str(): parse error (%1).\n").arg(fields));
        result = 1;
    }
    info->peg_side = pegSideOfToken(side);
    info->pegged = std::strcmp(pegged, "Yes") == 0 ? 1 : 0;
    return result;
}
