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
    , mMessage(id)
{
}

bool Draft::isSendable() const
{
    if (!mMessage.id().isValid())
        return refuse(QStringLiteral("the message cannot be read"));
    const QString number = QString::number(mMessage.id().toULongLong());
    const QMailFolderId drafts =
        QMailAccount(QMailAccountId(mAccountId)).standardFolder(QMailFolder::DraftsFolder);
    const bool isInDrafts = drafts.isValid() && mMessage.parentFolderId() == drafts;
    if (!isInDrafts && Outbox::state(mMessage) == Outbox::State::Other)
        return refuse(QStringLiteral("message %1 is no draft").arg(number));
    return mMessage.hasRecipients() || refuse(QStringLiteral("message %1 has no recipients").arg(number));
}

bool Draft::lacksContent() const
{
    return isOfServer() && !mMessage.contentAvailable();
}

QMailMessageId Draft::moveToOutbox() const
{
    if (isOfServer())
        return replace();
    return Outbox(mAccountId).take(mMessage.id()) ? mMessage.id() : QMailMessageId();
}

QMailMessageId Draft::replace() const
{
    // Anew, since it may have been downloaded meanwhile.
    const std::optional<QMailMessage> written = MailBox::read(mMessage.id());
    if (!written)
        return {};
    MailBox box(mAccountId);
    const QMailMessageId copy =
        MessageComposer(mContext, mAccountId).storeCopy(*written, QMailFolder::OutboxFolder);
    // Behind the copy: an interruption leaves one too many, not one too few.
    return copy.isValid() && box.remove({ written->id() }) ? copy : QMailMessageId();
}
