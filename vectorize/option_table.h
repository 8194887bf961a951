#pragma once
// The options of TUPix2vecOptions as data: names, help section, how the value
// is read, which member takes it, its default and its texts. The parser, the
// writer, resetDefaults and the help text all walk this one table.
#include <QString>
#include <QStringList>

#include <array>
#include <optional>
#include <span>
#include <variant>

#include "suite/base/msg_text.h"
#include "vectorize/pix2vec_options.h"

using TUOpts = TUPix2vecOptions;

enum class OptionKind {
    SetFlag,    // the option turns the flag on
    ClearFlag,  // the option turns the flag off
    Count,      // each use adds one
    Real,
    Int,
    Text,
    Special,    // read, reset and written by its own functions
};

using OptionMember = std::variant<std::monostate, bool TUOpts::*, int TUOpts::*, float TUOpts::*,
                                  double TUOpts::*, QString TUOpts::*>;

// Where the parser stands: the argument vector, the index of the option, and
// the option's name without its first dash.
struct OptionCursor {
    TUOpts &options;
    const QStringList &argv;
    int argc;
    int &index;
    QString name;
    bool allowStrokeThickness;

    // The next argument, or nothing at the end of the vector.
    std::optional<QString> next();
    // The same, but an argument that begins with "-" counts as missing.
    std::optional<QString> nextUndashed();
};

// What reading one option came to.
struct OptionOutcome {
    enum Kind { Ok, Failed, Stop } kind = Ok;
    MSG_Text error;
    static OptionOutcome ok() { return {}; }
    static OptionOutcome stop() { return {Stop, {}}; }
    static OptionOutcome fail(MSG_Text text) { return {Failed, std::move(text)}; }
};

struct OptionSpec {
    std::array<const char *, 4> names;  // names[0] is the one written back
    int section;                        // a Pix2vecHelpSection bit, 0 when not in the help
    OptionKind kind;
    OptionMember member;
    std::array<double, 7> defaults;     // defaults[0] for a plain member; %1... of the help
    const char *defaultText;            // default of a text member
    const char *missing;                // "No ... specified with %1.\n"
    const char *messageName;            // what %1 of `missing` shows; null: the name as given
    const char *help;                   // one help line, without its leading tab
    double (*normalise)(double) = nullptr;                 // applied to a parsed number
    void (*after)(TUOpts &) = nullptr;                     // side effects of a plain option
    OptionOutcome (*parse)(OptionCursor &, const OptionSpec &) = nullptr;  // Special
    void (*reset)(TUOpts &, const OptionSpec &) = nullptr;                 // Special
    bool constructorOnly = false;       // resetDefaults leaves it alone

    bool hasName(const QString &name) const;
};

std::span<const OptionSpec> pix2vecOptionTable();
// The entry with that name (any alias, without the dash), or null.
const OptionSpec *findPix2vecOption(const QString &name);

// Text to number as the command line always did it: no checks, junk is 0.
double optionReal(const QString &text);
int optionInt(const QString &text);
// Shortest form with up to six significant digits.
QString optionNumber(double value);
