// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/accountdirectory.h"

#include "accounts/base/accountstore.h"
#include "accounts/base/wipekeys.h"
#include "client/accountfields.h"
#include "client/accountsettings.h"
#include "client/exitstatus.h"
#include "client/output.h"

#include <Accounts/Account>
#include <QDBusConnection>

#include <algorithm>

namespace {

const auto Provider = QStringLiteral("fenneleas");
const auto CredentialsId = QStringLiteral("CredentialsId");
const auto NeedUpdate = QStringLiteral("CredentialsNeedUpdate");
const auto SyncLocal = QStringLiteral("sync_local");
const auto UpdateCounter = QStringLiteral("credentials_update_counter");

} // namespace

AccountDirectory::AccountDirectory()
{
    // Without a bus the library prints failures of its own and gives accounts that cannot be used.
    if (QDBusConnection::sessionBus().isConnected())
        mManager = AccountStore::manager();
}

bool AccountDirectory::usable() const
{
    if (mManager)
        return true;
    Output::error(QStringLiteral("the account store cannot be reached; is there a session bus?"));
    return false;
}

QList<EasAccountId> AccountDirectory::accounts() const
{
    QList<EasAccountId> ids;
    if (!usable())
        return ids;
    const Accounts::AccountIdList all = mManager->accountList();
    for (const Accounts::AccountId id : all) {
        const auto account = load(id);
        if (account && account->providerName() == Provider)
            ids.append(id);
    }
    std::sort(ids.begin(), ids.end());
    return ids;
}

QStringList AccountDirectory::namesOf(EasAccountId id) const
{
    const QJsonObject account = describe(id);
    if (account.isEmpty())
        return {};
    return { account.value(QStringLiteral("name")).toString(),
        account.value(QStringLiteral("address")).toString() };
}

int AccountDirectory::find(const QString &wanted, EasAccountId *id) const
{
    if (!usable())
        return ExitUnavailable;
    const QList<EasAccountId> all = accounts();
    QList<EasAccountId> exact;
    QList<EasAccountId> near;
    for (const EasAccountId candidate : all) {
        const QStringList names = namesOf(candidate);
        if (wanted.isEmpty() || QString::number(candidate) == wanted)
            exact.append(candidate);
        else if (names.contains(wanted, Qt::CaseInsensitive))
            near.append(candidate);
    }
    if (exact.isEmpty() && near.isEmpty()) {
        for (const EasAccountId candidate : all) {
            for (const QString &name : namesOf(candidate)) {
                const bool isMeant =
                    name.section(QLatin1Char('@'), 0, 0).compare(wanted, Qt::CaseInsensitive) == 0;
                if (isMeant && !near.contains(candidate))
                    near.append(candidate);
            }
        }
    }
    const QList<EasAccountId> &found = exact.isEmpty() ? near : exact;
    if (found.size() == 1) {
        *id = found.first();
        return ExitSuccess;
    }
    if (found.size() > 1) {
        Output::error(wanted.isEmpty()
                ? QStringLiteral("there are several accounts; name one with --account")
                : QStringLiteral("several accounts are called \"%1\"; give the number of one").arg(wanted));
        return ExitUsage;
    }
    Output::error(wanted.isEmpty()
            ? QStringLiteral("there is no account; add one with fennel-easctl account add")
            : QStringLiteral("there is no account \"%1\"").arg(wanted));
    return ExitNotFound;
}

QJsonObject AccountDirectory::describe(EasAccountId id) const
{
    const auto account = load(id);
    return account ? AccountFields::describe(*mManager, *account) : QJsonObject();
}

bool AccountDirectory::isEnabled(EasAccountId id) const
{
    return describe(id).value(QStringLiteral("enabled")).toBool();
}

bool AccountDirectory::isBlocked(EasAccountId id) const
{
    return describe(id).value(QStringLiteral("blocked")).toBool();
}

AccountDirectory::Wipe AccountDirectory::wipe(EasAccountId id) const
{
    const std::unique_ptr<Accounts::Account> account = load(id);
    if (!account || !account->value(QLatin1String(WipeKeys::Requested)).toBool())
        return Wipe::None;
    const QString stage = account->value(QLatin1String(WipeKeys::Stage)).toString();
    if (stage == QLatin1String(WipeKeys::StageSignOn))
        return Wipe::WaitsForSignOn;
    return stage == QLatin1String(WipeKeys::StageData) ? Wipe::Running : Wipe::Ordered;
}

