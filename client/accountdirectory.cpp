// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/accountdirectory.h"

#include "accounts/base/accountstore.h"
#include "accounts/base/wipekeys.h"
#include "client/exitstatus.h"
#include "client/output.h"

#include <Accounts/Account>
#include <QDBusConnection>

#include <algorithm>

namespace {

const auto Provider = QStringLiteral("fenneleas");
const auto MailServiceType = QStringLiteral("e-mail");

const auto Host = QStringLiteral("connection/server_address");
const auto GlobalHost = QStringLiteral("network/server_address");
const auto UserName = QStringLiteral("default_credentials_username");
const auto EmailAddress = QStringLiteral("connection/emailaddress");
const auto PreferredVersion = QStringLiteral("connection/preferred_protocol_version");
const auto FolderPolicy = QStringLiteral("folderSyncPolicy");
const auto PastTime = QStringLiteral("sync_past_time");
const auto CredentialsId = QStringLiteral("CredentialsId");
const auto Port = QStringLiteral("connection/port");
const auto Secure = QStringLiteral("connection/secure_connection");
const auto AcceptAll = QStringLiteral("connection/accept_all_certificates");
const auto Domain = QStringLiteral("connection/domain");
const auto NeedUpdate = QStringLiteral("CredentialsNeedUpdate");
const auto SyncLocal = QStringLiteral("sync_local");
const auto UpdateCounter = QStringLiteral("credentials_update_counter");

struct ServiceName
{
    const char *name;
    const char *service;
};

constexpr ServiceName Services[] = {
    { "mail", "fenneleas-email" },
    { "calendar", "fenneleas-calendars" },
    { "contacts", "fenneleas-contacts" },
};

struct FolderChoice
{
    const char *word;
    const char *policy;
};

constexpr FolderChoice FolderChoices[] = {
    { "all", "ignore-flags" },
    { "inbox", "inbox-only" },
    { "marked", "follow-flags" },
};

/** The word for a policy; the policy itself if it is another program's. */
QString folderWord(const QString &policy)
{
    for (const FolderChoice &choice : FolderChoices) {
        if (policy == QLatin1String(choice.policy))
            return QLatin1String(choice.word);
    }
    return policy;
}

QString folderPolicy(const QString &word)
{
    for (const FolderChoice &choice : FolderChoices) {
        if (word == QLatin1String(choice.word))
            return QLatin1String(choice.policy);
    }
    return word;
}

} // namespace

QStringList AccountDirectory::folderChoices()
{
    QStringList words;
    for (const FolderChoice &choice : FolderChoices)
        words.append(QLatin1String(choice.word));
    return words;
}

QStringList AccountDirectory::serviceNames()
{
    QStringList names;
    for (const ServiceName &service : Services)
        names.append(QLatin1String(service.name));
    return names;
}

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
    const auto account = load(id);
    if (!account)
        return {};
    account->selectService();
    return { account->displayName(), account->valueAsString(EmailAddress) };
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
    QJsonObject object;
    const auto account = load(id);
    if (!account)
        return object;
    account->selectService();
    object[QStringLiteral("id")] = QString::number(id);
    object[QStringLiteral("name")] = account->displayName();
    object[QStringLiteral("user")] = account->valueAsString(UserName);
    object[QStringLiteral("address")] = account->valueAsString(EmailAddress);
    object[QStringLiteral("versions")] = account->valueAsString(QStringLiteral("last_known_versions"));
    object[QStringLiteral("protocolVersion")] = account->valueAsString(PreferredVersion);
    object[QStringLiteral("folders")] = folderWord(account->valueAsString(FolderPolicy));
    object[QStringLiteral("enabled")] = account->enabled();
    object[QStringLiteral("services")] = QJsonArray::fromStringList(enabledServices(*account));
    account->selectService(mailService(*account));
    object[QStringLiteral("server")] = account->valueAsString(Host);
    object[QStringLiteral("port")] = account->valueAsInt(Port);
    object[QStringLiteral("secure")] = account->valueAsBool(Secure);
    object[QStringLiteral("domain")] = account->valueAsString(Domain);
    object[QStringLiteral("acceptAll")] = account->valueAsBool(AcceptAll);
    object[QStringLiteral("pastTime")] = account->valueAsInt(PastTime);
    object[QStringLiteral("blocked")] = account->valueAsBool(NeedUpdate);
    return object;
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
    if (!mManager->service(QLatin1String(Services[0].service)).isValid()) {
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
    apply(*account, settings);
    return store(*account) ? account->id() : 0;
}

