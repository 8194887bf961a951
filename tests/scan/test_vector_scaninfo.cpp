// Scan information lines: every version read, the current one written.
#include <gtest/gtest.h>

#include <clocale>
#include <memory>
#include <string>

#include "scan/vector_scaninfo.h"
#include "tests/support/message_capture.h"

namespace {

struct InfoDeleter {
    void operator()(LMV_scaninfo *p) const { destroy_LMV_scaninfo(p); }
};
using InfoPtr = std::unique_ptr<LMV_scaninfo, InfoDeleter>;

InfoPtr fresh()
{
    return InfoPtr(create_LMV_scaninfo());
}

// A record with every field away from its reset value.
InfoPtr filled()
{
    InfoPtr info = fresh();
    info->scan_host = "studio-3";
    info->scanner_name = "Sharp_JX610";
    info->threshold = 140;
    info->black_point = 12;
    info->white_point = 240;
    info->gamma = 1.8f;
    info->speed = 2;
    info->peg_side = 2;
    info->pegged = 1;
    info->paper_size = 12.0f;
    info->pages = 1.0f;
    info->dpi = 300.0f;
    info->rotation_angle = 0.0123f;
    info->rotation_center_x = 1234.5f;
    info->rotation_center_y = 88.25f;
    return info;
}

void expectReset(const LMV_scaninfo &i)
{
    EXPECT_EQ(i.version, -1);
    EXPECT_EQ(i.scan_host, "");
    EXPECT_EQ(i.scanner_name, "");
    EXPECT_EQ(i.threshold, -1);
    EXPECT_EQ(i.black_point, -1);
    EXPECT_EQ(i.gamma, -1.0f);
    EXPECT_EQ(i.peg_side, 0);
    EXPECT_EQ(i.pegged, -1);
    EXPECT_EQ(i.paper_size, -1.0f);
    EXPECT_EQ(i.pages, 0.0f);
    EXPECT_EQ(i.dpi, 0.0f);
    EXPECT_EQ(i.rotation_angle, 0.0f);
    EXPECT_EQ(i.rotation_center_x, 0.0f);
    EXPECT_EQ(i.rotation_center_y, 0.0f);
}

const char *const kVersion1 =
    "Version: 1 Scan Host: hostA Scanner Name: M3096G Threshold/Gamma: 2.2 Peg Side: Bottom Pegged: Yes "
    "Paper Size: 16 Pages: 1 DPI: 200 Rotation Angle: -0.01 Rotation Center X: 10.5 Rotation Center Y: 20 ";
const char *const kVersion2 =
    "Version: 2 Scan Host: hostB Scanner Name: IS330 Threshold: 128 Gamma: 1 Speed: 3 Peg Side: Left "
    "Pegged: No Paper Size: 12 Pages: 2 DPI: 400 Rotation Angle: 0 Rotation Center X: 0 Rotation Center Y: 0 ";
const char *const kVersion3 =
    "Version: 3 Scan Host: hostC Scanner Name: JX610 Threshold: -1 Black point: 5 White point: 250 Gamma: 1.5 "
    "Speed: 0 Peg Side: Right Pegged: Yes Paper Size: 12 Pages: 1 DPI: 300 Rotation Angle: 0.002 "
    "Rotation Center X: 1500 Rotation Center Y: 75.5 ";

} // namespace

TEST(ScanInfo, CreateAndResetGiveTheResetValues)
{
    InfoPtr info = fresh();
    expectReset(*info);
    EXPECT_EQ(info->white_point, 0);
    EXPECT_EQ(info->speed, 0);
    info = filled();
    reset_LMV_scaninfo(info.get());
    expectReset(*info);
    // Not part of a reset.
    EXPECT_EQ(info->white_point, 240);
    EXPECT_EQ(info->speed, 2);
}

TEST(ScanInfo, DestroyingNullIsReported)
{
    MessageCapture capture;
    destroy_LMV_scaninfo(nullptr);
    EXPECT_EQ(capture.errors(), std::vector<std::string>{"destroy_LMV_scaninfo(NULL).\n"});
}

