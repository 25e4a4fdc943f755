// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"

#include <QObject>

/**
 * Base of the typed views on one account's settings. An account owns its configurations and shares them out;
 * each signals when a value changed in the account record. Main thread only.
 */
class BaseAccountConfiguration : public QObject
{
    Q_OBJECT

public:
    BaseAccountConfiguration(EasAccountId accountId, QObject *parent);
    ~BaseAccountConfiguration() override;

    EasAccountId accountId() const;

private:
    EasAccountId mAccountId;
};
