// SPDX-License-Identifier: LGPL-2.1-or-later
#include "accounts/remotewipe.h"

#include "accounts/base/identitykeys.h"
#include "accounts/base/wipekeys.h"
#include "accounts/identityremoval.h"
#include "accounts/identityusers.h"
#include "application/base/clock.h"
#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"

#include <Accounts/Account>

#include <QDir>
#include <QStandardPaths>
#include <QTimer>

namespace {

constexpr int AcknowledgementPatience = 10000;
constexpr int StartDelay = 500;
constexpr int RetryDelay = 300000;

int interval(int milliseconds, Clock::Timer timer)
{
    return Clock::instance().timerInterval(milliseconds, timer);
}

} // namespace

RemoteWipe::RemoteWipe(const AccountRecord &record, EasAccountId accountId, QObject *parent)
    : QObject(parent)
    , mRecord(record)
    , mAccountId(accountId)
    , mTimer(new QTimer(this))
    , mRequested(mRecord.value(RecordScope::global(), QLatin1String(WipeKeys::Requested)).toBool())
{
    mTimer->setSingleShot(true);
    connect(mTimer, &QTimer::timeout, this, &RemoteWipe::onRemoteWipeTimeout);
}

RemoteWipe::~RemoteWipe() = default;

// The order

bool RemoteWipe::request()
{
    if (mRequested)
        return true;
    if (!write(WipeKeys::Requested, true)) {
        // What is not on the disk must not get there with the next value that is written.
        mRecord.discard(RecordScope::global(), QLatin1String(WipeKeys::Requested));
        return false;
    }
    mRequested = true;
    mTimer->start(interval(AcknowledgementPatience, Clock::Timer::WipeAcknowledgement));
    Q_EMIT ordered();
    return true;
}

bool RemoteWipe::write(const char *key, const QVariant &value)
{
    if (mRecord.write(RecordScope::global(), QLatin1String(key), value))
        return true;
    qCWarning(eas()) << "failed to write" << key << "of account" << mAccountId;
    return false;
}

void RemoteWipe::acknowledged()
{
    if (mRequested && !mBegun)
        resume();
}

void RemoteWipe::resume()
{
    mTimer->start(interval(StartDelay, Clock::Timer::WipeStart));
}

void RemoteWipe::onRemoteWipeTimeout()
{
    qCWarning(eas()) << "trying to wipe the account" << mAccountId;
    mBegun = true;
    Q_EMIT begun();
    removeIdentities();
}

// The identities

void RemoteWipe::removeIdentities()
{
    write(WipeKeys::Stage, QString::fromLatin1(WipeKeys::StageSignOn));
    mRemoved.clear();
    mNotRemoved.clear();
    for (const char *const key : { IdentityKeys::Password, IdentityKeys::CertificatePassphrase }) {
        const quint32 identity = mRecord.value(RecordScope::global(), QLatin1String(key)).toUInt();
        if (identity == 0)
            qCWarning(eas()) << "identity is not found for account" << mAccountId << key;
        else
            removeUnlessUsed(identity);
    }
    if (mRemovalsUnderWay == 0)
        removeData();
}

void RemoteWipe::removeUnlessUsed(quint32 identity)
{
    const Lookup<Existence> others = IdentityUsers::anyBut(mAccountId, identity);
    if (!others) {
        qCWarning(eas()) << "identity" << identity << "waits, the account records cannot be read";
        mNotRemoved.insert(identity);
    } else if (*others == Existence::Present) {
        qCWarning(eas()) << "identity" << identity << "stays, another account uses it";
    } else {
        startRemoval(identity);
    }
}

void RemoteWipe::startRemoval(quint32 identity)
{
    auto *const removal = new IdentityRemoval(identity, this);
    connect(removal, &IdentityRemoval::finished, this,
        [this, removal](bool removed) { onIdentityRemoved(*removal, removed); });
    ++mRemovalsUnderWay;
    removal->start();
}

void RemoteWipe::onIdentityRemoved(IdentityRemoval &removal, bool removed)
{
    removal.deleteLater();
    if (removed)
        qCInfo(eas()) << "identity removed in account" << mAccountId;
    (removed ? mRemoved : mNotRemoved).insert(removal.credentialsId());
    if (--mRemovalsUnderWay == 0)
        removeData();
}

// The rest

void RemoteWipe::removeData()
{
    using Step = bool (RemoteWipe::*)();
    static constexpr Step steps[] = {
        &RemoteWipe::keepWaitingIdentities,
        &RemoteWipe::removeAttachments,
        &RemoteWipe::clearStoresAndMapping,
        &RemoteWipe::removeMappingRows,
    };
    write(WipeKeys::Stage, QString::fromLatin1(WipeKeys::StageData));
    bool complete = true;
    // Each has its turn, whatever became of those before.
    for (const Step step : steps)
        complete = (this->*step)() && complete;
    // The order goes with the record.
    if (complete && removeRecord())
        return forgetRemovedIdentities();
    qCWarning(eas()) << "the wipe of account" << mAccountId << "is not complete and will be tried again";
    mTimer->start(interval(RetryDelay, Clock::Timer::WipeRetry));
}

bool RemoteWipe::keepWaitingIdentities()
{
    return mNotRemoved.isEmpty() || WaitingIdentities().add(mNotRemoved);
}

void RemoteWipe::forgetRemovedIdentities()
{
    // Not before the record: as long as that names them, the next attempt has to know that they were there.
    for (const quint32 identity : qAsConst(mRemoved))
        WaitingIdentities().remove(identity);
}

bool RemoteWipe::removeAttachments()
{
    const QString attachments = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation)
        + QStringLiteral("/mail_attachments/%1").arg(mAccountId);
    qCInfo(eas()) << "removing directory:" << attachments;
    if (QDir(attachments).removeRecursively())
        return true;
    qCWarning(eas()) << "failed to remove attachments directory for account" << mAccountId;
    return false;
}

bool RemoteWipe::clearStoresAndMapping()
{
    if (EasDatabase::instance()->clearAccount(mAccountId))
        return true;
    qCWarning(eas()) << "failed to clear data for account" << mAccountId;
    return false;
}

bool RemoteWipe::removeMappingRows()
{
    // An account that was cleared keeps the row from which its next sync would start.
    return EasDatabase::instance()->removeAccount(mAccountId);
}

bool RemoteWipe::removeRecord()
{
    Accounts::Account *const account = mRecord.account();
    if (!account)
        return true;
    account->remove();
    if (account->syncAndBlock())
        return true;
    qCWarning(eas()) << "failed to remove account" << mAccountId;
    return false;
}
