#include "tools/scanctl/message_collector.h"

#include <utility>

#include "suite/base/tumessage.h"
#include "suite/cel/celio_manager.h"

MessageCollector::MessageCollector() {
    TUMessage *m = TUMessage::instance();
    m->setSilent(true);
    id_ = m->attachView([this](char type, const QString &text, const QString &) {
        if (type == 'E') errors_ << text.trimmed();
    });
}

MessageCollector::~MessageCollector() {
    TUMessage::instance()->detachView(id_);
    TUMessage::instance()->setSilent(false);
}

QStringList MessageCollector::take() { return std::exchange(errors_, {}); }

QString load_failure_reason(MessageCollector &messages) {
    QString reason = CELIO_Manager::getInstance().lastError();
    const QStringList station = messages.take();
    if (reason.isEmpty()) reason = station.join(QStringLiteral("; "));
    return reason;
}
