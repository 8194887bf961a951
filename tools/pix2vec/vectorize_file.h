#pragma once
// One picture file vectorized into one or more drawing files: what the
// command does for its -file and -outfile, and what a queue worker does for
// each entry.
#include <QString>
#include <QStringList>

class TUPix2vecOptions;

struct VectorizeFileResult {
    bool ok = false;
    QString message;  // why it failed, as the operator reads it
    int layers = 0;
    int strokes = 0;
};

// The output formats by extension: ".kwg" (the drawing file), ".svg", ".png".
bool isDrawingOutputPath(const QString &path);

// Reads `input` (any picture the station reads, with its scan information),
// vectorizes it with `options` and writes every path of `outputs`.
VectorizeFileResult vectorizeFile(TUPix2vecOptions &options, const QString &input, const QStringList &outputs);
