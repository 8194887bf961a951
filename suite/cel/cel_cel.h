#pragma once
// A cel: one picture, possibly held in several representations at once.
#include <QList>

#include "suite/cel/cel_representation.h"

class CEL_Cel : public UT_ShareBaseSafe {
public:
    // A new, empty cel; `kind` is kept for the caller (0 for a scan).
    static UT_SharePtr<CEL_Cel> create(int kind);

    int kind() const { return kind_; }
    // Adds a representation, replacing one of the same type.
    void setRepresentation(const CEL_RepresentationPtr &rep);
    // The representation of `type`, or null.
    CEL_RepresentationPtr representation(int type) const;
    const QList<CEL_RepresentationPtr> &representations() const { return reps_; }
    // Drops every representation but the one of `type`.
    void keepOneRepresentation(int type);
    // Dots per inch of the picture as it was scanned; 0 when not known.
    double dpi() const { return dpi_; }
    void setDpi(double dpi) { dpi_ = dpi; }

private:
    explicit CEL_Cel(int kind) : kind_(kind) {}
    int kind_;
    double dpi_ = 0;
    QList<CEL_RepresentationPtr> reps_;
};

using CEL_CelPtr = UT_SharePtr<CEL_Cel>;
