// Scan information lines: every version read, the current one written.
#include <gtest/gtest.h>

#include <clocale>
#include <memory>
#include <sstream>
#include <string>
#include <tuple>

#include "scan/vector_scaninfo.h"
#include "tests/support/message_capture.h"

namespace {

struct InfoDeleter {
    void operator()(LMV_scaninfo *p) const { destroy_LMV_scaninfo(p); }
};
using InfoPtr = std::unique_ptr<LMV_scaninfo, InfoDeleter>;

// A record with every field away from its reset value.
InfoPtr filled() {
    InfoPtr info(create_LMV_scaninfo());
    *info = {3, "studio-3", "Sharp_JX610", 140, 240, 12, 1.8f, 2, 2, 1, 12.0f, 1.0f, 300.0f, 0.0123f, 1234.5f, 88.25f};
    return info;
}

// Every field in one line, so that a table row can name a whole record.
std::string fields(const LMV_scaninfo &i) {
    std::ostringstream s;
    s << "v" << i.version << " " << i.scan_host << "|" << i.scanner_name << " T" << i.threshold << " B"
      << i.black_point << " W" << i.white_point << " G" << i.gamma << " S" << i.speed << " side" << i.peg_side
      << " pegged" << i.pegged << " F" << i.paper_size << " n" << i.pages << " D" << i.dpi << " A"
      << i.rotation_angle << " X" << i.rotation_center_x << " Y" << i.rotation_center_y;
    return s.str();
}

const std::string kReset = "v-1 | T-1 B-1 W240 G-1 S2 side0 pegged-1 F-1 n0 D0 A0 X0 Y0";  // of filled()

const char *const kVersion3 =
    "Version: 3 Scan Host: hostC Scanner Name: JX610 Threshold: -1 Black point: 5 White point: 250 Gamma: 1.5 "
    "Speed: 0 Peg Side: Right Pegged: Yes Paper Size: 12 Pages: 1 DPI: 300 Rotation Angle: 0.002 "
    "Rotation Center X: 1500 Rotation Center Y: 75.5 ";

} // namespace

// Each line read into a filled record: what was read, the reset values for
// what the line has not, and the message of a failure.
TEST(ScanInfo, LinesOfEveryVersionAndTheirFailures) {
    struct Case {
        std::string text;
        int result;
        std::string want, error;
    };
    const std::string v3 = kVersion3;
    const Case cases[] = {
        // Version 1 has one Threshold/Gamma value, which is the gamma.
        {"Version: 1 Scan Host: hostA Scanner Name: M3096G Threshold/Gamma: 2.2 Peg Side: Bottom Pegged: Yes "
         "Paper Size: 16 Pages: 1 DPI: 200 Rotation Angle: -0.01 Rotation Center X: 10.5 Rotation Center Y: 20 ",
         0, "v1 hostA|M3096G T-1 B-1 W240 G2.2 S2 side4 pegged1 F16 n1 D200 A-0.01 X10.5 Y20", ""},
        // Version 2 has threshold and speed but no black and white points.
        {"Version: 2 Scan Host: hostB Scanner Name: IS330 Threshold: 128 Gamma: 1 Speed: 3 Peg Side: Left "
         "Pegged: No Paper Size: 12 Pages: 2 DPI: 400 Rotation Angle: 0 Rotation Center X: 0 Rotation Center Y: 0 ",
         0, "v2 hostB|IS330 T128 B-1 W240 G1 S3 side1 pegged0 F12 n2 D400 A0 X0 Y0", ""},
        {v3, 0, "v3 hostC|JX610 T-1 B5 W250 G1.5 S0 side3 pegged1 F12 n1 D300 A0.002 X1500 Y75.5", ""},
        // Tokens match exactly, with case.
        {std::string(v3).replace(v3.find("Pegged: Yes"), 11, "Pegged: yes").replace(v3.find("Right"), 5, "RIGHT"),
         0, "v3 hostC|JX610 T-1 B5 W250 G1.5 S0 side0 pegged0 F12 n1 D300 A0.002 X1500 Y75.5", ""},
        {"", 0, kReset, ""},
        {"Version: 4" + v3.substr(10), 1, kReset, "Unrecognized scaninfo version 4.\n"},
        {" ", 1, kReset, "LMV_scaninfo_from_str(): parse error.\n"},
        {"version: 3", 1, kReset, "LMV_scaninfo_from_str(): parse error.\n"},
        // A short line keeps what was read and still sets side and pegged.
        {v3.substr(0, v3.find("Rotation Center Y:")), 1,
         "v3 hostC|JX610 T-1 B5 W250 G1.5 S0 side3 pegged1 F12 n1 D300 A0.002 X1500 Y0",
         "LMV_scaninfo_from_str(): parse error (15).\n"},
        // Broken before the side: no side, and not pegged.
        {"Version: 2 Scan Host: a Scanner Name: b Threshold: 9 Gamma: oops", 1,
         "v2 a|b T9 B-1 W240 G-1 S2 side0 pegged0 F-1 n0 D0 A0 X0 Y0", "LMV_scaninfo_from_str(): parse error (4).\n"},
    };
    for (const Case &c : cases) {
        InfoPtr info = filled();
        MessageCapture capture;
        EXPECT_EQ(LMV_scaninfo_from_str(info.get(), c.text.c_str()), c.result) << c.text;
        EXPECT_EQ(fields(*info), c.want) << c.text;
        EXPECT_EQ(capture.errors(), c.error.empty() ? std::vector<std::string>{} : std::vector{c.error}) << c.text;
    }
    InfoPtr info = filled();
    EXPECT_EQ(LMV_scaninfo_from_str(info.get(), nullptr), 0);
    EXPECT_EQ(fields(*info), kReset);
}

