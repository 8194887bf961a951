// The process-wide pixel shape of the target picture.
#include "scan/basic_pixel_shape.h"

#include "suite/base/assertion.h"
#include "suite/base/msg_scope.h"

namespace {

// Set from the main thread by the session only.
int32_t g_shape = PIXEL_SHAPE_UNSET;
int32_t g_sessionShape = PIXEL_SHAPE_UNSET;
double g_pixelAspect = 1.0;

} // namespace

int32_t current_pixel_shape()
{
    return g_shape;
}

void set_basic_pixel_shape(int32_t shape)
{
    if (shape == PIXEL_SHAPE_UNSET) {
        // Refused: the shape in force stays, only the aspect falls back to square.
        LMV_assertion_msg(__FILE__, __LINE__, "shape != PIXEL_SHAPE_UNSET");
        MSG_Scope(MSG_Text("Scan", "Illegal to set shape to Unset\n"), MSG_ACTION_ERROR);
        LMV_assertion_msg(__FILE__, __LINE__, "pixel shape left as it was");
        g_pixelAspect = 1.0;
        return;
    }
    g_shape = shape;
    switch (shape) {
    case PIXEL_SHAPE_NARROW:
        g_pixelAspect = 0.9;
        break;
    case PIXEL_SHAPE_WIDE:
        g_pixelAspect = 1.0666666666666667;
        break;
    case PIXEL_SHAPE_SQUARE:
        g_pixelAspect = 1.0;
        break;
    default:
        LMV_assertion_msg(__FILE__, __LINE__, "known pixel shape");
        g_pixelAspect = 1.0;
        break;
    }
}

void set_session_pixel_shape(int32_t shape)
{
    g_sessionShape = shape;
}

int32_t session_pixel_shape()
{
    return g_sessionShape;
}

double pixel_aspect()
{
    return g_pixelAspect;
}
