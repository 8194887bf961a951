#include "vectorize/vectorize_trace.h"

#include <cstdarg>
#include <cstdio>

#include "vectorize/pix2vec_options.h"

void vectorizeTrace(const char *format, ...) {
    if (currentVectorizeOptions()->debug == 0) return;
    va_list args;
    va_start(args, format);
    std::vfprintf(stderr, format, args);
    va_end(args);
}
