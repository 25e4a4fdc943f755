// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/signonservice.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>

#include <csignal>

pid_t SignOnService::pid()
{
    const QDBusReply<uint> reply = QDBusConnection::sessionBus().interface()->servicePid(
        QStringLiteral("com.google.code.AccountsSSO.SingleSignOn"));
    return reply.isValid() ? static_cast<pid_t>(reply.value()) : 0;
}

bool SignOnService::kill()
{
    const pid_t service = pid();
    return service > 1 && ::kill(service, SIGKILL) == 0;
}

SilentSignOnService::SilentSignOnService()
    : mPid(SignOnService::pid())
{
    if (mPid <= 1 || ::kill(mPid, SIGSTOP) != 0)
        mPid = 0;
}

SilentSignOnService::~SilentSignOnService()
{
    if (mPid > 1)
        ::kill(mPid, SIGCONT);
}
