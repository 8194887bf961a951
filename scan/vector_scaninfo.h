#pragma once
// LMV_scaninfo: how a sheet was scanned, carried as one line of text in the
// scan file's comment and, on request, in a ".si" side file.
#include <cstdint>
#include <string>

struct LMV_scaninfo {
    int32_t version = -1;
    std::string scan_host;
    std::string scanner_name;
    int32_t threshold = -1;
    int32_t white_point = 0;
    int32_t black_point = -1;
    float gamma = -1.0f;
    int32_t speed = 0;
    int32_t peg_side = 0;  // 0 none, 1 left, 2 top, 3 right, 4 bottom
    int32_t pegged = -1;   // -1 not known, else 0 or 1
    float paper_size = -1.0f;
    float pages = 0.0f;
    float dpi = 0.0f;
    float rotation_angle = 0.0f;  // radians
    float rotation_center_x = 0.0f;
    float rotation_center_y = 0.0f;
};

LMV_scaninfo *create_LMV_scaninfo();
// Back to the values of a fresh read; white point and speed are kept.
void reset_LMV_scaninfo(LMV_scaninfo *info);
void destroy_LMV_scaninfo(LMV_scaninfo *info);

// The line of the current version (3). Host and scanner name are written as
// single tokens, and the record keeps the tokens that were written.
std::string LMV_scaninfo_to_str(LMV_scaninfo *info);
// Reads a line of any version into `info`: 0 on success or for no text, 1 on
// a parse error (the fields read so far stay).
int LMV_scaninfo_from_str(LMV_scaninfo *info, const char *text);

// "Left", "Top", "Right", "Bottom" or "NO_PEG_INFO".
const char *peg_side_text(int32_t side);
