// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/credentials.h"

#include "client/output.h"

#include <QCoreApplication>
#include <QObject>
#include <SignOn/Identity>

#include <memory>
#include <optional>

namespace {

/** One call of the sign-on service and its answer; runs the application's event loop until it is there. */
class IdentityCall : public QObject
{
public:
    /** With 0 a new identity. */
    explicit IdentityCall(quint32 identity)
        : mIdentity(
            identity != 0 ? SignOn::Identity::existingIdentity(identity) : SignOn::Identity::newIdentity())
    {
        if (!mIdentity)
            return;
        connect(mIdentity.get(), QOverload<const SignOn::Error &>::of(&SignOn::Identity::error), this,
            [this](const SignOn::Error &error) {
                mError = error;
                end();
            });
        connect(mIdentity.get(), &SignOn::Identity::credentialsStored, this, [this](quint32 id) {
            mStored = id;
            end();
        });
        connect(mIdentity.get(), &SignOn::Identity::removed, this, [this] { end(); });
    }

    /** False without an answer, or with a refusal. */
    template <class Call> bool run(Call call)
    {
        if (!mIdentity)
            return false;
        call(*mIdentity);
        // The answer may have come at once.
        if (!mHasEnded)
            QCoreApplication::exec();
        return !mError;
    }

    quint32 stored() const { return mStored; }
    bool isOfNoIdentity() const
    {
        return !mIdentity || (mError && mError->type() == SignOn::Error::IdentityNotFound);
    }
    void report() const
    {
        Output::error(QStringLiteral("the sign-on service refused: %1")
                          .arg(mError ? mError->message() : QStringLiteral("it cannot be reached")));
    }

private:
    void end()
    {
        mHasEnded = true;
        QCoreApplication::quit();
    }

    std::unique_ptr<SignOn::Identity> mIdentity;
    std::optional<SignOn::Error> mError;
    quint32 mStored = 0;
    bool mHasEnded = false;
};

} // namespace

quint32 Credentials::store(
    quint32 identity, const QString &caption, const QString &userName, const QString &password)
{
    SignOn::IdentityInfo info;
    info.setCaption(caption);
    info.setUserName(userName);
    info.setSecret(password, true);
    info.setMethod(QStringLiteral("password"), { QStringLiteral("password") });
    // Without a list nobody can read an identity, not even the program that stored it.
    info.setAccessControlList({ QStringLiteral("*") });

    IdentityCall call(identity);
    if (call.run([&info](SignOn::Identity &opened) { opened.storeCredentials(info); }))
        return call.stored();
    if (identity != 0 && call.isOfNoIdentity())
        return store(0, caption, userName, password);
    call.report();
    return 0;
}

bool Credentials::remove(quint32 identity)
{
    if (identity == 0)
        return true;
    IdentityCall call(identity);
    if (call.run([](SignOn::Identity &opened) { opened.remove(); }) || call.isOfNoIdentity())
        return true;
    call.report();
    return false;
}
