// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"

#include <QtPlugin>

class EasAccount;
class Network;

/**
 * What a request or a command needs of the engine that runs it: its account and the network.
 *
 * An object finds its engine above itself: the engine is the parent of its requests, a request that of its
 * commands and of the requests that work for it. Main thread only.
 */
class Engine
{
public:
    /** Null for an unknown identifier. Asked for anew each time: accounts vanish while requests run. */
    virtual EasAccount *account(EasAccountId accountId) const = 0;
    virtual Network *networkManager() = 0;

    /** The nearest engine among an object's parents; null if there is none. */
    static Engine *of(const QObject *object);
    /** The account in the engine of an object; null without an engine. */
    static EasAccount *accountOf(const QObject *object, EasAccountId accountId);

protected:
    ~Engine() = default;
};

Q_DECLARE_INTERFACE(Engine, "org.fennel.eas.Engine")
