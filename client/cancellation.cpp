// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/cancellation.h"

#include "client/exitstatus.h"
#include "client/output.h"

#include <QCoreApplication>

namespace {

constexpr int PatienceMs = 5000;

} // namespace

Cancellation::Cancellation(EasAccountId accountId, qulonglong requestId)
    : mRequest(accountId)
    , mRequestId(requestId)
{
    mPatience.setSingleShot(true);
    mPatience.setInterval(PatienceMs);
}

int Cancellation::exec()
{
    QObject::connect(&mRequest, &DaemonRequest::ended, QCoreApplication::instance(), &QCoreApplication::quit);
    QObject::connect(&mPatience, &QTimer::timeout, QCoreApplication::instance(), &QCoreApplication::quit);
    mRequest.follow(mRequestId);
    mRequest.cancel();
    mPatience.start();
    QCoreApplication::exec();
    if (!mRequest.hasEnded()) {
        Output::error(QStringLiteral("account %1 has no request %2 that could be cancelled")
                          .arg(mRequest.accountId())
                          .arg(mRequestId));
        return ExitNotFound;
    }
    // It ended; as cancelled, or in the very moment by itself.
    if (mRequest.exitStatus() != ExitUnavailable)
        return ExitSuccess;
    Output::error(mRequest.error());
    return ExitUnavailable;
}
