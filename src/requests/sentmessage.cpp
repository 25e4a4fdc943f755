// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/sentmessage.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "common/easdbusinterfaceproxy.h"
#include "common/easrequeststatus.h"
#include "common/exchangeactivesync.h"
#include "protocol/base/eas.h"

#include <QDBusConnection>
#include <QDBusPendingReply>

namespace {

/** Some servers say so where others say nothing. */
constexpr int ServerSuccess = 1;

/** Milliseconds; the service thread answers at once if it answers at all. */
constexpr int BusPatience = 5000;

} // namespace

SentMessage::SentMessage(EasAccountId accountId, quint64 messageId)
    : mAccountId(accountId)
    , mMessageId(messageId)
    , mProxy(std::make_unique<EasDBusInterfaceProxy>(ExchangeActiveSync::EAS_DBUS_SERVICE_NAME,
          ExchangeActiveSync::EAS_DBUS_PATH_NAME, QDBusConnection::sessionBus()))
{
    mProxy->setTimeout(BusPatience);
    if (!mProxy->isValid())
        qCCritical(eas()) << "Cannot connect to Dbus";
}

SentMessage::~SentMessage() = default;

bool SentMessage::isSent(int status)
{
    // The last one: an earlier attempt was sent, and its answer was lost.
    return status == EasRequestStatus::RequestStatusSuccess || status == ServerSuccess
        || status == Eas::CommonStatusMessagePreviouselySent;
}

bool SentMessage::settle(const EasAccount *account, MailStorage::SentCopy copy) const
{
    const QSharedPointer<MailStorage> storage =
        account ? account->mailStorage() : QSharedPointer<MailStorage>();
    const bool isSettled = storage && storage->settleSent(QString::number(mMessageId), copy);
    if (!isSettled)
        qCCritical(eas()) << "message" << mMessageId
                          << "was sent, but it could not be taken out of the Outbox";
    syncSentItemsFolder();
    return isSettled;
}

qulonglong SentMessage::syncSentItemsFolder() const
{
    const QList<EasFolderItem> folders =
        EasDatabase::instance()
            ->folderItemsByFolderType(mAccountId, EasFolderItem::DefaultSentItemsFolder)
            .valueOr({});
    const EasFolderItem sentItems = folders.value(0);
    qCInfo(eas()) << "Server ID: " << sentItems.serverId() << ", syncKey: " << sentItems.syncKey()
                  << ", localId:" << sentItems.localId();
    if (sentItems.localId().isEmpty())
        return 0;
    QDBusPendingReply<qulonglong> reply = mProxy->syncFolders(mAccountId, { sentItems.localId() });
    reply.waitForFinished();
    if (reply.isError()) {
        // The message was sent all the same; the next sync brings the copy.
        qCWarning(eas()) << "Sent Items are not synchronized now:" << reply.error().message();
        return 0;
    }
    qCInfo(eas()) << "Internal request" << reply.value();
    return reply.value();
}
