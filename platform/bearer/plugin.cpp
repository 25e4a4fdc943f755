// SPDX-License-Identifier: LGPL-2.1-or-later
#include "plugin.h"

#include "fileengine.h"

QBearerEngine *FileBearerPlugin::create(const QString &key) const
{
    Q_UNUSED(key)
    return new FileEngine;
}
