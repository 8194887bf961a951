#pragma once
// The options that do more than store one value: several values, words that
// map to numbers, options that load files or end the parse.
#include "vectorize/option_table.h"

namespace pix2vec_handlers {
OptionOutcome parseVersion(OptionCursor &c, const OptionSpec &spec);
OptionOutcome parseHelp(OptionCursor &c, const OptionSpec &spec);
OptionOutcome parseOutputVersion(OptionCursor &c, const OptionSpec &spec);
OptionOutcome parseRegister(OptionCursor &c, const OptionSpec &spec);
void resetRegister(TUOpts &o, const OptionSpec &spec);
OptionOutcome parseOutPegPosition(OptionCursor &c, const OptionSpec &spec);
OptionOutcome parseScannerCalibrate(OptionCursor &c, const OptionSpec &spec);
void resetScannerCalibrate(TUOpts &o, const OptionSpec &spec);
OptionOutcome parseMargins(OptionCursor &c, const OptionSpec &spec);
OptionOutcome parsePixelMargins(OptionCursor &c, const OptionSpec &spec);
OptionOutcome parseKeepPegBars(OptionCursor &c, const OptionSpec &spec);
OptionOutcome parsePixelPerModelUnit(OptionCursor &c, const OptionSpec &spec);
void resetPixelPerModelUnit(TUOpts &o, const OptionSpec &spec);
OptionOutcome parsePremultiply(OptionCursor &c, const OptionSpec &spec);
OptionOutcome parseVectorizationColorId(OptionCursor &c, const OptionSpec &spec);
void resetVectorizationColorId(TUOpts &o, const OptionSpec &spec);
OptionOutcome parseStrokeThickness(OptionCursor &c, const OptionSpec &spec);
OptionOutcome parsePenstyle(OptionCursor &c, const OptionSpec &spec);
void resetPenstyle(TUOpts &o, const OptionSpec &spec);
OptionOutcome parsePressureVariation(OptionCursor &c, const OptionSpec &spec);
void resetPressureVariation(TUOpts &o, const OptionSpec &spec);
OptionOutcome parseFourColours(OptionCursor &c, const OptionSpec &spec);
void resetFourColours(TUOpts &o, const OptionSpec &spec);
OptionOutcome parseThreshSV(OptionCursor &c, const OptionSpec &spec);
void resetThreshSV(TUOpts &o, const OptionSpec &spec);
OptionOutcome parseRemoveHairs(OptionCursor &c, const OptionSpec &spec);
void resetRemoveHairs(TUOpts &o, const OptionSpec &spec);
}  // namespace pix2vec_handlers

// Loads the penstyle's noise bitmap; a relative name is taken from the working
// directory. An empty pointer when it does not load.
CEL_RepresentationPtr loadPenstyleNoise(const QString &name);
