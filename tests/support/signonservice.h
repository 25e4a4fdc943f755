// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QtGlobal>

#include <sys/types.h>

/** The process of the sign-on service on the private bus. */
namespace SignOnService {

/** 0 while it does not run. */
pid_t pid();
/** SIGKILL; the bus starts the service again for whoever calls it next. */
bool kill();

} // namespace SignOnService

/** While it lives, the sign-on service takes calls and answers none of them. It answers them all afterwards.
 */
class SilentSignOnService
{
public:
    SilentSignOnService();
    ~SilentSignOnService();
    Q_DISABLE_COPY(SilentSignOnService)

    bool isSilent() const { return mPid > 0; }

private:
    pid_t mPid;
};
