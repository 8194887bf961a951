#pragma once
// The root of everything an image file or a cel can hold.
#include "suite/cel/ut_share.h"

// The representation types that the station knows.
enum CEL_Type : int {
    CEL_TYPE_RGBA16 = 6,
    CEL_TYPE_RGBA8 = 7,
    CEL_TYPE_MATTE8 = 8,
    CEL_TYPE_MATTE16 = 9,
};

class CEL_Representation : public UT_ShareBaseSafe {
public:
    virtual int type() const = 0;
};

using CEL_RepresentationPtr = UT_SharePtr<CEL_Representation>;
