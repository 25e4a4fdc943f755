// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/crashscene.h"

CrashScene::~CrashScene() = default;

void CrashScene::begin(EasAccountId accountId, Simulator::Mailbox &mailbox, const QString &version)
{
    mAccountId = accountId;
    mMailbox = &mailbox;
    mVersion = version;
}
