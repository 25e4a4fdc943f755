// SPDX-License-Identifier: LGPL-2.1-or-later
#include "fuzzsupport.h"
#include "storages/calendar/meetingreply.h"

#include <cstdlib>

/** Invitations are read in all three ways, and a reply must be one that is never read as an invitation. */
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    FuzzSupport::keepQuiet();
    const QString text = QString::fromUtf8(FuzzSupport::bytes(data, size));
    MeetingReply reply(QStringLiteral("user@example.com"), EasItemsCommon::UserResponseAccepted);
    const QString answer = reply.encode(text);
    if (!answer.isEmpty() && !reply.encode(answer).isEmpty())
        std::abort();
    reply.allowMissingMethod(true);
    reply.encode(text);
    reply.setOccurrence(QDateTime(QDate(2030, 1, 10), QTime(8, 0), Qt::UTC));
    reply.encode(text);
    return 0;
}
