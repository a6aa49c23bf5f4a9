#include "QueueFileName.h"

#include <QRegularExpression>

namespace orvex {

bool isSafeInFileName(const QString& queueName) {
    // Not "$" at the end, which a line feed may follow.
    static const QRegularExpression form(QStringLiteral("\\A[A-Za-z0-9_.-]+\\z"));
    return form.match(queueName).hasMatch();
}

} // namespace orvex
