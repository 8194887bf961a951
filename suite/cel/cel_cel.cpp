#include "suite/cel/cel_cel.h"

UT_SharePtr<CEL_Cel> CEL_Cel::create(int kind)
{
    return UT_SharePtr<CEL_Cel>(new CEL_Cel(kind));
}

void CEL_Cel::setRepresentation(const CEL_RepresentationPtr &rep)
{
    if (!rep)
        return;
    for (auto &r : reps_) {
        if (r->type() == rep->type()) {
            r = rep;
            return;
        }
    }
    reps_.append(rep);
}

CEL_RepresentationPtr CEL_Cel::representation(int type) const
{
    for (const auto &r : reps_)
        if (r->type() == type)
            return r;
    return {};
}

void CEL_Cel::keepOneRepresentation(int type)
{
    reps_.removeIf([type](const CEL_RepresentationPtr &r) { return r->type() != type; });
}
