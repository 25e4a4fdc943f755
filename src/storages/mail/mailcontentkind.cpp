// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/mailcontentkind.h"

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

namespace MailContentKind {

Kind of(const QMailMessageMetaData &message)
{
    return message.content();
}

void set(QMailMessageMetaData &message, Kind kind)
{
    message.setContent(kind);
}

} // namespace MailContentKind

#pragma GCC diagnostic pop
