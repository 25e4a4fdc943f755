// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/sendcommands.h"

#include "client/delivery.h"
#include "client/draft.h"
#include "client/messagecomposer.h"
#include "client/messageresponse.h"
#include "client/messagewriting.h"
#include "client/requestrun.h"
#include "common/easdbusinterfaceproxy.h"

#include <optional>

namespace {

const QCommandLineOption Whole(QStringLiteral("whole"));

int fail(int exitStatus, const QString &error)
{
    Output::error(error);
    return exitStatus;
}

/** Downloads a message with its files; the exit status. */
int fetch(CommandContext &context, EasAccountId account, const QMailMessageId &id)
{
    RequestRun run(context);
    run.add(account, [&](EasDBusInterfaceProxy &daemon) {
        return daemon.downloadMessages(account, { id.toULongLong() }, true);
    });
    return run.exec();
}

/** The response to the message that the command names, with all that goes along on the device. */
class ResponseCommand
{
public:
    ResponseCommand(CommandContext &context, bool isForward)
        : mContext(context)
        , mWriting(context)
        , mIsForward(isForward)
    {
        mWriting.mail().parser().addOption(Whole);
    }

    MessageWriting &writing() { return mWriting; }
    int exitStatus() const { return mExitStatus; }

    /** False if the command is to end with exitStatus(). */
    bool open()
    {
        MailSelection &mail = mWriting.mail();
        if (!mWriting.open(1, 1))
            return end(mWriting.exitStatus());
        if (!mail.select({ mail.argument() }))
            return end(mail.exitStatus());
        return begin() && (!mResponse->lacksContent(mIsForward) || fetchSource());
    }

    const MessageResponse &response() const { return *mResponse; }

private:
    /** From the message as it is now. */
    bool begin()
    {
        MailSelection &mail = mWriting.mail();
        const std::optional<QMailMessage> source = MailBox::read(mail.message());
        if (!source)
            return end(ExitFailure);
        mResponse.emplace(*source, MessageComposer(mContext, mail.account()).from());
        mResponse->setWhole(mail.parser().isSet(Whole));
        return true;
    }

    bool end(int exitStatus)
    {
        mExitStatus = exitStatus;
        return false;
    }

    bool fetchSource()
    {
        MailSelection &mail = mWriting.mail();
        const int fetched = fetch(mContext, mail.account(), mail.message());
        if (fetched != ExitSuccess)
            return end(fetched);
        if (!begin())
            return false;
        return !mResponse->lacksContent(mIsForward)
            || end(fail(ExitFailure, QStringLiteral("message %1 did not come whole").arg(mail.argument())));
    }

    CommandContext &mContext;
    MessageWriting mWriting;
    bool mIsForward;
    std::optional<MessageResponse> mResponse;
    int mExitStatus = ExitSuccess;
};

/** Sends a message that was kept, or that waits; the exit status. */
int sendKept(CommandContext &context, MailSelection &mail)
{
    if (!mail.select(mail.arguments()))
        return mail.exitStatus();
    Draft draft(context, mail.account(), mail.message());
    if (!draft.isSendable())
        return ExitUsage;
    if (draft.lacksContent()) {
        const int fetched = fetch(context, mail.account(), mail.message());
        if (fetched != ExitSuccess)
            return fetched;
    }
    const QMailMessageId id = draft.moveToOutbox();
    return id.isValid() ? Delivery(context, mail.account()).send({ id }) : int(ExitFailure);
}

} // namespace

int SendCommands::send(CommandContext &context)
{
    MessageWriting writing(context);
    if (!writing.open(0, 1))
        return writing.exitStatus();
    MailSelection &mail = writing.mail();
    if (mail.arguments().isEmpty())
        return writing.finish({});
    if (writing.saysSomething())
        return fail(ExitUsage, QStringLiteral("a draft is sent as it is; leave the options out"));
    return sendKept(context, mail);
}

int SendCommands::reply(CommandContext &context)
{
    ResponseCommand command(context, false);
    QCommandLineParser &parser = command.writing().mail().parser();
    const QCommandLineOption all(QStringLiteral("reply-all"));
    parser.addOption(all);
    if (!command.open())
        return command.exitStatus();
    const MessageResponse &response = command.response();
    return command.writing().finish(response.reply(parser.isSet(all)), response.quotation());
}

int SendCommands::forward(CommandContext &context)
{
    ResponseCommand command(context, true);
    if (!command.open())
        return command.exitStatus();
    const MessageResponse &response = command.response();
    return command.writing().finish(response.forward(), response.forwardedText());
}
