// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "internal/mailkeynode.h"

#include <QString>
#include <QVariantList>

/** A key as a condition in SQL, all values of it bound. */
struct CompiledKey
{
    QString condition;
    QVariantList values;
    /** The order by number. Said so that it does not keep SQLite from using the index of the condition. */
    QString order;
};

CompiledKey compileMessageKey(const MailKeyNode &key);
CompiledKey compileFolderKey(const MailKeyNode &key);
