// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QDateTime>
#include <QString>

namespace Simulator {

/** What a mailbox answers to one group of senders. */
struct OutOfOfficeAnswer
{
    bool isEnabled = false;
    QString text;
    QString type = QStringLiteral("Text"); ///< or "HTML"

    bool operator==(const OutOfOfficeAnswer &other) const
    {
        return isEnabled == other.isEnabled && text == other.text && type == other.type;
    }
};

/** The out-of-office settings of a mailbox. A value type. */
struct OutOfOffice
{
    int state = 0; ///< 0 off, 1 on, 2 on from start to end
    QDateTime start; ///< UTC, as the end; kept while the state is another
    QDateTime end;
    OutOfOfficeAnswer internal;
    OutOfOfficeAnswer knownExternal;
    OutOfOfficeAnswer unknownExternal;

    bool operator==(const OutOfOffice &other) const
    {
        return state == other.state && start == other.start && end == other.end && internal == other.internal
            && knownExternal == other.knownExternal && unknownExternal == other.unknownExternal;
    }
};

} // namespace Simulator
