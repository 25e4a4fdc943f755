// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/messagewriting.h"

#include "client/delivery.h"
#include "client/messagecomposer.h"

MessageWriting::MessageWriting(CommandContext &context)
    : mContext(context)
    , mMail(context)
    , mOptions(mMail.parser())
    , mText(mMail.parser())
{
}

bool MessageWriting::open(int fewestArguments, int mostArguments)
{
    if (!mMail.open(fewestArguments, mostArguments)) {
        mExitStatus = mMail.exitStatus();
        return false;
    }
    if (!mOptions.isDraft())
        mExitStatus = mContext.requireEnabled({ mMail.account() });
    return mExitStatus == ExitSuccess;
}

int MessageWriting::finish(OutgoingMessage outgoing, const QString &earlier)
{
    const int read = mOptions.read(&outgoing);
    if (read != ExitSuccess)
        return read;
    const int written = mText.read(earlier, &outgoing.text);
    if (written != ExitSuccess)
        return written;
    const bool isDraft = mOptions.isDraft();
    const QMailMessageId id =
        MessageComposer(mContext, mMail.account())
            .store(outgoing, isDraft ? QMailFolder::DraftsFolder : QMailFolder::OutboxFolder);
    if (!id.isValid()) {
        mText.keep();
        return ExitFailure;
    }
    const QString number = QString::number(id.toULongLong());
    mContext.output().addFacts({ { QStringLiteral("id"), number } });
    if (!isDraft)
        return Delivery(mContext, mMail.account()).send({ id });
    mContext.output().done(
        QStringLiteral("kept as draft %1; fennel-easctl mail send %1 sends it").arg(number));
    return ExitSuccess;
}
