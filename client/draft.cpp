// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/draft.h"

#include "client/messagecomposer.h"
#include "client/outbox.h"
#include "client/output.h"

#include <qmailaccount.h>

namespace {

bool refuse(const QString &error)
{
    Output::error(error);
    return false;
}

} // namespace

Draft::Draft(CommandContext &context, EasAccountId accountId, const QMailMessageId &id)
    : mContext(context)
    , mAccountId(accountId)
    , mId(id)
{
}

bool Draft::isSendable() const
{
    const QMailMessage message(mId);
    const QMailFolderId drafts =
        QMailAccount(QMailAccountId(mAccountId)).standardFolder(QMailFolder::DraftsFolder);
    const bool isInDrafts = drafts.isValid() && message.parentFolderId() == drafts;
    if (!isInDrafts && Outbox::state(mId) == Outbox::State::Other)
        return refuse(QStringLiteral("message %1 is no draft").arg(mId.toULongLong()));
    return message.hasRecipients()
        || refuse(QStringLiteral("message %1 has no recipients").arg(mId.toULongLong()));
}

bool Draft::lacksContent() const
{
    const QMailMessageMetaData message(mId);
    return !message.serverUid().isEmpty() && !message.contentAvailable();
}

QMailMessageId Draft::moveToOutbox()
{
    if (!QMailMessageMetaData(mId).serverUid().isEmpty())
        return replace();
    return Outbox(mAccountId).take(mId) ? mId : QMailMessageId();
}

QMailMessageId Draft::replace()
{
    MailBox box(mAccountId);
    const QMailMessageId copy =
        MessageComposer(mContext, mAccountId).storeCopy(QMailMessage(mId), QMailFolder::OutboxFolder);
    // Behind the copy: an interruption leaves one too many, not one too few.
    return copy.isValid() && box.remove({ mId }) ? copy : QMailMessageId();
}
