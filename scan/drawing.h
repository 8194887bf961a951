#pragma once
// Drawing: the record of one sheet on its way through the station, from the
// operator's choices through the driver and registration to the scan file.
// Reached only through the flat accessors below; every accessor tolerates a
// null record with an internal assertion and a neutral result.
#include <QString>

#include <cstdint>

struct CELIO_FileInfo;
struct LMV_pixmap;
struct LMV_scaninfo;
struct Drawing;

// Life. `id` of a new record is the process-wide serial, which every create
// and every load takes one step further.
Drawing *create_Drawing(const QString &element, const QString &name, const QString &path);
// Releases the pixmap and the scan information and nulls the caller's pointer.
void destroy_Drawing(Drawing **drawing);

// Reads a scan file. `scaninfo_text` receives the text stored with the image
// (the scan information string for files of the station); `info`, when given,
// what the reader found in the file. Null on failure, after a message.
Drawing *load_Drawing(const QString &path, QString &scaninfo_text, CELIO_FileInfo *info = nullptr);
// Writes path/element-name.ext with the scan information as its comment, and
// the side file path/element-name.si when asked for. 0 on success, 1 when the
// image could not be written (the previous file then stays as it was).
int save_Drawing(Drawing *drawing);
// Mirrors the pixmap so that the pegs stay on their side: upside down for pegs
// on the left or right, left to right for the others.
void flip_Drawing(Drawing *drawing);

// "left", "top", "right", "bottom"; "" for any other value. The text is also
// left in `last_peg_side_name`.
const char *peg_side_name(int32_t side);
extern const char *last_peg_side_name;

// Fields of the record.
QString name_of_Drawing(const Drawing *drawing);
QString path_of_Drawing(const Drawing *drawing);
// The file's name without folder and extension: element-name, or for a
// record loaded from a file the base name of that file.
QString file_base_name_of_Drawing(const Drawing *drawing);
uint8_t saved_of_Drawing(const Drawing *drawing);
int32_t file_format_of_Drawing(const Drawing *drawing);
void set_file_format_of_Drawing(Drawing *drawing, int32_t format);
int32_t pixel_shape_of_Drawing(const Drawing *drawing);
void set_pixel_shape_of_Drawing(Drawing *drawing, int32_t shape);
double window_xres_inches_of_Drawing(const Drawing *drawing);
void set_window_xres_inches_of_Drawing(Drawing *drawing, double inches);
double window_yres_inches_of_Drawing(const Drawing *drawing);
void set_window_yres_inches_of_Drawing(Drawing *drawing, double inches);
double window_xoffset_inches_of_Drawing(const Drawing *drawing);
void set_window_xoffset_inches_of_Drawing(Drawing *drawing, double inches);
int32_t scan_depth_of_Drawing(const Drawing *drawing);  // 0 black and white, 1 grey, 2 colour
void set_scan_depth_of_Drawing(Drawing *drawing, int32_t depth);
// The pixmap stays owned by the record; no reference is added.
LMV_pixmap *pixmap_of_Drawing(const Drawing *drawing);
// Takes over `pixmap` and releases the one held before, unless it is the same.
void set_pixmap_of_Drawing(Drawing *drawing, LMV_pixmap *pixmap);
LMV_scaninfo *scaninfo_of_Drawing(const Drawing *drawing);
void set_write_scaninfo_file_of_Drawing(Drawing *drawing, uint8_t on);
int32_t id_of_Drawing(Drawing **drawing);

// Fields kept in the scan information, and so in the file.
int32_t threshold_of_Drawing(const Drawing *drawing);
void set_threshold_of_Drawing(Drawing *drawing, int32_t threshold);
void set_black_point_of_Drawing(Drawing *drawing, int32_t black_point);
void set_white_point_of_Drawing(Drawing *drawing, int32_t white_point);
void set_gamma_of_Drawing(Drawing *drawing, float gamma);
void set_speed_of_Drawing(Drawing *drawing, int32_t speed);
int32_t peg_side_of_Drawing(const Drawing *drawing);
void set_peg_side_of_Drawing(Drawing *drawing, int32_t side);
bool pegged_of_Drawing(const Drawing *drawing);
void set_pegged_of_Drawing(Drawing *drawing, bool pegged);
float paper_size_of_Drawing(const Drawing *drawing);
void set_paper_size_of_Drawing(Drawing *drawing, float field);
float dpi_of_Drawing(const Drawing *drawing);
void set_dpi_of_Drawing(Drawing *drawing, float dpi);
void set_pages_of_Drawing(Drawing *drawing, float pages);
void set_scan_host_of_Drawing(Drawing *drawing, const QString &host);
void set_scanner_name_of_Drawing(Drawing *drawing, const QString &name);
// Stores the registration's turn (radians, about a centre in pixels).
void rotation_of_Drawing(Drawing *drawing, float angle, float center_x, float center_y);
