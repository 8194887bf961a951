#pragma once
// The options that the peg hole search reads; the vectorizer's option record
// carries them as its registration members.
struct PegRegistrationOptions {
    double dpi = -1.0;         // pixels per inch
    int side = 2;              // 1 top, 2 bottom, 3 left, 4 right
    int strict = 0;            // 0: tolerances times `looseness`
    double looseness = 2.0;
    double rmargin = 1.0;      // depth of the search band, inches
    double threshr = 0.5;      // share of white, 0 to 1
    double pegpitch = 8.0;     // inches
    bool centerPegHoles = false;  // three round holes instead of a hole and two slots
    bool rdebug = false;       // traces of the search
    double calibX = 1.0, calibY = 1.0;
};
