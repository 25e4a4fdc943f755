// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/versionnegotiator.h"

#include "application/account/easaccount.h"
#include "application/base/engine.h"
#include "application/base/logging.h"
#include "protocol/base/protocolutils.h"
#include "protocol/foldersynccustomcommand.h"
#include "protocol/optionscommand.h"

#include <algorithm>
#include <iterator>

namespace {

using ExchangeActiveSync::ProtocolVersion;

/** Whatever the order of the server's list. */
constexpr ProtocolVersion BestVersionsFirst[] = {
    ExchangeActiveSync::ProtocolVersion161,
    ExchangeActiveSync::ProtocolVersion160,
    ExchangeActiveSync::ProtocolVersion141,
    ExchangeActiveSync::ProtocolVersion140,
    ExchangeActiveSync::ProtocolVersion121,
    ExchangeActiveSync::ProtocolVersion120,
};

ProtocolVersion chooseVersion(const QList<ProtocolVersion> &offered, ProtocolVersion preferred)
{
    if (preferred != ExchangeActiveSync::ProtocolVersionUnknown && offered.contains(preferred))
        return preferred;
    const auto best = std::find_if(std::begin(BestVersionsFirst), std::end(BestVersionsFirst),
        [&offered](ProtocolVersion version) { return offered.contains(version); });
    return best != std::end(BestVersionsFirst) ? *best : ExchangeActiveSync::ProtocolVersionUnknown;
}

QString joinVersions(const QList<ProtocolVersion> &versions)
{
    QStringList texts;
    for (const ProtocolVersion version : versions)
        texts.append(QString::fromLatin1(EasAccount::encodedProtocolVersion(version)));
    return texts.join(QStringLiteral(", "));
}

const char *text(bool value)
{
    return value ? "true" : "false";
}

/** What every server has. "Settings", "Find" and "ResolveRecipients" are not among them. */
QStringList guessedCommands()
{
    return {
        ProtocolUtils::CommandItemOperations,
        ProtocolUtils::CommandSync,
        ProtocolUtils::CommandFolderCreate,
        ProtocolUtils::CommandFolderDelete,
        ProtocolUtils::CommandFolderSync,
        ProtocolUtils::CommandFolderUpdate,
        ProtocolUtils::CommandGetAttachment,
        ProtocolUtils::CommandMoveItems,
        ProtocolUtils::CommandSendMail,
        ProtocolUtils::CommandMeetingResponse,
        ProtocolUtils::CommandSmartReply,
        ProtocolUtils::CommandSmartForward,
        ProtocolUtils::CommandProvision,
        ProtocolUtils::CommandPing,
        ProtocolUtils::CommandSearch,
    };
}

} // namespace

VersionNegotiator::VersionNegotiator(EasAccountId accountId, QObject *parent)
    : QObject(parent)
    , mAccountId(accountId)
{
}

VersionNegotiator::~VersionNegotiator() = default;

int VersionNegotiator::status() const
{
    return mStatus;
}

QList<ExchangeActiveSync::ProtocolVersion> VersionNegotiator::versions() const
{
    return mVersions;
}

QStringList VersionNegotiator::supportedCommands() const
{
    return mSupportedCommands;
}

EasAccount *VersionNegotiator::account() const
{
    return Engine::accountOf(this, mAccountId);
}

ProtocolVersion VersionNegotiator::settle(EasAccount &account) const
{
    const ProtocolVersion preferred = account.preferredProtocolVersion();
    qCInfo(eas()) << "Versions:" << joinVersions(mVersions)
                  << "Preferred protocol version:" << EasAccount::encodedProtocolVersion(preferred)
                  << "Supported commands:" << mSupportedCommands;
    const ProtocolVersion choice = chooseVersion(mVersions, preferred);
    if (choice != ExchangeActiveSync::ProtocolVersionUnknown)
        account.setProtocolVersion(choice);
    if (!mSupportedCommands.isEmpty())
        account.setSupportedCommands(mSupportedCommands);
    return choice;
}

void VersionNegotiator::start()
{
    if (mOptionsCommand || mFolderSyncCommand) {
        qCWarning(eas()) << "Version negotiator started while running";
        return;
    }
    qCInfo(eas()) << "Starting version negotiation";
    mOptionsCommand = new OptionsCommand(mAccountId, this);
    connect(mOptionsCommand, &OptionsCommand::finished, this, &VersionNegotiator::onOptionsReady);
    mOptionsCommand->start();
}

