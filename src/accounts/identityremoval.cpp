// SPDX-License-Identifier: LGPL-2.1-or-later
#include "accounts/identityremoval.h"

#include "accounts/signonpatience.h"
#include "accounts/waitingidentities.h"
#include "application/base/logging.h"

#include <SignOn/Error>
#include <SignOn/Identity>

#include <utility>

IdentityRemoval::IdentityRemoval(quint32 credentialsId, QObject *parent)
    : QObject(parent)
    , mCredentialsId(credentialsId)
{
}

IdentityRemoval::~IdentityRemoval() = default;

void IdentityRemoval::start()
{
    if (!SignOnPatience::serviceIsAvailable())
        return onError(
            SignOn::Error(SignOn::Error::ServiceNotAvailable, QStringLiteral("There is no sign-on service")));
    const auto *const patience = new SignOnPatience(this);
    connect(patience, &SignOnPatience::exhausted, this, &IdentityRemoval::onError);
    ask();
}

void IdentityRemoval::ask()
{
    if (mIdentity) {
        mIdentity->disconnect(this);
        mIdentity->deleteLater();
    }
    mIdentity = SignOn::Identity::existingIdentity(mCredentialsId, this);
    if (!mIdentity)
        return end(true);
    connect(mIdentity, &SignOn::Identity::info, this, &IdentityRemoval::onShown);
    connect(mIdentity, &SignOn::Identity::removed, this, [this] { end(true); });
    connect(mIdentity, QOverload<const SignOn::Error &>::of(&SignOn::Identity::error), this,
        &IdentityRemoval::onError);
    mShown = false;
    mIdentity->queryInfo();
}

void IdentityRemoval::onShown()
{
    if (mEnded || std::exchange(mShown, true))
        return;
    // A failure is logged, and costs something only if the process dies before the removal is noted.
    WaitingIdentities().noteShown(mCredentialsId);
    mIdentity->remove();
}

void IdentityRemoval::onError(const SignOn::Error &error)
{
    if (mEnded)
        return;
    qCWarning(eas()).nospace() << "Received an Identity deletion error: type=" << error.type()
                               << ", message:" << error.message();
    // The library asks for a shown identity once more at times, and may hear of its end before that of the
    // removal.
    const bool isDoubtful = error.type() == SignOn::Error::PermissionDenied && mShown;
    if (isDoubtful && !std::exchange(mHasAskedAgain, true))
        return ask();
    end(isGone(error));
}

bool IdentityRemoval::isGone(const SignOn::Error &error) const
{
    if (error.type() == SignOn::Error::IdentityNotFound)
        return true;
    return error.type() == SignOn::Error::PermissionDenied && !mShown
        && WaitingIdentities().wasShown(mCredentialsId);
}

void IdentityRemoval::end(bool removed)
{
    if (std::exchange(mEnded, true))
        return;
    // Whoever starts several of them goes on only after the last one has been started.
    QMetaObject::invokeMethod(
        this, [this, removed] { Q_EMIT finished(removed); }, Qt::QueuedConnection);
}
