// SPDX-License-Identifier: LGPL-2.1-or-later
#include "accounts/remotewipe.h"

#include "application/base/clock.h"
#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"

#include <Accounts/Account>
#include <SignOn/Identity>

#include <QDir>
#include <QStandardPaths>
#include <QTimer>

namespace {

const QString credentialsIdKey = QStringLiteral("CredentialsId");
const QString remoteWipeRequestedKey = QStringLiteral("remote_wipe_requested");
constexpr int AcknowledgementPatience = 10000;
constexpr int StartDelay = 500;

} // namespace

RemoteWipe::RemoteWipe(const AccountRecord &record, EasAccountId accountId, QObject *parent)
    : QObject(parent)
    , mRecord(record)
    , mAccountId(accountId)
    , mTimer(new QTimer(this))
    , mRequested(mRecord.value(RecordScope::global(), remoteWipeRequestedKey).toBool())
{
    mTimer->setSingleShot(true);
    connect(mTimer, &QTimer::timeout, this, &RemoteWipe::onRemoteWipeTimeout);
}

RemoteWipe::~RemoteWipe() = default;

bool RemoteWipe::request()
{
    if (mRequested)
        return true;
    if (!record())
        return false;
    mRequested = true;
    mTimer->start(
        Clock::instance().timerInterval(AcknowledgementPatience, Clock::Timer::WipeAcknowledgement));
    Q_EMIT ordered();
    return true;
}

bool RemoteWipe::record()
{
    if (mRecord.write(RecordScope::global(), remoteWipeRequestedKey, true))
        return true;
    qCWarning(eas()) << "failed to write" << remoteWipeRequestedKey << "of account" << mAccountId;
    return false;
}

void RemoteWipe::acknowledged()
{
    if (mRequested && !mBegun)
        resume();
}

void RemoteWipe::resume()
{
    mTimer->start(Clock::instance().timerInterval(StartDelay, Clock::Timer::WipeStart));
}

void RemoteWipe::onRemoteWipeTimeout()
{
    qCWarning(eas()) << "trying to wipe the account" << mAccountId;
    mBegun = true;
    Q_EMIT begun();
    const quint32 credentialsId = mRecord.value(RecordScope::global(), credentialsIdKey).toUInt();
    SignOn::Identity *const identity = SignOn::Identity::existingIdentity(credentialsId, this);
    if (!identity) {
        qCWarning(eas()) << "identity is not found for account" << mAccountId;
        wipe();
        return;
    }
    connect(identity, &SignOn::Identity::removed, this, &RemoteWipe::onIdentityRemoved);
    connect(identity, QOverload<const SignOn::Error &>::of(&SignOn::Identity::error), this,
        &RemoteWipe::onIdentityRemoveError);
    connect(identity, &SignOn::Identity::removed, identity, &QObject::deleteLater);
    identity->remove();
}

void RemoteWipe::onIdentityRemoved()
{
    qCInfo(eas()) << "identity removed in account" << mAccountId;
    wipe();
}

void RemoteWipe::onIdentityRemoveError(const SignOn::Error &error)
{
    qCWarning(eas()).nospace() << "Received an Identity deletion error: type=" << error.type()
                               << ", message:" << error.message();
}

void RemoteWipe::wipe()
{
    const QString attachments = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation)
        + QStringLiteral("/mail_attachments/%1").arg(mAccountId);
    qCInfo(eas()) << "removing directory:" << attachments;
    if (!QDir(attachments).removeRecursively())
        qCWarning(eas()) << "failed to remove attachments directory for account" << mAccountId;
    if (!EasDatabase::instance()->clearAccount(mAccountId))
        qCWarning(eas()) << "failed to clear data for account" << mAccountId;
    Accounts::Account *const account = mRecord.account();
    if (!account)
        return;
    account->remove();
    if (!account->syncAndBlock())
        qCWarning(eas()) << "failed to remove account" << mAccountId;
}
