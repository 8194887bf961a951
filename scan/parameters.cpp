#include "scan/parameters.h"

#include <QCoreApplication>
#include <QRegularExpression>

#include "scan/drawing.h"
#include "suite/base/assertion.h"

namespace {

// The checks shared by every initialiser.
template <typename T>
bool range_is_valid(const Standard_parameters *p, T min, T max, T value) {
    LMV_ASSERT_RET(p != nullptr, false);
    LMV_ASSERT_RET(!p->locked, false);
    LMV_ASSERT_RET(min >= 0, false);
    LMV_ASSERT_RET(max >= 0, false);
    LMV_ASSERT_RET(min < max, false);
    LMV_ASSERT_RET(value >= min && value <= max, false);
    return true;
}

template <typename T>
bool init_group(Standard_parameters *p, bool &present, T &gmin, T &gmax, T &gdefault, T &gcurrent, T min, T max,
                T value) {
    if (!range_is_valid(p, min, max, value)) return false;
    present = true;
    gmin = min;
    gmax = max;
    gdefault = value;
    gcurrent = value;
    return true;
}

}  // namespace

bool init_threshold_of_Standard_parameters(Standard_parameters *p, int32_t min, int32_t max, int32_t value) {
    return p && init_group(p, p->has_threshold, p->threshold_min, p->threshold_max, p->threshold_default,
                           p->threshold_current, min, max, value);
}

bool init_black_point_of_Standard_parameters(Standard_parameters *p, int32_t min, int32_t max, int32_t value) {
    return p && init_group(p, p->has_black_point, p->black_point_min, p->black_point_max, p->black_point_default,
                           p->black_point_current, min, max, value);
}

bool init_white_point_of_Standard_parameters(Standard_parameters *p, int32_t min, int32_t max, int32_t value) {
    return p && init_group(p, p->has_white_point, p->white_point_min, p->white_point_max, p->white_point_default,
                           p->white_point_current, min, max, value);
}

bool init_gamma_of_Standard_parameters(Standard_parameters *p, float min, float max, float value) {
    return p && init_group(p, p->has_gamma, p->gamma_min, p->gamma_max, p->gamma_default, p->gamma_current, min,
                           max, value);
}

bool init_speed_of_Standard_parameters(Standard_parameters *p, int32_t min, int32_t max, int32_t value,
                                       const char *label, bool has_normal, int32_t normal, bool has_fast,
                                       int32_t fast, bool has_custom) {
    if (!range_is_valid(p, min, max, value)) return false;
    LMV_ASSERT_RET(has_normal || has_fast || has_custom, false);
    LMV_ASSERT_RET(!has_normal || (normal >= min && normal <= max), false);
    LMV_ASSERT_RET(!has_fast || (fast >= min && fast <= max), false);
    init_group(p, p->has_speed, p->speed_min, p->speed_max, p->speed_default, p->speed_current, min, max, value);
    if (label) p->speed_label = QCoreApplication::translate("Scan", label);
    p->has_normal = has_normal;
    p->normal = normal;
    p->has_fast = has_fast;
    p->fast = fast;
    p->has_custom = has_custom;
    return true;
}

bool init_rgbDrop_of_Standard_parameters(Standard_parameters *p, const QStringList &list) {
    LMV_ASSERT_RET(p != nullptr, false);
    LMV_ASSERT_RET(!p->locked, false);
    if (list.isEmpty()) return true;
    p->has_rgbDrop = true;
    p->rgbDrop_list = list;
    p->rgbDrop_index = 0;
    return true;
}

#define HAS_ACCESSOR(group)                                                 \
    bool has_##group##_of_Standard_parameters(const Standard_parameters *p) { \
        LMV_ASSERT_RET(p != nullptr, false);                                \
        return p->has_##group;                                              \
    }
HAS_ACCESSOR(threshold)
HAS_ACCESSOR(black_point)
HAS_ACCESSOR(white_point)
HAS_ACCESSOR(gamma)
HAS_ACCESSOR(speed)
HAS_ACCESSOR(rgbDrop)
#undef HAS_ACCESSOR

#define VALUE_ACCESSORS(type, group)                                              \
    type group##_of_Standard_parameters(const Standard_parameters *p) {          \
        LMV_ASSERT_RET(p != nullptr, type(-1));                                   \
        LMV_ASSERT_RET(p->has_##group, type(-1));                                 \
        return p->group##_current;                                                \
    }                                                                             \
    void set_##group##_of_Standard_parameters(Standard_parameters *p, type v) {  \
        LMV_ASSERT_VOID(p != nullptr);                                            \
        LMV_ASSERT_VOID(p->has_##group);                                          \
        p->group##_current = v;                                                   \
    }
VALUE_ACCESSORS(int32_t, threshold)
VALUE_ACCESSORS(int32_t, black_point)
VALUE_ACCESSORS(int32_t, white_point)
VALUE_ACCESSORS(float, gamma)
VALUE_ACCESSORS(int32_t, speed)
#undef VALUE_ACCESSORS

int32_t rgbDrop_index_of_Standard_parameters(const Standard_parameters *p) {
    LMV_ASSERT_RET(p != nullptr, -1);
    LMV_ASSERT_RET(p->has_rgbDrop, -1);
    return p->rgbDrop_index;
}

void set_rgbDrop_index_of_Standard_parameters(Standard_parameters *p, int32_t v) {
    LMV_ASSERT_VOID(p != nullptr);
    LMV_ASSERT_VOID(p->has_rgbDrop);
    p->rgbDrop_index = v;
}

void remove_gamma_of_Standard_parameters(Standard_parameters *p) {
    LMV_ASSERT_VOID(p != nullptr);
    p->has_gamma = false;
}

bool speed_is_normal_of_Standard_parameters(const Standard_parameters *p) {
    LMV_ASSERT_RET(p != nullptr, false);
    return p->has_normal && p->speed_current == p->normal;
}

bool speed_is_fast_of_Standard_parameters(const Standard_parameters *p) {
    LMV_ASSERT_RET(p != nullptr, false);
    return p->has_fast && p->speed_current == p->fast;
}

bool speed_is_custom_of_Standard_parameters(const Standard_parameters *p) {
    LMV_ASSERT_RET(p != nullptr, false);
    return !speed_is_normal_of_Standard_parameters(p) && !speed_is_fast_of_Standard_parameters(p);
}

QString rgbDrop_of_Standard_parameters(const Standard_parameters *p) {
    LMV_ASSERT_RET(p != nullptr, QString());
    if (!p->has_rgbDrop || p->rgbDrop_list.isEmpty() || p->rgbDrop_index < 0 ||
        p->rgbDrop_index >= p->rgbDrop_list.size())
        return QString();
    static const QRegularExpression label(QStringLiteral("^[^,]*, *"));
    QString entry = p->rgbDrop_list.at(p->rgbDrop_index);
    const QRegularExpressionMatch m = label.match(entry);
    if (m.hasMatch()) entry.remove(0, m.capturedLength());
    return entry;
}

void copy_parameters_to_Drawing(const Standard_parameters *p, Drawing *drawing) {
    LMV_ASSERT_VOID(p != nullptr);
    if (p->has_threshold) set_threshold_of_Drawing(drawing, p->threshold_current);
    if (p->has_black_point) set_black_point_of_Drawing(drawing, p->black_point_current);
    if (p->has_white_point) set_white_point_of_Drawing(drawing, p->white_point_current);
    if (p->has_gamma) set_gamma_of_Drawing(drawing, p->gamma_current);
    if (p->has_speed) set_speed_of_Drawing(drawing, p->speed_current);
}
