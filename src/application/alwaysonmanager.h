// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"

#include <QObject>

/**
 * Keeps the push connection of one account.
 *
 * The account creates its manager when it is first switched to always-on and owns it from then on. For now
 * the manager holds the switch; it opens no connection. Main thread only.
 */
class AlwaysOnManager : public QObject
{
    Q_OBJECT

public:
    AlwaysOnManager(EasAccountId accountId, QObject *parent);

    EasAccountId accountId() const;
    bool alwaysOnScheduling() const;
    void setAlwaysOnScheduling(bool enabledAlwaysOn);

private:
    EasAccountId mAccountId;
    bool mAlwaysOnEnabled = false;
};
