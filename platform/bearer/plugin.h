// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QtNetwork/private/qbearerplugin_p.h>

/** Hands the file engine to the network library. */
class FileBearerPlugin : public QBearerEnginePlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QBearerEngineFactoryInterface_iid FILE "plugin.json")

public:
    QBearerEngine *create(const QString &key) const override;
};
