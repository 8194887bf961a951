#pragma once
// The settings of four colour mode: thresholds that sort each pixel into
// black, red, green, blue or paper, and the clean-up of the traced zones.
#include <QString>
#include <QStringList>

struct FourColourOptions {
    int rgbDiff = 15;           // margin by which a channel must lead the two others
    int dark = 30;              // luma below this is black
    int grey = 220;             // colourless pixels: luma at or below is black
    int white = 240;            // luma above this is paper
    int redThreshold = 200;
    int greenThreshold = 200;
    int blueThreshold = 200;
    double dirtArea = 0.0;      // contours of a smaller box area are removed
    bool keepTexture = false;   // keep the colour image as the strokes' texture

    // Reads "key:value" words after argv[index] up to the first missing, empty
    // or dashed one. Returns how many were taken, or -1 on a malformed word.
    int parse(const QStringList &argv, int index, int argc);
    // The key list as written back into an option line.
    QString toText() const;
};

// Trace level of four colour mode, shared by the whole process.
int &fourColourTraceLevel();