bool AccountDirectory::edit(EasAccountId id, const AccountSettings &settings)
{
    const auto account = load(id);
    if (!account)
        return false;
    apply(*account, settings);
    return store(*account);
}

void AccountDirectory::apply(Accounts::Account &account, const AccountSettings &settings)
{
    const auto put = [&account](const QString &key, const auto &value) {
        if (value)
            account.setValue(key, *value);
    };
    account.selectService();
    if (settings.name)
        account.setDisplayName(*settings.name);
    put(UserName, settings.userName);
    put(EmailAddress, settings.emailAddress);
    put(PreferredVersion, settings.protocolVersion);
    if (settings.folders)
        account.setValue(FolderPolicy, folderPolicy(*settings.folders));
    if (settings.server)
        account.setValue(GlobalHost, settings.server->host);

    account.selectService(mailService(account));
    if (settings.server) {
        account.setValue(Host, settings.server->host);
        account.setValue(Port, settings.server->port);
        account.setValue(Secure, settings.server->isSecure);
    }
    put(AcceptAll, settings.acceptAllCertificates);
    put(Domain, settings.domain);
    put(PastTime, settings.pastTime);
    // The sender of new messages, as the device's mail applications read it.
    put(QStringLiteral("emailaddress"), settings.emailAddress);
    if (settings.name != settings.emailAddress)
        put(QStringLiteral("fullName"), settings.name);

    for (const ServiceName &known : Services) {
        if (!settings.services)
            continue;
        account.selectService(mManager->service(QLatin1String(known.service)));
        account.setEnabled(settings.services->contains(QLatin1String(known.name)));
    }
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
    const auto account = load(id);
    return account ? account->valueAsString(UserName) : QString();
}

QString AccountDirectory::emailAddress(EasAccountId id) const
{
    const auto account = load(id);
    if (!account)
        return {};
    account->selectService();
    return account->valueAsString(EmailAddress);
}

bool AccountDirectory::credentialsChanged(EasAccountId id, quint32 credentialsId)
{
    const auto account = load(id);
    if (!account)
        return false;
    account->selectService();
    account->setValue(CredentialsId, credentialsId);
    account->selectService(mailService(*account));
    account->setValue(NeedUpdate, false);
    account->setValue(UpdateCounter, account->valueAsInt(UpdateCounter) + 1);
    return store(*account);
}

std::unique_ptr<Accounts::Account> AccountDirectory::load(EasAccountId id) const
{
    return std::unique_ptr<Accounts::Account>(
        Accounts::Account::fromId(mManager.get(), Accounts::AccountId(id)));
}

QStringList AccountDirectory::enabledServices(Accounts::Account &account) const
{
    QStringList names;
    for (const ServiceName &service : Services) {
        account.selectService(mManager->service(QLatin1String(service.service)));
        if (account.enabled())
            names.append(QLatin1String(service.name));
    }
    account.selectService();
    return names;
}

Accounts::Service AccountDirectory::mailService(const Accounts::Account &account)
{
    return account.services(MailServiceType).value(0);
}

bool AccountDirectory::store(Accounts::Account &account)
{
    if (account.syncAndBlock())
        return true;
    Output::error(QStringLiteral("the account could not be stored"));
    return false;
}