TEST(ScanInfo, Version1PutsThresholdGammaIntoGammaAndKeepsTheRest)
{
    InfoPtr info = filled();
    MessageCapture capture;
    EXPECT_EQ(LMV_scaninfo_from_str(info.get(), kVersion1), 0);
    EXPECT_TRUE(capture.errors().empty());
    EXPECT_EQ(info->version, 1);
    EXPECT_EQ(info->scan_host, "hostA");
    EXPECT_EQ(info->scanner_name, "M3096G");
    EXPECT_EQ(info->gamma, 2.2f);
    EXPECT_EQ(info->peg_side, 4);
    EXPECT_EQ(info->pegged, 1);
    EXPECT_EQ(info->paper_size, 16.0f);
    EXPECT_EQ(info->pages, 1.0f);
    EXPECT_EQ(info->dpi, 200.0f);
    EXPECT_EQ(info->rotation_angle, -0.01f);
    EXPECT_EQ(info->rotation_center_x, 10.5f);
    EXPECT_EQ(info->rotation_center_y, 20.0f);
    // Not in a version 1 line: reset values, and what a reset leaves alone.
    EXPECT_EQ(info->threshold, -1);
    EXPECT_EQ(info->black_point, -1);
    EXPECT_EQ(info->white_point, 240);
    EXPECT_EQ(info->speed, 2);
}

TEST(ScanInfo, Version2HasThresholdAndSpeedButNoPoints)
{
    InfoPtr info = fresh();
    EXPECT_EQ(LMV_scaninfo_from_str(info.get(), kVersion2), 0);
    EXPECT_EQ(info->version, 2);
    EXPECT_EQ(info->threshold, 128);
    EXPECT_EQ(info->gamma, 1.0f);
    EXPECT_EQ(info->speed, 3);
    EXPECT_EQ(info->peg_side, 1);
    EXPECT_EQ(info->pegged, 0);
    EXPECT_EQ(info->dpi, 400.0f);
    EXPECT_EQ(info->black_point, -1);
    EXPECT_EQ(info->white_point, 0);
}

TEST(ScanInfo, Version3ReadsEveryField)
{
    InfoPtr info = fresh();
    EXPECT_EQ(LMV_scaninfo_from_str(info.get(), kVersion3), 0);
    EXPECT_EQ(info->version, 3);
    EXPECT_EQ(info->scan_host, "hostC");
    EXPECT_EQ(info->threshold, -1);
    EXPECT_EQ(info->black_point, 5);
    EXPECT_EQ(info->white_point, 250);
    EXPECT_EQ(info->gamma, 1.5f);
    EXPECT_EQ(info->speed, 0);
    EXPECT_EQ(info->peg_side, 3);
    EXPECT_EQ(info->pegged, 1);
    EXPECT_EQ(info->rotation_angle, 0.002f);
    EXPECT_EQ(info->rotation_center_x, 1500.0f);
    EXPECT_EQ(info->rotation_center_y, 75.5f);
}

TEST(ScanInfo, NoTextIsSuccessWithAResetRecord)
{
    InfoPtr info = filled();
    MessageCapture capture;
    EXPECT_EQ(LMV_scaninfo_from_str(info.get(), ""), 0);
    expectReset(*info);
    EXPECT_EQ(LMV_scaninfo_from_str(info.get(), nullptr), 0);
    expectReset(*info);
    EXPECT_TRUE(capture.lines().empty());
}

TEST(ScanInfo, UnknownVersionLeavesTheRecordReset)
{
    InfoPtr info = filled();
    MessageCapture capture;
    const std::string v4 = std::string("Version: 4") + (kVersion3 + 10);
    EXPECT_EQ(LMV_scaninfo_from_str(info.get(), v4.c_str()), 1);
    expectReset(*info);
    EXPECT_EQ(capture.errors(), std::vector<std::string>{"Unrecognized scaninfo version 4.\n"});
    bool asserted = false;
    for (const auto &line : capture.texts('I'))
        asserted |= line.starts_with("Internal assertion error detected (");
    EXPECT_TRUE(asserted);
}

