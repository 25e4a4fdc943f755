// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/accountoptions.h"

#include "client/accountfields.h"
#include "client/commandcontext.h"

#include <QUrl>

namespace {

const auto Server = QStringLiteral("server");
const auto User = QStringLiteral("user");
const auto DomainName = QStringLiteral("domain");
const auto Name = QStringLiteral("name");
const auto Folders = QStringLiteral("folders");
const auto Version = QStringLiteral("protocol-version");
const auto PastTime = QStringLiteral("past-time");
const auto Without = QStringLiteral("without");
const auto AcceptAll = QStringLiteral("accept-all-certificates");
const auto CheckCertificates = QStringLiteral("check-certificates");

/** As the protocol counts them; the last is no time but what is not done yet. */
constexpr int LastPastTime = 8;

const QStringList &versions()
{
    static const QStringList known { QStringLiteral("12.0"), QStringLiteral("12.1"), QStringLiteral("14.0"),
        QStringLiteral("14.1"), QStringLiteral("16.0"), QStringLiteral("16.1") };
    return known;
}

bool refuse(const QString &error)
{
    Output::error(error);
    return false;
}

} // namespace

AccountOptions::AccountOptions(QCommandLineParser &parser)
    : mParser(parser)
{
    for (const QString &name : { Server, User, DomainName, Name, Folders, Version, PastTime, Without })
        parser.addOption(QCommandLineOption(name, QString(), QStringLiteral("value")));
    for (const QString &name : { AcceptAll, CheckCertificates })
        parser.addOption(QCommandLineOption(name));
}

bool AccountOptions::read(AccountSettings *settings) const
{
    const auto text = [this](const QString &option) {
        return mParser.isSet(option) ? std::optional<QString>(mParser.value(option)) : std::nullopt;
    };
    settings->name = text(Name);
    settings->userName = text(User);
    settings->domain = text(DomainName);
    settings->protocolVersion = text(Version);
    settings->folders = text(Folders);
    if (settings->protocolVersion
        && !CommandContext::isOneOf(
            *settings->protocolVersion, versions(), QStringLiteral("--protocol-version")))
        return false;
    if (settings->folders
        && !CommandContext::isOneOf(
            *settings->folders, AccountFields::folderChoices(), QStringLiteral("--folders")))
        return false;
    if (settings->userName && settings->userName->isEmpty())
        return refuse(QStringLiteral("--user needs a name"));
    if (mParser.isSet(PastTime)) {
        settings->pastTime = CommandContext::number(mParser, PastTime, 0, 0, LastPastTime);
        if (!settings->pastTime)
            return false;
    }
    return readCertificates(settings) && readServices(settings)
        && (!mParser.isSet(Server) || readServer(mParser.value(Server), settings));
}

bool AccountOptions::readCertificates(AccountSettings *settings) const
{
    if (mParser.isSet(AcceptAll) && mParser.isSet(CheckCertificates))
        return refuse(QStringLiteral("give --accept-all-certificates or --check-certificates, not both"));
    if (mParser.isSet(AcceptAll) || mParser.isSet(CheckCertificates))
        settings->acceptAllCertificates = mParser.isSet(AcceptAll);
    return true;
}

bool AccountOptions::readServer(const QString &text, AccountSettings *settings) const
{
    // The path is always the protocol's own.
    const QUrl url(text.contains(QLatin1String("://")) ? text : QStringLiteral("https://") + text);
    const bool isHttp = url.scheme() == QLatin1String("http");
    if (!url.isValid() || url.host().isEmpty() || (!isHttp && url.scheme() != QLatin1String("https")))
        return refuse(
            QStringLiteral("\"%1\" is not a server address; give HOST, HOST:PORT or a URL").arg(text));
    settings->server = ServerAddress { url.host(), url.port(isHttp ? 80 : 443), !isHttp };
    return true;
}

bool AccountOptions::readServices(AccountSettings *settings) const
{
    if (!mParser.isSet(Without))
        return true;
    const QStringList without = mParser.values(Without);
    QStringList left = AccountFields::serviceNames();
    for (const QString &name : without) {
        // "nothing" gives an account all of them back.
        if (name == QLatin1String("nothing"))
            continue;
        if (!CommandContext::isOneOf(name, AccountFields::serviceNames(), QStringLiteral("--without")))
            return false;
        left.removeAll(name);
    }
    if (left.isEmpty())
        return refuse(QStringLiteral("an account without any service does nothing"));
    settings->services = left;
    return true;
}

bool AccountOptions::complete(const QString &emailAddress, AccountSettings *settings) const
{
    if (!emailAddress.contains(QLatin1Char('@')))
        return refuse(
            QStringLiteral("\"%1\" is not a mail address, such as alice@example.org").arg(emailAddress));
    settings->emailAddress = emailAddress;
    if (!settings->server && !readServer(emailAddress.section(QLatin1Char('@'), -1), settings))
        return false;
    settings->name = settings->name.value_or(emailAddress);
    settings->userName = settings->userName.value_or(emailAddress);
    settings->domain = settings->domain.value_or(QString());
    settings->protocolVersion = settings->protocolVersion.value_or(QString());
    settings->folders = settings->folders.value_or(AccountFields::folderChoices().first());
    settings->pastTime = settings->pastTime.value_or(0);
    settings->acceptAllCertificates = settings->acceptAllCertificates.value_or(false);
    settings->services = settings->services.value_or(AccountFields::serviceNames());
    return true;
}
