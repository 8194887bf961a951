#pragma once
// The vectorizer's trace: printf-style lines on standard error, written only
// when the options in force ask for debugging (-debug).
#include <QtGlobal>

void vectorizeTrace(const char *format, ...) Q_ATTRIBUTE_FORMAT_PRINTF(1, 2);
