// SPDX-License-Identifier: LGPL-2.1-or-later
#include "authdevlockclient.h"

#include "devicelockfile.h"

AuthDevlockClient::AuthDevlockClient(QObject *parent)
    : QObject(parent)
{
}

bool AuthDevlockClient::enabled() const
{
    return DeviceLockFile::isEnabled();
}