bool AccountDirectory::canAdd(const AccountSettings &settings) const
{
    if (!usable())
        return false;
    if (!AccountFields::isProviderInstalled(*mManager)) {
        Output::error(QStringLiteral("the account provider's description is not installed"));
        return false;
    }
    const QList<EasAccountId> all = accounts();
    for (const EasAccountId id : all) {
        const QJsonObject known = describe(id);
        const bool isOfSameUser = known.value(QStringLiteral("user")).toString() == settings.userName
            && known.value(QStringLiteral("domain")).toString() == settings.domain
            && known.value(QStringLiteral("server")).toString() == settings.server->host;
        if (!isOfSameUser)
            continue;
        if (known.value(QStringLiteral("address")).toString() != settings.emailAddress) {
            Output::note(
                QStringLiteral("account %1 is of the same user on the same server, which takes both for "
                               "one device: each sync of one makes the other start anew")
                    .arg(id));
        } else {
            Output::error(
                QStringLiteral("account %1 is this one already; change it with account edit").arg(id));
            return false;
        }
    }
    return true;
}

EasAccountId AccountDirectory::add(const AccountSettings &settings, quint32 credentialsId)
{
    if (!usable())
        return 0;
    const std::unique_ptr<Accounts::Account> account(mManager->createAccount(Provider));
    if (!account)
        return 0;
    account->selectService();
    account->setEnabled(true);
    account->setValue(CredentialsId, credentialsId);
    account->setValue(QStringLiteral("auth/method"), QStringLiteral("password"));
    account->setValue(QStringLiteral("auth/mechanism"), QStringLiteral("password"));
    account->setValue(QStringLiteral("conflict_policy"), 1);
    account->selectService(mManager->service(QStringLiteral("fenneleas-contacts")));
    account->setValue(SyncLocal, true);
    AccountFields::apply(*mManager, *account, settings);
    return store(*account) ? account->id() : 0;
}

bool AccountDirectory::edit(EasAccountId id, const AccountSettings &settings)
{
    const auto account = load(id);
    if (!account)
        return false;
    AccountFields::apply(*mManager, *account, settings);
    return store(*account);
}

bool AccountDirectory::setEnabled(EasAccountId id, bool enabled)
{
    const auto account = load(id);
    if (!account)
        return false;
    account->selectService();
    account->setEnabled(enabled);
    return store(*account);
}

bool AccountDirectory::remove(EasAccountId id)
{
    const auto account = load(id);
    if (!account)
        return false;
    account->remove();
    return store(*account);
}

void AccountDirectory::follow(QObject *context, const std::function<void()> &call) const
{
    if (!usable())
        return;
    QObject::connect(mManager.get(), &Accounts::Manager::accountCreated, context, call);
    QObject::connect(mManager.get(), &Accounts::Manager::accountRemoved, context, call);
}

quint32 AccountDirectory::credentialsId(EasAccountId id) const
{
    const auto account = load(id);
    return account ? account->value(CredentialsId).toUInt() : 0;
}

QString AccountDirectory::userName(EasAccountId id) const
{
    return describe(id).value(QStringLiteral("user")).toString();
}

QString AccountDirectory::emailAddress(EasAccountId id) const
{
    return describe(id).value(QStringLiteral("address")).toString();
}

bool AccountDirectory::credentialsChanged(EasAccountId id, quint32 credentialsId)
{
    const auto account = load(id);
    if (!account)
        return false;
    account->selectService();
    account->setValue(CredentialsId, credentialsId);
    account->selectService(AccountFields::mailService(*account));
    account->setValue(NeedUpdate, false);
    account->setValue(UpdateCounter, account->valueAsInt(UpdateCounter) + 1);
    return store(*account);
}

std::unique_ptr<Accounts::Account> AccountDirectory::load(EasAccountId id) const
{
    return std::unique_ptr<Accounts::Account>(
        Accounts::Account::fromId(mManager.get(), Accounts::AccountId(id)));
}

bool AccountDirectory::store(Accounts::Account &account)
{
    if (account.syncAndBlock())
        return true;
    Output::error(QStringLiteral("the account could not be stored"));
    return false;
}