void VersionNegotiator::stop()
{
    // Nothing may be heard of a stopped command: its failure would send the negotiation on to the next
    // source, and the request with it.
    mStatus = ProtocolUtils::TransportStatusCancelled;
    const auto stopCommand = [this](BaseProtocolCommand *command) {
        if (!command)
            return;
        command->disconnect(this);
        command->stop();
        command->deleteLater();
    };
    stopCommand(mOptionsCommand);
    stopCommand(mFolderSyncCommand);
    mOptionsCommand.clear();
    mFolderSyncCommand.clear();
}

void VersionNegotiator::onOptionsReady(bool success)
{
    OptionsCommand *const command = mOptionsCommand;
    if (!command)
        return;
    mOptionsCommand.clear();
    command->deleteLater();
    mStatus = command->status();
    qCInfo(eas()) << "version negotiation with OPTIONS finished, success:" << text(success);
    if (success) {
        if (!command->versions().isEmpty())
            updateSupportedVersions(command->versions(), true);
        if (!command->supportedCommands().isEmpty())
            syncSupportedCommands(command->supportedCommands());
        Q_EMIT finished(true);
        return;
    }
    if (!takeCachedVersions()) {
        startFolderSync();
        return;
    }
    takeCachedCommands();
    Q_EMIT finished(true);
}

bool VersionNegotiator::takeCachedVersions()
{
    const EasAccount *const remembering = account();
    const QString cached = remembering ? remembering->lastKnownVersions().join(QLatin1Char(',')) : QString();
    if (!cached.isEmpty())
        updateSupportedVersions(cached, false);
    return !mVersions.isEmpty();
}

void VersionNegotiator::takeCachedCommands()
{
    qCInfo(eas()) << "Using cached version data";
    mSupportedCommands = account()->lastKnownSupportedCommands();
    if (mSupportedCommands.isEmpty()) {
        qCInfo(eas()) << "- no supported commands cached, guessing.";
        mSupportedCommands = guessedCommands();
    } else {
        qCInfo(eas()) << "Using cached supported commands" << mSupportedCommands;
    }
}

void VersionNegotiator::startFolderSync()
{
    qCWarning(eas()) << "For last resort on version negotiation trying custom folder sync";
    mFolderSyncCommand =
        new FolderSyncCustomCommand(mAccountId, ExchangeActiveSync::ProtocolVersion120, this);
    connect(
        mFolderSyncCommand, &FolderSyncCustomCommand::finished, this, &VersionNegotiator::folderSyncReady);
    mFolderSyncCommand->start();
}

void VersionNegotiator::folderSyncReady(bool success)
{
    FolderSyncCustomCommand *const command = mFolderSyncCommand;
    if (!command)
        return;
    mFolderSyncCommand.clear();
    command->deleteLater();
    mStatus = command->status();
    qCInfo(eas()) << "version negotiation with FolderSync finished, success:" << text(success);
    if (success) {
        if (!command->versions().isEmpty())
            updateSupportedVersions(command->versions(), true);
        QStringList commands = command->supportedCommands();
        qCInfo(eas()) << "Supported versions:" << command->versions() << "Supported commands:" << commands;
        if (commands.isEmpty()) {
            qCWarning(eas()) << "FolderSync didn't return supported commands, guessing them.";
            commands = guessedCommands();
        }
        syncSupportedCommands(commands);
    }
    Q_EMIT finished(success);
}

void VersionNegotiator::updateSupportedVersions(const QString &versions, bool updateCache)
{
    mVersions.clear();
    const QStringList texts = versions.split(QLatin1Char(','), Qt::SkipEmptyParts);
    for (const QString &versionText : texts) {
        const auto version = EasAccount::toProtocolVersion(versionText.toLatin1());
        if (version != ExchangeActiveSync::ProtocolVersionUnknown)
            mVersions.append(version);
    }
    EasAccount *const remembering = account();
    if (updateCache && remembering)
        remembering->setLastKnownVersions(texts);
}

void VersionNegotiator::syncSupportedCommands(const QStringList &commands)
{
    mSupportedCommands = commands;
    if (EasAccount *const remembering = account())
        remembering->setLastKnownSupportedCommands(commands);
}
