// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/base/engine.h"

#include <QObject>

Engine *Engine::of(const QObject *object)
{
    for (QObject *parent = object ? object->parent() : nullptr; parent; parent = parent->parent()) {
        if (auto *const engine = qobject_cast<Engine *>(parent))
            return engine;
    }
    return nullptr;
}

EasAccount *Engine::accountOf(const QObject *object, EasAccountId accountId)
{
    const Engine *const engine = of(object);
    return engine ? engine->account(accountId) : nullptr;
}
