// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"

#include <QString>

namespace Simulator {
class Mailbox;
}

/**
 * Items of a device and its server in the middle of a fault: what is there at first, and whether all of it is
 * found on both sides at the end.
 */
class CrashScene
{
public:
    virtual ~CrashScene();

    /** Nothing is there yet; the mailbox outlives the scene or its next begin(). */
    virtual void begin(EasAccountId accountId, Simulator::Mailbox &mailbox, const QString &version);
    /** Removes the items that earlier runs have left on the device. */
    virtual void clearDevice() const = 0;
    virtual void fillMailbox() = 0;

    /** Empty if both sides are as they have to be. */
    virtual QString wrongState() const = 0;
    /** Empty if the mapping names what is in the stores, and the stores' files are whole. */
    virtual QString wrongStores() const = 0;

protected:
    EasAccountId accountId() const { return mAccountId; }
    Simulator::Mailbox &mailbox() const { return *mMailbox; }
    /** The protocol version of the account. */
    const QString &version() const { return mVersion; }

private:
    EasAccountId mAccountId = 0;
    Simulator::Mailbox *mMailbox = nullptr;
    QString mVersion;
};
