#include "tools/queue_worker/queue_entry_text.h"

#include <QDateTime>
#include <QStringList>

namespace {

QString time_text(qint64 ms) {
    return ms == 0 ? QStringLiteral("-") : QDateTime::fromMSecsSinceEpoch(ms).toString(Qt::ISODateWithMs);
}

}  // namespace

QString queue_process_word(int process) {
    switch (process) {
    case DBA_PROCESS_VECTORIZE: return QStringLiteral("vectorize");
    case DBA_PROCESS_PIX2VEC: return QStringLiteral("pix2vec");
    default: return QStringLiteral("process %1").arg(process);
    }
}

QString queue_entry_line(const dba_queueEntry_struct &e) {
    QStringList fields{QString::number(e.id), dba_queueStateName(e.state),
                       QStringLiteral("%1/%2/%3").arg(e.jobName, e.sceneName, e.elementName), e.drawing,
                       queue_process_word(e.process)};
    if (!e.worker.isEmpty()) fields << e.worker;
    return fields.join(QStringLiteral("  "));
}

QString queue_entry_details(const dba_queueEntry_struct &e) {
    QString text;
    const auto line = [&text](const char *label, const QString &value) {
        text += QStringLiteral("  %1 %2\n").arg(QString::fromLatin1(label).leftJustified(13), value);
    };
    text += QStringLiteral("entry %1\n").arg(e.id);
    line("state:", dba_queueStateName(e.state));
    line("environment:", e.environment);
    line("job:", e.jobName);
    line("scene:", QStringLiteral("%1 (id %2, version %3)")
                           .arg(e.sceneName, QString::number(e.sceneId), QString::number(e.sceneVersion)));
    line("element:", QStringLiteral("%1 (id %2)").arg(e.elementName, QString::number(e.elementId)));
    line("drawing:", e.drawing);
    line("process:", QStringLiteral("%1 (%2)").arg(queue_process_word(e.process), QString::number(e.process)));
    line("options:", e.options);
    line("active:", QString::number(e.active));
    line("created:", time_text(e.createdAt));
    line("taken:", time_text(e.takenAt));
    line("worker:", e.worker.isEmpty() ? QStringLiteral("-") : e.worker);
    line("lease until:", time_text(e.leaseExpires));
    line("finished:", time_text(e.finishedAt));
    line("message:", e.message);
    return text;
}
