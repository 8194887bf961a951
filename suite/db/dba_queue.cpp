#include "suite/db/dba_queue.h"

#include <array>
#include <utility>

namespace {
const std::array<std::pair<dba_queueState, const char *>, 4> kStateNames{{
    {dba_queueState::Waiting, "waiting"},
    {dba_queueState::Taken, "taken"},
    {dba_queueState::Done, "done"},
    {dba_queueState::Failed, "failed"},
}};
}  // namespace

QString dba_queueStateName(dba_queueState state) {
    for (const auto &[s, name] : kStateNames)
        if (s == state) return QString::fromLatin1(name);
    return QString();
}

bool dba_queueStateFromName(const QString &name, dba_queueState &state) {
    for (const auto &[s, text] : kStateNames) {
        if (name == QLatin1String(text)) {
            state = s;
            return true;
        }
    }
    return false;
}
