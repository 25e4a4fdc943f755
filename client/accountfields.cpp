// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/accountfields.h"

#include "client/accountsettings.h"

#include <Accounts/Account>
#include <Accounts/Manager>

#include <QJsonArray>

namespace {

const auto Host = QStringLiteral("connection/server_address");
const auto GlobalHost = QStringLiteral("network/server_address");
const auto UserName = QStringLiteral("default_credentials_username");
const auto EmailAddress = QStringLiteral("connection/emailaddress");
const auto PreferredVersion = QStringLiteral("connection/preferred_protocol_version");
const auto FolderPolicy = QStringLiteral("folderSyncPolicy");
const auto PastTime = QStringLiteral("sync_past_time");
const auto Port = QStringLiteral("connection/port");
const auto Secure = QStringLiteral("connection/secure_connection");
const auto AcceptAll = QStringLiteral("connection/accept_all_certificates");
const auto Domain = QStringLiteral("connection/domain");
const auto NeedUpdate = QStringLiteral("CredentialsNeedUpdate");

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

QStringList enabledServices(const Accounts::Manager &manager, Accounts::Account &account)
{
    QStringList names;
    for (const ServiceName &service : Services) {
        account.selectService(manager.service(QLatin1String(service.service)));
        if (account.enabled())
            names.append(QLatin1String(service.name));
    }
    account.selectService();
    return names;
}

} // namespace

QStringList AccountFields::folderChoices()
{
    QStringList words;
    for (const FolderChoice &choice : FolderChoices)
        words.append(QLatin1String(choice.word));
    return words;
}

QStringList AccountFields::serviceNames()
{
    QStringList names;
    for (const ServiceName &service : Services)
        names.append(QLatin1String(service.name));
    return names;
}

bool AccountFields::isProviderInstalled(const Accounts::Manager &manager)
{
    return manager.service(QLatin1String(Services[0].service)).isValid();
}

QJsonObject AccountFields::describe(const Accounts::Manager &manager, Accounts::Account &account)
{
    QJsonObject object;
    account.selectService();
    object[QStringLiteral("id")] = QString::number(account.id());
    object[QStringLiteral("name")] = account.displayName();
    object[QStringLiteral("user")] = account.valueAsString(UserName);
    object[QStringLiteral("address")] = account.valueAsString(EmailAddress);
    object[QStringLiteral("versions")] = account.valueAsString(QStringLiteral("last_known_versions"));
    object[QStringLiteral("protocolVersion")] = account.valueAsString(PreferredVersion);
    object[QStringLiteral("folders")] = folderWord(account.valueAsString(FolderPolicy));
    object[QStringLiteral("enabled")] = account.enabled();
    object[QStringLiteral("services")] = QJsonArray::fromStringList(enabledServices(manager, account));
    account.selectService(mailService(account));
    object[QStringLiteral("server")] = account.valueAsString(Host);
    object[QStringLiteral("port")] = account.valueAsInt(Port);
    object[QStringLiteral("secure")] = account.valueAsBool(Secure);
    object[QStringLiteral("domain")] = account.valueAsString(Domain);
    object[QStringLiteral("acceptAll")] = account.valueAsBool(AcceptAll);
    object[QStringLiteral("pastTime")] = account.valueAsInt(PastTime);
    object[QStringLiteral("blocked")] = account.valueAsBool(NeedUpdate);
    return object;
}

void AccountFields::apply(
    const Accounts::Manager &manager, Accounts::Account &account, const AccountSettings &settings)
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
        account.selectService(manager.service(QLatin1String(known.service)));
        account.setEnabled(settings.services->contains(QLatin1String(known.name)));
    }
}

Accounts::Service AccountFields::mailService(const Accounts::Account &account)
{
    return account.services(QStringLiteral("e-mail")).value(0);
}
