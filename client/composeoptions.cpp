// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/composeoptions.h"

#include "client/addresslist.h"
#include "client/attachedfile.h"
#include "client/exitstatus.h"
#include "client/output.h"

#include <QCommandLineParser>

#include <algorithm>
#include <array>

namespace {

const auto To = QStringLiteral("to");
const auto Cc = QStringLiteral("cc");
const auto Bcc = QStringLiteral("bcc");
const auto Subject = QStringLiteral("subject");
const auto Attach = QStringLiteral("attach");
const auto Draft = QStringLiteral("draft");

struct RecipientOption
{
    const QString &name;
    QList<QMailAddress> OutgoingMessage::*list;
};

const std::array<RecipientOption, 3> RecipientOptions { {
    { To, &OutgoingMessage::to },
    { Cc, &OutgoingMessage::cc },
    { Bcc, &OutgoingMessage::bcc },
} };

} // namespace

ComposeOptions::ComposeOptions(QCommandLineParser &parser)
    : mParser(parser)
{
    for (const QString &name : { To, Cc, Bcc, Subject, Attach })
        parser.addOption(QCommandLineOption(name, QString(), QStringLiteral("value")));
    parser.addOption(QCommandLineOption(Draft));
}

bool ComposeOptions::isDraft() const
{
    return mParser.isSet(Draft);
}

bool ComposeOptions::saysSomething() const
{
    const QStringList names { To, Cc, Bcc, Subject, Attach, Draft };
    return std::any_of(
        names.cbegin(), names.cend(), [this](const QString &name) { return mParser.isSet(name); });
}

bool ComposeOptions::readAddresses(OutgoingMessage *outgoing) const
{
    return std::all_of(
        RecipientOptions.cbegin(), RecipientOptions.cend(), [&](const RecipientOption &option) {
            return AddressList::read(mParser.values(option.name), option.name, &(outgoing->*option.list));
        });
}

int ComposeOptions::read(OutgoingMessage *outgoing) const
{
    if (!readAddresses(outgoing))
        return ExitUsage;
    if (mParser.isSet(Subject))
        outgoing->subject = mParser.value(Subject);
    if (AddressList::hasControlCharacters(outgoing->subject)) {
        Output::error(QStringLiteral("the subject holds a line break or another control character"));
        return ExitUsage;
    }
    const bool hasRecipients = !outgoing->to.isEmpty() || !outgoing->cc.isEmpty() || !outgoing->bcc.isEmpty();
    if (!hasRecipients && !isDraft()) {
        Output::error(QStringLiteral("a message needs --to, --cc or --bcc, or --draft to be sent later"));
        return ExitUsage;
    }
    outgoing->files = mParser.values(Attach);
    const bool areThere = std::all_of(outgoing->files.cbegin(), outgoing->files.cend(),
        [](const QString &file) { return AttachedFile(file).isThere(); });
    return areThere ? ExitSuccess : ExitNotFound;
}
