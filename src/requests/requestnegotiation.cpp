// SPDX-License-Identifier: LGPL-2.1-or-later
// How a request comes by the protocol version of its account.
#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "protocol/base/protocolutils.h"
#include "requests/request.h"
#include "requests/versionnegotiator.h"

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

} // namespace

void Request::checkProtocolVersion()
{
    const EasAccount *const versioned = account();
    if (!versioned) {
        qCCritical(eas()) << "No account object for account:" << mAccountId;
        setStatus(RequestStatusInternalError);
        protocolVersionConfirmed(ExchangeActiveSync::ProtocolVersionUnknown);
        return;
    }
    if (versioned->protocolVersion() != ExchangeActiveSync::ProtocolVersionUnknown) {
        protocolVersionConfirmed(versioned->protocolVersion());
        return;
    }
    if (mVersionNegotiator)
        return;
    mVersionNegotiator = new VersionNegotiator(mAccountId, this);
    connect(mVersionNegotiator, &VersionNegotiator::finished, this, &Request::onVersionNegotiationReady);
    mVersionNegotiator->start();
}

void Request::onVersionNegotiationReady(bool success)
{
    if (!account() || !mVersionNegotiator) {
        completeWith(RequestStatusInternalError);
        return;
    }
    setStatus(mVersionNegotiator->status());
    const QList<ProtocolVersion> versions = mVersionNegotiator->versions();
    const QStringList commands = mVersionNegotiator->supportedCommands();
    mVersionNegotiator->deleteLater();
    mVersionNegotiator.clear();
    if (success) {
        takeNegotiatedVersion(versions, commands);
        return;
    }
    if (status() == ProtocolUtils::TransportStatusCancelled)
        setStatus(RequestStatusCancelled);
    else if (successfullyFinished()) // no source could even be asked, for want of a client certificate say
        setStatus(RequestStatusInternalError);
    reportRequestCompleted();
}

void Request::takeNegotiatedVersion(const QList<ProtocolVersion> &versions, const QStringList &commands)
{
    EasAccount *const versioned = account();
    const ProtocolVersion preferred = versioned->preferredProtocolVersion();
    qCInfo(eas()) << "Versions:" << joinVersions(versions)
                  << "Preferred protocol version:" << EasAccount::encodedProtocolVersion(preferred)
                  << "Supported commands:" << commands;
    const ProtocolVersion choice = chooseVersion(versions, preferred);
    if (choice != ExchangeActiveSync::ProtocolVersionUnknown)
        versioned->setProtocolVersion(choice);
    if (!commands.isEmpty())
        versioned->setSupportedCommands(commands);
    protocolVersionConfirmed(choice);
}