TEST(ScanInfo, TextWithoutAVersionIsAParseError)
{
    for (const char *text : {"Scan Host: x", " ", "Version: x", "version: 3"}) {
        InfoPtr info = filled();
        MessageCapture capture;
        EXPECT_EQ(LMV_scaninfo_from_str(info.get(), text), 1) << text;
        expectReset(*info);
        EXPECT_EQ(capture.errors(), std::vector<std::string>{"LMV_scaninfo_from_str(): parse error.\n"}) << text;
    }
}

TEST(ScanInfo, ShortLineKeepsWhatWasReadAndStillSetsSideAndPegged)
{
    // Fifteen fields: the line stops before the last centre.
    std::string text = kVersion3;
    text.resize(text.find("Rotation Center Y:"));
    InfoPtr info = fresh();
    MessageCapture capture;
    EXPECT_EQ(LMV_scaninfo_from_str(info.get(), text.c_str()), 1);
    EXPECT_EQ(capture.errors(), std::vector<std::string>{"LMV_scaninfo_from_str(): parse error (15).\n"});
    EXPECT_EQ(info->peg_side, 3);
    EXPECT_EQ(info->pegged, 1);
    EXPECT_EQ(info->rotation_center_x, 1500.0f);
    EXPECT_EQ(info->rotation_center_y, 0.0f);
}

TEST(ScanInfo, LineBrokenBeforeTheSideGivesNoSide)
{
    const char *text = "Version: 2 Scan Host: a Scanner Name: b Threshold: 9 Gamma: oops";
    InfoPtr info = fresh();
    MessageCapture capture;
    EXPECT_EQ(LMV_scaninfo_from_str(info.get(), text), 1);
    EXPECT_EQ(capture.errors(), std::vector<std::string>{"LMV_scaninfo_from_str(): parse error (4).\n"});
    EXPECT_EQ(info->threshold, 9);
    EXPECT_EQ(info->gamma, -1.0f);
    EXPECT_EQ(info->peg_side, 0);
    EXPECT_EQ(info->pegged, 0);
}

TEST(ScanInfo, TokensMatchExactlyWithCase)
{
    std::string text = kVersion3;
    text.replace(text.find("Pegged: Yes"), 11, "Pegged: yes");
    text.replace(text.find("Peg Side: Right"), 15, "Peg Side: RIGHT");
    InfoPtr info = fresh();
    EXPECT_EQ(LMV_scaninfo_from_str(info.get(), text.c_str()), 0);
    EXPECT_EQ(info->pegged, 0);
    EXPECT_EQ(info->peg_side, 0);

    for (auto [token, side] : {std::pair{"Top", 2}, {"Bottom", 4}, {"Left", 1}, {"Right", 3}, {"NO_PEG_INFO", 0}}) {
        text = kVersion3;
        text.replace(text.find("Right"), 5, token);
        EXPECT_EQ(LMV_scaninfo_from_str(info.get(), text.c_str()), 0);
        EXPECT_EQ(info->peg_side, side) << token;
    }
}

TEST(ScanInfo, WriterUsesVersion3AndPercentG)
{
    InfoPtr info = filled();
    info->gamma = 1.0f / 3.0f;
    info->dpi = 1234567.0f;
    const std::string line = LMV_scaninfo_to_str(info.get());
    EXPECT_EQ(line,
              "Version: 3 Scan Host: studio-3 Scanner Name: Sharp_JX610 Threshold: 140 Black point: 12 "
              "White point: 240 Gamma: 0.333333 Speed: 2 Peg Side: Top Pegged: Yes Paper Size: 12 Pages: 1 "
              "DPI: 1.23457e+06 Rotation Angle: 0.0123 Rotation Center X: 1234.5 Rotation Center Y: 88.25 ");
}

