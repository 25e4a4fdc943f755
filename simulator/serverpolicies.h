// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/wbxmlnode.h"

#include <QMap>

namespace Simulator {

/** One policy as a reply to Provision holds it. */
struct Policy
{
    QString type = QStringLiteral("MS-EAS-Provisioning-WBXML");
    int status = 1;
    WbxmlNode document; ///< an EASProvisionDoc, or null for none

    /** A policy of the usual type out of the elements of an EASProvisionDoc, as XML:
     * "<AllowCamera>1</AllowCamera>". */
    static Policy of(const QString &elements);
    /** A policy that allows everything and asks for nothing, with these values in place of its own. */
    static Policy allowing(const QMap<QString, QString> &values = {});
};

/** What the server keeps of one device that was provisioned. */
struct ProvisionState
{
    QString temporaryKey; ///< handed out with the policies, good for the acknowledgement alone
    QString key; ///< empty before the first acknowledgement
    int revision = 0; ///< of the policies that the key stands for
};

/** What a server orders its devices to wipe. */
enum class Wipe { None, Device, Account };

/**
 * What the server asks of the devices of one mailbox before it serves them. Nothing at first: then a command
 * is served whatever policy key it brings. A plain value.
 */
struct ServerPolicies
{
    QVector<Policy> list; ///< in the order of the reply; empty: no policy
    int revision = 1; ///< a device that took on an older one has to fetch the policies again
    bool checksKeys = true; ///< whether a command without a good key is refused
    bool refusesKeyless = false; ///< a command without a policy key is none of a device that can obey
    bool wantsCompliance = false; ///< a device that does not meet all of the policy is refused
    bool forgetsKeys = false; ///< no key is good, not even the one that was just handed out
    Wipe wipe = Wipe::None; ///< of a device that did not acknowledge one yet

    QMap<QString, QString> verdicts; ///< by device: the status of its last acknowledgement
    QMap<QString, QString> wipeVerdicts; ///< by device: the status that acknowledged the wipe

    void setPolicies(const QVector<Policy> &policies);
    /** The devices have to fetch the policies anew. */
    void refresh() { ++revision; }
    /** Each device is to be wiped, those that were wiped before as well. */
    void orderWipe(Wipe order);
    /** The order for a device that speaks this version: the account alone is wiped at 16.1 and later. */
    Wipe wipeFor(const QString &deviceId, int version) const;

    /** What is wrong with a command that brings this key, as a status of the protocol; 0 if it is served.
     * @p key is null if the command brings none at all. */
    int complaint(
        const QString &deviceId, const ProvisionState &state, const QString &key, int version) const;
};

} // namespace Simulator
