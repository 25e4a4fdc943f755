// SPDX-License-Identifier: LGPL-2.1-or-later
#include "integration/mailactor.h"

#include "integration/dice.h"
#include "simulator/email.h"
#include "support/pimlisting.h"
#include "support/synctestbed.h"

#include <qmaildisconnected.h>
#include <qmailmessagekey.h>
#include <qmailstore.h>

namespace {

const QStringList &folders()
{
    static const QStringList names { QStringLiteral("Inbox"), QStringLiteral("Archive"),
        QStringLiteral("Inbox/Projects") };
    return names;
}

QString readText(bool read)
{
    return read ? QStringLiteral("read") : QStringLiteral("unread");
}

} // namespace

MailActor::MailActor(SyncTestBed &bed)
    : mBed(bed)
{
    mBed.mailbox().addFolder(QStringLiteral("Archive"));
    mBed.mailbox().addFolder(QStringLiteral("Projects"), Simulator::UserMailFolder, mBed.mailbox().inboxId());
}

ItemActor::Edit MailActor::deliver(Dice &dice)
{
    const QString subject = QStringLiteral("mail %1").arg(++mDelivered);
    const QString folder = dice.pick(folders());
    mBed.mailbox().deliver(mBed.mailbox().folderByPath(folder).id,
        SyncTestBed::message(subject, QStringLiteral("Text of ") + subject));
    return { subject, QStringLiteral("arrives in ") + folder };
}

ItemActor::Edit MailActor::editServer(Dice &dice, const QSet<QString> &delicate)
{
    const QString folder = dice.pick(folders());
    const auto items = mBed.mailbox().items(mBed.mailbox().folderByPath(folder).id);
    if (items.isEmpty() || dice.oneIn(2))
        return deliver(dice);
    const Simulator::ItemEntry &entry = items.at(dice.below(items.size()));
    const QString &id = entry.serverId;
    const QString subject =
        std::static_pointer_cast<const Simulator::Email>(entry.item)->content().headers().subject;
    if (delicate.contains(subject))
        return {};
    switch (dice.below(4)) {
    case 0:
        mBed.mailbox().remove(id);
        return { subject, QStringLiteral("%1 removed").arg(id) };
    case 1: {
        const QString target = dice.pick(folders());
        const QString moved = mBed.mailbox().move(id, mBed.mailbox().folderByPath(target).id);
        return { subject, QStringLiteral("%1 moved to %2 as %3").arg(id, target, moved) };
    }
    default: {
        const bool read = dice.oneIn(2);
        mBed.mailbox().setRead(id, read);
        return { subject, QStringLiteral("%1 marked as ").arg(id) + readText(read) };
    }
    }
}

ItemActor::Edit MailActor::editDevice(Dice &dice, const QSet<QString> &delicate)
{
    const QMailMessageIdList ids = mBed.deviceMessages();
    if (ids.isEmpty())
        return {};
    QMailStore *store = QMailStore::instance();
    const QMailMessageId id = ids.at(dice.below(ids.size()));
    const QString subject = QMailMessageMetaData(id).subject();
    if (delicate.contains(subject))
        return {};
    switch (dice.below(4)) {
    case 0:
        store->removeMessage(id, QMailStore::CreateRemovalRecord);
        return { subject, QStringLiteral("removed") };
    case 1: {
        const QString target = dice.pick(folders());
        QMailDisconnected::moveToFolder(QMailMessageIdList { id }, mBed.deviceFolder(target));
        // When the answer to the move is lost, the message comes as a new one from its new folder.
        return { subject, QStringLiteral("moved to ") + target, true };
    }
    default: {
        const bool read = dice.oneIn(2);
        store->updateMessagesMetaData(QMailMessageKey::id(id), QMailMessage::Read, read);
        // A mark that is taken back, when the answer to its upload was lost, looks like none.
        return { subject, QStringLiteral("marked as ") + readText(read), true };
    }
    }
}

ItemActor::State MailActor::serverState()
{
    return fromLines(mBed.serverState());
}

ItemActor::State MailActor::deviceState()
{
    return fromLines(mBed.deviceState());
}

ItemActor::State MailActor::fromLines(const QStringList &lines)
{
    State state;
    for (const QString &line : lines) {
        const QStringList fields = line.split(QLatin1Char('|'));
        PimListing::enter(state, fields.value(1), fields.value(0) + QLatin1Char(' ') + fields.value(2));
    }
    return state;
}
