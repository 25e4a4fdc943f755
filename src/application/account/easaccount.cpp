// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/account/easaccount.h"

#include "application/alwaysonmanager.h"
#include "application/base/logging.h"
#include "configurations/connectionaccountconfiguration.h"

namespace {

struct VersionText
{
    ExchangeActiveSync::ProtocolVersion version;
    const char *text;
};

constexpr VersionText versionTexts[] = {
    { ExchangeActiveSync::ProtocolVersion120, "12.0" },
    { ExchangeActiveSync::ProtocolVersion121, "12.1" },
    { ExchangeActiveSync::ProtocolVersion140, "14.0" },
    { ExchangeActiveSync::ProtocolVersion141, "14.1" },
    { ExchangeActiveSync::ProtocolVersion160, "16.0" },
    { ExchangeActiveSync::ProtocolVersion161, "16.1" },
};

/** In the order of the stored times. */
constexpr EasAccount::ServiceFlag serviceFlags[] = { EasAccount::ContactsService, EasAccount::CalendarService,
    EasAccount::EmailService };

} // namespace

EasAccount::EasAccount(EasAccountId id, QObject *parent)
    : QObject(parent)
    , mId(id)
{
    connect(this, &EasAccount::emailConfigurationChanged, this, &EasAccount::onAccountConfigChanged);
    connect(this, &EasAccount::calendarConfigurationChanged, this, &EasAccount::onAccountConfigChanged);
    connect(this, &EasAccount::contactsConfigurationChanged, this, &EasAccount::onAccountConfigChanged);
}

EasAccount::~EasAccount() = default;

QByteArray EasAccount::encodedProtocolVersion(ExchangeActiveSync::ProtocolVersion version)
{
    for (const VersionText &row : versionTexts) {
        if (row.version == version)
            return row.text;
    }
    return QByteArray();
}

ExchangeActiveSync::ProtocolVersion EasAccount::toProtocolVersion(const QByteArray &text)
{
    for (const VersionText &row : versionTexts) {
        if (text == row.text)
            return row.version;
    }
    return ExchangeActiveSync::ProtocolVersionUnknown;
}

EasAccountId EasAccount::id() const
{
    return mId;
}

void EasAccount::setId(EasAccountId id)
{
    mId = id;
}

AlwaysOnManager *EasAccount::alwaysOnManager() const
{
    return mAlwaysOnManager;
}

QByteArray EasAccount::encodedProtocolVersion() const
{
    return encodedProtocolVersion(mProtocolVersion);
}

void EasAccount::refreshAuthenticationCache()
{
    clearAuthenticationCache();
    const auto connection = connectionConfiguration();
    if (!connection) {
        qCCritical(eas()) << "No connection config";
        return;
    }
    QByteArray credentials;
    const QByteArray domain = connection->domainName().toUtf8();
    if (!domain.isEmpty())
        credentials = domain + '\\';
    credentials += userName().toUtf8() + ':' + password().toUtf8();
    mAuthenticationBasicCookie = credentials.toBase64();
}

void EasAccount::clearAuthenticationCache()
{
    mAuthenticationBasicCookie.clear();
}

bool EasAccount::alwaysOn() const
{
    return mAlwaysOn;
}

void EasAccount::setAlwaysOn(bool on)
{
    mAlwaysOn = on;
    const bool scheduled = on && enabled();
    if (!mAlwaysOnManager) {
        if (!scheduled)
            return;
        mAlwaysOnManager = new AlwaysOnManager(mId, this);
    }
    mAlwaysOnManager->setAlwaysOnScheduling(scheduled);
}

QByteArray EasAccount::authenticationBasicCookie() const
{
    return mAuthenticationBasicCookie;
}

QString EasAccount::deviceId() const
{
    return QStringLiteral("v140Device");
}

QString EasAccount::deviceType() const
{
    return QStringLiteral("HalcyonOS");
}

ExchangeActiveSync::ProtocolVersion EasAccount::protocolVersion() const
{
    return mProtocolVersion;
}

void EasAccount::setProtocolVersion(ExchangeActiveSync::ProtocolVersion version)
{
    qCInfo(eas()).nospace().noquote()
        << encodedProtocolVersion(mProtocolVersion) << " => " << encodedProtocolVersion(version);
    mProtocolVersion = version;
}

const QStringList &EasAccount::supportedCommands() const
{
    return mSupportedCommands;
}

void EasAccount::setSupportedCommands(const QStringList &commands)
{
    if (commands.isSharedWith(mSupportedCommands))
        return;
    mSupportedCommands = commands;
    mSupportedCommands.detach();
}

bool EasAccount::commandIsSupported(const QString &command)
{
    return mSupportedCommands.contains(command, Qt::CaseSensitive);
}

QDateTime EasAccount::lastSyncTime(Service service) const
{
    for (size_t i = 0; i < mLastSyncTimes.size(); ++i) {
        if (service == serviceFlags[i])
            return mLastSyncTimes[i];
    }
    return QDateTime();
}

void EasAccount::setLastSyncTime(Service services, const QDateTime &time)
{
    for (size_t i = 0; i < mLastSyncTimes.size(); ++i) {
        if (services.testFlag(serviceFlags[i]))
            mLastSyncTimes[i] = time;
    }
}

int EasAccount::heartbeatInterval() const
{
    return mHeartbeatInterval;
}

void EasAccount::setHeartbeatInterval(int seconds)
{
    mHeartbeatInterval = seconds;
}

bool EasAccount::isReady() const
{
    return true;
}

void EasAccount::onAccountConfigChanged(qulonglong accountId)
{
    Q_UNUSED(accountId)
    setAlwaysOn(alwaysOn() && enabled());
}
