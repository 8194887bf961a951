#pragma once
// The adjustable values of one scan depth of a scanner. A value group that is not
// present must not be read.
#include <QString>
#include <QStringList>

#include <cstdint>

struct Drawing;

struct Standard_parameters {
    bool locked = false;  // never set; guards the initialisers

    bool has_threshold = false;
    int32_t threshold_min = -1, threshold_max = -1, threshold_default = -1, threshold_current = -1;

    bool has_black_point = false;
    int32_t black_point_min = -1, black_point_max = -1, black_point_default = -1, black_point_current = -1;

    bool has_white_point = false;
    int32_t white_point_min = -1, white_point_max = -1, white_point_default = -1, white_point_current = -1;

    bool has_gamma = false;
    float gamma_min = -1.0f, gamma_max = -1.0f, gamma_default = -1.0f, gamma_current = -1.0f;

    bool has_speed = false;
    int32_t speed_min = -1, speed_max = -1, speed_default = -1, speed_current = -1;
    QString speed_label;
    bool has_normal = false;
    int32_t normal = -1;
    bool has_fast = false;
    int32_t fast = -1;
    bool has_custom = false;

    bool has_rgbDrop = false;
    int32_t rgbDrop_index = -1;
    QStringList rgbDrop_list;  // implicitly shared with the scanner's list
};

// Initialisers, once per set by a model's setup. Each refuses (internal assertion,
// false, set unchanged) a locked set, a negative bound, min >= max and a value
// outside [min, max].
bool init_threshold_of_Standard_parameters(Standard_parameters *p, int32_t min, int32_t max, int32_t value);
bool init_black_point_of_Standard_parameters(Standard_parameters *p, int32_t min, int32_t max, int32_t value);
bool init_white_point_of_Standard_parameters(Standard_parameters *p, int32_t min, int32_t max, int32_t value);
bool init_gamma_of_Standard_parameters(Standard_parameters *p, float min, float max, float value);
// A null label keeps the present label. Without a normal preset there must be a
// fast one or custom values; presets must lie in the range.
bool init_speed_of_Standard_parameters(Standard_parameters *p, int32_t min, int32_t max, int32_t value,
                                       const char *label, bool has_normal, int32_t normal, bool has_fast,
                                       int32_t fast, bool has_custom);
// An empty list changes nothing.
bool init_rgbDrop_of_Standard_parameters(Standard_parameters *p, const QStringList &list);

bool has_threshold_of_Standard_parameters(const Standard_parameters *p);
bool has_black_point_of_Standard_parameters(const Standard_parameters *p);
bool has_white_point_of_Standard_parameters(const Standard_parameters *p);
bool has_gamma_of_Standard_parameters(const Standard_parameters *p);
bool has_speed_of_Standard_parameters(const Standard_parameters *p);
bool has_rgbDrop_of_Standard_parameters(const Standard_parameters *p);

// The current values; each asserts that its group is present.
int32_t threshold_of_Standard_parameters(const Standard_parameters *p);
int32_t black_point_of_Standard_parameters(const Standard_parameters *p);
int32_t white_point_of_Standard_parameters(const Standard_parameters *p);
float gamma_of_Standard_parameters(const Standard_parameters *p);
int32_t speed_of_Standard_parameters(const Standard_parameters *p);
int32_t rgbDrop_index_of_Standard_parameters(const Standard_parameters *p);

// Setters of the current values; the widget keeps them in range.
void set_threshold_of_Standard_parameters(Standard_parameters *p, int32_t v);
void set_black_point_of_Standard_parameters(Standard_parameters *p, int32_t v);
void set_white_point_of_Standard_parameters(Standard_parameters *p, int32_t v);
void set_gamma_of_Standard_parameters(Standard_parameters *p, float v);
void set_speed_of_Standard_parameters(Standard_parameters *p, int32_t v);
void set_rgbDrop_index_of_Standard_parameters(Standard_parameters *p, int32_t v);

void remove_gamma_of_Standard_parameters(Standard_parameters *p);

// Speed presets, asked in the dialog's order: normal, then fast.
bool speed_is_normal_of_Standard_parameters(const Standard_parameters *p);
bool speed_is_fast_of_Standard_parameters(const Standard_parameters *p);
bool speed_is_custom_of_Standard_parameters(const Standard_parameters *p);

// The selected drop colour without its label ("Red, 0, 100" gives "0, 100"); a null
// text when there is none.
QString rgbDrop_of_Standard_parameters(const Standard_parameters *p);

// Hands the current values of the present groups to a drawing before a scan.
void copy_parameters_to_Drawing(const Standard_parameters *p, Drawing *drawing);
