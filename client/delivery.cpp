// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/delivery.h"

#include "client/commandcontext.h"
#include "client/requestrun.h"
#include "client/sendstatus.h"
#include "common/easdbusinterfaceproxy.h"

namespace {

QString numberOf(const QMailMessageId &id)
{
    return QString::number(id.toULongLong());
}

/** "message 7", "messages 7, 8". */
QString named(const QStringList &numbers)
{
    return (numbers.size() == 1 ? QStringLiteral("message ") : QStringLiteral("messages "))
        + numbers.join(QStringLiteral(", "));
}

} // namespace

Delivery::Delivery(CommandContext &context, EasAccountId accountId)
    : mContext(context)
    , mAccountId(accountId)
    , mOutbox(accountId)
{
}

int Delivery::send(const QMailMessageIdList &ids)
{
    RequestRun run(mContext);
    SendStatus::explain(run);
    for (const QMailMessageId &id : ids)
        run.add(
            mAccountId,
            [this, id](
                EasDBusInterfaceProxy &daemon) { return daemon.sendMail(mAccountId, id.toULongLong()); },
            QStringLiteral("message ") + numberOf(id));
    const int result = run.exec();
    const QList<const DaemonRequest *> requests = run.requests();
    for (int i = 0; i < ids.size(); ++i) {
        QString error;
        const int judged = run.judge(*requests.at(i), &error);
        if (judged == ExitSuccess)
            noteSent(ids.at(i), *requests.at(i));
        else
            noteFailed(ids.at(i), error, SendStatus::mayHaveGone(*requests.at(i), judged));
    }
    if (ids.size() == 1)
        mContext.output().addFacts(run.first().describe());
    tell(result == ExitSuccess);
    return result;
}

void Delivery::noteSent(const QMailMessageId &id, const DaemonRequest &request)
{
    mSent.append(numberOf(id));
    if (SendStatus::isSentWhole(request))
        Output::note(QStringLiteral(
            "the server no longer has the original of message %1, so that it is sent as a whole")
                         .arg(numberOf(id)));
}

void Delivery::noteFailed(const QMailMessageId &id, const QString &error, bool mayHaveGone)
{
    const Outbox::State state = Outbox::state(QMailMessageMetaData(id));
    // The account may have gone meanwhile, and its mail with it.
    if (state == Outbox::State::Other)
        return;
    const auto doubt =
        QStringLiteral("it may have gone out all the same: look into Sent Items before you send it again");
    mOutbox.noteFailure(id, mayHaveGone ? error + QStringLiteral("; ") + doubt : error);
    if (mayHaveGone)
        Output::note(named({ numberOf(id) }) + QStringLiteral(": ") + doubt);
    (state == Outbox::State::Draft ? mDrafts : mWaiting).append(numberOf(id));
}

void Delivery::tell(bool isSent)
{
    mContext.output().addFacts({ { QStringLiteral("sent"), QJsonArray::fromStringList(mSent) },
        { QStringLiteral("outbox"), QJsonArray::fromStringList(mWaiting) },
        { QStringLiteral("drafts"), QJsonArray::fromStringList(mDrafts) } });
    if (isSent)
        mContext.output().done(mSent.size() == 1 ? QStringLiteral("the message is sent")
                                                 : QStringLiteral("%1 messages sent").arg(mSent.size()));
    else if (!mSent.isEmpty())
        mContext.output().message(named(mSent) + QStringLiteral(" sent"));
    if (!mWaiting.isEmpty())
        Output::note(
            QStringLiteral("%1 %2 in the Outbox; send again with fennel-easctl mail outbox --retry %3")
                .arg(named(mWaiting), mWaiting.size() == 1 ? QStringLiteral("stays") : QStringLiteral("stay"),
                    mWaiting.join(QLatin1Char(' '))));
    if (!mDrafts.isEmpty())
        Output::note(QStringLiteral("%1 now in Drafts; send again with fennel-easctl mail send %2")
                         .arg(named(mDrafts), mDrafts.first()));
}
