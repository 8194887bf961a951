#pragma once
// pix2vec --info: what a drawing file holds, for a person.
#include <QString>
#include <QTextStream>

// Prints the file's field, scan information, creator, palettes and each
// layer of its line art and colour art with its strokes. False, with the
// loader's message on `err`, when the file can't be read.
bool printDrawingInfo(const QString &path, QTextStream &out, QTextStream &err);
