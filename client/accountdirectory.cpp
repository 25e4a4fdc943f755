// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/accountdirectory.h"

#include "accounts/base/accountstore.h"
#include "client/output.h"

#include <Accounts/Account>
#include <QDBusConnection>

namespace {

const auto Provider = QStringLiteral("fenneleas");
const auto MailServiceType = QStringLiteral("e-mail");

const auto ServerAddress = QStringLiteral("connection/server_address");
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

} // namespace

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
    return ids;
}

EasAccountId AccountDirectory::find(const QString &account) const
{
    if (!usable())
        return 0;
    const QList<EasAccountId> ids = accounts();
    if (account.isEmpty()) {
        if (ids.size() == 1)
            return ids.first();
        Output::error(ids.isEmpty()
                ? QStringLiteral("there is no account; add one with fennel-easctl account add")
                : QStringLiteral("there are several accounts; name one with --account"));
        return 0;
    }
    for (const EasAccountId id : ids) {
        if (QString::number(id) == account || load(id)->displayName() == account)
            return id;
    }
    Output::error(QStringLiteral("there is no account \"%1\"").arg(account));
    return 0;
}

QJsonObject AccountDirectory::describe(EasAccountId id) const
{
    QJsonObject object;
    const auto account = load(id);
    if (!account)
        return object;
    account->selectService();
    object[QStringLiteral("id")] = double(id);
    object[QStringLiteral("name")] = account->displayName();
    object[QStringLiteral("user")] = account->valueAsString(QStringLiteral("default_credentials_username"));
    object[QStringLiteral("address")] = account->valueAsString(QStringLiteral("connection/emailaddress"));
    object[QStringLiteral("versions")] = account->valueAsString(QStringLiteral("last_known_versions"));
    object[QStringLiteral("folders")] = account->valueAsString(QStringLiteral("folderSyncPolicy"));
    object[QStringLiteral("enabled")] = account->enabled();
    object[QStringLiteral("services")] = QJsonArray::fromStringList(enabledServices(*account));
    account->selectService(mailService(*account));
    object[QStringLiteral("server")] = account->valueAsString(ServerAddress);
    object[QStringLiteral("port")] = account->valueAsInt(Port);
    object[QStringLiteral("secure")] = account->valueAsBool(Secure);
    object[QStringLiteral("acceptAll")] = account->valueAsBool(AcceptAll);
    object[QStringLiteral("blocked")] = account->valueAsBool(NeedUpdate);
    return object;
}

EasAccountId AccountDirectory::add(const NewAccount &settings)
{
    if (!usable())
        return 0;
    const std::unique_ptr<Accounts::Account> account(mManager->createAccount(Provider));
    if (!account)
        return 0;
    account->selectService();
    account->setDisplayName(settings.name);
    account->setEnabled(true);
    account->setValue(QStringLiteral("default_credentials_username"), settings.userName);
    account->setValue(QStringLiteral("CredentialsId"), settings.credentialsId);
    account->setValue(QStringLiteral("auth/method"), QStringLiteral("password"));
    account->setValue(QStringLiteral("auth/mechanism"), QStringLiteral("password"));
    account->setValue(QStringLiteral("network/server_address"), settings.server);
    account->setValue(QStringLiteral("connection/emailaddress"), settings.emailAddress);
    account->setValue(QStringLiteral("connection/preferred_protocol_version"), settings.protocolVersion);
    account->setValue(QStringLiteral("folderSyncPolicy"), settings.folderPolicy);
    account->setValue(QStringLiteral("conflict_policy"), 1);

    const Accounts::Service service = mailService(*account);
    if (!service.isValid()) {
        Output::error(QStringLiteral("the account provider's description is not installed"));
        return 0;
    }
    for (const ServiceName &known : Services) {
        account->selectService(mManager->service(QLatin1String(known.service)));
        account->setEnabled(settings.services.contains(QLatin1String(known.name)));
    }
    account->selectService(mManager->service(QStringLiteral("fenneleas-contacts")));
    account->setValue(SyncLocal, true);
    account->selectService(service);
    account->setValue(ServerAddress, settings.server);
    account->setValue(Port, settings.port);
    account->setValue(Secure, settings.secure);
    account->setValue(AcceptAll, settings.acceptAllCertificates);
    account->setValue(Domain, settings.domain);
    account->setValue(QStringLiteral("sync_past_time"), settings.pastTime);
    return store(*account) ? account->id() : 0;
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

quint32 AccountDirectory::credentialsId(EasAccountId id) const
{
    const auto account = load(id);
    return account ? account->value(QStringLiteral("CredentialsId")).toUInt() : 0;
}

QString AccountDirectory::userName(EasAccountId id) const
{
    const auto account = load(id);
    return account ? account->valueAsString(QStringLiteral("default_credentials_username")) : QString();
}

QString AccountDirectory::emailAddress(EasAccountId id) const
{
    const auto account = load(id);
    if (!account)
        return {};
    account->selectService();
    return account->valueAsString(QStringLiteral("connection/emailaddress"));
}

bool AccountDirectory::credentialsChanged(EasAccountId id, quint32 credentialsId)
{
    const auto account = load(id);
    if (!account)
        return false;
    account->selectService();
    account->setValue(QStringLiteral("CredentialsId"), credentialsId);
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
