#pragma once
// pix2vec --worker: empties the vectorize queue, one entry at a time.
#include <QStringList>

// `args` starts with "--worker". The exit status of the command.
int runVectorizeWorker(const QStringList &args);