TEST(ScanInfo, RoundTripKeepsEveryField)
{
    InfoPtr out = filled();
    const std::string line = LMV_scaninfo_to_str(out.get());
    InfoPtr in = fresh();
    ASSERT_EQ(LMV_scaninfo_from_str(in.get(), line.c_str()), 0) << line;
    EXPECT_EQ(in->version, 3);
    EXPECT_EQ(in->scan_host, out->scan_host);
    EXPECT_EQ(in->scanner_name, out->scanner_name);
    EXPECT_EQ(in->threshold, out->threshold);
    EXPECT_EQ(in->black_point, out->black_point);
    EXPECT_EQ(in->white_point, out->white_point);
    EXPECT_EQ(in->gamma, out->gamma);
    EXPECT_EQ(in->speed, out->speed);
    EXPECT_EQ(in->peg_side, out->peg_side);
    EXPECT_EQ(in->pegged, out->pegged);
    EXPECT_EQ(in->paper_size, out->paper_size);
    EXPECT_EQ(in->dpi, out->dpi);
    // Six significant digits, not every bit of a float.
    EXPECT_FLOAT_EQ(in->rotation_angle, out->rotation_angle);
    EXPECT_FLOAT_EQ(in->rotation_center_x, out->rotation_center_x);
}

TEST(ScanInfo, NamesBecomeSingleTokensThatReadBack)
{
    InfoPtr out = filled();
    out->scan_host = "";
    out->scanner_name = "Fujitsu M3096G\tat desk 2";
    const std::string line = LMV_scaninfo_to_str(out.get());
    EXPECT_NE(line.find("Scan Host: unknown Scanner Name: Fujitsu_M3096G_at_desk_2 Threshold:"), std::string::npos)
        << line;
    // The record carries what the line carries.
    EXPECT_EQ(out->scan_host, "unknown");
    EXPECT_EQ(out->scanner_name, "Fujitsu_M3096G_at_desk_2");
    InfoPtr in = fresh();
    EXPECT_EQ(LMV_scaninfo_from_str(in.get(), line.c_str()), 0);
    EXPECT_EQ(in->scanner_name, "Fujitsu_M3096G_at_desk_2");
    EXPECT_EQ(in->peg_side, 2);
}

TEST(ScanInfo, OverlongNamesAreCutToTheReaderBuffer)
{
    InfoPtr out = filled();
    out->scan_host = std::string(1006, 'h') + "\xc3\xa9" + "tail";  // a two-byte character across the limit
    const std::string line = LMV_scaninfo_to_str(out.get());
    EXPECT_EQ(out->scan_host, std::string(1006, 'h'));
    InfoPtr in = fresh();
    EXPECT_EQ(LMV_scaninfo_from_str(in.get(), line.c_str()), 0);
    EXPECT_EQ(in->scan_host, out->scan_host);
}

TEST(ScanInfo, OddPegValues)
{
    InfoPtr info = filled();
    info->peg_side = 9;
    info->pegged = -1;  // unknown is written as pegged
    MessageCapture capture;
    const std::string line = LMV_scaninfo_to_str(info.get());
    EXPECT_EQ(capture.errors(), std::vector<std::string>{"LMV_scaninfo_to_str(): Unhandled peg_side case.\n"});
    EXPECT_NE(line.find("Peg Side: NO_PEG_INFO Pegged: Yes "), std::string::npos) << line;
    info->peg_side = 0;
    info->pegged = 0;
    EXPECT_NE(LMV_scaninfo_to_str(info.get()).find("Peg Side: NO_PEG_INFO Pegged: No "), std::string::npos);
}

TEST(ScanInfo, NumbersUseADotInAnyLocale)
{
    // A station running in a comma locale still writes and reads "1.5".
    const char *comma = std::setlocale(LC_NUMERIC, "de_DE.UTF-8");
    if (!comma)
        comma = std::setlocale(LC_NUMERIC, "fr_FR.UTF-8");
    if (!comma)
        GTEST_SKIP() << "no comma locale installed";
    InfoPtr info = filled();
    info->gamma = 1.5f;
    const std::string line = LMV_scaninfo_to_str(info.get());
    InfoPtr in = fresh();
    const int result = LMV_scaninfo_from_str(in.get(), kVersion3);
    std::setlocale(LC_NUMERIC, "C");
    EXPECT_NE(line.find("Gamma: 1.5 "), std::string::npos) << line;
    EXPECT_EQ(result, 0);
    EXPECT_EQ(in->gamma, 1.5f);
}
