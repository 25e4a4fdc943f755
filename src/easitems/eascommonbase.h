// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QObject>
#include <QString>

/** What everything that the server identifies has in common. A plain value. */
class EasCommonBase
{
    Q_GADGET

public:
    QString serverId() const { return mServerId; }
    void setServerId(const QString &serverId) { mServerId = serverId; }

    void clear() { *this = EasCommonBase(); }

private:
    QString mServerId;
};
