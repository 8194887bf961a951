#pragma once
// printf-style messages for the scanner code. Each formats into 2048 bytes and
// drops one trailing newline.

// Written only in debug mode (the trace channel).
void LMV_trace(const char *format, ...) __attribute__((format(printf, 1, 2)));
// Always written to the log ("information level").
void LMV_log(const char *format, ...) __attribute__((format(printf, 1, 2)));
// An error shown to the operator; the format is translated in the context "Scan".
void LMV_error(const char *format, ...) __attribute__((format(printf, 1, 2)));
// A raw trace in direct mode, for SCSI dumps: written even when debug mode is off.
void LMV_direct_trace(const char *format, ...) __attribute__((format(printf, 1, 2)));
