// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "support/crashscene.h"

#include <QStringList>

/** Messages and mail folders in the middle of a fault. Each change says what both sides have to have at the
 * end. */
class CrashMail : public CrashScene
{
public:
    static QStringList durableFiles();

    void begin(EasAccountId accountId, Simulator::Mailbox &mailbox, const QString &version) override;
    void clearDevice() const override;
    void fillMailbox() override;
    QString wrongState() const override;
    QString wrongStores() const override;

    /** Arrivals, marks, deletions and folder changes on the server. */
    void changeServer();
    /** The same, and marks and deletions here. */
    void changeForLaterSync();
    /** Messages moved here, some of them marked or changed on the server meanwhile. */
    void changeForMove();

private:
    void want(const QStringList &messages);
    QString deliver(const QString &folderId, const QString &subject) const;
    QString serverItem(const QString &subject) const;
    QString wrongContent() const;
    QString wrongMapping() const;

    QStringList mWanted; ///< sorted
};