// Names become single tokens, cut to the reader's buffer; the record keeps
// what the line carries.
TEST(ScanInfo, WriterUsesVersion3PercentGAndSingleTokenNames) {
    InfoPtr out = filled();
    out->gamma = 1.0f / 3.0f;
    out->dpi = 1234567.0f;
    out->scan_host = "";
    out->scanner_name = "Sharp JX610\tat desk 2";
    EXPECT_EQ(LMV_scaninfo_to_str(out.get()),
              "Version: 3 Scan Host: unknown Scanner Name: Sharp_JX610_at_desk_2 Threshold: 140 Black point: 12 "
              "White point: 240 Gamma: 0.333333 Speed: 2 Peg Side: Top Pegged: Yes Paper Size: 12 Pages: 1 "
              "DPI: 1.23457e+06 Rotation Angle: 0.0123 Rotation Center X: 1234.5 Rotation Center Y: 88.25 ");
    EXPECT_EQ(out->scan_host + " " + out->scanner_name, "unknown Sharp_JX610_at_desk_2");

    out = filled();
    out->scan_host.assign(1006, 'h').append("\xc3\xa9").append("tail");  // a two-byte character across the limit
    const std::string line = LMV_scaninfo_to_str(out.get());
    EXPECT_EQ(out->scan_host, std::string(1006, 'h'));
    InfoPtr in(create_LMV_scaninfo());
    ASSERT_EQ(LMV_scaninfo_from_str(in.get(), line.c_str()), 0);
    EXPECT_EQ(fields(*in), fields(*out));

    // Odd peg values: an unknown side is told, an unknown pegged is written as pegged.
    MessageCapture capture;
    for (auto [side, pegged, text] : {std::tuple(9, -1, "Peg Side: NO_PEG_INFO Pegged: Yes "),
                                      {0, 0, "Peg Side: NO_PEG_INFO Pegged: No "}}) {
        out->peg_side = side;
        out->pegged = pegged;
        EXPECT_NE(LMV_scaninfo_to_str(out.get()).find(text), std::string::npos) << text;
    }
    destroy_LMV_scaninfo(nullptr);
    EXPECT_EQ(capture.errors(), (std::vector<std::string>{"LMV_scaninfo_to_str(): Unhandled peg_side case.\n",
                                                          "destroy_LMV_scaninfo(NULL).\n"}));
}

TEST(ScanInfo, NumbersUseADotInAnyLocale) {
    // A station running in a comma locale still writes and reads "1.5".
    if (!std::setlocale(LC_NUMERIC, "de_DE.UTF-8") && !std::setlocale(LC_NUMERIC, "fr_FR.UTF-8"))
        GTEST_SKIP() << "no comma locale installed";
    InfoPtr info = filled();
    info->gamma = 1.5f;
    const std::string line = LMV_scaninfo_to_str(info.get());
    InfoPtr in(create_LMV_scaninfo());
    const int result = LMV_scaninfo_from_str(in.get(), kVersion3);
    std::setlocale(LC_NUMERIC, "C");
    EXPECT_NE(line.find("Gamma: 1.5 "), std::string::npos) << line;
    EXPECT_EQ(result, 0);
    EXPECT_EQ(in->gamma, 1.5f);
}
